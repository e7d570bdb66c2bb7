#include "vector_loops.h"

#include "multiversion.h"

namespace ZVMath
{

namespace
{

constexpr size_t lanes = 8;

/// dots[r] = Dot(rows[r], x, n), the rows side by side.
template <size_t count>
ZVMATH_INLINE void InlineDots(double* dots, const double* const* rows, const double* x, size_t n)
{
    Vec4 low[count] = {};
    Vec4 high[count] = {};
    size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        for (size_t r = 0; r < count; ++r) {
            low[r] += Four(rows[r] + i).v * Four(x + i).v;
            high[r] += Four(rows[r] + i + 4).v * Four(x + i + 4).v;
        }
    for (size_t r = 0; r < count; ++r) {
        double sum[lanes];
        Four(sum).v = low[r];
        Four(sum + 4).v = high[r];
        for (size_t lane = 0; i + lane < n; ++lane)
            sum[lane] += rows[r][i + lane] * x[i + lane];
        for (size_t j = 0; j < 4; ++j)
            sum[j] += sum[j + 4];
        dots[r] = (sum[0] + sum[2]) + (sum[1] + sum[3]);
    }
}

ZVMATH_CLONES double DotHere(const double* a, const double* b, size_t n)
{
    double dot;
    InlineDots<1>(&dot, &a, b, n);
    return dot;
}

ZVMATH_CLONES void AddScaledHere(double* y, double factor, const double* x, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        y[i] += factor * x[i];
}

ZVMATH_CLONES void ScaleHere(double* x, double factor, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        x[i] *= factor;
}

ZVMATH_CLONES void MatrixTimesVectorHere(double* out, const double* matrix, size_t rows,
                                         size_t columns, const double* x)
{
    // A row from each sixth at a time: memory delivers several streams faster than one, and their
    // sums just fit in the registers.
    constexpr size_t streams = 6;
    const size_t part = rows / streams;
    for (size_t r = 0; r < part; ++r) {
        const double* row[streams];
        double dots[streams];
        for (size_t k = 0; k < streams; ++k)
            row[k] = matrix + (k * part + r) * columns;
        InlineDots<streams>(dots, row, x, columns);
        for (size_t k = 0; k < streams; ++k)
            out[k * part + r] = dots[k];
    }
    for (size_t r = streams * part; r < rows; ++r) {
        const double* row = matrix + r * columns;
        InlineDots<1>(out + r, &row, x, columns);
    }
}

}  // namespace

double Dot(const double* a, const double* b, size_t n)
{
    return DotHere(a, b, n);
}

void AddScaled(double* y, double factor, const double* x, size_t n)
{
    AddScaledHere(y, factor, x, n);
}

void Scale(double* x, double factor, size_t n)
{
    ScaleHere(x, factor, n);
}

void MatrixTimesVector(double* out, const double* matrix, size_t rows, size_t columns,
                       const double* x)
{
    MatrixTimesVectorHere(out, matrix, rows, columns, x);
}

}  // namespace ZVMath
