#include "CUI/WindowClass.h"

#include "CUI/Data.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

TEST(WindowClass, RegistersEachClassOnceInOrder)
{
    CReports reports;
    const CDumped trace;
    // What the system is asked to register, and whether it does; and an icon of the program's own.
    std::string asked;
    bool bFail = true;
    const CFakeCall<ATOM(const WNDCLASSA *)> registering(
        "RegisterClassA", [&](const WNDCLASSA *pClass) {
            asked += std::string(pClass->lpszClassName) + " ";
            SetLastError(4711);
            return bFail ? static_cast<ATOM>(0) : registering.Original(pClass);
        });
    const CFakeCall<HICON(HINSTANCE, LPCSTR)> icon("LoadIconA", [](HINSTANCE h, LPCSTR pszName) {
        return reinterpret_cast<HICON>(h && pszName == MAKEINTRESOURCEA(1014) ? 1 : 0);
    });
    // A failure is traced and not tried again by those who look at the mask.
    EXPECT_EQ(0, CUIWindowClassRegister(CUI_CLASS_WINDOW));
    EXPECT_EQ("CUIWindowClass: Can't register window class pzl-Window, gle: 4711\n", trace.m_text);
    bFail = false;
    EXPECT_EQ(1, CUIWindowClassRegister(CUI_CLASS_WINDOW));
    EXPECT_EQ(CUI_CLASS_WINDOW, g_nRegisteredClasses);
    asked.clear();
    EXPECT_EQ(1, CUIWindowClassDoRegister(15));
    EXPECT_EQ(1, CUIWindowClassDoRegister(8));
    EXPECT_EQ(15, g_nRegisteredClasses);
    EXPECT_EQ("pzl-Window pzl-ControlBAR pzl-MDIWindow pzl-FrameWindow ", asked);
    for (const auto &[nId, nBrush] : std::map<int, int>{{1, 6}, {2, 0}, {4, 16}, {8, 16}}) {
        WNDCLASSA found;
        const char *const pszName = CUIWindowClassName(static_cast<unsigned short>(nId));
        ASSERT_TRUE(GetClassInfoA(GetModuleHandleA(nullptr), pszName, &found)) << nId;
        EXPECT_EQ(static_cast<UINT>(CS_DBLCLKS), found.style);
        EXPECT_EQ(DefWindowProcA, found.lpfnWndProc);
        EXPECT_EQ(reinterpret_cast<HBRUSH>(nBrush), found.hbrBackground);
        EXPECT_EQ(reinterpret_cast<HICON>(nId & 10 ? 1 : 0), found.hIcon);
        EXPECT_EQ(CUIGetWinData()->hcurArrow, found.hCursor);
    }
    EXPECT_STREQ("pzl-Window", CUIWindowClassName(3));
    EXPECT_EQ(Texts{"WindowClass: 0"}, reports.Asserts());
}
