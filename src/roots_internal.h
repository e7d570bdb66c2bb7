#pragma once

#include "zvmath/roots.h"

/// Real roots of polynomials in closed form, in double precision, and the eigenvector methods
/// behind the exported functions.
///
/// Coefficients come from the highest power down. A leading coefficient below 1e-6 in magnitude,
/// whatever the others are, counts as 0: the polynomial of the next lower degree is solved instead.
/// Discriminants are compared with 0 exactly. The result is the number of roots that are reported;
/// slots that are not mentioned are left as they are. Coefficients that are not finite, or whose
/// cubes overflow or underflow on the way, have no meaningful roots.
///
/// The angles of the trigonometric solutions have ten decimals, so their roots agree with the exact
/// ones to about eleven digits (of the largest root), and near a double root to seven. Squares and
/// cubes are x * x and (x * x) * x, sums of three are formed left to right.
namespace ZVMath
{

/// a x + b = 0: 0 or 1.
int zv_SolveLinear(double* roots, double a, double b);
int zv_SolveLinearRoots(double a, double b, double* roots);

/// a x^2 + b x + c = 0: 0, 1 (a double root) or 2, not sorted, without cancellation. A NaN
/// discriminant counts as positive.
int zv_SolveQuadratic(double* roots, double a, double b, double c);

/// The same, but roots[1] becomes 0 when `a` counts as 0.
int zv_SolveQuadraticRoots(double a, double b, double c, double* roots);

/// a x^3 + b x^2 + c x + d = 0.
///
/// Three real roots (discriminant q^2 + p^3 <= 0): 3, in the order largest, smallest, middle. A
/// triple root: 3. A positive discriminant is taken for the rounding error of a double root: 2,
/// with the simple root first and then the other twice. So a COMPLEX PAIR IS REPORTED AS A DOUBLE
/// ROOT, and the simple root is then wrong too: evaluate the polynomial at what is returned. A NaN
/// discriminant: NaN in all slots, 1.
int zv_SolveCubic(double* roots, double a, double b, double c, double d);

/// The same, but for: discriminant 0 (or NaN) reports -b / 3a in all three slots, and 1, which is
/// right for a triple root only; roots[2], and roots[1] if `b` counts as 0 too, become 0 when `a`
/// counts as 0.
int zv_SolveCubicRoots(double a, double b, double c, double d, double* roots);

/// a x^4 + b x^3 + c x^2 + d x + e = 0: 0, 2 or 4, not sorted; or what the cubic has when `a`
/// counts as 0.
///
/// Roots that lie symmetric about their mean (x^4 - 5 x^2 + 4, say) are NOT FOUND: a root of the
/// resolvent is then 0, and rounding may turn it negative, which counts as no real root, or, where
/// only two are real, gives NaN for both. A double root may be missed or come as two. NaN
/// coefficients: 4.
int zv_SolveQuartic(double* roots, double a, double b, double c, double d, double e);

/// The eigenvalues of symmetric `m`, in descending order. Coefficients in float. Always 1.
int get_roots_of_3_by_3_matrix(float m[3][3], float* values);

/// The same of nine floats, and not sorted. Off-diagonal entries that sum up to less than 1e-4 of
/// the diagonal ones count as 0.
int get_roots_of_3_by_3(float* m, float* values);

/// Eigenvalues, descending, and eigenvectors, as rows of `out`, of symmetric `in`, in double.
///
/// Returns 4 if the off-diagonal entries are below 1e-6 (`out`: unit vectors), 2 if the diagonal
/// is the eigenvalues in order to 1e-6 (the identity), else 0: `out` is then a rotation with
/// out[0][0] and out[1][1] >= 0, or is not written if eigenvaluesOnly is not 0.
///
/// NOT SOUND, as `get_roots_3` says: take `zv_make_rmat_alt_d`.
int make_rmat(double* values, float in[3][3], float out[3][3], int eigenvaluesOnly);

/// The same in float, by another choice of rows in mode 0. Mode 1: the eigenvector of the smallest
/// value as row 2, and any two across it; mode 2: all three, each by itself. Modes 1 and 2 divide
/// by in[0][0] - value and in[1][0] without a look. Other modes: `out` is not written. In mode 1
/// the first row is formed in double and rounded once.
int make_rmat1(double* values, float in[3][3], float out[3][3], int mode);

/// `make_rmat` for nine floats each. `out` stays as it is where `make_rmat` writes nothing.
int zv_make_rmat(double* values, float* in, float* out, int eigenvaluesOnly);

/// What `zv_make_rmat2` does, with the eigenvalues, largest magnitude first: to 2e-5 of the largest
/// where all three agree, 3e-7 where two do, else 2e-11. Where two agree so closely that the
/// discriminant is rounded to exactly 0, all three come out as their MEAN, yet the rows are right:
/// the diagonal of out * in * out^T has the true ones. With -3 `values` are not written.
int zv_make_rmat_alt(float in[3][3], float out[3][3], float* values);

/// The same in double. Singular matrices have no axes here: -1, -2 or -3 for as many eigenvalues
/// that come out below 1e-9 in magnitude, with `out` the identity and `values` not written.
/// Off-diagonal entries of out * in * out^T are at most 1e-6 of the largest entry, 1e-8 where two
/// eigenvalues agree to a hundredth: the ten decimals of the angles count here.
int zv_make_rmat_alt_d(double in[3][3], double out[3][3], double* values);

/// A rotation of the plane that makes symmetric `in` diagonal. Always 1.
///
/// The larger eigenvalue is formed in double from the float trace and discriminant, and rounded. If
/// it misses the diagonal entry that it is by 1e-6, a DIAGONAL MATRIX GIVES NaN, since 0 is then
/// divided by in[0][1] = 0: one in thirty with entries of about 1, more than half of those of 100
/// and more.
int make_rmat_2d(float in[2][2], float out[2][2]);

/// Prints what `make_rmat1` and `make_rmat` make of `in`, entry by entry, and their difference;
/// `out` receives the latter's. Where one of them writes nothing, zeros and the caller's `out` are
/// shown. Always 1.
int make_rmat2(float in[3][3], float out[3][3], int mode);

/// Prints r and r * r^T, entry by entry, and which rows are not of length 1 to 1e-3. Always 1.
int test_rmat(float r[3][3]);

}  // namespace ZVMath
