#pragma once

#include "CU/String.h"

// UTF-8 and UTF-16, without the system, of which Windows 95 has no UTF-8. UTF-16 is in the bytes of
// a string, two each, the lower one first. None of these ends at a NUL. For texts of up to 512 MB:
// of longer ones a length could wrap.

// Whether all of it can be UTF-8, and not everything is ASCII.
bool CUIsUtf8(const CCUString &sBytes);
// Of what CUIsUtf8 said so.
CCUString CUUtf8To16(const CCUString &sBytes);
CCUString CUUtf16To8(const CCUString &sWide);
// With the bytes of each unit the other way round.
CCUString CUSwapUtf16(CCUString sWide);
// To the ANSI code page; nLost: how many characters it does not have.
CCUString CUFromUtf16(const CCUString &sWide, int &nLost);
CCUString CUToUtf16(const CCUString &sText);
