#pragma once

#include "CU/String.h"

// What '&' means in the texts of menus and controls: the character behind it is underlined and is
// the text's mnemonic; twice it is one character. No second byte of a character looks like it.

// A character in upper case, as the user's language has it.
char CUIUpper(char ch);
// The mnemonic of a text, in upper case; 0: it has none.
char CUIMnemonicOf(const char *pszText);
// A text as it is shown. At the end there is nothing to mark: a last '&' stays.
CCUString CUIWithoutMnemonic(CCUString sText);
