#include "CUI/WindowClass.h"

#include "CUI/Data.h"
#include "Support/ImportHook.h"
#include "Support/TestWindow.h"

TEST(WindowClass, RegistersEachClassAsItsWindowsNeedIt)
{
    // An icon of the program's own.
    const CFakeCall<HICON(HINSTANCE, LPCSTR)> icon("LoadIconA", [](HINSTANCE h, LPCSTR pszName) {
        return reinterpret_cast<HICON>(h && pszName == MAKEINTRESOURCEA(1014) ? 1 : 0);
    });
    EXPECT_EQ(1, CUIWindowClassRegister(CUI_CLASS_WINDOW));
    EXPECT_EQ(CUI_CLASS_WINDOW, g_nRegisteredClasses);
    EXPECT_EQ(1, CUIWindowClassDoRegister(14));
    EXPECT_EQ(15, g_nRegisteredClasses);
    const std::pair<const char *, int> classes[] = {
        {"pzl-Window", 6}, {"pzl-MDIWindow", 0}, {"pzl-ControlBAR", 16}, {"pzl-FrameWindow", 16}};
    unsigned short nId = 1;
    for (const auto &[name, nBrush] : classes) {
        WNDCLASSA found;
        EXPECT_STREQ(name, CUIWindowClassName(nId));
        ASSERT_TRUE(GetClassInfoA(GetModuleHandleA(nullptr), name, &found)) << nId;
        EXPECT_EQ(Text("%d %d %d %p", CS_DBLCLKS, nBrush, nId & 10 ? 1 : 0,
                       static_cast<void *>(CUIGetWinData()->hcurArrow)),
                  Text("%u %d %d %p", found.style, reinterpret_cast<int>(found.hbrBackground),
                       reinterpret_cast<int>(found.hIcon), static_cast<void *>(found.hCursor)));
        nId = static_cast<unsigned short>(2 * nId);
    }
}
