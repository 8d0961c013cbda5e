#pragma once

// The answers that message boxes keep in the program's settings, by name.

// 0: none is kept.
int CUIReadAnswer(const char *pszName);
void CUIWriteAnswer(const char *pszName, int nID);
