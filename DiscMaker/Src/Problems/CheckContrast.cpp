#include <math.h>

#include <algorithm>

#include "Problems/Checks.h"
#include "Resource.h"

// How well a text can be told from what is under it: the contrast ratio of the Web Content
// Accessibility Guidelines 2, (L1 + 0.05) / (L2 + 0.05), with the relative luminance L of the
// lighter and the darker colour. They ask for 3 at least where text is large, and so is this: a
// fifth of the pixels may be worse, such as a line of the picture that runs through. The line under
// the mouse has a white edge and a black shadow, which help: it needs 2.

namespace {

const double WANTED_RATIO = 3.0;
const double WANTED_HIGHLIGHT_RATIO = 2.0;
const size_t BAD_SHARE = 5;  // one in that many

// The luminance of each channel by its value, 0 to 1.
class CLuminance
{
public:
    CLuminance()
    {
        for (int i = 0; i < 256; ++i) {
            const double n = i / 255.0;
            m_linear[i] = n <= 0.03928 ? n / 12.92 : pow((n + 0.055) / 1.055, 2.4);
        }
    }
    double Of(UINT nRed, UINT nGreen, UINT nBlue) const
    {
        return 0.2126 * m_linear[nRed] + 0.7152 * m_linear[nGreen] + 0.0722 * m_linear[nBlue];
    }

private:
    double m_linear[256];
};

double Ratio(double nOne, double nOther)
{
    return (std::max(nOne, nOther) + 0.05) / (std::min(nOne, nOther) + 0.05);
}

bool IsReadable(const CPixels &picture, const RECT &rect, COLORREF color, double nWanted)
{
    static const CLuminance LUMINANCE;
    const double nText = LUMINANCE.Of(GetRValue(color), GetGValue(color), GetBValue(color));
    size_t nBad = 0;
    size_t nAll = 0;
    for (LONG y = rect.top; y < rect.bottom; ++y) {
        for (LONG x = rect.left; x < rect.right; ++x) {
            const DWORD n = picture.Row(y)[x];
            nBad += Ratio(nText, LUMINANCE.Of(RedOf(n), GreenOf(n), BlueOf(n))) < nWanted;
            ++nAll;
        }
    }
    return nBad * BAD_SHARE <= nAll;
}

void CheckItem(CSkinCheck &check, const CSkinItem &item, bool &bHighlightBad)
{
    const CPixels &picture = check.m_look.Picture();
    const RECT window = {0, 0, picture.m_cx, picture.m_cy};
    RECT rect;
    if (item.m_nText == 0 || !item.m_bPlaced || !IntersectRect(&rect, &item.m_rect, &window))
        return;
    if (!IsReadable(picture, rect, RGB(0, 0, 0), WANTED_RATIO))
        check.Warn(item.m_nText,
                   CCUString(FindSkinEntry(item.m_nText)->m_pszCaption) +
                       ": the picture is too dark under the text, which is black.",
                   "It is hard to read.");
    if (item.m_kind == DrawnLine &&
        !IsReadable(picture, rect, check.m_look.Highlight(), WANTED_HIGHLIGHT_RATIO))
        bHighlightBad = true;
}

}  // namespace

void CheckContrast(CSkinCheck &check)
{
    if (!check.m_look.HasPicture())
        return;
    bool bHighlightBad = false;
    for (const CSkinItem &item : check.m_look.Items())
        CheckItem(check, item, bHighlightBad);
    if (bHighlightBad)
        check.Warn(IDS_HIGHLIGHT_COLOR,
                   "The colour of the line under the mouse is much like the picture under it.",
                   "The line is hard to read as soon as the mouse is on it.");
}
