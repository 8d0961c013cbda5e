#include "Canvas/FaceItem.h"

#include "Base/Wrap.h"
#include "Resource.h"

namespace {

const FaceItemInfo ITEMS[FaceItemCount] = {
    {IDS_TITLE_POS, IDS_TITLE, 0, HotSpotNone, false, "Title"},
    {IDS_PRODUCT_POS, 0, 0, HotSpotNone, false, "Product picture"},
    {IDS_HELP_POS, IDS_HELP, IDS_HELP_COMMAND, HotSpotHelp, false, "Learn line"},
    {IDS_HELP_ICON_POS, 0, 0, HotSpotHelp, true, "Learn line's bullet"},
    {IDS_RUN_POS, IDS_RUN, IDS_RUN_COMMAND, HotSpotRun, false, "Run line"},
    {IDS_RUN_ICON_POS, 0, 0, HotSpotRun, true, "Run line's bullet"},
    {IDS_SETUP_POS, IDS_SETUP, IDS_SETUP_COMMAND, HotSpotSetup, false, "Install line"},
    {IDS_SETUP_ICON_POS, 0, 0, HotSpotSetup, true, "Install line's bullet"},
    {IDS_EXIT_POS, IDS_EXIT, 0, HotSpotExit, false, "Exit line"},
    {IDS_EXIT_ICON_POS, 0, 0, HotSpotExit, true, "Exit line's bullet"},
    {IDS_ABOUT_RECT, IDS_ABOUT, 0, HotSpotNone, false, "Description"},
};

// The last that is drawn comes first.
const FaceItem FROM_TOP[] = {ItemHelp,       ItemRun,         ItemExit,       ItemSetup,
                             ItemAbout,      ItemTitle,       ItemHelpBullet, ItemRunBullet,
                             ItemExitBullet, ItemSetupBullet, ItemProduct};

// Numbers in a skin can be any. What is as far away as this is nowhere near the picture, and sums
// of places, sizes and zoomed sizes stay numbers.
const LONG FARTHEST = 0x1000000;

LONG Within(LONG n)
{
    return CUILarger(-FARTHEST, CUISmaller(n, FARTHEST));
}

RECT RectAt(const POINT &at, int cx, int cy)
{
    const LONG x = Within(at.x), y = Within(at.y);
    return {x, y, x + cx, y + cy};
}

RECT Within(const RECT &rect)
{
    return {Within(rect.left), Within(rect.top), Within(rect.right), Within(rect.bottom)};
}

}  // namespace

const FaceItemInfo &FaceItemInfoOf(FaceItem item)
{
    return ITEMS[item];
}

FaceItem BulletOf(FaceItem item)
{
    const bool bLine =
        item != ItemNone && ITEMS[item].m_nLine != HotSpotNone && !ITEMS[item].m_bBullet;
    return bLine ? static_cast<FaceItem>(item + 1) : ItemNone;
}

FaceItem FaceItemOf(UINT nEntry)
{
    for (int i = 0; i < FaceItemCount; ++i) {
        const FaceItemInfo &info = ITEMS[i];
        if (nEntry &&
            (info.m_nPlace == nEntry || info.m_nText == nEntry || info.m_nCommand == nEntry))
            return static_cast<FaceItem>(i);
    }
    return nEntry == IDS_TITLE_FONT ? ItemTitle : nEntry == IDS_ABOUT_FONT ? ItemAbout : ItemNone;
}

RECT FaceItemRect(const CLauncherFace &face, const SIZE &title, FaceItem item)
{
    const FaceItemInfo &info = ITEMS[item];
    if (info.m_nLine == HotSpotNone) {
        switch (item) {
        case ItemTitle: return RectAt(face.TitlePlace(), title.cx, title.cy);
        case ItemProduct:
            return RectAt(face.ProductPlace(), face.Product().Width(), face.Product().Height());
        default: return Within(face.AboutPlace());
        }
    }
    const HotSpot &line = face.Line(info.m_nLine);
    if (info.m_bBullet)
        return RectAt(line.ptIcon, face.Bullet().Width(), face.Bullet().Height());
    // Both ends of a line react to the mouse.
    return RectAt(line.ptText, line.sizeText.cx + 1, line.sizeText.cy + 1);
}

FaceItem FaceItemAt(const CLauncherFace &face, const SIZE &title, const POINT &point)
{
    for (const FaceItem item : FROM_TOP) {
        const RECT rect = FaceItemRect(face, title, item);
        if (PtInRect(&rect, point))
            return item;
    }
    return ItemNone;
}
