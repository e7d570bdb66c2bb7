#include "zvmath/matrix_dump.h"

#include "matrix_contents.h"

#include <algorithm>
#include <cstdint>
#include <typeinfo>

using ZVMath::ZVMatrix;

namespace
{

constexpr unsigned int partsDoNotFit = 7;

/// Reaches what a matrix keeps for derived classes.
struct Access : ZVMatrix
{
    using ZVMatrix::Elements;
    using ZVMatrix::SwapContents;
};

}  // namespace

namespace ZVPlatform
{

std::vector<double> ZVGetMatrixContents(const ZVMatrix& matrix)
{
    return matrix.GetData();
}

bool ZVSetMatrixContents(ZVMatrix& matrix, const std::vector<double>& contents)
{
    const size_t elements = matrix.GetData().size();
    std::copy_n(contents.begin(), std::min(elements, contents.size()),
                (matrix.*&Access::Elements)());
    return contents.size() == elements;
}

namespace ZVBinaryDump
{

namespace
{

/// Where the next field goes to or comes from: streams know by themselves.
template <class Byte> Byte* After(Byte* buffer, unsigned int bytes)
{
    return buffer + bytes;
}

zvostream& After(zvostream& stream, unsigned int /*bytes*/)
{
    return stream;
}

zvistream& After(zvistream& stream, unsigned int /*bytes*/)
{
    return stream;
}

template <class Target>
unsigned int WriteRecord(Target&& target, bool reverse, const ZVMatrix& matrix,
                         unsigned int& status, unsigned int& remaining)
{
    const ZVImpl<unsigned int> field;
    unsigned int total = 0;
    for (const unsigned int dimension : {matrix.GetNumRows(), matrix.GetNumColumns()})
        total += field.Write(After(target, total), reverse, dimension, status, remaining);
    return total + ZVSTLWrite(After(target, total), reverse, matrix.GetData(), status, remaining);
}

/// Makes the matrix what the record says, but not whatever it costs: a few bytes may claim
/// gigabytes.
bool Replace(ZVMatrix& matrix, unsigned int rows, unsigned int columns,
             std::vector<double>& elements)
{
    // What passes is far below 2^32: budgets end at 2^29 elements.
    constexpr uint64_t benefitOfDoubt = uint64_t{1} << 24;
    if (uint64_t{rows} * columns > elements.size() + benefitOfDoubt)
        return false;
    // Of a plain matrix it is known what resizing does: no memory is filled to be thrown away.
    if (typeid(matrix) == typeid(ZVMatrix) &&
        (matrix.*&Access::SwapContents)(rows, columns, elements))
        return true;
    matrix.Resize(rows, columns, 0.0);
    return ZVSetMatrixContents(matrix, elements);
}

template <class Source>
unsigned int ReadRecord(Source&& source, bool reverse8, bool reverse4, bool reverse2,
                        unsigned int version, ZVMatrix& matrix, unsigned int& status,
                        unsigned int& remaining)
{
    const ZVImpl<unsigned int> field;
    unsigned int total = 0;
    unsigned int dimensions[2] = {};
    for (unsigned int& dimension : dimensions)
        total += field.Read(After(source, total), reverse8, reverse4, reverse2, version, dimension,
                            status, remaining);
    std::vector<double> elements;
    total += ZVPushBackSTLRead(After(source, total), reverse8, reverse4, reverse2, version,
                               elements, status, remaining);
    if (status == 0 && !Replace(matrix, dimensions[0], dimensions[1], elements))
        status = partsDoNotFit;
    return total;
}

}  // namespace

void ZVImpl<ZVMatrix>::Name(std::string& name) const
{
    name += "ZVMatrix";
}

unsigned int ZVImpl<ZVMatrix>::Size(const ZVMatrix& matrix, const unsigned int& status,
                                    bool /*reverse*/) const
{
    const size_t elements = status == 0 ? matrix.GetData().size() : 0;
    return static_cast<unsigned int>(12 + 8 * elements);
}

unsigned int ZVImpl<ZVMatrix>::Write(unsigned char* buffer, bool reverse, const ZVMatrix& matrix,
                                     unsigned int& status, unsigned int& remaining) const
{
    return WriteRecord(buffer, reverse, matrix, status, remaining);
}

unsigned int ZVImpl<ZVMatrix>::Write(zvostream& stream, bool reverse, const ZVMatrix& matrix,
                                     unsigned int& status, unsigned int& remaining) const
{
    return WriteRecord(stream, reverse, matrix, status, remaining);
}

unsigned int ZVImpl<ZVMatrix>::Read(const unsigned char* buffer, bool reverse8, bool reverse4,
                                    bool reverse2, unsigned int version, ZVMatrix& matrix,
                                    unsigned int& status, unsigned int& remaining) const
{
    return ReadRecord(buffer, reverse8, reverse4, reverse2, version, matrix, status, remaining);
}

unsigned int ZVImpl<ZVMatrix>::Read(zvistream& stream, bool reverse8, bool reverse4, bool reverse2,
                                    unsigned int version, ZVMatrix& matrix, unsigned int& status,
                                    unsigned int& remaining) const
{
    return ReadRecord(stream, reverse8, reverse4, reverse2, version, matrix, status, remaining);
}

}  // namespace ZVBinaryDump

}  // namespace ZVPlatform
