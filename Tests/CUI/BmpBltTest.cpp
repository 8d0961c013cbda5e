#include "CUI/BmpBlt.h"

#include <gtest/gtest.h>

#include "../../CUI/Src/Drawing/BmpSharedDC.h"
#include "Support/FailingCall.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"

namespace {

const COLORREF WHITE = 0xFFFFFF, KEY = 0x0000FF, BKGND = 0xFFFF00;

// The last two read outside the image, which only blits without a step in between take as nothing.
const struct CPlace
{
    UINT x, y, xSrc, ySrc, cx, cy;
} PLACES[] = {{3, 2, 0, 0, 0, 0},   {4, 5, 0, 0, 0, 50},   {4, 5, 0, 0, 50, 0},
              {-5U, 2, 0, 0, 0, 0}, {2, -4U, 0, 0, 0, 0},  {16, 15, 0, 0, 0, 0},
              {2, 3, 4, 5, 6, 4},   {6, 1, 1, 7, 1, 1},    {40, 40, 0, 0, 0, 0},
              {5, 5, 8, 6, 9, 9},   {9, 9, -3U, -2U, 8, 8}};
enum
{
    PLAIN,
    MASKED,
    KEYED,
    STRETCHED,
    MASKED_STRETCHED,
    BLTS
};

bool IsMasked(int nBlt)
{
    return nBlt == MASKED || nBlt == MASKED_STRETCHED;
}

void Draw(int nBlt, HDC hDC, const CPlace &p, HBITMAP hBmp, HBITMAP hMask)
{
    const UINT x = p.x, y = p.y, xSrc = p.xSrc, ySrc = p.ySrc, cx = p.cx, cy = p.cy;
    const UINT cx3 = cx && cy ? 3 * cx : 36, cy3 = cx && cy ? 3 * cy : 30;
    const bool bShort = !cx && !cy;
    switch (nBlt) {
    case PLAIN: return CUIBmpBitBlt(hDC, x, y, hBmp, xSrc, ySrc, cx, cy, nullptr, 0);
    case MASKED:
        return bShort ? CUIBmpTransparentBlt(hDC, x, y, hBmp, hMask)
                      : CUIBmpTransparentBltFull(hDC, x, y, hBmp, hMask, xSrc, ySrc, cx, cy);
    case KEYED:
        return bShort ? CUIBmpBgBlt(hDC, x, y, hBmp, KEY)
                      : CUIBmpBgBltFull(hDC, x, y, hBmp, KEY, xSrc, ySrc, cx, cy);
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

struct CScene
{
    // What a drawing makes of the target.
    void Expect(int nBlt, CPixelMap &map, const CPlace &p, int nBits) const
    {
        const int nScale = nBlt >= STRETCHED ? 3 : 1;
        const int cx = nScale * static_cast<int>(p.cx && p.cy ? p.cx : 12);
        const int cy = nScale * static_cast<int>(p.cx && p.cy ? p.cy : 10);
        for (int i = 0; i < cx * cy; ++i) {
            const int xSrc = static_cast<int>(p.xSrc) + i % cx / nScale;
            const int ySrc = static_cast<int>(p.ySrc) + i / cx / nScale;
            if (!picture.Has(xSrc, ySrc) || (IsMasked(nBlt) && maskPicture.At(xSrc, ySrc)))
                continue;
            COLORREF cr = picture.At(xSrc, ySrc);
            if (nBlt == KEYED && cr == KEY)
                cr = nBits == 1 ? WHITE : BKGND;
            // On a monochrome target only white is 1.
            map.Set(static_cast<int>(p.x) + i % cx, static_cast<int>(p.y) + i / cx,
                    nBits == 1 && cr != WHITE ? 0 : cr);
        }
    }

    CPixelMap picture = TestPicture(12, 10, 2), maskPicture = MaskPicture();
    CTestSurface image{0, picture}, mask{1, maskPicture};
};

// That of the DCs that are kept from call to call.
std::vector<DWORD> SharedState(HDC hDC)
{
    std::vector<DWORD> all;
    for (CCUIBmpSharedDC *pShared : {&g_bmpImageDC, &g_bmpMaskDC, &g_bmpWorkDC}) {
        const std::vector<DWORD> state = DCState(pShared->For(hDC));
        all.insert(all.end(), state.begin(), state.end());
    }
    return all;
}

// Palette 5 is the test's, 7 the one that every DC has.
std::string s_calls;
HDC s_hTarget;
HPALETTE WINAPI RecordSelect(HDC hDC, HPALETTE hPal, BOOL bForce)
{
    s_calls += (hDC == s_hTarget ? "target " : "") + std::to_string(reinterpret_cast<int>(hPal)) +
               (bForce ? " back, " : " front, ");
    return reinterpret_cast<HPALETTE>(7);
}
UINT WINAPI RecordRealize(HDC)
{
    s_calls += "realize, ";
    return 0;
}

// A system on which a memory DC has the depth of its bitmap.
int WINAPI DeviceCaps(HDC hDC, int nCap)
{
    BITMAP bm = {};
    GetObjectA(GetCurrentObject(hDC, OBJ_BITMAP), sizeof bm, &bm);
    return nCap == BITSPIXEL ? bm.bmBitsPixel : 1;
}

}  // namespace

TEST(BmpBlt, DrawsTheRulesPictureOnEveryDepthAndKeepsTheDC)
{
    CScene s;
    for (const int nBits : {0, 32, 24, 16, 8, 1}) {
        for (int n = 0; n < BLTS * 11; ++n) {
            const int nBlt = n % BLTS;
            const CPlace &place = PLACES[n / BLTS];
            if (n / BLTS >= 9 && nBlt >= KEYED)
                continue;
            SCOPED_TRACE(testing::Message() << nBits << " bits, blit and place " << n);
            ExpectDrawn(nBits, TestPicture(24, 20, 7), [&](HDC hDC) {
                Draw(nBlt, hDC, place, nullptr, s.mask.Bitmap());
                if (IsMasked(nBlt))
                    Draw(nBlt, hDC, place, s.image.Bitmap(), nullptr);
            });
            ExpectDrawn(
                nBits, TestPicture(24, 20, 7),
                [&](HDC hDC) { Draw(nBlt, hDC, place, s.image.Bitmap(), s.mask.Bitmap()); },
                [&](CPixelMap &map) { s.Expect(nBlt, map, place, nBits); },
                IsMasked(nBlt) ? std::vector<DWORD>{WHITE, 0} : std::vector<DWORD>{});
            ASSERT_EQ(s.picture, s.image.Read());
            ASSERT_EQ(s.maskPicture, s.mask.Read());
        }
    }
}

TEST(BmpBlt, MakesMasksAndBakesABitmapOntoAColour)
{
    const CPixelMap picture = TestPicture(12, 10, 4);
    CPixelMap expected[] = {CPixelMap(12, 10), CPixelMap(5, 6), picture};
    for (int i = 0; i < 120; ++i) {
        const int x = i % 12, y = i / 12;
        expected[0].Set(x, y, picture.At(x, y) == KEY ? WHITE : 0);
        expected[1].Set(x - 3, y - 2, picture.At(x, y) == KEY ? WHITE : 0);
        if (picture.At(x, y) == picture.At(0, 0))
            expected[2].Set(x, y, BKGND);
    }
    for (const int nBits : {0, 24, 16, 1}) {
        SCOPED_TRACE(nBits);
        CTestSurface image(0, picture);
        HBITMAP made[3] = {};
        int nDepth = 0;
        ExpectDrawn(nBits, TestPicture(24, 20, 7), [&](HDC hDC) {
            const std::vector<DWORD> state = SharedState(hDC);
            made[0] = CUIBmpMakeMask(hDC, 9, 9, image.Bitmap(), KEY);
            made[1] = CUIBmpMakeMaskFull(hDC, 9, 9, image.Bitmap(), KEY, 3, 2, 5, 6);
            EXPECT_EQ(TRUE, CUIBmpTransparentCreate(image.Bitmap(), &made[2], hDC, BKGND));
            EXPECT_EQ(state, SharedState(hDC));
            nDepth = GetDeviceCaps(hDC, BITSPIXEL);
        });
        for (int i = 0; i < 3; ++i) {
            BITMAP bm = {};
            GetObjectA(made[i], sizeof bm, &bm);
            EXPECT_EQ(i < 2 ? 1 : nDepth, bm.bmBitsPixel);
            CTestSurface reader(0, CPixelMap(bm.bmWidth, bm.bmHeight, 0x123456));
            CUIBmpBitBlt(reader, 0, 0, made[i], 0, 0, 0, 0, nullptr, 0);
            EXPECT_EQ(expected[i], reader.Read());
            CUIBmpDeleteObject(&made[i]);
            EXPECT_EQ(nullptr, made[i]);
            CUIBmpDeleteObject(&made[i]);
        }
    }
    for (const HGDIOBJ hNone : {HGDIOBJ(nullptr), GetStockObject(WHITE_BRUSH)}) {
        HBITMAP hResult = reinterpret_cast<HBITMAP>(1);
        EXPECT_EQ(TRUE,
                  CUIBmpTransparentCreate(static_cast<HBITMAP>(hNone), &hResult, nullptr, KEY));
        EXPECT_EQ(nullptr, hResult);
    }
    EXPECT_EQ(nullptr, CUIBmpMakeMask(nullptr, 0, 0, nullptr, KEY));
}

TEST(BmpBlt, KeepsPalettesOffTheTargetAndTracesWhatCannotBeStretched)
{
    CScene s;
    CTestSurface target(32, s.picture);
    const HPALETTE hPalette = reinterpret_cast<HPALETTE>(5);
    s_hTarget = target;
    const CImportHook select("SelectPalette", RecordSelect), real("RealizePalette", RecordRealize);
    CUIBmpBitBlt(target, 0, 0, s.image.Bitmap(), 0, 0, 0, 0, hPalette, 0);
    CUIBmpStretchBlt(target, 0, 0, 9, 9, s.image.Bitmap(), 0, 0, 0, 0, hPalette, 1);
    const CDumped dumped;
    CUIBmpStretchBlt(nullptr, 0, 0, 9, 9, s.image.Bitmap(), 0, 0, 0, 0, nullptr, 0);
    EXPECT_EQ(0U, dumped.m_text.find("StretchBlt failed - gle: "));
    EXPECT_EQ("5 front, realize, 7 front, realize, 5 back, realize, 7 back, realize, ", s_calls);
}

TEST(BmpBlt, MakesItsDCsForAnotherDepthOnlyAndDoesWithoutThePictureInBetween)
{
    CScene s;
    CTestSurface target(32, s.picture), mono(1, s.picture);
    const CReports reports;
    const CImportHook caps("GetDeviceCaps", DeviceCaps);
    const CFailingCall<HDC(HDC)> createDC("CreateCompatibleDC");
    for (CCUIBmpSharedDC *pShared : {&g_bmpImageDC, &g_bmpMaskDC, &g_bmpWorkDC})
        pShared->Release();
    CFailPlan::Start(0);
    // Another DC, or another bitmap in the same one.
    const HBITMAP hColor = target.Bitmap(), hMono = mono.Bitmap();
    const struct
    {
        HDC hDC;
        HBITMAP hBmp;
        int nCreated;
    } steps[] = {{target, hMono, 3}, {target, hMono, 3},   {target, hColor, 6}, {target, hColor, 6},
                 {s.mask, hMono, 9}, {target, hColor, 12}, {target, hMono, 15}};
    for (const auto &step : steps) {
        const HGDIOBJ hOld = SelectObject(step.hDC, step.hBmp);
        CUIBmpBgBlt(step.hDC, 0, 0, s.image.Bitmap(), KEY);
        SelectObject(step.hDC, hOld);
        EXPECT_EQ(step.nCreated, CFailPlan::s_nCalls);
    }
    SelectObject(target, hColor);
    CFailPlan::Start(1);
    CUIBmpBitBlt(target, 0, 0, s.image.Bitmap(), 0, 0, 0, 0, nullptr, 0);
    EXPECT_EQ(1, reports.Count("*pMemDC = CreateCompatibleDC(hDC)", "Bmp"));

    // BgBlt draws nothing then and the mask stays empty.
    const CFailingCall<HBITMAP(HDC, int, int)> createCompatible("CreateCompatibleBitmap");
    const CPixelMap before = target.Read();
    CFailPlan::Start(5);
    CUIBmpBgBlt(target, 0, 0, s.image.Bitmap(), KEY);
    EXPECT_EQ(before, target.Read());
    CFailPlan::Start(2);
    const HBITMAP hMask = CUIBmpMakeMask(target, 0, 0, s.image.Bitmap(), KEY);
    CFailPlan::Start(0);
    EXPECT_EQ(CPixelMap(12, 10), TakePixels(hMask));
}

TEST(BmpBlt, TakesSignedCoordinates)
{
    const CPixelMap picture = TestPicture(3, 3, 1);
    CTestSurface image(0, picture), target(0, CPixelMap(4, 4, WHITE));
    const LONG y = -1;
    CUIBmpBitBlt(target, -2, y, image.Bitmap(), 0, 0, 0, 0, nullptr, 0);
    EXPECT_EQ(picture.At(2, 1), target.Read().At(0, 0));
}
