#pragma once

/// @file
/// The language of the process.

#include "CU/String.h"

/// The process's language, a lower-case name such as "german"; "english" until a language is set,
/// and after an empty name is. Set it during start-up, on the main thread, before the first
/// CUGetLocalizedID. No locking.
/// @{
CU_API void CUSetCurrentLanguage(CCUString language);
CU_API CCUString CUGetCurrentLanguage();
/// @}

/// The id of the string-table entry that holds entry `id` (English) in the language of the process:
/// french + 1000, spanish + 2000, german + 3000, italian + 4000, dutch + 5000, portuguese + 6000,
/// any other + 0, without a range check. The language of the first call holds from then on.
CU_API unsigned int CUGetLocalizedID(unsigned int id);
