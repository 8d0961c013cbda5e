#include "CUI/BmpBlt.h"

#include <gtest/gtest.h>

#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
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

UINT U(int n)
{
    return static_cast<UINT>(n);
}
bool IsWhole(const CPlace &p)
{
    return p.cx == 0 && p.cy == 0;
}
UINT Tripled(const CPlace &p, int n, int nWhole)
{
    return U(3 * (p.cx && p.cy ? n : nWhole));
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
void DrawStretched(HDC hDC, const CPlace &p, HBITMAP hImage, HBITMAP)
{
    CUIBmpStretchBlt(hDC, U(p.x), U(p.y), Tripled(p, p.cx, 12), Tripled(p, p.cy, 10), hImage,
                     U(p.xSrc), U(p.ySrc), U(p.cx), U(p.cy), nullptr, 0);
}
void DrawTransparentStretched(HDC hDC, const CPlace &p, HBITMAP hImage, HBITMAP hMask)
{
    CUIBmpTransparentStretchBltFull(hDC, U(p.x), U(p.y), Tripled(p, p.cx, 12), Tripled(p, p.cy, 10),
                                    hImage, hMask, U(p.xSrc), U(p.ySrc), U(p.cx), U(p.cy));
}

COLORREF Copied(COLORREF, COLORREF crImage, bool, COLORREF)
{
    return crImage;
}
COLORREF Masked(COLORREF crTarget, COLORREF crImage, bool bMask, COLORREF)
{
    return bMask ? crTarget : crImage;
}
COLORREF Keyed(COLORREF, COLORREF crImage, bool, COLORREF crBkgnd)
{
    return crImage == KEY ? crBkgnd : crImage;
}

// A drawing function, and what it makes of a target, an image and a mask pixel.
const struct CBlt
{
    void (*draw)(HDC hDC, const CPlace &p, HBITMAP hImage, HBITMAP hMask);
    COLORREF (*rule)(COLORREF crTarget, COLORREF crImage, bool bMask, COLORREF crBkgnd);
    int nScale;
    int nPlaces;  // stretched and intermediate pictures are made from the inside only
} BLTS[] = {{DrawBitBlt, Copied, 1, 12},
            {DrawTransparent, Masked, 1, 12},
            {DrawBgBlt, Keyed, 1, 10},
            {DrawStretched, Copied, 3, 10},
            {DrawTransparentStretched, Masked, 3, 10}};

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
    const int cx = p.cx * blt.nScale, cy = p.cy * blt.nScale;
    for (int i = 0; i < cx * cy; ++i) {
        const int xSrc = p.xSrc + i % cx / blt.nScale, ySrc = p.ySrc + i / cx / blt.nScale;
        const int x = p.x + i % cx, y = p.y + i / cx;
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

// What happens to palettes: "own 0" selects the test's in the foreground, "old 1" the other one in
// the background.
std::string s_calls;
HDC s_hTarget;
HPALETTE s_hPalette;
HPALETTE(WINAPI *s_select)(HDC, HPALETTE, BOOL);
HPALETTE WINAPI RecordSelect(HDC hDC, HPALETTE hPal, BOOL bForce)
{
    s_calls += hDC == s_hTarget ? "target " : "";
    s_calls += hPal == s_hPalette ? "own " : "old ";
    s_calls += bForce ? "1, " : "0, ";
    return s_select(hDC, hPal, bForce);
}
UINT WINAPI RecordRealize(HDC)
{
    s_calls += "realize, ";
    return 0;
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
        for (int n = 0; n < 60; ++n) {
            const CBlt &blt = BLTS[n % 5];
            const CPlace &place = PLACES[n / 5];
            if (n / 5 >= blt.nPlaces)
                continue;
            SCOPED_TRACE(testing::Message()
                         << nBits << " bits, blit " << n % 5 << ", place " << n / 5);
            CTestSurface target(nBits, TestPicture(24, 20, 7));
            const CPixelMap before = target.Read();
            SetBkColor(target, Background(nBits));
            SetTextColor(target, KEY);
            CDCState state(target);
            blt.draw(target, place, image.Bitmap(), mask.Bitmap());
            if (blt.rule == Masked) {
                state.values[0] = WHITE;
                state.values[1] = 0;
            }
            EXPECT_TRUE(state == CDCState(target));
            EXPECT_EQ("", Difference(Expected(blt, before, imagePicture, maskPicture, place, nBits),
                                     target.Read()));
            ASSERT_EQ("", Difference(imagePicture, image.Read()));
            ASSERT_EQ("", Difference(maskPicture, mask.Read()));
        }
    }
}

TEST(BmpBlt, MakesMasksAndBakesABitmapOntoAColour)
{
    const CPixelMap picture = TestPicture(12, 10, 4);
    CPixelMap mask(12, 10), part(5, 6), baked = picture;
    for (int i = 0; i < 120; ++i) {
        const COLORREF cr = picture.At(i % 12, i / 12);
        mask.Set(i % 12, i / 12, cr == KEY ? WHITE : 0);
        part.Set(i % 12 - 3, i / 12 - 2, cr == KEY ? WHITE : 0);
        if (cr == picture.At(0, 0))
            baked.Set(i % 12, i / 12, BKGND);
    }
    const CPixelMap *expected[] = {&mask, &part, &baked};
    for (const int nBits : {0, 24, 16, 1}) {
        SCOPED_TRACE(nBits);
        CTestSurface image(0, picture), target(nBits, TestPicture(24, 20, 7));
        const CPixelMap before = target.Read();
        const CDCState state(target);
        HBITMAP made[] = {CUIBmpMakeMask(target, 9, 9, image.Bitmap(), KEY),
                          CUIBmpMakeMaskFull(target, 9, 9, image.Bitmap(), KEY, 3, 2, 5, 6),
                          nullptr};
        EXPECT_EQ(TRUE, CUIBmpTransparentCreate(image.Bitmap(), &made[2], target, BKGND));
        EXPECT_TRUE(state == CDCState(target));
        EXPECT_EQ("", Difference(before, target.Read()));
        for (int i = 0; i < 3; ++i) {
            BITMAP bm = {};
            ASSERT_NE(0, GetObjectA(made[i], sizeof bm, &bm));
            EXPECT_EQ(i < 2 ? 1 : GetDeviceCaps(target, BITSPIXEL), bm.bmBitsPixel);
            EXPECT_EQ(expected[i]->cx, bm.bmWidth);
            EXPECT_EQ(expected[i]->cy, bm.bmHeight);
            CTestSurface reader(0, CPixelMap(bm.bmWidth, bm.bmHeight, 0x123456));
            CUIBmpBitBlt(reader, 0, 0, made[i], 0, 0, 0, 0, nullptr, 0);
            EXPECT_EQ("", Difference(*expected[i], reader.Read()));
            CUIBmpDeleteObject(&made[i]);
            EXPECT_EQ(nullptr, made[i]);
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
        blt.draw(target, PLACES[7], nullptr, mask.Bitmap());
        if (blt.rule == Masked)
            blt.draw(target, PLACES[0], image.Bitmap(), nullptr);
    }
    EXPECT_EQ(nullptr, CUIBmpMakeMask(target, 0, 0, nullptr, KEY));
    HBITMAP hResult = image.Bitmap();
    EXPECT_EQ(TRUE, CUIBmpTransparentCreate(nullptr, &hResult, target, KEY));
    EXPECT_EQ(nullptr, hResult);
    CUIBmpDeleteObject(&hResult);
    EXPECT_TRUE(state == CDCState(target));
    EXPECT_EQ("", Difference(peer.Read(), target.Read()));

    image.Read();
    BitBlt(peer, 9, 9, -5, -4, image, 8, 7, SRCCOPY);
    StretchBlt(peer, 20, 2, -12, 6, image, 0, 0, 6, 3, SRCCOPY);
    CUIBmpBitBlt(target, 9, 9, image.Bitmap(), 8, 7, U(-5), U(-4), nullptr, 0);
    CUIBmpStretchBlt(target, 20, 2, U(-12), 6, image.Bitmap(), 0, 0, 6, 3, nullptr, 0);
    EXPECT_EQ("", Difference(peer.Read(), target.Read()));
    const CDumped dumped;
    CUIBmpStretchBlt(nullptr, 0, 0, 9, 9, image.Bitmap(), 0, 0, 0, 0, nullptr, 0);
    EXPECT_EQ(0U, dumped.m_text.find("StretchBlt failed - gle: "));
}

TEST(BmpBlt, RealisesThePaletteInTheMemoryDCOnly)
{
    CTestSurface image(0, TestPicture(12, 10, 2)), target(32, CPixelMap(24, 20));
    LOGPALETTE palette = {0x300, 1, {{1, 2, 3, 0}}};
    s_hPalette = CreatePalette(&palette);
    s_hTarget = target;
    CImportHook select("SelectPalette", RecordSelect), realize("RealizePalette", RecordRealize);
    s_select = select.Original<HPALETTE WINAPI(HDC, HPALETTE, BOOL)>();
    CUIBmpBitBlt(target, 0, 0, image.Bitmap(), 0, 0, 0, 0, s_hPalette, 0);
    CUIBmpStretchBlt(target, 0, 0, 9, 9, image.Bitmap(), 0, 0, 0, 0, s_hPalette, 1);
    EXPECT_EQ("own 0, realize, old 0, realize, own 1, realize, old 1, realize, ", s_calls);
    CUIBmpDeleteObject(&s_hPalette);
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
    // Without the picture in between, BgBlt draws nothing and the mask stays empty.
    const CPixelMap before = target.Read();
    CFailPlan::Start(2);
    CUIBmpBgBlt(target, 0, 0, image.Bitmap(), KEY);
    EXPECT_EQ("", Difference(before, target.Read()));
    CFailPlan::Start(2);
    HGDIOBJ hMask = CUIBmpMakeMask(target, 0, 0, image.Bitmap(), KEY);
    CUIBmpBitBlt(target, 0, 0, static_cast<HBITMAP>(hMask), 0, 0, 0, 0, nullptr, 0);
    EXPECT_EQ("", Difference(CPixelMap(12, 10), target.Read()));
    CUIBmpDeleteObject(&hMask);
    EXPECT_EQ(nullptr, hMask);
    CUIBmpDeleteObject(&hMask);
    EXPECT_NEAR(nBefore, GdiCount(), 2);
    EXPECT_NE(std::string::npos, directory.Contents("ZELTrace-*.txt")
                                     .find("Assert:*pMemDC = CreateCompatibleDC(hDC)  File:Bmp  "));
}

TEST(BmpBlt, MakesMemoryDCsAgainForAnotherDepthOnly)
{
    CTestSurface image(0, TestPicture(12, 10, 2)), screen(32, CPixelMap(9, 9));
    CTestSurface printer(1, CPixelMap(9, 9));
    const CImportHook caps("GetDeviceCaps", DeviceCaps);
    const CFailingCall<HDC(HDC)> createDC("CreateCompatibleDC");
    CFailPlan::Start(0);
    const struct
    {
        int nBits, nCreated;
    } steps[] = {{24, 3}, {24, 3}, {1, 6}, {1, 6}, {24, 9}};
    for (const auto &step : steps) {
        s_nBits = step.nBits;
        CUIBmpBgBlt(s_nBits == 1 ? printer : screen, 0, 0, image.Bitmap(), KEY);
        EXPECT_EQ(step.nCreated, CFailPlan::s_nCalls) << &step - steps;
    }
}
