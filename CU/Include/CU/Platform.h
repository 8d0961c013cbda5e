#pragma once

/// @file
/// Win32 as the whole framework sees it: the records of Windows 95 and NT 4, without the parts of
/// windows.h that nobody here uses. Every header that needs Win32 includes this one.

#if !defined(WINVER)
#define WINVER 0x0400
#endif
#if !defined(_WIN32_WINNT)
#define _WIN32_WINNT 0x0400
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

/// CU_API marks what the layer exports: CU_EXPORTS is defined when the exporting executable is
/// built, CU_IMPORTS by programs that link against it, neither in a static build.
#if defined(CU_EXPORTS)
#define CU_API __declspec(dllexport)
#elif defined(CU_IMPORTS)
#define CU_API __declspec(dllimport)
#else
#define CU_API
#endif

/// Lets the compiler hold the arguments of a function against its format, which is the system
/// runtime's; warnings with -Wformat, which is part of -Wall. Where GCC's -Wpedantic minds `%I64d`,
/// write __extension__ before the call. Objects do not compile whatever the options: see
/// CUHasObject.
#if defined(__clang__)
#define CU_PRINTF(nFormat, nFirst) __attribute__((format(printf, nFormat, nFirst)))
#elif defined(__GNUC__)
#define CU_PRINTF(nFormat, nFirst) __attribute__((format(ms_printf, nFormat, nFirst)))
#else
#define CU_PRINTF(nFormat, nFirst)
#endif

/// Whether an object of a class, or a union, is among the types. Functions with a format refuse
/// those: what arrives through "..." is, with GCC, the address of the object, which prints garbage
/// or crashes; clang refuses it by itself; Visual Studio passes the object's bytes, which for a
/// CCUString happen to be the pointer to its characters. For the C library's own functions, such as
/// printf, GCC only warns, with -Wformat.
template <typename... Types>
struct CUHasObject
{
    static const bool VALUE = false;  ///< the answer: none among none
};
/// The same for one type and more. It uses the compiler's own words, since the headers of GCC's
/// library replace printf by one that is large and knows other formats than the system's.
template <typename First, typename... Rest>
struct CUHasObject<First, Rest...>
{
    /// The answer.
    static const bool VALUE = __is_class(First) || __is_union(First) || CUHasObject<Rest...>::VALUE;
};

/// Lets an overload in where there is an object: has a Type then.
template <bool bHasObject>
struct CUIfObject
{
};
/// The one that has it.
template <>
struct CUIfObject<true>
{
    typedef void Type;  ///< to be named by the overload
};
