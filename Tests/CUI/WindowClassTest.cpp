#include <gtest/gtest.h>

#include "CUI/Data.h"
#include "CUI/WindowClass.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"

namespace {

using Texts = std::vector<std::string>;

// What the system is asked to register, and whether it does.
Texts s_asked;
bool s_bFail;
decltype(RegisterClassA) *s_pOriginal;
ATOM WINAPI Register(const WNDCLASSA *pClass)
{
    s_asked.push_back(pClass->lpszClassName);
    SetLastError(4711);
    return s_bFail ? static_cast<ATOM>(0) : s_pOriginal(pClass);
}

// The program's own icon where the test wants one.
bool s_bIcon;
decltype(LoadIconA) *s_pLoadIcon;
HICON WINAPI Load(HINSTANCE hInstance, LPCSTR pszName)
{
    const bool bOurs = hInstance == GetModuleHandleA(nullptr) && pszName == MAKEINTRESOURCEA(1014);
    return bOurs && s_bIcon ? s_pLoadIcon(nullptr, reinterpret_cast<LPCSTR>(IDI_HAND))
                            : s_pLoadIcon(hInstance, pszName);
}

}  // namespace

TEST(WindowClass, RegistersEachClassOnceInOrder)
{
    CReports reports;
    CDumped trace;
    WNDCLASSA byAtom = {};
    // Names are numbered from 0xC000 on, in one list for all programs: nobody has the last one.
    byAtom.lpszClassName = MAKEINTRESOURCEA(0xFFFF);
    EXPECT_EQ(0, CUIRegisterWindowClass(&byAtom));
    const std::string failure = "CUIWindowClass: Can't register window class ";
    EXPECT_EQ(0u, trace.m_text.find(failure + "#65535, gle: ")) << trace.m_text;
    trace.m_text.clear();
    const CImportHook registerHook("RegisterClassA", Register), iconHook("LoadIconA", Load);
    s_pOriginal = registerHook.Original<decltype(RegisterClassA)>();
    s_pLoadIcon = iconHook.Original<decltype(LoadIconA)>();
    EXPECT_EQ(1, CUIWindowClassDoRegister(0));
    // A failure is traced and not tried again by those who look at the mask.
    s_bFail = true;
    EXPECT_EQ(0, CUIWindowClassRegister(CUI_CLASS_WINDOW | CUI_CLASS_CONTROLBAR));
    EXPECT_EQ(failure + "pzl-Window, gle: 4711\n" + failure + "pzl-ControlBAR, gle: 4711\n",
              trace.m_text);
    s_bFail = false;
    EXPECT_EQ(1, CUIWindowClassRegister(CUI_CLASS_WINDOW));
    EXPECT_EQ(CUI_CLASS_WINDOW | CUI_CLASS_CONTROLBAR, g_nRegisteredClasses);
    s_bIcon = true;
    EXPECT_EQ(1, CUIWindowClassRegister(CUI_CLASS_MDIWINDOW));
    s_bIcon = false;
    EXPECT_EQ(1, CUIWindowClassDoRegister(15));
    EXPECT_EQ(1, CUIWindowClassDoRegister(8));
    EXPECT_EQ(15, g_nRegisteredClasses);
    EXPECT_EQ((Texts{"pzl-Window", "pzl-ControlBAR", "pzl-MDIWindow", "pzl-Window",
                     "pzl-ControlBAR", "pzl-FrameWindow"}),
              s_asked);
    const struct
    {
        unsigned short id;
        const char *pszName;
        INT_PTR nBrush;
        LPCTSTR pszIcon;
    } classes[] = {{CUI_CLASS_WINDOW, "pzl-Window", 6, nullptr},
                   {CUI_CLASS_MDIWINDOW, "pzl-MDIWindow", 0, IDI_HAND},
                   {CUI_CLASS_CONTROLBAR, "pzl-ControlBAR", 16, nullptr},
                   {CUI_CLASS_FRAMEWINDOW, "pzl-FrameWindow", 16, IDI_APPLICATION}};
    for (const auto &expected : classes) {
        WNDCLASSA found;
        EXPECT_STREQ(expected.pszName, CUIWindowClassName(expected.id));
        ASSERT_TRUE(GetClassInfoA(GetModuleHandleA(nullptr), expected.pszName, &found));
        EXPECT_EQ(static_cast<UINT>(CS_DBLCLKS), found.style);
        EXPECT_EQ(DefWindowProcA, found.lpfnWndProc);
        EXPECT_EQ(reinterpret_cast<HBRUSH>(expected.nBrush), found.hbrBackground);
        EXPECT_EQ(expected.pszIcon ? LoadIconA(nullptr, expected.pszIcon) : nullptr, found.hIcon);
        EXPECT_EQ(CUIGetWinData()->hcurArrow, found.hCursor);
    }
    EXPECT_EQ(Texts(), reports.Asserts());
    EXPECT_STREQ("pzl-Window", CUIWindowClassName(3));
    EXPECT_EQ(Texts{"WindowClass: 0"}, reports.Asserts());
}
