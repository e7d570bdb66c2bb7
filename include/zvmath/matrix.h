#pragma once

#include "zvmath/export.h"

#include <cstddef>
#include <vector>

namespace ZVPlatform
{
class zvostream;
}

namespace ZVMath
{

/// A dense matrix of doubles, held row by row: element (r, c) is `GetData()[r * columns + c]`.
///
/// Values: copies are independent, results are new matrices. A matrix has at most 4,294,967,295
/// elements; an operation that would make more leaves the matrix as it is, and a constructor or a
/// product gives 0 x 0. When memory runs out (`std::bad_alloc`) the matrix is as it was. Nothing
/// reads or writes outside a matrix's own elements, whatever the arguments.
///
/// A NaN result is a NaN, of unspecified sign and payload; all other results are fixed to the bit.
class ZVMATH_EXPORT ZVMatrix
{
public:
    /// 0 x 0.
    ZVMatrix();
    /// rows x columns, every element `value`.
    ZVMatrix(unsigned int rows, unsigned int columns, double value = 0.0);
    ZVMatrix(const ZVMatrix& other);
    /// Leaves `other` 0 x 0.
    ZVMatrix(ZVMatrix&& other) noexcept;
    ZVMatrix& operator=(const ZVMatrix& other);
    /// Leaves `other` 0 x 0.
    ZVMatrix& operator=(ZVMatrix&& other) noexcept;
    virtual ~ZVMatrix() = default;

    /// Makes it rows x columns. Elements keep their place in the row-by-row sequence, not their
    /// row and column; elements added at its end are `value`, surplus ones at its end are dropped.
    virtual void Resize(unsigned int rows, unsigned int columns, double value = 0.0);
    /// Adds a last row, every element `value`.
    virtual void AddRow(double value = 0.0);
    /// Makes it 0 x 0.
    virtual void Clear();

    /// Copies the first `GetNumColumns()` of `values` into row `row`, or as many as there are.
    /// A row out of range: nothing. `values` may be this matrix's own `GetData()`.
    void SetRowData(unsigned int row, const std::vector<double>& values);

    /// The shape.
    unsigned int GetNumRows() const { return rows; }
    unsigned int GetNumColumns() const { return columns; }
    /// The elements, row by row.
    const std::vector<double>& GetData() const { return data; }

    /// Every element times `scalar`.
    ZVMatrix& operator*=(double scalar);
    ZVMatrix operator*(double scalar) const;

    /// The matrix product, GetNumRows() x right.GetNumColumns().
    ///
    /// Element (i, j) starts at 0.0 and adds this(i, k) * right(k, j) for k ascending, each product
    /// and each sum rounded: the bits of the plain triple loop. When this has not as many columns
    /// as `right` has rows, k runs over the smaller number. Cost: rows * columns * inner products.
    ZVMatrix operator*(const ZVMatrix& right) const;

    /// Element by element in the row-by-row sequence, in the shape of the left operand. Where
    /// `right` has fewer elements, the left operand's remaining ones stay.
    ZVMatrix& operator+=(const ZVMatrix& right);
    ZVMatrix& operator-=(const ZVMatrix& right);
    ZVMatrix operator+(const ZVMatrix& right) const;
    ZVMatrix operator-(const ZVMatrix& right) const;

    /// columns x rows; element (c, r) is this(r, c).
    ZVMatrix Transpose() const;

protected:
    /// For derived classes: the elements, to be written in place.
    double* Elements() { return data.data(); }
    /// For derived classes: makes it rows x columns with these elements, if there are as many of
    /// them, in exchange for its former ones. Whether it did.
    bool SwapContents(unsigned int rows, unsigned int columns, std::vector<double>& elements);

private:
    unsigned int rows = 0;
    unsigned int columns = 0;
    std::vector<double> data;
};

/// An n x n matrix.
///
/// It changes its size through `Resize(n, value)` and `Clear` only: the row-wise operations of
/// `ZVMatrix` do nothing here. (Assigning to it through a reference to `ZVMatrix` can still make it
/// non-square; what then happens is said with each operation.)
class ZVMATH_EXPORT ZVSquareMatrix : public ZVMatrix
{
public:
    /// 0 x 0.
    ZVSquareMatrix();
    /// n x n, every element `value`: not a diagonal matrix.
    explicit ZVSquareMatrix(unsigned int n, double value = 0.0);

    /// Does nothing: the matrix stays square.
    void Resize(unsigned int rows, unsigned int columns, double value) override;
    /// Does nothing: the matrix stays square.
    void AddRow(double value = 0.0) override;
    /// Makes it n x n; elements keep their place in the row-by-row sequence, see
    /// `ZVMatrix::Resize`. Two arguments are always n and value: `Resize(3, 3)` adds threes.
    virtual void Resize(unsigned int n, double value = 0.0);

    /// The matrix without row i and column j. 0 x 0 when i or j is out of range or the matrix is
    /// not square.
    ZVSquareMatrix Minor(unsigned int i, unsigned int j) const;

    /// The determinant, by Laplace expansion along the first row, of minors expanded likewise:
    ///
    ///     n = 0 (and not square): 0.0     n = 1: a00     n = 2: a11 * a00 - a10 * a01
    ///     n > 2: from 0.0, for j ascending, add det(Minor(0, j)) * a0j, negated when j is odd
    ///
    /// with each operation rounded, to the bit. No pivoting, so the value of a small matrix is
    /// exact where its products and sums are; for large or ill-scaled ones prefer a factorisation.
    ///
    /// Cost: n * 2^n operations up to n = 25, since a minor's determinant depends only on which
    /// columns are left and is computed once for each such set; memory up to 4 * (n choose n/2)
    /// doubles. Each further row multiplies the time by n. Practical to n = 20 or so: some tens of
    /// milliseconds.
    double Determinant() const;

    /// The inverse: the adjugate times the reciprocal of the determinant, element (j, i) being
    /// (-1)^(i+j) * det(Minor(i, j)) * (1 / Determinant()), to the bit.
    ///
    /// The n x n zero matrix, n being the number of rows, when `Determinant()` == 0.0, so also when
    /// not square. There is no tolerance: a nearly singular matrix gives large elements.
    /// Cost: of the order of n^2 * 2^n operations up to n = 25; memory up to 6 * (n choose n/2)
    /// doubles.
    ZVSquareMatrix Invert() const;
};

/// A 4 x 4 matrix. It keeps its size: `Clear`, `AddRow` and both `Resize` do nothing, and moving
/// from it copies. (Assigning to it or moving from it through a reference to a base class can still
/// change its size; dimensions and elements agree even then.)
class ZVMATH_EXPORT ZV4x4Matrix : public ZVSquareMatrix
{
public:
    /// All zeros: not the identity.
    ZV4x4Matrix();
    /// Every element `value`: not a diagonal matrix.
    explicit ZV4x4Matrix(double value);
    /// The top left 4 x 4 block of `matrix`, with zeros where `matrix` has no element. Implicit,
    /// so that `ZV4x4Matrix both = first * second;` works.
    ZV4x4Matrix(const ZVMatrix& matrix);
    ZV4x4Matrix(const ZV4x4Matrix& other) = default;
    ZV4x4Matrix& operator=(const ZV4x4Matrix& other) = default;

    /// Does nothing: the matrix stays 4 x 4.
    void Clear() override;
    using ZVSquareMatrix::Resize;
    /// Does nothing: the matrix stays 4 x 4.
    void Resize(unsigned int n, double value = 0.0) override;
};

/// Writes a line for each row, its elements separated by tabs ("zvplatform/streams.h" says how they
/// look: they read back to the same bits, but for a NaN's). A matrix without elements: nothing.
ZVMATH_EXPORT void ZVPrintMatrix(const ZVMatrix& matrix, ZVPlatform::zvostream& stream);

}  // namespace ZVMath
