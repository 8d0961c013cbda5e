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
/// runtime's.
#if defined(__clang__)
#define CU_PRINTF(nFormat, nFirst) __attribute__((format(printf, nFormat, nFirst)))
#elif defined(__GNUC__)
#define CU_PRINTF(nFormat, nFirst) __attribute__((format(ms_printf, nFormat, nFirst)))
#else
#define CU_PRINTF(nFormat, nFirst)
#endif
