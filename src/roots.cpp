#include "roots_internal.h"

#include "principal_axes.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace ZVMath
{

namespace
{

constexpr double threshold =
    1e-6;  // of coefficients, entries, pivots and differences of eigenvalues

// Ten decimals each, where full precision might be expected: the roots' last digits depend on them.
constexpr double twoThirdsPi = 2.0943951024;
constexpr double fourThirdsPi = 4.1887902048;
constexpr double pi = 3.1415926536;
constexpr double minusRootThree = -1.7320508075;

/// a x^2 + b x + c = 0 where `a` is not small.
int SolveProperQuadratic(double* roots, double a, double b, double c)
{
    const double discriminant = b * b + -4.0 * a * c;
    if (discriminant < 0.0)
        return 0;
    if (discriminant == 0.0) {
        roots[0] = -b / (2.0 * a);
        return 1;
    }
    // b and t have the same sign: nothing cancels.
    const double t = b < 0.0 ? -std::sqrt(discriminant) : std::sqrt(discriminant);
    const double q = -0.5 * (b + t);
    roots[0] = q / a;
    roots[1] = c / q;
    return 2;
}

/// t^3 + 3 p t + 2 q = 0 with x = t - shift.
struct DepressedCubic
{
    DepressedCubic(double a, double b, double c, double d)
        : shift(b / (3.0 * a)), p((c - b * shift) / (3.0 * a)),
          q((d + (2.0 * a * (shift * shift) - c) * shift) / (2.0 * a)), cube(p * p * p),
          discriminant(q * q + cube)
    {
    }

    double shift;
    double p;
    double q;
    double cube;
    double discriminant;
};

void Fill(double* roots, double value)
{
    roots[0] = roots[1] = roots[2] = value;
}

/// x^3 + square x^2 + linear x + constant, the characteristic polynomial of a 3 x 3 matrix.
template <class Real> struct Characteristic
{
    explicit Characteristic(const Real (&m)[3][3])
        : square(-(m[1][1] + m[0][0] + m[2][2])),
          linear((m[1][1] + m[0][0]) * m[2][2] + m[1][1] * m[0][0] -
                 (m[1][0] * m[0][1] + m[2][1] * m[1][2] + m[2][0] * m[0][2])),
          constant((m[1][0] * m[0][1] * m[2][2] + m[2][1] * m[1][2] * m[0][0] +
                    m[2][0] * m[0][2] * m[1][1]) -
                   (m[1][0] * m[2][1] * m[0][2] + m[1][1] * m[0][0] * m[2][2] +
                    m[0][1] * m[1][2] * m[2][0]))
    {
    }

    void Solve(double* roots) const { zv_SolveCubic(roots, 1.0, square, linear, constant); }

    Real square;
    Real linear;
    Real constant;
};

template <class To, class From> void Convert(To (&to)[3][3], const From (&from)[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            to[i][j] = static_cast<To>(from[i][j]);
}

/// What a parameter is a pointer to: C++ passes matrices as pointers to their rows.
template <class Real> using Matrix = Real (&)[3][3];
template <class Real> Matrix<Real> AsMatrix(Real (*rows)[3])
{
    return *reinterpret_cast<Real(*)[3][3]>(rows);
}

template <class Real> bool IsDiagonal(const Real (&m)[3][3])
{
    const Real small = static_cast<Real>(threshold);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            if (i != j && !(std::abs(m[i][j]) < small))
                return false;
    return true;
}

template <class Real> void SortDescending(Real* values, unsigned int* order)
{
    SortThree(values, order, [](Real next, Real previous) { return next > previous; });
}

template <class Real> void SortDescending(Real* values)
{
    unsigned int unused[3] = {};
    SortDescending(values, unused);
}

/// What the elimination of x_i from rows i and j of (m - lambda I) x = 0 works with.
template <class Real> struct Pivot
{
    Pivot(const Real (&m)[3][3], Real lambda, int index)
        : i(index), j((index + 1) % 3), k((index + 2) % 3), a(m[i][i] - lambda), b(m[i][j]),
          delta((lambda - m[j][j]) * a + m[j][i] * b)
    {
    }

    int i;
    int j;
    int k;
    Real a;
    Real b;
    Real delta;
};

template <class Real> void ScaleWithThirdOne(Real* v, int i, int j, int k)
{
    const Real scale = 1 / std::sqrt(v[i] * v[i] + v[j] * v[j] + 1);
    v[i] *= scale;
    v[j] *= scale;
    v[k] = scale;
}

template <class Real> void SetTwoComponents(Real* v, int i, int j, int k, Real tau)
{
    const Real length = std::sqrt(tau * tau + 1);
    v[i] = -tau / length;
    v[j] = 1 / length;
    v[k] = 0;
}

template <class Real> void Eliminate(Real* v, const Real (&m)[3][3], const Pivot<Real>& pivot)
{
    const int i = pivot.i;
    const int j = pivot.j;
    const int k = pivot.k;
    if (std::abs(pivot.delta) < static_cast<Real>(threshold))
        return SetTwoComponents(v, i, j, k, pivot.b / pivot.a);
    v[j] = (m[j][k] * pivot.a - m[j][i] * m[i][k]) / pivot.delta;
    v[i] = -(pivot.b * v[j] + m[i][k]) / pivot.a;
    ScaleWithThirdOne(v, i, j, k);
}

/// The row with the diagonal entry that is lambda, or is nearest to it.
Pivot<double> NearestDiagonal(const double (&m)[3][3], double lambda)
{
    for (int i = 2; i >= 0; --i)
        if (m[i][i] == lambda)
            return {m, lambda, i};
    int nearest = 0;
    for (int i = 1; i < 3; ++i)
        if (std::abs(m[i][i] - lambda) < std::abs(m[nearest][nearest] - lambda))
            nearest = i;
    return {m, lambda, nearest};
}

/// The rows with the largest minor.
Pivot<float> LargestMinor(const float (&m)[3][3], float lambda)
{
    Pivot<float> largest(m, lambda, 0);
    for (int i = 1; i < 3; ++i)
        if (const Pivot<float> other(m, lambda, i); std::abs(other.delta) > std::abs(largest.delta))
            largest = other;
    return largest;
}

template <class Real> void Negate(Real* row)
{
    for (int i = 0; i < 3; ++i)
        row[i] = -row[i];
}

/// Rows that are the same by construction are replaced, and all given their orientation.
template <class Real>
void MendAndOrient(Real (&rows)[3][3], const Real* values, bool allPivotsTheSame)
{
    if (allPivotsTheSame)
        SetIdentity(rows);
    if (values[0] == values[1])
        Cross(rows[1], rows[0], rows[2]);
    if (values[1] == values[2])
        Cross(rows[2], rows[1], rows[0]);

    Real normal[3];
    Cross(normal, rows[1], rows[2]);
    if (Dot(rows[0], normal) < 0)
        Negate(rows[2]);
    if (rows[0][0] < 0) {
        Negate(rows[0]);
        Negate(rows[2]);
    }
    if (rows[1][1] < 0) {
        Negate(rows[1]);
        Negate(rows[2]);
    }
}

/// The eigenvector of lambda from the first two rows, which must be good for it: divides by
/// m[0][0] - lambda and m[1][0] as they are.
void EliminateFirstRows(float* v, const float (&m)[3][3], float lambda)
{
    const float a = m[0][0] - lambda;
    const float g = m[0][1] / a - (m[1][1] - lambda) / m[1][0];
    if (!(std::abs(g) >= static_cast<float>(threshold)))
        return SetTwoComponents(v, 0, 1, 2, m[0][1] / a);
    v[1] = (m[1][2] / m[1][0] - m[0][2] / a) / g;
    v[0] = -(m[0][1] * v[1] + m[0][2]) / a;
    ScaleWithThirdOne(v, 0, 1, 2);
}

/// Two rows across the third.
void CompleteFromThird(float (&rows)[3][3])
{
    const double eta = rows[2][1];
    const double zeta = rows[2][2];
    if (eta == 0.0) {
        rows[0][0] = rows[0][2] = 0.0f;
        rows[0][1] = 1.0f;
    } else {
        const double sigma = std::sqrt(1.0 / (zeta * zeta / (eta * eta) + 1.0));
        rows[0][0] = 0.0f;
        rows[0][1] = static_cast<float>(-zeta * sigma / eta);
        rows[0][2] = static_cast<float>(sigma);
    }
    Cross(rows[1], rows[0], rows[2]);
}

/// What `make_rmat` and `make_rmat1` do first: eigenvalues in descending order, and the axes where
/// none need be computed. 4 or 2 if that was all, else 0.
template <class Real> int SolveValues(Real* values, Real (&axes)[3][3], const Real (&m)[3][3])
{
    if (IsDiagonal(m)) {
        unsigned int order[] = {0, 1, 2};
        for (int i = 0; i < 3; ++i)
            values[i] = m[i][i];
        SortDescending(values, order);
        for (int i = 0; i < 3; ++i)
            for (unsigned int j = 0; j < 3; ++j)
                axes[i][j] = order[i] == j ? Real(1) : Real(0);
        return 4;
    }
    double roots[3];
    Characteristic<Real>(m).Solve(roots);
    for (int i = 0; i < 3; ++i)
        values[i] = static_cast<Real>(roots[i]);
    SortDescending(values);
    const Real small = static_cast<Real>(threshold);
    for (int i = 0; i < 3; ++i)
        if (!(std::abs(m[i][i] - values[i]) < small))
            return 0;
    SetIdentity(axes);
    return 2;
}

/// The eigenvalues by magnitude, largest first.
void SolveByMagnitude(double* values, const double (&m)[3][3])
{
    const Characteristic<double> polynomial(m);
    const DepressedCubic cubic(1.0, polynomial.square, polynomial.linear, polynomial.constant);
    if (cubic.discriminant < 0.0)
        TrigonometricRoots(values, cubic.p, cubic.q, cubic.shift, twoThirdsPi, fourThirdsPi);
    else if (cubic.discriminant > 0.0)
        SimpleAndDoubleRoot(values, cubic.q, cubic.shift);
    else
        Fill(values, -cubic.shift);
    unsigned int order[] = {0, 1, 2};
    SortThree(values, order, GreaterMagnitude);
}

bool IsTiny(double eigenvalue)
{
    return std::abs(eigenvalue) < 1e-9;
}

/// The axes of values a, b, c, by magnitude: (m - b I)(m - c I) x lies along that of a; where it is
/// exactly 0, another x is tried.
void FindAxes(double (&axes)[3][3], const double (&m)[3][3], const double* values)
{
    if (values[0] == values[1] && values[1] == values[2]) {
        // Of a multiple of I, or of a pair whose discriminant was rounded to 0.
        SetIdentity(axes);
        return MendAxes(axes, m, values);
    }
    double x[] = {0.343257, 0.847359, 0.127438};
    for (int trial = 0; trial < maxTrials; ++trial) {
        double y[3];
        double z[3];
        TimesShifted(y, m, values[2], x);
        if (IsZero(y)) {
            x[0] -= 0.1;
            continue;
        }
        TimesShifted(z, m, values[1], y);
        if (IsZero(z)) {
            x[1] -= 0.1;
            continue;
        }
        return AxesFromTrial(axes, y, z, m, values);
    }
    BuildAxes(axes, m, values);
}

}  // namespace

int zv_SolveLinear(double* roots, double a, double b)
{
    if (std::abs(a) < threshold)
        return 0;
    roots[0] = -b / a;
    return 1;
}

int zv_SolveLinearRoots(double a, double b, double* roots)
{
    return zv_SolveLinear(roots, a, b);
}

int zv_SolveQuadratic(double* roots, double a, double b, double c)
{
    if (std::abs(a) < threshold)
        return zv_SolveLinear(roots, b, c);
    return SolveProperQuadratic(roots, a, b, c);
}

int zv_SolveQuadraticRoots(double a, double b, double c, double* roots)
{
    if (std::abs(a) < threshold)
        roots[1] = 0.0;
    return zv_SolveQuadratic(roots, a, b, c);
}

int zv_SolveCubic(double* roots, double a, double b, double c, double d)
{
    if (std::abs(a) < threshold)
        return zv_SolveQuadratic(roots, b, c, d);
    const DepressedCubic cubic(a, b, c, d);
    if (cubic.discriminant <= 0.0) {
        if (cubic.discriminant == 0.0 && cubic.cube == 0.0)
            Fill(roots, -cubic.shift);  // the angle would be that of 0 / 0
        else
            TrigonometricRoots(roots, cubic.p, cubic.q, cubic.shift, twoThirdsPi, fourThirdsPi);
        return 3;
    }
    if (cubic.discriminant > 0.0) {
        SimpleAndDoubleRoot(roots, cubic.q, cubic.shift);
        return 2;
    }
    Fill(roots, std::numeric_limits<double>::quiet_NaN());
    return 1;
}

int zv_SolveCubicRoots(double a, double b, double c, double d, double* roots)
{
    if (std::abs(a) < threshold) {
        roots[2] = 0.0;
        return zv_SolveQuadraticRoots(b, c, d, roots);
    }
    const DepressedCubic cubic(a, b, c, d);
    if (cubic.discriminant < 0.0) {
        TrigonometricRoots(roots, cubic.p, cubic.q, cubic.shift, twoThirdsPi, fourThirdsPi);
        return 3;
    }
    if (cubic.discriminant > 0.0) {
        SimpleAndDoubleRoot(roots, cubic.q, cubic.shift);
        return 2;
    }
    Fill(roots, -cubic.shift);
    return 1;
}

int zv_SolveQuartic(double* roots, double a, double b, double c, double d, double e)
{
    if (std::abs(a) < threshold)
        return zv_SolveCubic(roots, b, c, d, e);
    constexpr double ninth = 0.1111111111111111;
    constexpr double twoThirds = 0.6666666666666666;
    constexpr double fourThirds = 1.3333333333333333;

    // x = y + h makes y^4 + P y^2 + Q y + R = 0 of it.
    const double k = 1.0 / a;
    const double B = b * k;
    const double C = c * k;
    const double D = d * k;
    const double E = e * k;
    const double h = -0.25 * B;
    const double P = -0.375 * (B * B) + C;
    const double Q = -0.5 * B * (C - B * B / 4.0) + D;
    const double R = ((C - 0.75 * (B * B) / 4.0) * h + D) * h + E;

    // The resolvent z^3 - P z^2 - 4R z + (4PR - Q^2) = 0, depressed by z = w + P/3. (Ferrari)
    const double p = (12.0 * R + P * P) * -ninth;
    const double q = 0.5 * ((-4.0 * R + ninth * (P * P)) * (-twoThirds * P) - Q * Q);
    const double cube = p * p * p;
    const double discriminant = q * q + cube;

    if (discriminant > 0.0) {
        const double root = std::sqrt(discriminant);
        const double u = CubeRoot(root - q);
        const double v = -CubeRoot(root + q);
        const double w = u + v;
        const double s = std::sqrt(w - twoThirds * P);
        const double g = P * fourThirds + w;
        const double difference = u - v;
        const double magnitude = 0.5 * std::sqrt(g * g + 3.0 * (difference * difference));
        double alpha = Atan(minusRootThree * difference / g);
        if (alpha < 0.0)
            alpha = pi - alpha;
        const double t = 2.0 * Cos(alpha / 2.0) * std::sqrt(magnitude);
        const double half = Q <= 0.0 ? 0.5 : -0.5;
        roots[0] = h + half * (s - t);
        roots[1] = h + half * (s + t);
        return 2;
    }

    double u[3];  // the resolvent's roots, less P
    if (discriminant < 0.0) {
        TrigonometricRoots(u, p, q, twoThirds * P, twoThirdsPi, fourThirdsPi);
    } else {
        const double root = CubeRoot(-q);
        u[0] = u[1] = -root - twoThirds * P;
        u[2] = 2.0 * root - twoThirds * P;
    }
    if (u[0] < 0.0 || u[1] < 0.0 || u[2] < 0.0)
        return 0;
    const double r1 = std::sqrt(u[0]);
    const double r2 = std::sqrt(u[1]);
    const double r3 = std::sqrt(u[2]);
    const double half = (Q < 0.0 ? -1.0 : 1.0) * 0.5;
    roots[0] = h - half * (r1 + r2 + r3);
    roots[1] = h - half * (r1 - r2 - r3);
    roots[2] = h + half * (r1 - r2 + r3);
    roots[3] = h + half * (r1 + r2 - r3);
    return 4;
}

int get_roots_of_3_by_3_matrix(float m[3][3], float* values)
{
    double wide[3][3];
    Convert(wide, AsMatrix(m));
    double roots[] = {wide[0][0], wide[1][1], wide[2][2]};
    if (!IsDiagonal(wide))
        Characteristic<float>(AsMatrix(m)).Solve(roots);
    SortDescending(roots);
    for (int i = 0; i < 3; ++i)
        values[i] = static_cast<float>(roots[i]);
    return 1;
}

int get_roots_of_3_by_3(float* m, float* values)
{
    float matrix[3][3];
    std::memcpy(matrix, m, sizeof matrix);
    const float off = std::abs(m[1]) + std::abs(m[2]) + std::abs(m[3]) + std::abs(m[5]) +
                      std::abs(m[6]) + std::abs(m[7]);
    double roots[] = {m[0], m[4], m[8]};
    if (!(off / (std::abs(m[0]) + std::abs(m[4]) + std::abs(m[8])) < 1e-4))
        Characteristic<float>(matrix).Solve(roots);
    for (int i = 0; i < 3; ++i)
        values[i] = static_cast<float>(roots[i]);
    return 1;
}

int make_rmat(double* values, float in[3][3], float out[3][3], int eigenvaluesOnly)
{
    double m[3][3];
    double rows[3][3];
    Convert(m, AsMatrix(in));
    const int result = SolveValues(values, rows, m);
    if (result == 0) {
        if (eigenvaluesOnly)
            return 0;
        int pivots[3];
        for (int row = 2; row >= 0; --row) {
            const Pivot<double> pivot = NearestDiagonal(m, values[row]);
            pivots[row] = pivot.i;
            if (std::abs(pivot.a) >= threshold)
                Eliminate(rows[row], m, pivot);
            else
                for (int i = 0; i < 3; ++i)
                    rows[row][i] = i == pivot.i ? 1.0 : 0.0;
        }
        MendAndOrient(rows, values, pivots[0] == pivots[1] && pivots[1] == pivots[2]);
    }
    Convert(AsMatrix(out), rows);
    return result;
}

int make_rmat1(double* values, float in[3][3], float out[3][3], int mode)
{
    float m[3][3];
    float rows[3][3] = {};
    float narrow[3];
    Convert(m, AsMatrix(in));
    const int result = SolveValues(narrow, rows, m);
    for (int i = 0; i < 3; ++i)
        values[i] = narrow[i];
    if (result == 0) {
        if (mode == 0) {
            int pivots[3];
            for (int row = 2; row >= 0; --row) {
                const Pivot<float> pivot = LargestMinor(m, narrow[row]);
                pivots[row] = pivot.i;
                Eliminate(rows[row], m, pivot);
            }
            MendAndOrient(rows, narrow, pivots[0] == pivots[1] && pivots[1] == pivots[2]);
        } else if (mode == 1) {
            EliminateFirstRows(rows[2], m, narrow[2]);
            CompleteFromThird(rows);
        } else if (mode == 2) {
            for (int row = 2; row >= 0; --row)
                EliminateFirstRows(rows[row], m, narrow[row]);
        } else {
            return 0;
        }
    }
    Convert(AsMatrix(out), rows);
    return result;
}

int zv_make_rmat(double* values, float* in, float* out, int eigenvaluesOnly)
{
    float matrix[3][3];
    float axes[3][3];
    std::memcpy(matrix, in, sizeof matrix);
    const int result = make_rmat(values, matrix, axes, eigenvaluesOnly);
    if (result != 0 || !eigenvaluesOnly)
        std::memcpy(out, axes, sizeof axes);
    return result;
}

int get_roots_3(float* m, float* values)
{
    float transposed[3][3];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            transposed[j][i] = m[3 * i + j];
    get_roots_3_3(transposed, values);
    std::memcpy(m, transposed, sizeof transposed);
    return 1;
}

int get_roots_3_3(float m[3][3], float* values)
{
    float axes[3][3];
    double roots[3];
    make_rmat(roots, m, axes, 0);
    for (int i = 0; i < 3; ++i) {
        values[i] = static_cast<float>(roots[i]);
        for (int j = 0; j < 3; ++j)
            m[i][j] = axes[j][i];
    }
    return 1;
}

int zv_make_rmat_alt(float in[3][3], float out[3][3], float* values)
{
    double m[3][3];
    double axes[3][3];
    double roots[3];
    Convert(m, AsMatrix(in));
    SolveByMagnitude(roots, m);
    SetIdentity(AsMatrix(out));
    if (IsTiny(roots[0]))
        return -3;
    FindAxes(axes, m, roots);
    Convert(AsMatrix(out), axes);
    for (int i = 0; i < 3; ++i)
        values[i] = static_cast<float>(roots[i]);
    return 1;
}

int zv_make_rmat_alt_d(double in[3][3], double out[3][3], double* values)
{
    double m[3][3];
    double roots[3];
    Convert(m, AsMatrix(in));
    SolveByMagnitude(roots, m);
    SetIdentity(AsMatrix(out));
    for (int tiny = 3; tiny > 0; --tiny)
        if (IsTiny(roots[3 - tiny]))
            return -tiny;
    FindAxes(AsMatrix(out), m, roots);
    std::memcpy(values, roots, sizeof roots);
    return 1;
}

int zv_make_rmat2(float in[3][3], float out[3][3], int mode)
{
    if (mode == 999)
        return 0;
    float values[3];
    return zv_make_rmat_alt(in, out, values);
}

int make_rmat_2d(float in[2][2], float out[2][2])
{
    const float a = in[0][0];
    const float b = in[0][1];
    const float c = in[1][0];
    const float d = in[1][1];
    const float trace = a + d;
    const float determinant = a * d - b * c;
    const float discriminant = std::abs(-4.0f * determinant + trace * trace);
    const double root = std::sqrt(static_cast<double>(discriminant));
    const float lambda = static_cast<float>(0.5 * (root + trace));

    const auto write = [out](float cosine, float sine, float minusSine) {
        out[0][0] = out[1][1] = cosine;
        out[0][1] = sine;
        out[1][0] = minusSine;
        return 1;
    };
    if (discriminant < threshold || std::abs(a - lambda) < threshold)
        return write(1.0f, 0.0f, 0.0f);
    if (std::abs(d - lambda) < threshold)
        return write(0.0f, 1.0f, -1.0f);
    const float cosine = std::sqrt(b * b / ((a - lambda) * (a - lambda) + b * b));
    const float sine = (lambda - a) * cosine / b;
    return write(cosine, sine, -sine);
}

int make_rmat2(float in[3][3], float out[3][3], int mode)
{
    double values[3];
    float other[3][3] = {};
    const int status1 = make_rmat1(values, in, other, mode);
    const int status = make_rmat(values, in, out, mode);
    std::printf("status: %d %d\n", status1, status);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            std::printf("mat1, mat2 %d %d, %f %f, %f\n", i, j, other[i][j], out[i][j],
                        std::abs(other[i][j] - out[i][j]));
    return 1;
}

int test_rmat(float r[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            std::printf("%d %d= %f", i, j, r[i][j]);
            std::printf(" %f\n", Dot(r[i], r[j]));
        }
    for (int i = 0; i < 3; ++i)
        if (const float square = Dot(r[i], r[i]); std::abs(square - 1.0f) > 0.001)
            std::printf("failed at %d,%d, %f\n", i, i, square);
    std::puts("tested rmat");
    return 1;
}

}  // namespace ZVMath
