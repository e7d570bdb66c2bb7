#pragma once

/// Stands before the definition of a hot loop: the function is compiled for plain x86-64 and for
/// AVX2, and the loader picks the one for the machine. Both do the same operations on each element
/// in the same order, so they give the same bits. The build sets ZVMATH_MULTIVERSION where compiler
/// and loader can do this; sanitizers can't follow the loader's choice.
#ifdef ZVMATH_MULTIVERSION
#define ZVMATH_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define ZVMATH_CLONES
#endif

/// For the helpers of such a function: only what is inlined into it is compiled for AVX2 too.
#define ZVMATH_INLINE inline __attribute__((always_inline))

namespace ZVMath
{

/// Four doubles side by side, as the compiler's own vector type: one AVX2 register or two of SSE2.
/// At any address that a double may have.
typedef double Vec4 __attribute__((vector_size(32), aligned(8), may_alias));

ZVMATH_INLINE Vec4& AsVec4(double* p)
{
    return *reinterpret_cast<Vec4*>(p);
}

ZVMATH_INLINE const Vec4& AsVec4(const double* p)
{
    return *reinterpret_cast<const Vec4*>(p);
}

}  // namespace ZVMath
