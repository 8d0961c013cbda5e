// What a change of the system's colours and settings does to the shared GDI data and to windows.
#include <gtest/gtest.h>

#include <utility>

#include "CU/Time.h"
#include "CUI/Data.h"
#include "Support/ImportHook.h"
#include "Support/MultimediaHook.h"
#include "Support/SysColors.h"
#include "Support/TestWindow.h"

namespace {

// Counts the changes that it is told of.
class CListener : public CTestWindow
{
public:
    using CTestWindow::CTestWindow;
    int m_nSeen = 0;

protected:
    void OnSysColorChange() override
    {
        ++m_nSeen;
        CCUIWindow::OnSysColorChange();
    }
    void OnWinIniChange(WPARAM nAction, const char *section) override
    {
        m_nSeen += nAction == 9 && std::string(section) == "intl";
        CCUIWindow::OnWinIniChange(nAction, section);
    }
};

DWORD g_nStamps;
DWORD WINAPI Stamp()
{
    return ++g_nStamps;
}

int g_nMoreFrame;
int(WINAPI *g_metrics)(int);
int WINAPI Metrics(int nIndex)
{
    return g_metrics(nIndex) + (nIndex == SM_CXFRAME ? g_nMoreFrame : 0);
}

int g_nFonts;
HFONT(WINAPI *g_createFont)(const LOGFONTA *);
HFONT WINAPI CreateFont1(const LOGFONTA *pFont)
{
    ++g_nFonts;
    return g_createFont(pFont);
}

}  // namespace

TEST(SettingsChange, RefreshesTheSharedDataOnceAChangeAndTellsTheWindowsInside)
{
    CUIData &data = *CUIGetWinData();
    CListener first, second, child(second, WS_CHILD), grandchild(child, WS_CHILD);
    const auto expectTold = [&](int nTimes) {
        for (CListener *pWindow : {&first, &second, &child, &grandchild})
            EXPECT_EQ(nTimes, std::exchange(pWindow->m_nSeen, 0));
    };
    {
        const CMultimediaHook stamp(g_multimedia.getTime, Stamp);
        const CSysColors colors;
        expectTold(1);
        EXPECT_EQ(1u, g_nStamps);
        EXPECT_EQ(GetSysColor(COLOR_BTNFACE), data.ResolveColor(data.crSys[COLOR_BTNFACE]));
    }
    expectTold(1);  // the colours are back
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), data.ResolveColor(data.crSys[COLOR_BTNFACE]));

    const CImportHook metrics("GetSystemMetrics", Metrics);
    const CImportHook font("CreateFontIndirectA", CreateFont1);
    g_metrics = metrics.Original<decltype(Metrics)>();
    g_createFont = font.Original<decltype(CreateFont1)>();
    const int nFrame = data.cxFrame;
    for (g_nMoreFrame = 0; g_nMoreFrame < 3; ++g_nMoreFrame) {
        CCUTime::TimeFormatChanged(false);
        g_nFonts = 0;
        for (const HWND hWnd : {first.GetHandle(), second.GetHandle()})
            SendMessageA(hWnd, WM_WININICHANGE, 9, reinterpret_cast<LPARAM>("intl"));
        expectTold(1);
        EXPECT_EQ(5, g_nFonts);
        EXPECT_EQ(nFrame + g_nMoreFrame, data.cxFrame);
        EXPECT_TRUE(CCUTime::IsTimeFormatChanged());
    }
}
