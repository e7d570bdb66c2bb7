#include "zvmath/matrix.h"

#include "matrix_minors.h"
#include "matrix_product.h"
#include "zvplatform/streams.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace ZVMath
{

namespace
{

bool TooLarge(unsigned int rows, unsigned int columns)
{
    return uint64_t{rows} * columns > std::numeric_limits<uint32_t>::max();
}

size_t Count(unsigned int rows, unsigned int columns)
{
    return size_t{rows} * columns;
}

}  // namespace

ZVMatrix::ZVMatrix() = default;

ZVMatrix::ZVMatrix(unsigned int newRows, unsigned int newColumns, double value)
    : rows(TooLarge(newRows, newColumns) ? 0 : newRows),
      columns(TooLarge(newRows, newColumns) ? 0 : newColumns), data(Count(rows, columns), value)
{
}

ZVMatrix::ZVMatrix(const ZVMatrix& other) = default;

ZVMatrix::ZVMatrix(ZVMatrix&& other) noexcept
    : rows(std::exchange(other.rows, 0)), columns(std::exchange(other.columns, 0)),
      data(std::move(other.data))
{
}

// Not defaulted: only copying the elements can fail, and must come before the dimensions.
// NOLINTNEXTLINE(modernize-use-equals-default)
ZVMatrix& ZVMatrix::operator=(const ZVMatrix& other)
{
    data = other.data;
    rows = other.rows;
    columns = other.columns;
    return *this;
}

ZVMatrix& ZVMatrix::operator=(ZVMatrix&& other) noexcept
{
    if (this != &other) {
        data = std::move(other.data);
        rows = std::exchange(other.rows, 0);
        columns = std::exchange(other.columns, 0);
        other.data.clear();
    }
    return *this;
}

bool ZVMatrix::SwapContents(unsigned int newRows, unsigned int newColumns,
                            std::vector<double>& elements)
{
    if (TooLarge(newRows, newColumns) || elements.size() != Count(newRows, newColumns))
        return false;
    rows = newRows;
    columns = newColumns;
    data.swap(elements);
    return true;
}

void ZVMatrix::Resize(unsigned int newRows, unsigned int newColumns, double value)
{
    if (TooLarge(newRows, newColumns))
        return;
    data.resize(Count(newRows, newColumns), value);
    rows = newRows;
    columns = newColumns;
}

void ZVMatrix::AddRow(double value)
{
    if (rows < std::numeric_limits<unsigned int>::max())
        ZVMatrix::Resize(rows + 1, columns, value);
}

void ZVMatrix::Clear()
{
    rows = 0;
    columns = 0;
    data.clear();
}

void ZVMatrix::SetRowData(unsigned int row, const std::vector<double>& values)
{
    // A row's own elements need no copying to themselves, which std::copy_n does not allow.
    if (row >= rows || (row == 0 && &values == &data))
        return;
    std::copy_n(values.begin(), std::min<size_t>(columns, values.size()),
                data.data() + Count(row, columns));
}

ZVMatrix& ZVMatrix::operator*=(double scalar)
{
    for (double& element : data)
        element *= scalar;
    return *this;
}

ZVMatrix ZVMatrix::operator*(double scalar) const
{
    ZVMatrix result(*this);
    result *= scalar;
    return result;
}

ZVMatrix ZVMatrix::operator*(const ZVMatrix& right) const
{
    if (rows == 4 && columns == 4 && right.rows == 4 && right.columns == 4) {
        // So small that the general way there costs as much as the product.
        ZVMatrix result;
        result.data = std::vector<double>(16);
        Multiply4x4(result.data.data(), data.data(), right.data.data());
        result.rows = 4;
        result.columns = 4;
        return result;
    }
    ZVMatrix result(rows, right.columns);
    if (!result.data.empty())
        AddProduct(result.data.data(), data.data(), columns, right.data.data(), rows,
                   std::min(columns, right.rows), right.columns);
    return result;
}

ZVMatrix& ZVMatrix::operator+=(const ZVMatrix& right)
{
    const size_t count = std::min(data.size(), right.data.size());
    for (size_t k = 0; k < count; ++k)
        data[k] += right.data[k];
    return *this;
}

ZVMatrix& ZVMatrix::operator-=(const ZVMatrix& right)
{
    const size_t count = std::min(data.size(), right.data.size());
    for (size_t k = 0; k < count; ++k)
        data[k] -= right.data[k];
    return *this;
}

ZVMatrix ZVMatrix::operator+(const ZVMatrix& right) const
{
    ZVMatrix result(*this);
    result += right;
    return result;
}

ZVMatrix ZVMatrix::operator-(const ZVMatrix& right) const
{
    ZVMatrix result(*this);
    result -= right;
    return result;
}

ZVMatrix ZVMatrix::Transpose() const
{
    ZVMatrix result(columns, rows);
    for (size_t r = 0; r < rows; ++r)
        for (size_t c = 0; c < columns; ++c)
            result.data[c * rows + r] = data[r * columns + c];
    return result;
}

ZVSquareMatrix::ZVSquareMatrix() = default;

ZVSquareMatrix::ZVSquareMatrix(unsigned int n, double value) : ZVMatrix(n, n, value)
{
}

void ZVSquareMatrix::Resize(unsigned int, unsigned int, double)
{
}

void ZVSquareMatrix::AddRow(double)
{
}

void ZVSquareMatrix::Resize(unsigned int n, double value)
{
    ZVMatrix::Resize(n, n, value);
}

ZVSquareMatrix ZVSquareMatrix::Minor(unsigned int i, unsigned int j) const
{
    const unsigned int n = GetNumRows();
    if (n != GetNumColumns() || i >= n || j >= n)
        return ZVSquareMatrix();
    ZVSquareMatrix result(n - 1);
    CopyWithout(result.Elements(), GetData().data(), n, i, j);
    return result;
}

double ZVSquareMatrix::Determinant() const
{
    if (GetNumRows() != GetNumColumns())
        return 0.0;
    return LaplaceDeterminant(GetData().data(), GetNumRows());
}

ZVSquareMatrix ZVSquareMatrix::Invert() const
{
    ZVSquareMatrix result(GetNumRows());
    if (GetNumRows() == GetNumColumns())
        LaplaceInverse(result.Elements(), GetData().data(), GetNumRows());
    return result;
}

ZV4x4Matrix::ZV4x4Matrix() : ZVSquareMatrix(4)
{
}

ZV4x4Matrix::ZV4x4Matrix(double value) : ZVSquareMatrix(4, value)
{
}

ZV4x4Matrix::ZV4x4Matrix(const ZVMatrix& matrix) : ZVSquareMatrix(4)
{
    const size_t width = std::min(4u, matrix.GetNumColumns());
    for (size_t r = 0; r < std::min(4u, matrix.GetNumRows()); ++r)
        std::copy_n(matrix.GetData().data() + r * matrix.GetNumColumns(), width,
                    Elements() + r * 4);
}

void ZV4x4Matrix::Clear()
{
}

void ZV4x4Matrix::Resize(unsigned int, double)
{
}

void ZVPrintMatrix(const ZVMatrix& matrix, ZVPlatform::zvostream& stream)
{
    // Gathered, since a stream's write is a virtual call: as much as fits, an element less.
    constexpr std::ptrdiff_t roomForElement = 40;
    char text[4096];
    char* end = text;
    const double* element = matrix.GetData().data();
    const double* const last = element + matrix.GetData().size();
    const unsigned int columns = matrix.GetNumColumns();
    for (unsigned int c = 0; element != last; ++element) {
        end = ZVPlatform::ZVFormatDouble(end, *element);
        const bool endsRow = ++c == columns;
        *end++ = endsRow ? '\n' : '\t';
        if (endsRow)
            c = 0;
        if (text + sizeof text - end < roomForElement || element + 1 == last) {
            stream << std::string_view(text, static_cast<size_t>(end - text));
            end = text;
        }
    }
}

}  // namespace ZVMath
