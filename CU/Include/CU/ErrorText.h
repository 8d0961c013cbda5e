#pragma once

/// @file
/// What the system says of its errors.

#include "CU/Platform.h"
#include "CU/String.h"

/// The text of a Win32 error code, in the user's language, without a line end; "Error 1234" where
/// the system has none. The thread's last error is kept.
CU_API CCUString CUErrorText(DWORD nError);
