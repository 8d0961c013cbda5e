// What is kept from call to call of all that draws or loads: the off-screen DC, and nothing more.
#include "CU/String.h"
#include "CUI/Bitmap.h"
#include "CUI/BmpBlt.h"
#include "CUI/BmpLoad.h"
#include "CUI/BmpState.h"
#include "CUI/Button.h"
#include "CUI/ControlBar.h"
#include "CUI/Data.h"
#include "CUI/OffScreenDC.h"
#include "Support/BmpBytes.h"
#include "Support/DotsPerInch.h"
#include "Support/FailingCall.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

BITMAP Selected(HDC hDC)
{
    BITMAP bm = {};
    GetObjectA(GetCurrentObject(hDC, OBJ_BITMAP), sizeof bm, &bm);
    return bm;
}

}  // namespace

TEST(OffScreenDC, GrowsNeverShrinksAndKeepsWhatWasDrawnWhileItFits)
{
    CTestSurface screen(CPixelMap(9, 9));
    CCUIOffScreenDC osdc;
    // What is asked for, what there is then, and whether it is new.
    const struct
    {
        int cx, cy, cxBitmap, cyBitmap;
        bool bNew;
    } steps[] = {{200, 20, 200, 20, true},
                 {200, 20, 200, 20, false},
                 {100, 50, 200, 50, true},
                 {-5, 0, 200, 50, false},
                 {201, 3, 201, 50, true}};
    for (const auto &step : steps) {
        const HDC hDC = osdc.GetDC(screen, step.cx, step.cy);
        EXPECT_EQ(TRANSPARENT, GetBkMode(hDC));
        EXPECT_EQ(step.cxBitmap, Selected(hDC).bmWidth) << &step - steps;
        EXPECT_EQ(step.cyBitmap, Selected(hDC).bmHeight) << &step - steps;
        EXPECT_EQ(step.bNew ? 0U : 0xFFFFFFU, GetPixel(hDC, 0, 0)) << &step - steps;
        SetPixelV(hDC, 0, 0, 0xFFFFFF);
        osdc.ReleaseDC();
    }
    // A system on which a memory DC has the depth of its bitmap, which is another one soon.
    const CFakeCall<int(HDC, int)> depth("GetDeviceCaps",
                                         [](HDC hDC, int) { return Selected(hDC).bmBitsPixel; });
    for (const bool bMono : {false, true, false}) {
        bMono ? void(screen.Bitmap()) : void(screen.Read());
        EXPECT_EQ(Selected(screen).bmBitsPixel, Selected(osdc.GetDC(screen, 9, 9)).bmBitsPixel);
        osdc.ReleaseDC();
    }
}

TEST(DrawingLeaks, NothingOnSuccessAndWhicheverCallFails)
{
    const CReports reports;
    const std::string path = reports.Directory().Path() + "\\leak.bmp";
    WriteBytes(path, CBmpBytes(8, 2, 8).File());
    CTestSurface image(TestPicture(12, 10, 2)), target(TestPicture(12, 10, 2));
    const CTestPopup frame;
    CDumped dumped;
    COLORREF crFace = 0;
    int cx = 60;
    const auto work = [&] {
        const HINSTANCE hModule = GetModuleHandleA(nullptr);
        HPALETTE hPals[3] = {};
        DWORD dwHeaderSize = 0;
        const HBITMAP hLoaded =
            CUIBmpLoad(hModule, MAKEINTRESOURCEA(200), &hPals[0], true, nullptr, nullptr, 0);
        free(CUIBitmapToDib(hLoaded, hPals[0], dwHeaderSize));
        HBITMAP hBaked = nullptr;
        CUIBmpTransparentCreate(image.Bitmap(), &hBaked, target, 0);
        for (const HBITMAP h : {hLoaded, hBaked, CUICopyBitmap(hLoaded, 8, 2, hPals[0]),
                                CUIBmpLoadBitmap(hModule, MAKEINTRESOURCEA(200)),
                                CUIBmpLoadBitmapPalette(hModule, MAKEINTRESOURCEA(200), hPals[1]),
                                CUIBmpLoadBitmapFile(path.c_str(), TRUE),
                                CUIBmpLoadBitmapFilePalette(path.c_str(), hPals[2]),
                                CUIBmpMakeMask(target, 0, 0, image.Bitmap(), 0)})
            DeleteObject(h);
        for (const HPALETTE hPal : hPals)
            DeleteObject(hPal);
        CCUIBitmap bitmap(200, CUIBMP_PALETTE, hModule), copy(bitmap);
        copy.ReLoad(nullptr, nullptr, 0);
        CUIBmpBgBlt(target, 0, 0, image.Bitmap(), 0);
        CUIBmpStateRects rects = {{0, 0, 12, 10}, {0, 0, 12, 10}, {0, 0, 12, 10}};
        CUIBmpDrawState(target, &rects.rcArea, image.Bitmap(), 3, ++crFace, 0, 0);
        CCUIOffScreenDC().GetDC(target, 9, 9);
        CUIGetWinData()->UpdateSysColors();
        CUIGetWinData()->UpdateWinIni();
        const CDotsPerInch dpi(192);
        CCUIControlBar bar;
        CCUIButton button;
        bar.SetPictures(bitmap, 8);
        button.SetPicture(bitmap);
        if (bar.CreateBar(frame, 1) && button.CreateControl(bar, 1000, "&Text"))
            bar.AddControl(button, 1000);
        bar.AddButton(1001, 0);
        bar.Move({0, 0, ++cx, 60});  // larger than all that was painted
        UpdateWindow(bar);
        UpdateWindow(button);
    };
    const CFailingCall<HBITMAP(HDC, int, int)> compatible("CreateCompatibleBitmap");
    const CFailingCall<HBITMAP(HDC, const BITMAPINFOHEADER *, DWORD, const void *,
                               const BITMAPINFO *, UINT)>
        fromDib("CreateDIBitmap");
    const CFailingCall<HGDIOBJ(HDC, HGDIOBJ)> select("SelectObject");
    const CFailingCall<HWND(DWORD, LPCSTR, LPCSTR, DWORD, int, int, int, int, HWND, HMENU,
                            HINSTANCE, void *)>
        window("CreateWindowExA");
    // Makes what stays, as does the first line of the trace.
    EXPECT_LE(5, CFailPlan::RunAll(work));
    CUDump("Drawing may fail\n");
    const CHeapWatch heap;
    const int nGdi = GdiCount();
    CFailPlan::RunAll(work);
    EXPECT_NEAR(nGdi, GdiCount(), 2);
    EXPECT_EQ(0, CHeapWatch::Live());
    for (const char *text : {"stretch pictures", "off-screen surface"})
        EXPECT_NE(std::string::npos, dumped.m_text.find(text)) << dumped.m_text;
}
