#include <gtest/gtest.h>

#include "CUI/Data.h"
#include "CUI/WindowClass.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"

namespace {

using Texts = std::vector<std::string>;

// What the system is asked to register, and whether it does.
Texts s_names;
std::vector<HICON> s_icons;
const CImportHook *s_pHook;
bool s_bFail;

ATOM WINAPI Register(const WNDCLASSA *pClass)
{
    s_names.push_back(pClass->lpszClassName);
    s_icons.push_back(pClass->hIcon);
    SetLastError(4711);
    return s_bFail ? static_cast<ATOM>(0) : s_pHook->Original<decltype(Register)>()(pClass);
}

HICON WINAPI LoadProgramIcon(HINSTANCE hInstance, LPCSTR pszName)
{
    const bool bOurs = hInstance == GetModuleHandleA(nullptr) && pszName == MAKEINTRESOURCEA(1014);
    return reinterpret_cast<HICON>(bOurs ? 1014 : 0);
}

}  // namespace

TEST(WindowClass, RegistersEachClassOnceInOrder)
{
    CReports reports;
    const CImportHook hook("RegisterClassA", Register);
    s_pHook = &hook;
    EXPECT_EQ(1, CUIWindowClassDoRegister(0));
    EXPECT_EQ(0, g_nRegisteredClasses);
    EXPECT_EQ(1, CUIWindowClassDoRegister(15));
    EXPECT_EQ(15, g_nRegisteredClasses);
    EXPECT_EQ(1, CUIWindowClassDoRegister(8));
    EXPECT_EQ((Texts{"pzl-Window", "pzl-ControlBAR", "pzl-MDIWindow", "pzl-FrameWindow"}), s_names);
    HICON hStock = LoadIconA(nullptr, reinterpret_cast<LPCSTR>(IDI_APPLICATION));
    const struct
    {
        unsigned short id;
        const char *pszName;
        INT_PTR nBrush;
        HICON hIcon;
    } classes[] = {{CUI_CLASS_WINDOW, "pzl-Window", 6, nullptr},
                   {CUI_CLASS_MDIWINDOW, "pzl-MDIWindow", 0, hStock},
                   {CUI_CLASS_CONTROLBAR, "pzl-ControlBAR", 16, nullptr},
                   {CUI_CLASS_FRAMEWINDOW, "pzl-FrameWindow", 16, hStock}};
    for (const auto &expected : classes) {
        WNDCLASSA found;
        EXPECT_STREQ(expected.pszName, CUIWindowClassName(expected.id));
        ASSERT_TRUE(GetClassInfoA(GetModuleHandleA(nullptr), expected.pszName, &found));
        EXPECT_EQ(static_cast<UINT>(CS_DBLCLKS), found.style);
        EXPECT_EQ(DefWindowProcA, found.lpfnWndProc);
        EXPECT_EQ(reinterpret_cast<HBRUSH>(expected.nBrush), found.hbrBackground);
        EXPECT_EQ(expected.hIcon, found.hIcon);
        EXPECT_EQ(CUIGetWinData()->hcurArrow, found.hCursor);
    }
    EXPECT_EQ(Texts(), reports.Asserts());
    EXPECT_STREQ("pzl-Window", CUIWindowClassName(3));
    EXPECT_EQ(Texts{"WindowClass: 0"}, reports.Asserts());
}

TEST(WindowClass, TracesAFailureAndDoesNotTryAgain)
{
    CReports reports;
    const CImportHook registerHook("RegisterClassA", Register);
    s_pHook = &registerHook;
    const CImportHook hook("LoadIconA", LoadProgramIcon);
    s_bFail = true;
    CDumped trace;
    EXPECT_EQ(0, CUIWindowClassRegister(CUI_CLASS_WINDOW | CUI_CLASS_FRAMEWINDOW));
    EXPECT_EQ(
        "CUIWindowClass: Can't register window class pzl-Window, gle: 4711\n"
        "CUIWindowClass: Can't register window class pzl-FrameWindow, gle: 4711\n",
        trace.m_text);
    EXPECT_EQ((std::vector<HICON>{nullptr, reinterpret_cast<HICON>(1014)}), s_icons);
    s_bFail = false;
    EXPECT_EQ(1, CUIWindowClassRegister(CUI_CLASS_FRAMEWINDOW));
    EXPECT_EQ(2u, s_names.size());
    EXPECT_EQ(1, CUIWindowClassRegister(CUI_CLASS_CONTROLBAR));
    EXPECT_EQ(3u, s_names.size());
}
