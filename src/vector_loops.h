#pragma once

#include <cstddef>

namespace ZVMath
{

/// sum of a[i] * b[i]. Eight partial sums, element i into sum i % 8, each from 0.0 in ascending
/// order; at the end sum j takes j + 4, then j + 2, then j + 1.
double Dot(const double* a, const double* b, size_t n);

/// y[i] += factor * x[i]
void AddScaled(double* y, double factor, const double* x, size_t n);

/// x[i] *= factor
void Scale(double* x, double factor, size_t n);

/// out[r] = Dot(row r of `matrix`, x), for a row-major matrix of rows x columns.
void MatrixTimesVector(double* out, const double* matrix, size_t rows, size_t columns,
                       const double* x);

}  // namespace ZVMath
