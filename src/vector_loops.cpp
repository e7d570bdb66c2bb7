#include "vector_loops.h"

#include "multiversion.h"

namespace ZVMath
{

namespace
{

ZVMATH_INLINE double InlineDot(const double* a, const double* b, size_t n)
{
    constexpr size_t lanes = 16;
    Vec4 sum0 = {}, sum1 = {}, sum2 = {}, sum3 = {};
    size_t i = 0;
    for (; i + lanes <= n; i += lanes) {
        sum0 += AsVec4(a + i) * AsVec4(b + i);
        sum1 += AsVec4(a + i + 4) * AsVec4(b + i + 4);
        sum2 += AsVec4(a + i + 8) * AsVec4(b + i + 8);
        sum3 += AsVec4(a + i + 12) * AsVec4(b + i + 12);
    }
    if (i < n) {
        double sum[lanes];
        AsVec4(sum) = sum0;
        AsVec4(sum + 4) = sum1;
        AsVec4(sum + 8) = sum2;
        AsVec4(sum + 12) = sum3;
        for (size_t lane = 0; i + lane < n; ++lane)
            sum[lane] += a[i + lane] * b[i + lane];
        sum0 = AsVec4(sum);
        sum1 = AsVec4(sum + 4);
        sum2 = AsVec4(sum + 8);
        sum3 = AsVec4(sum + 12);
    }
    sum0 += sum2;
    sum1 += sum3;
    sum0 += sum1;
    return (sum0[0] + sum0[2]) + (sum0[1] + sum0[3]);
}

}  // namespace

ZVMATH_CLONES double Dot(const double* a, const double* b, size_t n)
{
    return InlineDot(a, b, n);
}

ZVMATH_CLONES void AddScaled(double* y, double factor, const double* x, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        y[i] += factor * x[i];
}

ZVMATH_CLONES void Scale(double* x, double factor, size_t n)
{
    for (size_t i = 0; i < n; ++i)
        x[i] *= factor;
}

ZVMATH_CLONES void MatrixTimesVector(double* out, const double* matrix, size_t rows, size_t columns,
                                     const double* x)
{
    for (size_t r = 0; r < rows; ++r)
        out[r] = InlineDot(matrix + r * columns, x, columns);
}

}  // namespace ZVMath
