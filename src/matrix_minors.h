#pragma once

#include <cstddef>

namespace ZVMath
{

/// The determinant of the row-major n x n `matrix` by Laplace expansion, as
/// `ZVSquareMatrix::Determinant` states it.
double LaplaceDeterminant(const double* matrix, size_t n);

/// minors[i * n + j] = the determinant of the row-major n x n `matrix` without row i and column j,
/// with the bits of `LaplaceDeterminant`. n >= 2.
void LaplaceMinors(double* minors, const double* matrix, size_t n);

}  // namespace ZVMath
