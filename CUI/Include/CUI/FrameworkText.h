#pragma once

/// @file
/// The texts that the framework itself shows, by the identifiers that they have in the program's
/// string table. Resource scripts may include this:
///
///     STRINGTABLE
///     BEGIN
///         CUI_TEXT_BUTTON + IDYES "&Ja"
///         CUI_TEXT_DONT_ASK "&Nicht mehr fragen"
///     END
///
/// What the program (or the module that has the framework inside) has no entry for is taken from
/// the system, where that tells it in the user's language, or else is English. With a language of
/// CUSetCurrentLanguage the entries are those of CUGetLocalizedID.

/// Captions of message boxes' buttons: this and IDOK (1) to IDCONTINUE (11). The system has them
/// from Windows 2000 on.
#define CUI_TEXT_BUTTON 0xE000
/// "&Do not ask again" of message boxes, and "&Do not show this again" of those with one button.
/// The system does not have them.
/// @{
#define CUI_TEXT_DONT_ASK 0xE010
#define CUI_TEXT_DONT_SHOW 0xE011
/// @}
/// Where a control bar can stand: this and a CUIBarSide; "&Top", "&Bottom", "&Left", "&Right". The
/// system does not have them.
#define CUI_TEXT_BAR_SIDE 0xE014
