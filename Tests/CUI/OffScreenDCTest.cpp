#include "CUI/OffScreenDC.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "CUI/BmpBlt.h"
#include "CUI/BmpState.h"
#include "Support/Reports.h"
#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/PixelMap.h"
#include "Support/Threads.h"

namespace {

BITMAP Selected(HDC hDC)
{
    BITMAP bm = {};
    GetObjectA(GetCurrentObject(hDC, OBJ_BITMAP), sizeof bm, &bm);
    return bm;
}

// A system on which a memory DC has the depth of its bitmap.
int WINAPI DeviceCaps(HDC hDC, int nCap)
{
    return nCap == BITSPIXEL ? Selected(hDC).bmBitsPixel : 1;
}

// Destroyed after everything else of the program, and draws even then.
struct CLastPainter
{
    ~CLastPainter()
    {
        if (m_bUsed && !Draws())
            _exit(1);
    }
    bool Draws()
    {
        m_bUsed = true;
        CTestSurface image(0, CPixelMap(2, 2, 0x00FF00));
        CUIBmpStateRects rects = {{0, 0, 2, 2}, {0, 0, 2, 2}, {0, 0, 2, 2}};
        const HDC hDC = CUIGetOSDC()->GetDC(image, 2, 3);
        SetPixelV(hDC, 0, 2, 0x00FF00);
        CUIBmpBitBlt(hDC, 1, 2, image.Bitmap(), 0, 0, 1, 1, nullptr, 0);
        CUIBmpDrawState(hDC, &rects.rcArea, image.Bitmap(), 0, 0, 0, 0);
        const bool bDrawn = ReadPixels(hDC, 2, 3) == CPixelMap(2, 3, 0x00FF00);
        CUIGetOSDC()->ReleaseDC();
        return bDrawn;
    }
    bool m_bUsed = false;
};
CLastPainter s_lastPainter __attribute__((init_priority(101)));

}  // namespace

TEST(OffScreenDC, GrowsNeverShrinksAndKeepsWhatWasDrawnWhileItFits)
{
    CTestSurface screen(0, CPixelMap(9, 9)), mono(1, CPixelMap(9, 9));
    const CImportHook caps("GetDeviceCaps", DeviceCaps);
    const CReports reports;
    const CFailingCall<HDC(HDC)> createDC("CreateCompatibleDC");
    const CFailingCall<HBITMAP(HDC, int, int)> createBitmap("CreateCompatibleBitmap");
    const int nBefore = GdiCount();
    {
        CCUIOffScreenDC osdc;
        CFailPlan::Start(1);
        EXPECT_EQ(nullptr, osdc.GetDC(screen, 20, 20));
        osdc.ReleaseDC();
        EXPECT_EQ(1, reports.Count("m_memDC != 0", "OffScreenDC"));
        // What is asked for, what there is then, and whether it is new.
        const struct
        {
            HDC hDC;
            int cx, cy, cxBitmap, cyBitmap;
            bool bNew, bFails;
        } steps[] = {
            {screen, 200, 20, 200, 20, true, false}, {screen, 200, 20, 200, 20, false, false},
            {screen, 100, 50, 200, 50, true, false}, {screen, 1, 1, 200, 50, false, false},
            {screen, -5, 0, 200, 50, false, false},  {screen, 201, 9, 200, 50, false, true},
            {mono, 10, 10, 200, 50, true, false},    {mono, 10, 51, 200, 51, true, false},
            {screen, 201, 3, 201, 51, true, false},  {screen, 201, 51, 201, 51, false, false}};
        HDC hFirst = nullptr;
        for (const auto &step : steps) {
            SCOPED_TRACE(&step - steps);
            const HGDIOBJ hOld = hFirst ? GetCurrentObject(hFirst, OBJ_BITMAP) : nullptr;
            CFailPlan::Start(step.bFails ? 1 : 0);
            const HDC hDC = osdc.GetDC(step.hDC, step.cx, step.cy);
            EXPECT_EQ(hFirst ? hFirst : hDC, hDC);
            hFirst = hDC;
            EXPECT_EQ(TRANSPARENT, GetBkMode(hDC));
            EXPECT_EQ(step.cxBitmap, Selected(hDC).bmWidth);
            EXPECT_EQ(step.cyBitmap, Selected(hDC).bmHeight);
            EXPECT_EQ(GetDeviceCaps(step.hDC, BITSPIXEL), Selected(hDC).bmBitsPixel);
            EXPECT_EQ(step.bNew, hOld != GetCurrentObject(hDC, OBJ_BITMAP));
            EXPECT_EQ(step.bNew ? 0U : 0xFFFFFFU, GetPixel(hDC, 0, 0));
            SetPixelV(hDC, 0, 0, 0xFFFFFF);
            // Nested on one thread.
            EXPECT_EQ(hDC, osdc.GetDC(step.hDC, step.bFails ? 1 : step.cx, 1));
            osdc.ReleaseDC();
            osdc.ReleaseDC();
            EXPECT_EQ(nBefore + 2, GdiCount());
        }
        // Another bitmap in the same DC.
        const HGDIOBJ hColor = GetCurrentObject(screen, OBJ_BITMAP);
        for (const HGDIOBJ hSelect : {HGDIOBJ(mono.Bitmap()), hColor}) {
            SelectObject(screen, hSelect);
            EXPECT_EQ(Selected(screen).bmBitsPixel, Selected(osdc.GetDC(screen, 1, 1)).bmBitsPixel);
            osdc.ReleaseDC();
        }
    }
    EXPECT_EQ(nBefore, GdiCount());
}

TEST(OffScreenDC, BelongsToOneThreadAtATime)
{
    static LONG s_nInside, s_nClashes;
    CThreads::Run(3, [](int) {
        CTestSurface target(32, CPixelMap(2, 2));
        for (int i = 0; i < 300; ++i) {
            const HDC hDC = CUIGetOSDC()->GetDC(target, 1 + i % 90, 1 + i % 70);
            if (InterlockedIncrement(&s_nInside) != 1 || Selected(hDC).bmWidth < 1 + i % 90)
                InterlockedIncrement(&s_nClashes);
            SwitchToThread();
            InterlockedDecrement(&s_nInside);
            CUIGetOSDC()->ReleaseDC();
        }
    });
    EXPECT_EQ(0, s_nClashes);
}

TEST(OffScreenDC, AndTheOtherMemoryDCsServeWhoDrawsLast)
{
    EXPECT_TRUE(s_lastPainter.Draws());
}
