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

const COLORREF KEY = 0x0000FF;

// DCs of windows do not show among the process's objects.
int s_nWindowDCs;
CImportHook *s_pGetDC, *s_pReleaseDC;
HDC WINAPI CountedGetDC(HWND hWnd)
{
    const HDC hDC = CFailPlan::Fails() ? nullptr : s_pGetDC->Original<HDC WINAPI(HWND)>()(hWnd);
    s_nWindowDCs += hDC != nullptr;
    return hDC;
}
int WINAPI CountedReleaseDC(HWND hWnd, HDC hDC)
{
    s_nWindowDCs -= hDC != nullptr;
    return s_pReleaseDC->Original<int WINAPI(HWND, HDC)>()(hWnd, hDC);
}

// The depth that every DC has, as far as the code under test can see.
int s_nBits = 24;
int WINAPI DeviceCaps(HDC, int nCap)
{
    return nCap == BITSPIXEL ? s_nBits : 1;
}

void Load(const std::string &path)
{
    const HINSTANCE hModule = GetModuleHandleA(nullptr);
    const char *const pszName = MAKEINTRESOURCEA(200);
    HPALETTE hPals[4] = {};
    DWORD dwHeaderSize = 0;
    const HBITMAP hBitmap = CUIBmpLoad(hModule, pszName, &hPals[0], true, nullptr, nullptr, 0);
    hPals[1] = CUICopyPalette(hPals[0]);
    free(CUIBitmapToDib(hBitmap, hPals[0], dwHeaderSize));
    for (const HBITMAP h :
         {hBitmap, CUICopyBitmap(hBitmap, 8, 2, hPals[0]), CUIBmpLoadBitmap(hModule, pszName),
          CUIBmpLoadBitmapPalette(hModule, pszName, hPals[2]),
          CUIBmpLoadBitmapFilePalette(path.c_str(), hPals[3]),
          CUIBmpLoadBitmapFile(path.c_str(), TRUE)})
        DeleteObject(h);
    for (const HPALETTE hPal : hPals)
        DeleteObject(hPal);

    CCUIBitmap bitmap(200, CUIBMP_PALETTE, hModule);
    CCUIBitmap copy(bitmap);
    copy.ReLoad(nullptr, nullptr, 0);
    copy.Load("none", CUIBMP_PALETTE, hModule);
    bitmap = CUICopyBitmap(bitmap, 1, 1, nullptr);
    copy = CCUIBitmap(CUICopyBitmap(bitmap, 1, 1, nullptr), CUICopyPalette(copy));
}

struct CScene
{
    void Draw()
    {
        const std::vector<DWORD> state = DCState(target);
        const HBITMAP hMask = mask.Bitmap(), hImage = image.Bitmap();
        CUIBmpBitBlt(target, 0, 0, hImage, 0, 0, 0, 0, nullptr, 0);
        CUIBmpStretchBlt(target, 0, 0, 5, 5, hImage, 0, 0, 0, 0, nullptr, 0);
        CUIBmpBgBlt(target, 0, 0, hImage, KEY);
        CUIBmpTransparentBlt(target, 0, 0, hImage, hMask);
        CUIBmpTransparentStretchBltFull(target, 0, 0, 5, 5, hImage, hMask, 0, 0, 0, 0);
        HBITMAP hMade = CUIBmpMakeMask(target, 0, 0, hImage, KEY), hBaked = nullptr;
        CUIBmpTransparentCreate(hImage, &hBaked, target, KEY);
        CUIBmpDeleteObject(&hMade);
        CUIBmpDeleteObject(&hBaked);
        CUIBmpStateRects rects = {{0, 0, 12, 10}, {0, 0, 12, 10}, {0, 0, 12, 10}};
        for (DWORD dwFlags = 0; dwFlags < 4; ++dwFlags)
            CUIBmpDrawState(target, &rects.rcArea, hImage, dwFlags, ++crFace, KEY, KEY);
        CUIDCDraw3dRect(target, 0, 0, 9, 9, KEY, KEY, 0, 0);
        EXPECT_EQ(state, DCState(target));
        EXPECT_EQ(picture, image.Read());
        // The depth changes, and the shared DCs with it.
        s_nBits = s_nBits == 24 ? 32 : 24;
        CUIBmpBgBlt(mask, 0, 0, image.Bitmap(), KEY);
        CCUIOffScreenDC osdc;
        for (const HDC hDC : {HDC(target), HDC(mask)}) {
            osdc.GetDC(hDC, 9, 9);
            osdc.ReleaseDC();
        }
    }
    // Who still has the old objects selected does not hold the update up.
    void Update()
    {
        CUIData &data = *CUIGetWinData();
        SelectObject(target, data.hbrWindow);
        SelectObject(target, data.hMenuFont);
        data.UpdateSysColors();
        data.UpdateWinIni();
        SelectObject(target, GetStockObject(WHITE_BRUSH));
        SelectObject(target, GetStockObject(SYSTEM_FONT));
    }

    const CPixelMap picture = TestPicture(12, 10, 2);
    CTestSurface image{0, picture}, target{32, picture}, mask{1, picture};
    COLORREF crFace = 0;
};

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

}  // namespace

TEST(DrawingLeaks, NothingOnSuccessAndWhicheverCallFails)
{
    const CReports reports;
    const std::string path = reports.Directory().Path() + "\\leak.bmp";
    CBmpBytes bmp(8, 2, 8);
    bmp.m_info.biClrUsed = 300;
    bmp.m_table.resize(300);
    bmp.m_file.bfOffBits = 54 + 300 * 4;
    ASSERT_TRUE(WriteBytes(path, bmp.File()));
    CScene s;
    SetBkColor(s.target, 0xFFFFFF);
    SetTextColor(s.target, 0);
    const CImportHook caps("GetDeviceCaps", DeviceCaps);
    const int nRounds = FuzzInputs(100);
    ExpectNothingLeft(nRounds, [&] { Load(path); });
    ExpectNothingLeft(nRounds, [&] { s.Draw(); });
    ExpectNothingLeft(nRounds, [&] { s.Update(); });

    CImportHook getDC("GetDC", CountedGetDC), releaseDC("ReleaseDC", CountedReleaseDC);
    s_pGetDC = &getDC;
    s_pReleaseDC = &releaseDC;
    const CFailingCall<HANDLE(HINSTANCE, const char *, UINT, int, int, UINT)> load("LoadImageA");
    const CFailingCall<int(HDC, HBITMAP, UINT, UINT, void *, BITMAPINFO *, UINT)> bits("GetDIBits");
    const CFailingCall<HBITMAP(HDC, const BITMAPINFOHEADER *, DWORD, const void *,
                               const BITMAPINFO *, UINT)>
        create("CreateDIBitmap");
    const CFailingCall<int(HDC, int, int, int, int, int, int, int, int, const void *,
                           const BITMAPINFO *, UINT, DWORD)>
        stretch("StretchDIBits");
    const CFailingCall<HPALETTE(const LOGPALETTE *)> palette("CreatePalette");
    const CFailingCall<HBITMAP(HDC, int, int)> empty("CreateCompatibleBitmap");
    const CFailingCall<HBITMAP(int, int, UINT, UINT, const void *)> bitmap("CreateBitmap");
    const CFailingCall<HDC(HDC)> memory("CreateCompatibleDC");
    const CFailingCall<HGLOBAL(HINSTANCE, HRSRC)> resource("LoadResource");
    const CFailingCall<HBRUSH(COLORREF)> brush("CreateSolidBrush");
    const CFailingCall<HBRUSH(HBITMAP)> pattern("CreatePatternBrush");
    const CFailingCall<HPEN(int, int, COLORREF)> pen("CreatePen");
    const CFailingCall<HFONT(const LOGFONTA *)> font("CreateFontIndirectA");
    const auto expectNothingLeft = [&](int nCalls, auto work) {
        ExpectNothingLeft(nRounds / 20, [&] { EXPECT_LE(nCalls, CFailPlan::RunAll(work)); });
    };
    expectNothingLeft(25, [&] { Load(path); });
    expectNothingLeft(30, [&] { s.Draw(); });
    expectNothingLeft(17, [&] { s.Update(); });
    EXPECT_EQ(0, s_nWindowDCs);
}
