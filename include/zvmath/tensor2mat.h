#pragma once

#include "zvmath/export.h"

/// The principal frame of an inertia tensor, or of any symmetric 3 x 3 matrix, in double precision.
///
/// A tensor is nine doubles, row by row, symmetric (nobody checks it) and finite. Moments are
/// ordered by magnitude, largest first.
///
/// BRING THE LARGEST ENTRY TO 1e4 OR MORE, by other units or a factor. Thresholds are absolute:
/// coefficients of the characteristic polynomial below 1e-6 in magnitude count as zero, and the
/// last is the product of all moments. At a largest entry of 1 the moments of long, thin bodies are
/// wrong in the fifth digit; at 1e-2 and below they are plainly wrong. At 1e50 products overflow.
///
/// Where the moments must be right in every case take the diagonal of R T R^T, with the rotation R
/// of `ZVMakeRotationMatrix`.
namespace ZVMath
{

/// The principal moments: the eigenvalues of `tensor`.
///
/// Returns 0, or -3 with the warning "No principle axes found during inertial alignment" when the
/// largest magnitude is below 1e-9; `moments` are written all the same.
///
/// Two moments that agree so closely that the discriminant is rounded to exactly 0 (a quarter and
/// more of the tensors with an axis of symmetry and small whole entries, some percent of others
/// with one): all three come out as their MEAN.
///
/// Error, at the scale named above: 1e-14 of the largest moment where all differ by a third of it;
/// growing as one over the product of a moment's distances from the others, to 3e-7 where two agree
/// and to 2e-5 where all three do.
/// Method: the trigonometric solution of the cubic (Viete; Smith 1961). Cost: some 80 ns.
ZVMATH_EXPORT int ZVPMIFromInertialTensor(double* moments, const double* tensor);

/// The principal moments and axes: `rotation` is nine doubles, row by row; row r is the unit axis
/// of moment r. The rows are orthonormal and right-handed (determinant +1), so x' = R x expresses a
/// vector in the principal frame, and R T R^T is diagonal. Which way an axis points is arbitrary.
///
/// Mind the order of the arguments: moments, then rotation. Both may overlap `tensor`.
///
/// A tensor whose off-diagonal entries are all exactly 0 has its diagonal for moments and signed
/// unit vectors for axes. Otherwise the moments are those of `ZVPMIFromInertialTensor` (whose
/// warning may be issued), and the axes come from a trial vector x: (T - m2*I)(T - m1*I)x lies
/// along the axis of moment 0 (Cayley and Hamilton's theorem). Where rounding makes that worthless,
/// as when two moments agree, or are wrong, the axes come from plane rotations (Jacobi 1846).
///
/// Returns 0, or -4 with the warning "NaN detected during inertial alignment diagonalization" when
/// a NaN appeared in the search for the axes; `rotation` is the identity then.
///
/// Error: rows orthonormal to 1e-9; off-diagonal entries of R T R^T at most 1e-6 of the largest
/// entry of T, 1e-8 where two moments agree to a hundredth, and mostly rounding errors. Cost: some
/// 120 ns, of a tensor with an axis of symmetry 400; no memory.
ZVMATH_EXPORT int ZVMakeRotationMatrix(double* moments, double* rotation, const double* tensor);

}  // namespace ZVMath
