#pragma once

// What standard C++ has no words for, in those of the compiler at hand. GCC and clang build the
// product; the words for Visual Studio's compiler are read by clang alone, in a test.

#if defined(_MSC_VER)

#include <intrin.h>

#define CU_NOINLINE __declspec(noinline)
#define CU_COLD  // for size, whatever the source is compiled for
#define CU_ALWAYS_INLINE __forceinline
#define CU_USED  // kept, though nobody names it
// The frame of the function that says it: the caller's frame pointer, then the return address.
#define CU_FRAME_ADDRESS() (static_cast<void **>(_AddressOfReturnAddress()) - 1)

inline bool CUAddOverflows(int n1, int n2, int &nSum)
{
    const long long nLong = static_cast<long long>(n1) + n2;
    nSum = static_cast<int>(nLong);
    return nLong != nSum;
}

#else

#define CU_NOINLINE __attribute__((noinline))
#define CU_COLD __attribute__((cold))
#define CU_ALWAYS_INLINE __attribute__((always_inline)) inline
#define CU_USED __attribute__((used))
#define CU_FRAME_ADDRESS() (static_cast<void **>(__builtin_frame_address(0)))
// A function that may be missing: its address is null then. Visual Studio's has no word for it.
#define CU_WEAK __attribute__((weak))

// Whether the sum is too large for an int. In standard C++ it would take longer words.
inline bool CUAddOverflows(int n1, int n2, int &nSum)
{
    return __builtin_add_overflow(n1, n2, &nSum);
}

#endif
