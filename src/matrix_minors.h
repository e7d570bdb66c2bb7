#pragma once

#include <cstddef>

namespace ZVMath
{

/// Up to so many columns the determinants of the lower rows are held in tables, the largest of
/// which then has binomial(25, 12) elements, 42 MB. Rows above are expanded one by one.
constexpr size_t maxTableColumns = 25;

/// Copies the row-major n x n `matrix` without row i and column j to `minor`.
void CopyWithout(double* minor, const double* matrix, size_t n, size_t i, size_t j);

/// The determinant of the row-major n x n `matrix` by Laplace expansion, as
/// `ZVSquareMatrix::Determinant` states it.
double LaplaceDeterminant(const double* matrix, size_t n, size_t tableColumns = maxTableColumns);

/// minors[i * n + j] = the determinant of the row-major n x n `matrix` without row i and column j,
/// with the bits of `LaplaceDeterminant`. n >= 2.
void LaplaceMinors(double* minors, const double* matrix, size_t n,
                   size_t tableColumns = maxTableColumns);

/// The inverse of the row-major n x n `matrix` as `ZVSquareMatrix::Invert` states it. False, with
/// `inverse` untouched, when the determinant is 0.0.
bool LaplaceInverse(double* inverse, const double* matrix, size_t n);

}  // namespace ZVMath
