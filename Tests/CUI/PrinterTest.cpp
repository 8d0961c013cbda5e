// Printing, on a printer that the test plays, and the same pages on the screen.

#include <list>

#include "CUI/PrintPreview.h"
#include "Support/GdiCount.h"
#include "Support/ImportHook.h"
#include "Support/PixelMap.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

#include <cderr.h>
#include <commdlg.h>

namespace {

// Pages of which the lower right quarter is black, and their number's first pixel.
struct CTestPages : CCUIPages
{
    int GetPageCount() override { return m_nCount; }
    void DrawPage(HDC hDC, int nPage) override
    {
        m_onDraw();
        m_drawn += Text("%d ", nPage);
        const RECT quarter = {m_size.cx / 2, m_size.cy / 2, m_size.cx, m_size.cy};
        FillRect(hDC, &quarter, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    }
    SIZE m_size = {};
    int m_nCount = 5;
    std::string m_drawn;
    std::function<void()> m_onDraw = [] {};
};

// A printer of 100 by 50 dots an inch, 2 by 2 inches, which does not reach the outer tenth of an
// inch at the left and the top, and the dialog of the system.
struct CTestPrinter
{
    CTestPrinter() { s_pThis = this; }
    static BOOL WINAPI Dialog(PRINTDLGA *pRecord)
    {
        const HWND hOwner = pRecord->hwndOwner;
        s_pThis->m_asked +=
            Text("%u-%u %d%d;", pRecord->nMinPage, pRecord->nMaxPage, pRecord->hDevMode != nullptr,
                 !hOwner || !IsWindowEnabled(GetParent(hOwner)));
        s_pThis->m_onDialog();
        if (s_pThis->m_nCode)
            return FALSE;
        if (!pRecord->hDevMode)
            pRecord->hDevMode = GlobalAlloc(GMEM_MOVEABLE, 8);
        s_pThis->m_sheets.emplace_back(CPixelMap(190, 95, 0xFFFFFF));
        pRecord->hDC = CreateCompatibleDC(s_pThis->m_sheets.back());
        SelectObject(pRecord->hDC, s_pThis->m_sheets.back().Bitmap());
        pRecord->Flags |= s_pThis->m_nFlags;
        pRecord->nFromPage = 2, pRecord->nToPage = 3;
        return TRUE;
    }
    static DWORD WINAPI Code() { return s_pThis->m_nCode; }

    inline static CTestPrinter *s_pThis;
    std::string m_asked, m_did;
    DWORD m_nCode = 0, m_nFlags = 0;
    int m_nGoodPages = 9, m_nBegun = 1;
    std::function<void()> m_onDialog = [] {};
    std::list<CTestSurface> m_sheets;
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> m_find{
        "GetProcAddress", [](HMODULE, LPCSTR name) {
            return std::string(name) == "PrintDlgA" ? FARPROC(Dialog) : FARPROC(Code);
        }};
    const CFakeCall<int(HDC, int)> m_caps{
        "GetDeviceCaps", [this](HDC hDC, int nIndex) {
            const std::map<int, int> CAPS = {{LOGPIXELSX, 100},     {LOGPIXELSY, 50},
                                             {PHYSICALWIDTH, 200},  {PHYSICALHEIGHT, 100},
                                             {PHYSICALOFFSETX, 10}, {PHYSICALOFFSETY, 5},
                                             {HORZRES, 190},        {VERTRES, 95}};
            const auto found = CAPS.find(nIndex);
            return found != CAPS.end() ? found->second : m_caps.Original(hDC, nIndex);
        }};
    const CFakeCall<int(HDC, const DOCINFOA *)> m_begin{
        "StartDocA", [this](HDC, const DOCINFOA *pInfo) { return m_did += pInfo->lpszDocName, 1; }};
    // Each of another type: those of one share what they answer.
    const CFakeCall<int(HDC)> m_page{"StartPage", [this](HDC) { return m_did += "<", m_nBegun; }};
    const CFakeCall<int(HANDLE)> m_pageEnd{"EndPage", [this](HANDLE) {
                                               return m_did += ">", SetLastError(ERROR_DISK_FULL),
                                                      m_nGoodPages-- > 0 ? 1 : -1;
                                           }};
    const CFakeCall<long(HDC)> m_end{"EndDoc", [this](HDC) { return m_did += "end", 1; }};
    const CFakeCall<long(HANDLE)> m_abort{"AbortDoc",
                                          [this](HANDLE) { return m_did += "abort", 1; }};
};

}  // namespace

TEST(Printer, IsChosenAndPrintsThePagesThatTheUserWants)
{
    CTestWindow window;
    CTestPages pages;
    CDumped dumped;
    CCUIPrinter printer;
    EXPECT_FALSE(printer.Print("None", pages));
    const CUIPaper none = printer.GetPaper(100);
    EXPECT_TRUE(none.size.cx * 10 > none.size.cy * 7 && none.margins.right == 100);
    CTestPrinter system;
    EXPECT_TRUE(printer.OpenDefault());
    EXPECT_TRUE(printer.OpenDefault());
    EXPECT_TRUE(printer.Choose(&window, 5));
    EXPECT_EQ("0-0 01;1-5 11;", system.m_asked);
    const CUIPaper paper = printer.GetPaper(140);
    const RECT margins = {144, 144, 140, 140};
    EXPECT_TRUE(EqualRect(&margins, &paper.margins));
    EXPECT_TRUE(paper.size.cx == 2880 && paper.size.cy == 2880);
    pages.m_size = paper.size;
    EXPECT_TRUE(printer.Print("All", pages));
    // Of the black quarter of the paper all can be printed.
    const CPixelMap printed = ReadPixels(printer.GetDC(), 190, 95);
    EXPECT_EQ(100 * 50, printed.Count(0));
    EXPECT_TRUE(printed.At(90, 45) == 0 && printed.At(89, 45) && printed.At(90, 44));
    system.m_nFlags = PD_PAGENUMS;
    EXPECT_TRUE(printer.Choose(nullptr));
    EXPECT_TRUE(printer.Print("Some", pages));
    system.m_nGoodPages = 1;
    EXPECT_FALSE(printer.Print("Full", pages));
    EXPECT_EQ(DWORD(ERROR_DISK_FULL), GetLastError());
    EXPECT_EQ("All<><><><><>endSome<><>endFull<><>abort", system.m_did);
    EXPECT_EQ("0 1 2 3 4 1 2 1 2 ", pages.m_drawn);
    const HDC hBefore = printer.GetDC();
    system.m_nCode = PDERR_NODEFAULTPRN;
    EXPECT_FALSE(printer.Choose(&window));
    EXPECT_EQ(DWORD(ERROR_INVALID_PRINTER_NAME), GetLastError());
    EXPECT_EQ(hBefore, printer.GetDC());
}

TEST(Printer, MayBeClosedAndDeletedMeanwhile)
{
    CTestPrinter system;
    CTestPages pages;
    const CDumped dumped;
    auto pPrinter = std::make_unique<CCUIPrinter>();
    const auto print = [&](const std::function<void()> &onDraw) {
        system.m_did.clear();
        EXPECT_TRUE(pPrinter->OpenDefault());
        pages.m_onDraw = onDraw;
        EXPECT_FALSE(pPrinter->Print("", pages));
        return GetLastError();
    };
    EXPECT_EQ(DWORD(ERROR_CANCELLED), print([&] { pPrinter->Close(); }));
    EXPECT_EQ("<abort", system.m_did);
    EXPECT_EQ(nullptr, pPrinter->GetDC());
    EXPECT_EQ(DWORD(ERROR_CANCELLED), print([&] { pPrinter->Choose(nullptr); }));
    EXPECT_EQ(DWORD(ERROR_CANCELLED), print([&] { pPrinter.reset(); }));
    pPrinter = std::make_unique<CCUIPrinter>();
    // A system that tells failures by the answer alone.
    system.m_nBegun = SP_OUTOFDISK;
    EXPECT_EQ(DWORD(ERROR_DISK_FULL), print([] {}));
    pages.m_nCount = 0;
    EXPECT_TRUE(pPrinter->Print("", pages));
    EXPECT_EQ("<abort", system.m_did);
    ExpectNoGdiLeft(9, [&] {
        pPrinter = std::make_unique<CCUIPrinter>();
        pPrinter->OpenDefault();
        system.m_onDialog = [&] { pPrinter.reset(); };
        EXPECT_FALSE(pPrinter->Choose(nullptr));
        system.m_onDialog = [] {};
        system.m_sheets.clear();
    });
}

TEST(PrintPreview, HasTheBarsThatThePageNeeds)
{
    CTestWindow window(nullptr, WS_POPUP | WS_VISIBLE);
    window.Move({0, 0, 300, 300});
    CTestPages pages;
    CCUIPrintPreview preview;
    preview.SetZoom(100);
    EXPECT_EQ(100, preview.GetZoom());
    const RECT rect = {0, 0, 220, 220};
    preview.CreateControl(window, 1, "", &rect);
    // Pixels; 190 with the gaps around have no room beside a bar.
    for (const SIZE size : {SIZE{190, 300}, {300, 190}, {300, 300}, {190, 190}, {150, 300}}) {
        preview.SetPages(&pages, {{size.cx * 15, size.cy * 15}, {}});
        const RECT client = preview.GetClientArea();
        const auto check = [&](int nBar, DWORD nStyle, LONG nAll, LONG nView, bool bNeeded) {
            SCROLLINFO info = {sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
            GetScrollInfo(preview, nBar, &info);
            EXPECT_EQ(bNeeded, (GetWindowLongA(preview, GWL_STYLE) & LONG(nStyle)) != 0);
            EXPECT_TRUE(!bNeeded || (info.nMax == nAll - 1 && LONG(info.nPage) == nView));
        };
        const bool bBoth = size.cx > 200 || size.cy > 200;
        check(SB_HORZ, WS_HSCROLL, size.cx + 20, client.right, bBoth && size.cx > 150);
        check(SB_VERT, WS_VSCROLL, size.cy + 20, client.bottom, bBoth);
    }
    preview.SetPages(&pages, {{30, 30}, {}});
    preview.SetZoom(0);
    preview.StepZoom(true);
    EXPECT_TRUE(preview.IsWhole());
    pages.m_nCount = -1;
    preview.SetPages(&pages, {});
    pages.m_drawn.clear();
    WindowPixels(preview);
    EXPECT_EQ("", pages.m_drawn);
}

TEST(PrintPreview, ShowsThePageAsItIsPrinted)
{
    CTestWindow window(nullptr, WS_POPUP | WS_VISIBLE);
    window.Move({0, 0, 300, 300});
    CTestPages pages;
    pages.m_size = {1440, 2880};
    struct CPreview : CCUIPrintPreview
    {
        using CCUIPrintPreview::OnMouseWheel;
    } preview;
    const RECT rect = {0, 0, 220, 220};
    preview.SetPages(&pages, {pages.m_size, {}});
    preview.CreateControl(window, 1, "", &rect);
    // Whole: 100 by 200 pixels in the middle, with a line around.
    const CPixelMap whole = WindowPixels(preview);
    EXPECT_EQ(0xFFFFFFu, whole.At(62, 12));
    EXPECT_EQ(0xFFFFFFu, whole.At(109, 108));
    EXPECT_TRUE(whole.At(60, 10) == 0 && whole.At(111, 111) == 0 && whole.At(159, 209) == 0);
    EXPECT_EQ(GetSysColor(COLOR_APPWORKSPACE), whole.At(58, 100));
    EXPECT_TRUE(preview.IsWhole() && !(GetWindowLongA(preview, GWL_STYLE) & WS_VSCROLL));

    // Larger than the window, by its middle, which stays there.
    const auto atMiddle = [&] {
        const RECT client = preview.GetClientArea();
        const int x = client.right / 2, y = client.bottom / 2;
        const CPixelMap shown = WindowPixels(preview);
        return shown.At(x + 4, y + 4) == 0 && shown.At(x - 4, y + 4) != 0 &&
               shown.At(x, y - 4) != 0;
    };
    preview.SetZoom(400);
    EXPECT_TRUE(atMiddle());
    EXPECT_EQ(400, preview.GetZoom());
    preview.StepZoom(false);
    EXPECT_EQ(300, preview.GetZoom());
    EXPECT_TRUE(atMiddle());
    const auto press = [&](WPARAM nKey) {
        SendMessageA(preview, WM_KEYDOWN, nKey, 0);
        return GetScrollPos(preview, SB_VERT);
    };
    // From the end of a page to the next one, and back to its end.
    SendMessageA(preview, WM_VSCROLL, SB_BOTTOM, 0);
    const int nEnd = GetScrollPos(preview, SB_VERT);
    EXPECT_TRUE(nEnd > 300 && preview.GetPage() == 0);
    EXPECT_TRUE(press(VK_NEXT) == 0 && preview.GetPage() == 1);
    EXPECT_TRUE(press(VK_UP) == nEnd && preview.GetPage() == 0);
    EXPECT_TRUE(press(VK_PRIOR) < nEnd && preview.GetPage() == 0);
    press(VK_END);
    EXPECT_TRUE(press(VK_NEXT) > 0 && preview.GetPage() == 4);
    POINT point = {};
    preview.OnMouseWheel(MK_CONTROL, WHEEL_DELTA / 2, point);
    EXPECT_EQ(300, preview.GetZoom());
    preview.OnMouseWheel(MK_CONTROL, WHEEL_DELTA / 2, point);
    EXPECT_EQ(400, preview.GetZoom());
    preview.SetZoom(0);
    preview.OnMouseWheel(0, WHEEL_DELTA, point);
    EXPECT_EQ(3, preview.GetPage());
    {
        const CFakeCall<BOOL(UINT, UINT, void *, UINT)> noLines(
            "SystemParametersInfoA",
            [](UINT, UINT, void *p, UINT) { return *static_cast<UINT *>(p) = 0, TRUE; });
        preview.OnMouseWheel(0, WHEEL_DELTA, point);
        EXPECT_EQ(3, preview.GetPage());
    }
    preview.SetPages(nullptr, {});
    EXPECT_EQ(GetSysColor(COLOR_APPWORKSPACE), WindowPixels(preview).At(110, 110));
}
