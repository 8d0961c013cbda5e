#include <limits.h>

#include <algorithm>

#include "Problems/Checks.h"
#include "Resource.h"

namespace {

// Texts have some empty room in their rectangles, above, below and at the end.
const LONG TEXT_MARGIN = 3;

CCUString NameOf(const CSkinItem &item)
{
    const SkinEntry *const pEntry = FindSkinEntry(item.m_nText != 0 ? item.m_nText : item.m_nPlace);
    CCUString sName = pEntry->m_pszCaption;
    // "Learn line, bullet", but "Product picture".
    const CCUString sPlace = ", place";
    if (sName.Right(sPlace.GetLength()) == sPlace)
        sName = sName.Left(sName.GetLength() - sPlace.GetLength());
    return sName;
}

bool IsThere(const CSkinItem &item)
{
    return item.m_bPlaced && !IsRectEmpty(&item.m_rect);
}

CCUString PixelsText(LONGLONG nPixels)
{
    return nPixels == 1
               ? CCUString("1 pixel")
               : WithNumber("%d pixels", static_cast<int>(std::min<LONGLONG>(nPixels, LONG_MAX)));
}

void CheckInside(CSkinCheck &check, const CSkinItem &item)
{
    const CPixels &picture = check.m_look.Picture();
    const RECT window = {0, 0, picture.m_cx, picture.m_cy};
    const RECT &rect = item.m_rect;
    RECT seen;
    if (!IntersectRect(&seen, &rect, &window)) {
        check.Warn(item.m_nPlace, NameOf(item) + " is outside of the picture.", "Nobody sees it.");
        return;
    }
    const LONGLONG beyond[] = {static_cast<LONGLONG>(rect.right) - window.right,
                               static_cast<LONGLONG>(rect.bottom) - window.bottom,
                               -static_cast<LONGLONG>(rect.left), -static_cast<LONGLONG>(rect.top)};
    const char *const edges[] = {"right", "lower", "left", "upper"};
    for (int i = 0; i < 4; ++i) {
        if (beyond[i] > 0)
            check.Warn(item.m_nPlace,
                       NameOf(item) + " goes " + PixelsText(beyond[i]) + " beyond the " + edges[i] +
                           " edge of the picture.",
                       "It is cut off there.");
    }
}

// What the description's own rectangle cuts off.
void CheckDescription(CSkinCheck &check)
{
    const RECT &rect = check.m_look.DescriptionRect();
    const SIZE size = check.m_look.DescriptionSize();
    if (IsRectEmpty(&rect))
        return;
    const LONGLONG nRight = size.cx - (static_cast<LONGLONG>(rect.right) - rect.left);
    const LONGLONG nBelow = size.cy - (static_cast<LONGLONG>(rect.bottom) - rect.top);
    if (nRight > 0)
        check.Warn(IDS_ABOUT,
                   "Description: a line is " + PixelsText(nRight) +
                       " too long for its rectangle. Lines end at \\n only.",
                   "The end of the line is cut off.");
    if (nBelow > 0)
        check.Warn(IDS_ABOUT,
                   "Description: the lines need " + PixelsText(nBelow) +
                       " more than its rectangle is high.",
                   "The last lines are cut off.");
}

RECT Core(const CSkinItem &item)
{
    RECT rect = item.m_seen;
    if (item.m_nText != 0)
        InflateRect(&rect, -TEXT_MARGIN, -TEXT_MARGIN);
    return rect;
}

void CheckOverlap(CSkinCheck &check, const CSkinItem &below, const CSkinItem &above)
{
    const RECT first = Core(below);
    const RECT second = Core(above);
    RECT both;
    if (!IntersectRect(&both, &first, &second))
        return;
    // Somebody may well want a text on the product picture.
    check.Add(below.m_kind == DrawnProduct ? ProblemNote : ProblemWarning, above.m_nPlace,
              NameOf(above) + " overlaps " + NameOf(below) + ".", "One is drawn over the other.");
}

void CheckOverlaps(CSkinCheck &check)
{
    const std::vector<CSkinItem> &items = check.m_look.Items();
    for (size_t i = 0; i < items.size(); ++i) {
        for (size_t n = i + 1; n < items.size(); ++n) {
            if (IsThere(items[i]) && IsThere(items[n]))
                CheckOverlap(check, items[i], items[n]);
        }
    }
}

}  // namespace

void CheckPlaces(CSkinCheck &check)
{
    CheckDescription(check);
    CheckOverlaps(check);
    if (!check.m_look.HasPicture())
        return;
    for (const CSkinItem &item : check.m_look.Items()) {
        if (IsThere(item))
            CheckInside(check, item);
    }
}
