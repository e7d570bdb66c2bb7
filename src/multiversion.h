#pragma once

/// Stands before the definition of a hot loop: the function is compiled for plain x86-64 and for
/// AVX2, and the loader picks the one for the machine. Both do the same operations on each element
/// in the same order, so they give the same bits. Only for functions that their own file calls:
/// Clang 14 gives the versions names by which no other file finds them. The build sets
/// ZVMATH_MULTIVERSION where compiler and loader can do this; sanitizers can't follow the loader's
/// choice.
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
typedef double Vec4 __attribute__((vector_size(32)));

/// Four doubles in memory, at any address that a double may have. (A vector type of less alignment
/// would do, but Clang forgets the alignment when a reference is made to it.)
struct __attribute__((packed, aligned(8), may_alias)) FourInMemory
{
    Vec4 v;
};

ZVMATH_INLINE FourInMemory& Four(double* p)
{
    return *reinterpret_cast<FourInMemory*>(p);
}

ZVMATH_INLINE const FourInMemory& Four(const double* p)
{
    return *reinterpret_cast<const FourInMemory*>(p);
}

}  // namespace ZVMath
