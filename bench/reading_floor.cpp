#include "bench.h"

#ifdef ZVMATH_BENCH_CLONES
#define CLONES __attribute__((target_clones("avx2", "default")))
#else
#define CLONES
#endif

namespace
{

/// Four doubles side by side, at any address that a double may have.
typedef double Vec4 __attribute__((vector_size(32), aligned(8), may_alias));

// Two halves side by side, two cache lines of each at a time: the fastest of those tried (one to
// eight streams, two to sixteen registers, 32 and 64 bytes wide, with and without prefetching).
CLONES double ReadForThisProcessor(const double* values, size_t n)
{
    constexpr size_t step = 16;
    const size_t half = n / 2 / step * step;
    Vec4 sum[8] = {};
    for (size_t i = 0; i < half; i += step)
        for (size_t k = 0; k < 4; ++k) {
            sum[k] += *reinterpret_cast<const Vec4*>(values + i + 4 * k);
            sum[4 + k] += *reinterpret_cast<const Vec4*>(values + half + i + 4 * k);
        }
    double total = 0.0;
    for (size_t k = 0; k < 8; ++k)
        total += (sum[k][0] + sum[k][1]) + (sum[k][2] + sum[k][3]);
    for (size_t i = 2 * half; i < n; ++i)
        total += values[i];
    return total;
}

}  // namespace

// A function of its own: Clang 14 loses track of versions that are called from other files.
double ReadAll(const double* values, size_t n)
{
    return ReadForThisProcessor(values, n);
}
