#pragma once

#include <cstddef>

namespace ZVMath
{

/// c(i, j) += sum over k of a(i, k) * b(k, j), the terms added to c(i, j) one by one, k ascending.
/// Row-major: a is rows x inner with rows `aStride` apart, b inner x columns and c rows x columns
/// without gaps. c overlaps neither a nor b.
void AddProduct(double* c, const double* a, size_t aStride, const double* b, size_t rows,
                size_t inner, size_t columns);

/// c = a * b for row-major 4 x 4 matrices, with the bits of `AddProduct` on a c of zeros.
void Multiply4x4(double* c, const double* a, const double* b);

}  // namespace ZVMath
