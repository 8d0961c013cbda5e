// Everything that draws or loads, over many rounds, and with every system call failing in turn.
#include <gtest/gtest.h>

#include "CU/String.h"
#include "CUI/Bitmap.h"
#include "CUI/BmpBlt.h"
#include "CUI/BmpLoad.h"
#include "CUI/BmpState.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "CUI/OffScreenDC.h"
#include "Support/BmpBytes.h"
#include "Support/FailingCall.h"
#include "Support/Fuzz.h"
#include "Support/GdiCount.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"

namespace {

const HINSTANCE hModule = GetModuleHandleA(nullptr);
const char *const pszColors = MAKEINTRESOURCEA(200);
const COLORREF KEY = 0x0000FF;

// DCs of windows do not show among the process's objects.
int s_nWindowDCs;
CImportHook *s_pGetDC;
HDC WINAPI CountedGetDC(HWND hWnd)
{
    const HDC hDC = CFailPlan::Fails() ? nullptr : s_pGetDC->Original<HDC WINAPI(HWND)>()(hWnd);
    s_nWindowDCs += hDC != nullptr;
    return hDC;
}
CImportHook *s_pReleaseDC;
int WINAPI CountedReleaseDC(HWND hWnd, HDC hDC)
{
    s_nWindowDCs -= hDC != nullptr;
    return s_pReleaseDC->Original<int WINAPI(HWND, HDC)>()(hWnd, hDC);
}

class DrawingLeaks : public testing::Test
{
protected:
    DrawingLeaks()
    {
        CBmpBytes bmp(8, 2, 24);
        bmp.m_info.biClrUsed = 300;
        bmp.m_table.resize(300);
        bmp.m_file.bfOffBits += 300 * 4;
        EXPECT_TRUE(WriteBytes(m_path, bmp.File()));
        EXPECT_TRUE(WriteBytes(m_path + "4", CBmpBytes(8, 2, 4).File()));
    }
    void Load()
    {
        HPALETTE hPals[4] = {};
        DWORD dwHeaderSize = 0;
        const HBITMAP hBitmap =
            CUIBmpLoad(hModule, pszColors, &hPals[0], true, nullptr, nullptr, 0);
        hPals[1] = CUICopyPalette(hPals[0]);
        free(CUIBitmapToDib(hBitmap, hPals[0], dwHeaderSize));
        for (const HBITMAP h :
             {hBitmap, CUICopyBitmap(hBitmap, 8, 2, hPals[0]), CUIBmpLoadBitmap(hModule, pszColors),
              CUIBmpLoadBitmapPalette(hModule, pszColors, hPals[2]),
              CUIBmpLoadBitmapFilePalette(m_path.c_str(), hPals[3]),
              CUIBmpLoadBitmapFile((m_path + "4").c_str(), TRUE)})
            DeleteObject(h);
        for (const HPALETTE hPal : hPals)
            DeleteObject(hPal);

        CCUIBitmap bitmap(200, CUIBMP_PALETTE, hModule);
        CCUIBitmap copy(bitmap);
        copy.ReLoad(nullptr, nullptr, 0);
        copy.Load("none", CUIBMP_PALETTE, hModule);
        bitmap = CUICopyBitmap(bitmap, 1, 1, nullptr);
        copy = CCUIBitmap(CUICopyBitmap(bitmap, 1, 1, nullptr), nullptr);
        copy = CCUIBitmap();
    }
    void Draw()
    {
        const HBITMAP hMask = m_mask.Bitmap(), hImage = m_image.Bitmap();
        const std::vector<DWORD> state = DCState(m_target);
        CUIBmpBitBlt(m_target, 0, 0, hImage, 0, 0, 0, 0, nullptr, 0);
        CUIBmpStretchBlt(m_target, 0, 0, 5, 5, hImage, 0, 0, 0, 0, nullptr, 0);
        CUIBmpBgBlt(m_target, 0, 0, hImage, KEY);
        CUIBmpTransparentBlt(m_target, 0, 0, hImage, hMask);
        CUIBmpTransparentStretchBltFull(m_target, 0, 0, 5, 5, hImage, hMask, 0, 0, 0, 0);
        HBITMAP hMade = CUIBmpMakeMask(m_target, 0, 0, hImage, KEY), hBaked = nullptr;
        CUIBmpTransparentCreate(hImage, &hBaked, m_target, KEY);
        CUIBmpDeleteObject(&hMade);
        CUIBmpDeleteObject(&hBaked);
        CUIBmpStateRects rects = {{0, 0, 12, 10}, {0, 0, 12, 10}, {0, 0, 12, 10}};
        for (DWORD dwFlags = 0; dwFlags < 4; ++dwFlags)
            CUIBmpDrawState(m_target, &rects.rcArea, hImage, dwFlags, ++m_crFace, KEY, KEY);
        CUIDCFillSolidRect(m_target, 0, 0, 5, 5, KEY);
        CUIDCDraw3dRect(m_target, 0, 0, 9, 9, KEY, KEY, 0, 0);
        CUIDCRubberRect(m_target, &rects.rcArea, nullptr);
        EXPECT_EQ(state, DCState(m_target));
        EXPECT_EQ(m_picture, m_image.Read());
        // The depth changes with every call, and the shared DCs with it.
        CUIBmpBgBlt(m_mask, 0, 0, m_image.Bitmap(), KEY);
        CCUIOffScreenDC osdc;
        for (const int n : {5, 9}) {
            osdc.GetDC(n == 5 ? m_target : m_mask, n, n);
            osdc.ReleaseDC();
        }
    }
    // Those who still have the old objects selected do not hold the update up.
    void Update()
    {
        CUIData &data = *CUIGetWinData();
        SelectObject(m_target, data.hbrWindow);
        SelectObject(m_target, data.hMenuFont);
        data.UpdateSysColors();
        data.UpdateWinIni();
        SelectObject(m_target, GetStockObject(WHITE_BRUSH));
        SelectObject(m_target, GetStockObject(SYSTEM_FONT));
    }
    // The first round makes what stays.
    template <typename Work>
    void ExpectNothingLeft(int nRounds, Work work)
    {
        work();
        const CHeapWatch heap;
        const int nGdi = GdiCount();
        for (int i = 0; i < nRounds; ++i)
            work();
        EXPECT_NEAR(nGdi, GdiCount(), 2);
        EXPECT_EQ(0, CHeapWatch::Live());
    }
    template <typename Work>
    void ExpectNothingLeftOfFailures(int nRounds, int nCalls, Work work)
    {
        ExpectNothingLeft(nRounds, [&] { EXPECT_LE(nCalls, CFailPlan::RunAll(work)); });
    }

    const CReports m_reports;
    const std::string m_path = m_reports.Directory().Path() + "\\leak.bmp";
    const CPixelMap m_picture = TestPicture(12, 10, 2);
    CTestSurface m_image{0, m_picture}, m_target{32, m_picture}, m_mask{1, m_picture};
    COLORREF m_crFace = 0;
};

}  // namespace

TEST_F(DrawingLeaks, NoneOverManyRounds)
{
    SetBkColor(m_target, 0xFFFFFF);
    const int nRounds = FuzzInputs(200);
    ExpectNothingLeft(nRounds, [&] { Load(); });
    ExpectNothingLeft(nRounds, [&] { Draw(); });
    ExpectNothingLeft(nRounds, [&] { Update(); });
}

TEST_F(DrawingLeaks, NoneWhicheverCallFails)
{
    SetBkColor(m_target, 0xFFFFFF);
    CImportHook getDC("GetDC", CountedGetDC), releaseDC("ReleaseDC", CountedReleaseDC);
    s_pGetDC = &getDC;
    s_pReleaseDC = &releaseDC;
    const CFailingCall<HANDLE(HINSTANCE, const char *, UINT, int, int, UINT)> load("LoadImageA");
    const CFailingCall<int(HDC, HBITMAP, UINT, UINT, void *, BITMAPINFO *, UINT)> bits("GetDIBits");
    const CFailingCall<HBITMAP(HDC, const BITMAPINFOHEADER *, DWORD, const void *,
                               const BITMAPINFO *, UINT)>
        create("CreateDIBitmap");
    const CFailingCall<HPALETTE(const LOGPALETTE *)> palette("CreatePalette");
    const CFailingCall<HBITMAP(HDC, int, int)> empty("CreateCompatibleBitmap");
    const CFailingCall<HBITMAP(int, int, UINT, UINT, const void *)> bitmap("CreateBitmap");
    const CFailingCall<HDC(HDC)> memory("CreateCompatibleDC");
    const CFailingCall<HGLOBAL(HINSTANCE, HRSRC)> resource("LoadResource");
    const CFailingCall<HBRUSH(COLORREF)> brush("CreateSolidBrush");
    const CFailingCall<HBRUSH(HBITMAP)> pattern("CreatePatternBrush");
    const CFailingCall<HPEN(int, int, COLORREF)> pen("CreatePen");
    const CFailingCall<HFONT(const LOGFONTA *)> font("CreateFontIndirectA");
    const int nRounds = FuzzInputs(20);
    ExpectNothingLeftOfFailures(nRounds, 15, [&] { Load(); });
    ExpectNothingLeftOfFailures(nRounds, 25, [&] { Draw(); });
    ExpectNothingLeftOfFailures(nRounds / 10, 17, [&] { Update(); });
    EXPECT_EQ(0, s_nWindowDCs);
}
