#include "CUI/OffScreenDC.h"

#include <gtest/gtest.h>

#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"

namespace {

BITMAP Selected(HDC hDC)
{
    BITMAP bm = {};
    GetObjectA(GetCurrentObject(hDC, OBJ_BITMAP), sizeof bm, &bm);
    return bm;
}

// A depth of 1 for one DC, as a printer may have it.
HDC s_hPrinter;
int(WINAPI *s_caps)(HDC, int);
int WINAPI DeviceCaps(HDC hDC, int nCap)
{
    return hDC == s_hPrinter && nCap == BITSPIXEL ? 1 : s_caps(hDC, nCap);
}

struct CWorker
{
    CCUIOffScreenDC *osdc;
    volatile LONG *inside;
    volatile LONG *clashes;
    static DWORD WINAPI Run(void *p)
    {
        const CWorker &worker = *static_cast<CWorker *>(p);
        CTestSurface target(32, CPixelMap(2, 2));
        for (int i = 0; i < 300; ++i) {
            const HDC hDC = worker.osdc->GetDC(target, 1 + i % 90, 1 + i % 70);
            if (InterlockedIncrement(worker.inside) != 1 || Selected(hDC).bmWidth < 1 + i % 90)
                InterlockedIncrement(worker.clashes);
            SwitchToThread();
            InterlockedDecrement(worker.inside);
            worker.osdc->ReleaseDC();
        }
        return 0;
    }
};

}  // namespace

TEST(OffScreenDC, GrowsNeverShrinksAndKeepsWhatWasDrawnWhileItFits)
{
    CTestSurface screen(0, CPixelMap(9, 9)), printer(1, CPixelMap(9, 9));
    s_hPrinter = printer;
    CImportHook caps("GetDeviceCaps", DeviceCaps);
    s_caps = caps.Original<int WINAPI(HDC, int)>();
    const int nScreen = GetDeviceCaps(screen, BITSPIXEL);
    const int nBefore = GdiCount();
    {
        CCUIOffScreenDC osdc;
        const struct
        {
            HDC hDC;
            int cx, cy, cxBitmap, cyBitmap, nBits;
            bool bNew;
        } steps[] = {
            {screen, 200, 20, 200, 20, nScreen, true}, {screen, 200, 20, 200, 20, nScreen, false},
            {screen, 100, 50, 200, 50, nScreen, true}, {screen, 1, 1, 200, 50, nScreen, false},
            {screen, -5, 0, 200, 50, nScreen, false},  {printer, 10, 10, 200, 50, 1, true},
            {printer, 10, 51, 200, 51, 1, true},       {screen, 201, 3, 201, 51, nScreen, true},
            {screen, 201, 51, 201, 51, nScreen, false}};
        HDC hFirst = nullptr;
        for (const auto &step : steps) {
            SCOPED_TRACE(&step - steps);
            const HGDIOBJ hOld = hFirst ? GetCurrentObject(hFirst, OBJ_BITMAP) : nullptr;
            const HDC hDC = osdc.GetDC(step.hDC, step.cx, step.cy);
            EXPECT_EQ(hFirst ? hFirst : hDC, hDC);
            EXPECT_EQ(TRANSPARENT, GetBkMode(hDC));
            EXPECT_EQ(step.cxBitmap, Selected(hDC).bmWidth);
            EXPECT_EQ(step.cyBitmap, Selected(hDC).bmHeight);
            EXPECT_EQ(step.nBits, Selected(hDC).bmBitsPixel);
            EXPECT_EQ(step.bNew, hOld != GetCurrentObject(hDC, OBJ_BITMAP));
            EXPECT_EQ(step.bNew ? 0U : 0xFFFFFFU, GetPixel(hDC, 0, 0));
            SetPixelV(hDC, 0, 0, 0xFFFFFF);
            // Nested on one thread.
            EXPECT_EQ(hDC, osdc.GetDC(step.hDC, step.cx, step.cy));
            osdc.ReleaseDC();
            osdc.ReleaseDC();
            hFirst = hDC;
            EXPECT_EQ(nBefore + 2, GdiCount());
        }
    }
    EXPECT_EQ(nBefore, GdiCount());
}

TEST(OffScreenDC, KeepsItsBitmapWhenThereIsNoMemoryForALargerOne)
{
    CTestSurface screen(0, CPixelMap(9, 9));
    const CReports reports;
    CCUIOffScreenDC osdc;
    const CFailingCall<HDC(HDC)> createDC("CreateCompatibleDC");
    const CFailingCall<HBITMAP(HDC, int, int)> createBitmap("CreateCompatibleBitmap");
    CFailPlan::Start(1);
    EXPECT_EQ(nullptr, osdc.GetDC(screen, 20, 20));
    osdc.ReleaseDC();
    EXPECT_EQ(1, reports.Count("m_memDC != 0", "OffScreenDC"));
    const HDC hDC = osdc.GetDC(screen, 20, 20);
    const HGDIOBJ hBitmap = GetCurrentObject(hDC, OBJ_BITMAP);
    const int nBefore = GdiCount();
    for (int i = 0; i < 100; ++i) {
        CFailPlan::Start(1);
        EXPECT_EQ(hDC, osdc.GetDC(screen, 30, 10));
        EXPECT_EQ(hBitmap, GetCurrentObject(hDC, OBJ_BITMAP));
        osdc.ReleaseDC();
    }
    EXPECT_EQ(nBefore, GdiCount());
    osdc.GetDC(screen, 30, 10);
    EXPECT_EQ(30, Selected(hDC).bmWidth);
    EXPECT_EQ(20, Selected(hDC).bmHeight);
    osdc.ReleaseDC();
    osdc.ReleaseDC();
}

TEST(OffScreenDC, BelongsToOneThreadAtATime)
{
    volatile LONG nInside = 0, nClashes = 0;
    EXPECT_EQ(CUIGetOSDC(), CUIGetOSDC());
    CWorker worker = {CUIGetOSDC(), &nInside, &nClashes};
    HANDLE threads[3];
    for (HANDLE &thread : threads)
        thread = CreateThread(nullptr, 0, CWorker::Run, &worker, 0, nullptr);
    WaitForMultipleObjects(3, threads, TRUE, INFINITE);
    EXPECT_EQ(0, nClashes);
    for (const HANDLE thread : threads)
        CloseHandle(thread);
}
