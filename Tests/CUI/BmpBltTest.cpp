#include "CUI/BmpBlt.h"

#include <gtest/gtest.h>

#include "Support/Dumped.h"
#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/PixelMap.h"
#include "Support/TemporaryDirectory.h"

namespace {

const COLORREF WHITE = 0xFFFFFF;
const COLORREF KEY = 0x0000FF;
const COLORREF BKGND = 0x848484;
const int DEPTHS[] = {0, 32, 24, 16, 8, 1};

struct CPlace
{
    int x, y, xSrc, ySrc, cx, cy;
};
const CPlace PLACES[] = {{3, 2, 0, 0, 0, 0},   {4, 5, 0, 0, 0, 50}, {4, 5, 0, 0, 50, 0},
                         {-5, 2, 0, 0, 0, 0},  {2, -4, 0, 0, 0, 0}, {16, 3, 0, 0, 0, 0},
                         {3, 15, 0, 0, 0, 0},  {2, 3, 4, 5, 6, 4},  {6, 1, 1, 7, 1, 1},
                         {40, 40, 0, 0, 0, 0}, {5, 5, 8, 6, 9, 9},  {9, 9, -3, -2, 8, 8}};
const int PLACES_INSIDE = 10;  // the first ones stay inside the image

// One drawing function, and what it makes of a target, an image and a mask pixel.
struct CBlt
{
    const char *name;
    void (*draw)(HDC hDC, const CPlace &p, HBITMAP hImage, HBITMAP hMask);
    COLORREF (*rule)(COLORREF crTarget, COLORREF crImage, bool bMask, COLORREF crBkgnd);
    bool bSetsColors;
};

UINT U(int n)
{
    return static_cast<UINT>(n);
}
int I(UINT n)
{
    return static_cast<int>(n);
}
bool IsWhole(const CPlace &p)
{
    return p.cx == 0 && p.cy == 0;
}
void DrawBitBlt(HDC hDC, const CPlace &p, HBITMAP hImage, HBITMAP)
{
    CUIBmpBitBlt(hDC, U(p.x), U(p.y), hImage, U(p.xSrc), U(p.ySrc), U(p.cx), U(p.cy), nullptr, 0);
}
void DrawBgBlt(HDC hDC, const CPlace &p, HBITMAP hImage, HBITMAP)
{
    if (IsWhole(p))
        CUIBmpBgBlt(hDC, U(p.x), U(p.y), hImage, KEY);
    else
        CUIBmpBgBltFull(hDC, U(p.x), U(p.y), hImage, KEY, U(p.xSrc), U(p.ySrc), U(p.cx), U(p.cy));
}
void DrawTransparent(HDC hDC, const CPlace &p, HBITMAP hImage, HBITMAP hMask)
{
    if (IsWhole(p))
        CUIBmpTransparentBlt(hDC, U(p.x), U(p.y), hImage, hMask);
    else
        CUIBmpTransparentBltFull(hDC, U(p.x), U(p.y), hImage, hMask, U(p.xSrc), U(p.ySrc), U(p.cx),
                                 U(p.cy));
}
const CBlt BLTS[] = {
    {"BitBlt", DrawBitBlt, [](COLORREF, COLORREF cr, bool, COLORREF) { return cr; }, false},
    {"Transparent", DrawTransparent,
     [](COLORREF crTarget, COLORREF cr, bool bMask, COLORREF) { return bMask ? crTarget : cr; },
     true},
    {"BgBlt", DrawBgBlt,
     [](COLORREF, COLORREF cr, bool, COLORREF crBkgnd) { return cr == KEY ? crBkgnd : cr; },
     false}};

COLORREF Background(int nBits)
{
    return nBits == 1 ? WHITE : BKGND;
}
// On a monochrome target only white is 1.
COLORREF Shown(int nBits, COLORREF cr)
{
    return nBits == 1 && cr != WHITE ? 0 : cr;
}

CPixelMap Expected(const CBlt &blt, const CPixelMap &before, const CPixelMap &image,
                   const CPixelMap &mask, CPlace p, int nBits)
{
    CPixelMap map = before;
    if (p.cx == 0 || p.cy == 0) {
        p.cx = image.cx;
        p.cy = image.cy;
    }
    for (int i = 0; i < p.cx * p.cy; ++i) {
        const int xSrc = p.xSrc + i % p.cx, ySrc = p.ySrc + i / p.cx;
        const int x = p.x + i % p.cx, y = p.y + i / p.cx;
        if (image.Has(xSrc, ySrc) && map.Has(x, y))
            map.At(x, y) = Shown(nBits, blt.rule(before.At(x, y), image.At(xSrc, ySrc),
                                                 mask.At(xSrc, ySrc) == WHITE, Background(nBits)));
    }
    return map;
}

CPixelMap MaskPicture()
{
    CPixelMap map = TestPicture(12, 10, 5);
    for (COLORREF &cr : map.pixels)
        cr = cr > 0x8000 ? WHITE : 0;
    return map;
}

// The depth that every DC has, as far as the code under test can see.
int s_nBits;
int WINAPI DeviceCaps(HDC, int nCap)
{
    return nCap == BITSPIXEL ? s_nBits : 1;
}

}  // namespace

TEST(BmpBlt, DrawsTheRulesPictureOnEveryDepthAndKeepsTheDC)
{
    const CPixelMap imagePicture = TestPicture(12, 10, 2), maskPicture = MaskPicture();
    CTestSurface image(0, imagePicture), mask(1, maskPicture);
    for (const int nBits : DEPTHS) {
        for (const CBlt &blt : BLTS) {
            for (const CPlace &place : PLACES) {
                if (&blt == &BLTS[2] && &place >= PLACES + PLACES_INSIDE)
                    continue;
                SCOPED_TRACE(testing::Message()
                             << blt.name << " at " << nBits << " bits, place " << &place - PLACES);
                CTestSurface target(nBits, TestPicture(24, 20, 7));
                const CPixelMap before = target.Read();
                SetBkColor(target, Background(nBits));
                SetTextColor(target, KEY);
                CDCState state(target);
                blt.draw(target, place, image.Bitmap(), mask.Bitmap());
                if (blt.bSetsColors) {
                    state.values[0] = WHITE;
                    state.values[1] = 0;
                }
                EXPECT_TRUE(state == CDCState(target));
                EXPECT_EQ("",
                          Difference(Expected(blt, before, imagePicture, maskPicture, place, nBits),
                                     target.Read()));
                ASSERT_EQ("", Difference(imagePicture, image.Read()));
                ASSERT_EQ("", Difference(maskPicture, mask.Read()));
            }
        }
    }
}

TEST(BmpBlt, StretchesByWholeFactorsPixelByPixel)
{
    const CPixelMap imagePicture = TestPicture(12, 10, 2), maskPicture = MaskPicture();
    CTestSurface image(0, imagePicture), mask(1, maskPicture);
    for (const int nBits : DEPTHS) {
        for (int nPart = 0; nPart < 2; ++nPart) {
            SCOPED_TRACE(nBits);
            const UINT nSrc = nPart ? 3 : 0, cx = nPart ? 5 : 12, cy = nPart ? 4 : 10;
            CTestSurface plain(nBits, TestPicture(40, 30, 7)), clear(nBits, TestPicture(40, 30, 7));
            CPixelMap expectPlain = plain.Read(), expectClear = clear.Read();
            for (int i = 0; i < I(9 * cx * cy); ++i) {
                const int dx = i % I(3 * cx), dy = i / I(3 * cx);
                const int xSrc = I(nSrc) + dx / 3, ySrc = I(nSrc) + dy / 3;
                const COLORREF cr = Shown(nBits, imagePicture.At(xSrc, ySrc));
                expectPlain.Set(2 + dx, 1 + dy, cr);
                if (maskPicture.At(xSrc, ySrc) == 0)
                    expectClear.Set(2 + dx, 1 + dy, cr);
            }
            CUIBmpStretchBlt(plain, 2, 1, 3 * cx, 3 * cy, image.Bitmap(), nSrc, nSrc,
                             nPart ? cx : 0, nPart ? cy : 77, nullptr, 0);
            CUIBmpTransparentStretchBltFull(clear, 2, 1, 3 * cx, 3 * cy, image.Bitmap(),
                                            mask.Bitmap(), nSrc, nSrc, nPart ? cx : 77,
                                            nPart ? cy : 0);
            EXPECT_EQ("", Difference(expectPlain, plain.Read()));
            EXPECT_EQ("", Difference(expectClear, clear.Read()));
        }
    }
}

TEST(BmpBlt, MakesMasksAndBakesABitmapOntoAColour)
{
    const CPixelMap picture = TestPicture(12, 10, 4);
    for (const int nBits : {0, 24, 16, 1}) {
        SCOPED_TRACE(nBits);
        CTestSurface image(0, picture), target(nBits, TestPicture(24, 20, 7));
        const CPixelMap before = target.Read();
        const CDCState state(target);
        const HBITMAP hMask = CUIBmpMakeMask(target, 9, 9, image.Bitmap(), KEY);
        const HBITMAP hPart = CUIBmpMakeMaskFull(target, 9, 9, image.Bitmap(), KEY, 3, 2, 5, 6);
        HBITMAP hBaked = nullptr;
        EXPECT_EQ(TRUE, CUIBmpTransparentCreate(image.Bitmap(), &hBaked, target, BKGND));
        EXPECT_TRUE(state == CDCState(target));
        EXPECT_EQ("", Difference(before, target.Read()));

        CPixelMap mask(12, 10), part(5, 6), baked = picture;
        for (int i = 0; i < 120; ++i) {
            const int x = i % 12, y = i / 12;
            const COLORREF cr = picture.At(x, y) == KEY ? WHITE : 0;
            mask.Set(x, y, cr);
            part.Set(x - 3, y - 2, cr);
            if (picture.At(x, y) == picture.At(0, 0))
                baked.Set(x, y, BKGND);
        }
        // A surface of the screen's depth takes whatever is not being looked at out of the way.
        const CPixelMap *maps[] = {&mask, &part, &baked};
        const HBITMAP bitmaps[] = {hMask, hPart, hBaked};
        const int bits[] = {1, 1, GetDeviceCaps(target, BITSPIXEL)};
        for (int i = 0; i < 3; ++i) {
            BITMAP bm = {};
            ASSERT_NE(0, GetObjectA(bitmaps[i], sizeof bm, &bm));
            EXPECT_EQ(bits[i], bm.bmBitsPixel);
            EXPECT_EQ(maps[i]->cx, bm.bmWidth);
            EXPECT_EQ(maps[i]->cy, bm.bmHeight);
            CTestSurface reader(0, CPixelMap(bm.bmWidth, bm.bmHeight, 0x123456));
            CUIBmpBitBlt(reader, 0, 0, bitmaps[i], 0, 0, 0, 0, nullptr, 0);
            EXPECT_EQ("", Difference(*maps[i], reader.Read()));
            EXPECT_TRUE(DeleteObject(bitmaps[i]));
        }
    }
}

TEST(BmpBlt, DrawsNothingForNullAndWhatGdiDrawsForOddSizes)
{
    CTestSurface image(0, TestPicture(12, 10, 2)), mask(1, MaskPicture());
    CTestSurface target(32, TestPicture(24, 20, 7)), peer(32, TestPicture(24, 20, 7));
    const CDCState state(target);
    for (const CBlt &blt : BLTS) {
        blt.draw(target, PLACES[0], nullptr, mask.Bitmap());
        blt.draw(target, PLACES[5], nullptr, mask.Bitmap());
    }
    DrawTransparent(target, PLACES[0], image.Bitmap(), nullptr);
    CUIBmpStretchBlt(target, 0, 0, 9, 9, nullptr, 0, 0, 0, 0, nullptr, 0);
    CUIBmpTransparentStretchBltFull(target, 0, 0, 9, 9, nullptr, mask.Bitmap(), 0, 0, 0, 0);
    CUIBmpTransparentStretchBltFull(target, 0, 0, 9, 9, image.Bitmap(), nullptr, 0, 0, 0, 0);
    EXPECT_EQ(nullptr, CUIBmpMakeMask(target, 0, 0, nullptr, KEY));
    HBITMAP hResult = image.Bitmap();
    EXPECT_EQ(TRUE, CUIBmpTransparentCreate(nullptr, &hResult, target, KEY));
    EXPECT_EQ(nullptr, hResult);
    CUIBmpDeleteObject(&hResult);
    EXPECT_TRUE(state == CDCState(target));
    EXPECT_EQ("", Difference(peer.Read(), target.Read()));

    const HDC hMem = CreateCompatibleDC(nullptr);
    const HGDIOBJ hOld = SelectObject(hMem, image.Bitmap());
    BitBlt(peer, 9, 9, -5, -4, hMem, 8, 7, SRCCOPY);
    StretchBlt(peer, 20, 2, -12, 6, hMem, 0, 0, 6, 3, SRCCOPY);
    SelectObject(hMem, hOld);
    CUIBmpBitBlt(target, 9, 9, image.Bitmap(), 8, 7, U(-5), U(-4), nullptr, 0);
    CUIBmpStretchBlt(target, 20, 2, U(-12), 6, image.Bitmap(), 0, 0, 6, 3, nullptr, 0);
    EXPECT_EQ("", Difference(peer.Read(), target.Read()));
    const CDumped dumped;
    SetLastError(4711);
    CUIBmpStretchBlt(nullptr, 0, 0, 9, 9, image.Bitmap(), 0, 0, 0, 0, nullptr, 0);
    EXPECT_EQ(0U, dumped.m_text.find("StretchBlt failed - gle: "));
    DeleteDC(hMem);
}

TEST(BmpBlt, RealisesThePaletteInTheMemoryDCOnly)
{
    static std::string s_calls;
    static HDC s_hTarget;
    static HPALETTE s_hPalette;
    using CSelect = HPALETTE WINAPI(HDC, HPALETTE, BOOL);
    static CSelect *s_select;
    struct CCalls
    {
        static HPALETTE WINAPI Select(HDC hDC, HPALETTE hPal, BOOL bForce)
        {
            s_calls += hDC == s_hTarget ? "target " : "";
            s_calls += hPal == s_hPalette ? "own" : "old";
            s_calls += bForce ? " back, " : " fore, ";
            return s_select(hDC, hPal, bForce);
        }
        static UINT WINAPI Realize(HDC) { return s_calls += "realize, ", 0; }
    };
    CTestSurface image(0, TestPicture(12, 10, 2)), target(32, CPixelMap(24, 20));
    LOGPALETTE palette = {0x300, 1, {{1, 2, 3, 0}}};
    s_hPalette = CreatePalette(&palette);
    s_hTarget = target;
    CImportHook select("SelectPalette", CCalls::Select), realize("RealizePalette", CCalls::Realize);
    s_select = select.Original<CSelect>();
    CUIBmpBitBlt(target, 0, 0, image.Bitmap(), 0, 0, 0, 0, s_hPalette, 0);
    CUIBmpStretchBlt(target, 0, 0, 9, 9, image.Bitmap(), 0, 0, 0, 0, s_hPalette, 1);
    EXPECT_EQ("own fore, realize, old fore, realize, own back, realize, old back, realize, ",
              s_calls);
    CUIBmpDeleteObject(&s_hPalette);
    EXPECT_EQ(nullptr, s_hPalette);
}

TEST(BmpBlt, LeaksNothingAndLetsGoOfEverythingWhicheverCallFails)
{
    const CPixelMap picture = TestPicture(12, 10, 2);
    CTestSurface image(0, picture), mask(1, MaskPicture()), target(32, picture);
    CTemporaryDirectory directory;
    const auto drawAll = [&] {
        const CDCState state(target);
        for (const CBlt &blt : BLTS)
            blt.draw(target, PLACES[0], image.Bitmap(), mask.Bitmap());
        HBITMAP hMask = CUIBmpMakeMask(target, 0, 0, image.Bitmap(), KEY);
        HBITMAP hBaked = nullptr;
        CUIBmpTransparentCreate(image.Bitmap(), &hBaked, target, KEY);
        EXPECT_TRUE(state == CDCState(target));
        EXPECT_EQ("", Difference(picture, image.Read()));
        CUIBmpDeleteObject(&hMask);
        CUIBmpDeleteObject(&hBaked);
    };
    SetBkColor(target, WHITE);
    drawAll();
    const int nBefore = GdiCount();
    for (int i = 0; i < 500; ++i)
        drawAll();
    EXPECT_NEAR(nBefore, GdiCount(), 2);

    s_nBits = 32;
    const CImportHook caps("GetDeviceCaps", DeviceCaps);
    const CFailingCall<HDC(HDC)> createDC("CreateCompatibleDC");
    const CFailingCall<HBITMAP(HDC, int, int)> createCompatible("CreateCompatibleBitmap");
    const CFailingCall<HBITMAP(int, int, UINT, UINT, const void *)> createBitmap("CreateBitmap");
    const CFailingCall<HBRUSH(COLORREF)> createBrush("CreateSolidBrush");
    const int nCalls = CFailPlan::RunAll([&] {
        // Another depth has the memory DCs made again.
        s_nBits = s_nBits == 32 ? 31 : 32;
        CUIBmpBitBlt(mask, 0, 0, image.Bitmap(), 0, 0, 0, 0, nullptr, 0);
        drawAll();
    });
    EXPECT_GE(nCalls, 12);
    EXPECT_NEAR(nBefore, GdiCount(), 2);
    EXPECT_NE(std::string::npos, directory.Contents("ZELTrace-*.txt")
                                     .find("Assert:*pMemDC = CreateCompatibleDC(hDC)  File:Bmp  "));
}

TEST(BmpBlt, MakesMemoryDCsAgainForAnotherDepthOnly)
{
    CTestSurface image(0, TestPicture(12, 10, 2)), screen(32, CPixelMap(9, 9)),
        printer(1, CPixelMap(9, 9));
    const CImportHook caps("GetDeviceCaps", DeviceCaps);
    const CFailingCall<HDC(HDC)> createDC("CreateCompatibleDC");
    const struct
    {
        HDC hDC;
        int nBits;
    } steps[] = {{screen, 24}, {screen, 24}, {printer, 1}, {printer, 1}, {screen, 24}};
    const int created[] = {3, 3, 6, 6, 9};
    CFailPlan::s_nCalls = 0;
    for (int i = 0; i < 5; ++i) {
        s_nBits = steps[i].nBits;
        CUIBmpBgBlt(steps[i].hDC, 0, 0, image.Bitmap(), KEY);
        EXPECT_EQ(created[i], CFailPlan::s_nCalls) << i;
    }
}
