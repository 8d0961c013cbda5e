#pragma once

/// @file
/// Win32, and the mark of what this layer exports.

#include "CU/Platform.h"

/// CUI_API marks what the layer exports; see CU_API for the three builds.
#if defined(CUI_EXPORTS)
#define CUI_API __declspec(dllexport)
#elif defined(CUI_IMPORTS)
#define CUI_API __declspec(dllimport)
#else
#define CUI_API
#endif
