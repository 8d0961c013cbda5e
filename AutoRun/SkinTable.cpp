#include "SkinTable.h"

#include <stdio.h>

#include "CU/Assert.h"
#include "SkinSource.h"

#define CU_SOURCE "SkinTable"

namespace {

// Whatever the display's resolution: the pictures around the texts do not grow with it either.
const int PIXELS_PER_INCH = 96;
const int POINTS_PER_INCH = 72;

}  // namespace

CSkinTable::CSkinTable(const CSkinSource &source)
    : m_source(source),
      m_logFont(),
      m_nHeight(0),
      m_nBold(0),
      m_nItalic(0),
      m_nRed(0),
      m_nGreen(0),
      m_nBlue(0)
{
    m_logFont.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
}

CCUString CSkinTable::ReadText(UINT nID) const
{
    return m_source.ReadText(nID);
}

void CSkinTable::ReadPoint(UINT nID, POINT &point, const char *check) const
{
    const CCUString sText = ReadText(nID);
    CU_ASSERT_TEXT(Passes(sscanf(sText, "%ld,%ld", &point.x, &point.y) == 2), check);
}

void CSkinTable::ReadRect(UINT nID, RECT &rect, const char *check) const
{
    const CCUString sText = ReadText(nID);
    CU_ASSERT_TEXT(Passes(sscanf(sText, "%ld,%ld,%ld,%ld", &rect.left, &rect.top, &rect.right,
                                 &rect.bottom) == 4),
                   check);
}

COLORREF CSkinTable::ReadColor(UINT nID)
{
    const CCUString sText = ReadText(nID);
    CU_ASSERT_TEXT(Passes(sscanf(sText, "%d,%d,%d", &m_nRed, &m_nGreen, &m_nBlue) == 3),
                   "sscanf(sText, \"%d,%d,%d\", &nRed, &nGreen, &nBlue) == 3");
    return RGB(m_nRed, m_nGreen, m_nBlue);
}

HFONT CSkinTable::ReadFont(UINT nID)
{
    const CCUString sText = ReadText(nID);
    static_assert(LF_FACESIZE == 32, "the width below leaves room for the terminator");
    CU_ASSERT_TEXT(Passes(sscanf(sText, "%d,%d,%d,%31s", &m_nHeight, &m_nBold, &m_nItalic,
                                 m_logFont.lfFaceName) == 4),
                   "sscanf(sText, \"%d,%d,%d,%s\", &nHeight, &nBold, &nItalic,"
                   "(PCTSTR)logFont.lfFaceName) == 4");
    m_logFont.lfWeight = m_nBold > 0 ? FW_BOLD : FW_NORMAL;
    m_logFont.lfItalic = m_nItalic != 0;
    m_logFont.lfHeight = -MulDiv(m_nHeight, PIXELS_PER_INCH, POINTS_PER_INCH);
    return CreateFontIndirectA(&m_logFont);
}

// Whether there is nothing to report.
bool CSkinTable::Passes(bool bRead) const
{
    return bRead || !m_source.ReportsBadEntries();
}
