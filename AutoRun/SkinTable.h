#pragma once

#include "CU/String.h"
#include "CUI/Platform.h"

class CSkinSource;

// The launcher's looks, from the string table: one entry a value, a short text of numbers divided
// by commas. What does not parse is reported as a failed check, with the text that it is given for
// it, unless the source wants no reports, and leaves what it did not reach as it was; reading goes
// on.
class CSkinTable
{
public:
    // The source must outlive the table.
    explicit CSkinTable(const CSkinSource &source);

    CCUString ReadText(UINT nID) const;
    // "x,y", in client pixels.
    void ReadPoint(UINT nID, POINT &point, const char *check) const;
    // "left,top,right,bottom".
    void ReadRect(UINT nID, RECT &rect, const char *check) const;
    // "red,green,blue"; each counts with its low 8 bits. A component that is not there is that of
    // the colour read before.
    COLORREF ReadColor(UINT nID);
    // "height,bold,italic,face": points at 96 pixels an inch, above 0 for bold, other than 0 for
    // italic, a face without white space (cut to what a LOGFONT holds). What is not there is that
    // of the font read before. The caller's to delete; null when it cannot be made.
    HFONT ReadFont(UINT nID);

private:
    bool Passes(bool bRead) const;

    const CSkinSource &m_source;
    LOGFONTA m_logFont;
    int m_nHeight;
    int m_nBold;
    int m_nItalic;
    int m_nRed;
    int m_nGreen;
    int m_nBlue;
};
