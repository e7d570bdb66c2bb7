#pragma once

#include "zvmath/export.h"

/// Eigenvalues and eigenvectors of symmetric 3 x 3 matrices in closed form, in single precision.
///
/// A matrix is three rows of three floats, or nine floats row by row. It must be symmetric; nobody
/// checks that, and all nine entries are read. Entries must be finite, or the results mean nothing.
/// Thresholds are absolute, made for largest entries of about 1 to 1000.
///
/// For vectors take `zv_make_rmat2`; for vectors and values, or any scale, `ZVMakeRotationMatrix`
/// (tensor2mat.h). docs/roots.md has the rates of the limits that are named here.
namespace ZVMath
{

/// The rotation R into the principal axes of `in`: its rows are orthonormal eigenvectors, with
/// det R = +1, in the order of the eigenvalues' magnitudes, largest first. R * in * R^T is
/// diagonal, and has the eigenvalues. Computed in double and rounded to float; `out` may be `in`.
///
/// Returns 1; or -3, with `out` the identity, when all eigenvalues come out below 1e-9 in
/// magnitude. That is so of matrices without trace and with a repeated eigenvalue too, where
/// rounding takes the pair for three: (0 1 1; 1 0 1; 1 1 0). Add a multiple of the identity to
/// them, it keeps the axes. Returns 0 and touches nothing if `mode` is 999; any other value has no
/// effect.
///
/// Error: rows orthonormal to 2e-7; off-diagonal entries of R * in * R^T at most 2e-6 of the
/// largest entry of `in`, and mostly 1e-7. Cost: some 150 ns, of a matrix with an axis of symmetry
/// 400; no memory.
///
/// Method: eigenvalues by the trigonometric solution of the characteristic cubic (Viete; Smith
/// 1961); the product (A - b*I)(A - c*I)x lies along the eigenvector of eigenvalue a (Cayley and
/// Hamilton's theorem), where x is a fixed trial vector. Where rounding makes that worthless, as
/// when two eigenvalues agree, the axes come from plane rotations (Jacobi 1846).
ZVMATH_EXPORT int zv_make_rmat2(float in[3][3], float out[3][3], int mode);

/// Overwrites `m` with its eigenvectors as columns, in descending order of the eigenvalues, which
/// go to `values`. Always returns 1. Each vector comes from eliminating two rows.
///
/// THE VECTORS ARE NOT TO BE RELIED ON, take those of `zv_make_rmat2`:
/// - equal diagonal entries (every correlation matrix) give the identity;
/// - a diagonal entry that equals an eigenvalue gives an axis vector, which need not be an
///   eigenvector;
/// - thresholds of 1e-6 take small entries for zeros, whatever the scale.
///
/// The values are sound: to 1e-6 of the largest, but 2e-5 where all three agree as closely.
ZVMATH_EXPORT int get_roots_3(float* m, float* values);

/// The same for a matrix in three rows.
ZVMATH_EXPORT int get_roots_3_3(float m[3][3], float* values);

}  // namespace ZVMath
