#pragma once

#include "zvmath/export.h"
#include "zvmath/matrix.h"
#include "zvplatform/binary_dump.h"

/// The binary record of a matrix, version 1: rows, columns, the number of elements n (4 bytes
/// each), then the n elements row by row (8 bytes each), in the byte order of the machine that
/// writes.
///
///     unsigned int status = 0, remaining = 0xFFFFFFFF;
///     ZVPlatform::zvomemorystream stream;
///     ZVPlatform::ZVBinaryDump::ZVImpl<ZVMath::ZVMatrix>().Write(stream, false, matrix, status,
///     remaining);
///
/// "zvplatform/binary_dump.h" says what `status`, `remaining` and the flags do. Records of 2^29
/// elements and more don't fit a budget.
template <> class ZVMATH_EXPORT ZVPlatform::ZVBinaryDump::ZVImpl<ZVMath::ZVMatrix>
{
public:
    /// Appends "ZVMatrix".
    void Name(std::string& name) const;

    /// 12 + 8n, modulo 2^32; 12 if `status` is not 0.
    unsigned int Size(const ZVMath::ZVMatrix& matrix, const unsigned int& status,
                      bool reverse) const;

    /// Writes the record.
    unsigned int Write(unsigned char* buffer, bool reverse, const ZVMath::ZVMatrix& matrix,
                       unsigned int& status, unsigned int& remaining) const;
    unsigned int Write(zvostream& stream, bool reverse, const ZVMath::ZVMatrix& matrix,
                       unsigned int& status, unsigned int& remaining) const;

    /// Replaces `matrix`. When that fails, it stays as it was, but for code 7: n is not the number
    /// of elements that the matrix has after `Resize(rows, columns, 0.0)`, which does nothing to
    /// square matrices. It is then resized nevertheless, and its first elements are those of the
    /// record.
    ///
    /// A damaged record can't ask for more memory than there are bytes: where rows * columns is
    /// 2^32 or more, or more than n + 2^24, code 7 leaves the matrix as it was. std::bad_alloc too.
    unsigned int Read(const unsigned char* buffer, bool reverse8, bool reverse4, bool reverse2,
                      unsigned int version, ZVMath::ZVMatrix& matrix, unsigned int& status,
                      unsigned int& remaining) const;
    unsigned int Read(zvistream& stream, bool reverse8, bool reverse4, bool reverse2,
                      unsigned int version, ZVMath::ZVMatrix& matrix, unsigned int& status,
                      unsigned int& remaining) const;
};
