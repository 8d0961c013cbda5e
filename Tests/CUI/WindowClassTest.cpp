#include "CUI/WindowClass.h"

#include "CUI/Data.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

TEST(WindowClass, RegistersEachClassOnceInOrder)
{
    CReports reports;
    // What the system is asked to register; and an icon of the program's own.
    std::string asked;
    const CFakeCall<ATOM(const WNDCLASSA *)> registering(
        "RegisterClassA", [&](const WNDCLASSA *pClass) {
            asked += std::string(pClass->lpszClassName) + " ";
            return registering.Original(pClass);
        });
    const CFakeCall<HICON(HINSTANCE, LPCSTR)> icon("LoadIconA", [](HINSTANCE h, LPCSTR pszName) {
        return reinterpret_cast<HICON>(h && pszName == MAKEINTRESOURCEA(1014) ? 1 : 0);
    });
    EXPECT_EQ(1, CUIWindowClassRegister(CUI_CLASS_WINDOW));
    EXPECT_EQ(CUI_CLASS_WINDOW, g_nRegisteredClasses);
    EXPECT_EQ(1, CUIWindowClassDoRegister(14));
    EXPECT_EQ(1, CUIWindowClassDoRegister(8));
    EXPECT_EQ(15, g_nRegisteredClasses);
    EXPECT_EQ("pzl-Window pzl-ControlBAR pzl-MDIWindow pzl-FrameWindow ", asked);
    for (const auto &[nId, nBrush] : std::map<int, int>{{1, 6}, {2, 0}, {4, 16}, {8, 16}}) {
        WNDCLASSA found;
        const char *const pszName = CUIWindowClassName(static_cast<unsigned short>(nId));
        ASSERT_TRUE(GetClassInfoA(GetModuleHandleA(nullptr), pszName, &found)) << nId;
        EXPECT_EQ(Text("%d %d %d %p", CS_DBLCLKS, nBrush, nId & 10 ? 1 : 0,
                       static_cast<void *>(CUIGetWinData()->hcurArrow)),
                  Text("%u %d %d %p", found.style, reinterpret_cast<int>(found.hbrBackground),
                       reinterpret_cast<int>(found.hIcon), static_cast<void *>(found.hCursor)));
    }
    EXPECT_STREQ("pzl-Window", CUIWindowClassName(3));
    EXPECT_EQ(Texts{"WindowClass: 0"}, reports.Asserts());
}
