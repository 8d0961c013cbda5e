// What is drawn, pixel by pixel, against rules worked out on a map of pixels.
#include "CUI/Draw.h"

#include <functional>
#include <map>
#include <random>

#include "CUI/BmpBlt.h"
#include "CUI/BmpState.h"
#include "Support/PixelMap.h"

namespace {

const COLORREF WHITE = 0xFFFFFF, KEY = 0x0000FF, BKGND = 0xFFFF00, BLUE = 0xFF0000;
enum
{
    PLAIN,
    KEYED,
    MASKED,
    STRETCHED,
    MASKED_STRETCHED,
    BLITS
};

std::vector<HGDIOBJ> Selected(HDC hDC)
{
    std::vector<HGDIOBJ> objects;
    for (const int nType : {OBJ_BITMAP, OBJ_BRUSH, OBJ_PEN, OBJ_FONT, OBJ_PAL})
        objects.push_back(GetCurrentObject(hDC, static_cast<UINT>(nType)));
    return objects;
}

// Draws on a picture, and finds there what the rule makes of it. Nothing changes on the DC, but for
// the colours of text and background where the drawing says so.
template <typename Draw, typename Rule>
void ExpectDrawn(Draw draw, Rule rule, bool bMono = false, bool bColors = false)
{
    CTestSurface target(TestPicture(24, 20, 7), bMono);
    SetBkColor(target, bMono ? WHITE : BKGND);
    SetTextColor(target, KEY);
    const COLORREF crBkgnd = bColors ? WHITE : GetBkColor(target);
    const std::vector<HGDIOBJ> selected = Selected(target);
    CPixelMap expected = target.Read();
    rule(expected);
    draw(target);
    EXPECT_EQ(expected, target.Read());
    EXPECT_EQ(selected, Selected(target));
    EXPECT_EQ(crBkgnd, GetBkColor(target));
    EXPECT_EQ(bColors ? 0 : KEY, GetTextColor(target));
}

struct CPlace
{
    UINT x, y, xSrc, ySrc, cx, cy;
};

void Blit(int nBlit, HDC hDC, const CPlace &p, HBITMAP hBmp, HBITMAP hMask)
{
    const auto &[x, y, xSrc, ySrc, cx, cy] = p;
    const bool bWhole = cx == 0 || cy == 0;
    const UINT cx3 = bWhole ? 36 : 3 * cx, cy3 = bWhole ? 30 : 3 * cy;
    switch (nBlit) {
    case PLAIN: return CUIBmpBitBlt(hDC, x, y, hBmp, xSrc, ySrc, cx, cy, nullptr, 0);
    case KEYED:
        if (bWhole)
            return CUIBmpBgBlt(hDC, x, y, hBmp, KEY);
        return CUIBmpBgBltFull(hDC, x, y, hBmp, KEY, xSrc, ySrc, cx, cy);
    case MASKED:
        if (bWhole)
            return CUIBmpTransparentBlt(hDC, x, y, hBmp, hMask);
        return CUIBmpTransparentBltFull(hDC, x, y, hBmp, hMask, xSrc, ySrc, cx, cy);
    case STRETCHED:
        return CUIBmpStretchBlt(hDC, x, y, cx3, cy3, hBmp, xSrc, ySrc, cx, cy, nullptr, 0);
    default:
        return CUIBmpTransparentStretchBltFull(hDC, x, y, cx3, cy3, hBmp, hMask, xSrc, ySrc, cx,
                                               cy);
    }
}

CPixelMap MaskPicture()
{
    CPixelMap map = TestPicture(12, 10, 5);
    for (COLORREF &cr : map.pixels)
        cr = cr > 0x8000 ? WHITE : 0;
    return map;
}

const CPixelMap PICTURE = TestPicture(12, 10, 2), MASK = MaskPicture();

// What a blit makes of the target.
void ExpectBlit(int nBlit, CPixelMap &map, const CPlace &p, bool bMono = false)
{
    const UINT nScale = nBlit >= STRETCHED ? 3 : 1, cx = nScale * (p.cx && p.cy ? p.cx : 12);
    const UINT cy = nScale * (p.cx && p.cy ? p.cy : 10);
    for (UINT i = 0; i < cx * cy; ++i) {
        const int xSrc = int(p.xSrc + i % cx / nScale), ySrc = int(p.ySrc + i / cx / nScale);
        const bool bMasked = nBlit == MASKED || nBlit == MASKED_STRETCHED;
        if (bMasked && MASK.At(xSrc, ySrc))
            continue;
        COLORREF cr = PICTURE.At(xSrc, ySrc);
        if (nBlit == KEYED && cr == KEY)
            cr = bMono ? WHITE : BKGND;
        // On a monochrome target only white is 1.
        map.Set(int(p.x + i % cx), int(p.y + i / cx), bMono && cr != WHITE ? 0 : cr);
    }
}

// What a state makes of the target.
void ExpectState(CPixelMap &map, const CUIBmpStateRects &rects, DWORD dwFlags)
{
    const RECT &area = rects.rcArea, &center = rects.rcCenter, &source = rects.rcSource;
    const int cx = source.right - source.left, cy = source.bottom - source.top;
    const int left = (center.right - center.left - cx - 1) / 2 + center.left;
    const int top = (center.bottom - center.top - cy) / 2 + center.top;
    const auto isImage = [&](int x, int y) {
        if (x < left || y < top || x >= left + cx || y >= top + cy)
            return false;
        const COLORREF cr = PICTURE.At(source.left + x - left, source.top + y - top);
        return cr != BKGND && cr != WHITE;
    };
    const bool bEmbossed = (dwFlags & CUIBMPSTATE_DISABLED) != 0;
    for (int i = 0; !bEmbossed && i < cx * cy; ++i)
        map.Set(left + i % cx, top + i / cx, PICTURE.At(source.left + i % cx, source.top + i / cx));
    for (int nOffset = 1; bEmbossed && nOffset >= 0; --nOffset)
        for (int x = area.left; x < area.right - 2; ++x)
            for (int y = area.top; y < area.bottom - 2; ++y)
                if (isImage(x, y))
                    map.Set(x + nOffset, y + nOffset, nOffset ? WHITE : BLUE);
    for (int x = area.left; dwFlags & CUIBMPSTATE_OVERLAY && x < area.right; ++x)
        for (int y = area.top; y < area.bottom; ++y)
            if (!isImage(x, y) &&
                !(bEmbossed && x > area.left && y > area.top && isImage(x - 1, y - 1)))
                map.Set(x, y, (x + y) % 2 ? WHITE : BKGND);
}

}  // namespace

TEST(Draw, BlitsAsTheRulesSay)
{
    CTestSurface image(PICTURE), mask(MASK, true);
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        const int nBlit = i % BLITS;
        const bool bMono = i % 4 == 3;
        CPlace p = {random() % 30 - 6, random() % 26 - 6, 0, 0, random() % 2 * 50, 0};
        if (random() % 3) {  // a part; otherwise it has no size, and that is the bitmap's
            p.xSrc = random() % 11;
            p.ySrc = random() % 9;
            p.cx = random() % (12 - p.xSrc) + 1;
            p.cy = random() % (10 - p.ySrc) + 1;
        }
        SCOPED_TRACE(i);
        ExpectDrawn([&](HDC hDC) { Blit(nBlit, hDC, p, image.Bitmap(), mask.Bitmap()); },
                    [&](CPixelMap &map) { ExpectBlit(nBlit, map, p, bMono); }, bMono,
                    nBlit == MASKED || nBlit == MASKED_STRETCHED);
        ASSERT_EQ(PICTURE, image.Read());
    }
}

TEST(Draw, MakesMasksAndBakesABitmapOntoAColour)
{
    CPixelMap expected[] = {CPixelMap(12, 10), CPixelMap(5, 6), PICTURE};
    for (int i = 0; i < 120; ++i) {
        const COLORREF cr = PICTURE.At(i % 12, i / 12);
        expected[0].Set(i % 12, i / 12, cr == KEY ? WHITE : 0);
        expected[1].Set(i % 12 - 3, i / 12 - 2, cr == KEY ? WHITE : 0);
        expected[2].Set(i % 12, i / 12, cr == PICTURE.At(0, 0) ? BKGND : cr);
    }
    CTestSurface image(PICTURE), target(PICTURE);
    HBITMAP made[3] = {CUIBmpMakeMask(target, 9, 9, image.Bitmap(), KEY),
                       CUIBmpMakeMaskFull(target, 9, 9, image.Bitmap(), KEY, 3, 2, 5, 6)};
    EXPECT_EQ(TRUE, CUIBmpTransparentCreate(image.Bitmap(), &made[2], target, BKGND));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(expected[i], PixelsOf(made[i])) << i;
        CUIBmpDeleteObject(&made[i]);
        EXPECT_EQ(nullptr, made[i]);
    }
    EXPECT_EQ(TRUE, CUIBmpTransparentCreate(nullptr, &made[2], target, KEY));
    EXPECT_EQ(nullptr, CUIBmpMakeMask(target, 0, 0, nullptr, KEY));
}

TEST(Draw, DrawsEveryState)
{
    CTestSurface image(PICTURE);
    // An image of 10 by 10 centred in 15 and in 16; a part, off centre; larger than all around it.
    CUIBmpStateRects places[] = {{{3, 2, 20, 19}, {4, 3, 19, 18}, {0, 0, 10, 10}},
                                 {{3, 2, 20, 19}, {4, 3, 20, 19}, {0, 0, 10, 10}},
                                 {{0, 0, 24, 20}, {9, 1, 13, 20}, {3, 2, 9, 9}},
                                 {{7, 6, 14, 12}, {8, 7, 11, 10}, {1, 1, 12, 10}}};
    const auto draw = [&](HDC hDC, DWORD n, COLORREF crFace) {
        CUIBmpDrawState(hDC, &places[n / 4].rcArea, image.Bitmap(), n % 4, crFace, WHITE, BLUE);
    };
    for (DWORD n = 0; n < 16; ++n) {
        SCOPED_TRACE(n);
        ExpectDrawn([&](HDC hDC) { draw(hDC, n, BKGND); },
                    [&](CPixelMap &map) { ExpectState(map, places[n / 4], n % 4); });
    }
    ASSERT_EQ(PICTURE, image.Read());
}

// What each drawing sets: W is white, K the other colour, I the inverse of what was there.
TEST(Draw, SetsTheTablesPixelsAndKeepsTheDC)
{
    const RECT rect = {1, 1, 6, 5}, backwards = {6, 5, 1, 1}, tiny = {1, 1, 3, 3};
    const std::pair<std::function<void(HDC)>, const char *> drawings[] = {
        {[&](HDC hDC) { CUIDCFillSolidRect(hDC, &backwards, WHITE); },
         "........|.WWWWW..|.WWWWW..|.WWWWW..|.WWWWW..|........"},
        {[&](HDC hDC) { CUIDCDrawRect(hDC, &rect, WHITE); },
         "........|.WWWWW..|.W...W..|.W...W..|.WWWWW..|........"},
        {[&](HDC hDC) { CUIDCDraw3dRect(hDC, &rect, WHITE, KEY, 0, 1); },
         "........|.WWWWK..|.W...K..|.W...K..|.KKKKK..|........"},
        {[&](HDC hDC) { CUIDCDraw3dRect(hDC, &rect, WHITE, KEY, 2, 4); },
         "........|..WWWW..|.W...K..|.W...K..|.KKKK...|........"},
        {[&](HDC hDC) { CUIDCDraw3dRect(hDC, &rect, WHITE, KEY, -1, 0); },
         "........|..WWWK..|.W...K..|.W...K..|.WKKK...|........"},
        {[&](HDC hDC) { CUIDCRubberRect(hDC, nullptr, &backwards); },
         "........|.IIIII..|.I...I..|.I...I..|.IIIII..|........"},
        {[&](HDC hDC) {
             CUIDCRubberRect(hDC, nullptr, &rect);
             CUIDCRubberRect(hDC, &rect, &tiny);
             CUIDCRubberRect(hDC, &tiny, nullptr);
         },
         "........|........|........|........|........|........"}};
    for (const auto &drawing : drawings) {
        const char *const picture = drawing.second;
        SCOPED_TRACE(picture);
        ExpectDrawn(drawing.first, [&](CPixelMap &map) {
            CTestSurface inverse(map);
            const RECT all = {0, 0, map.cx, map.cy};
            InvertRect(inverse, &all);
            for (int i = 0; i < 48; ++i) {
                const std::map<char, COLORREF> colors = {{'.', map.At(i % 8, i / 8)},
                                                         {'I', inverse.Read().At(i % 8, i / 8)},
                                                         {'W', WHITE},
                                                         {'K', KEY}};
                map.Set(i % 8, i / 8, colors.at(picture[i / 8 * 9 + i % 8]));
            }
        });
    }
}
