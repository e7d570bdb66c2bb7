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
/// would do, but Clang forgets the alignment when a reference is made to it. So it does with `v`,
/// which is to be read and written, and not to be passed by reference.)
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

/// Likewise for floats, and the bits of eight of them, which a comparison yields too: all or none.
typedef float Vec8 __attribute__((vector_size(32)));
typedef int Bits8 __attribute__((vector_size(32)));

struct __attribute__((packed, aligned(4), may_alias)) EightInMemory
{
    Vec8 v;
};

ZVMATH_INLINE EightInMemory& Eight(float* p)
{
    return *reinterpret_cast<EightInMemory*>(p);
}

ZVMATH_INLINE const EightInMemory& Eight(const float* p)
{
    return *reinterpret_cast<const EightInMemory*>(p);
}

}  // namespace ZVMath
