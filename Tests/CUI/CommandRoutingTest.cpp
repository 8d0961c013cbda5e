// Commands on their way from menus, keys and controls to their handlers, and back into menus.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/Menu.h"
#include "Support/Reports.h"
#include "Support/TestWindow.h"

namespace {

class CCommand final : public CCUICommandHandler
{
public:
    explicit CCommand(unsigned int nID) : CCUICommandHandler(nID, 1) {}
    void HandleCommand(unsigned int) override { ++m_nDone, m_onCommand(); }
    void HandleUpdate(unsigned int) override { ++m_nUpdates, m_onUpdate(); }
    unsigned short GetState(unsigned int) override { return m_onState(), m_nState; }
    CCUString GetShortTT(unsigned int) override { return m_text; }

    unsigned short m_nState = CUI_COMMAND_ACTIVE;
    const char *m_text = "";
    int m_nDone = 0, m_nUpdates = 0;
    std::function<void()> m_onCommand = [] {}, m_onUpdate = [] {}, m_onState = [] {};
};

void Send(HWND hWnd, unsigned int nID, UINT nCode = 0, HWND hControl = nullptr)
{
    SendMessageA(hWnd, WM_COMMAND, MAKEWPARAM(nID, nCode), reinterpret_cast<LPARAM>(hControl));
}

// Counts what comes by, as a window and as a control, and takes it if it is to.
class CStation : public CCUIWindow
{
public:
    int m_nSeen = 0;
    bool m_bTake = false;

protected:
    void OnCommand(UINT nCode, UINT nID, HWND hControl) override
    {
        ++m_nSeen;
        if (!m_bTake)
            CCUIWindow::OnCommand(nCode, nID, hControl);
    }
    int OnReflectedMessage(UINT, WPARAM, LPARAM, long &) override { return ++m_nSeen, m_bTake; }
};

std::string Item(HMENU hMenu, UINT nItem)
{
    char szText[64] = "";
    GetMenuStringA(hMenu, nItem, szText, sizeof szText, MF_BYPOSITION);
    MENUITEMINFOA item = {};
    item.cbSize = sizeof item;
    item.fMask = MIIM_STATE | MIIM_TYPE;
    GetMenuItemInfoA(hMenu, nItem, TRUE, &item);
    return std::string(szText) + ((item.fState & MFS_DISABLED) ? " disabled" : "") +
           ((item.fState & MFS_CHECKED) ? " checked" : "") +
           ((item.fType & MFT_RADIOCHECK) ? " radio" : "");
}

}  // namespace

TEST(CommandRouting, TakesCommandsOnlyFromTheControlAndThroughTheWindowsAroundItToTheHandler)
{
    CReports reports;
    CCommand command(1000);
    CStation frame, panel, control;
    ASSERT_TRUE(CreateTestWindow(frame));
    // A panel that is no framework window lies between.
    const HWND hPlain =
        CreateWindowA("Static", "", WS_CHILD, 0, 0, 9, 9, frame, nullptr, nullptr, nullptr);
    ASSERT_TRUE(CreateTestWindow(panel, hPlain, WS_CHILD));
    ASSERT_TRUE(CreateTestWindow(control, panel, WS_CHILD));
    const struct
    {
        bool bPanelRoutes, bFrameRoutes;
        CStation *pTaker;
        unsigned nID;
        UINT nCode;
        bool bFromControl;
        unsigned short nState;
        const char *way;  // control, panel, frame, handler
    } rows[] = {
        {false, true, nullptr, 1000, 0, true, 2, "1 1 0 0"},
        {true, false, nullptr, 1000, 0, true, 2, "1 1 0 1"},
        {true, true, nullptr, 1000, 0, true, 2, "1 1 1 1"},
        {true, true, &frame, 1000, 0, true, 2, "1 1 1 0"},
        {true, true, &control, 1000, 0, true, 2, "1 1 0 0"},
        {true, true, nullptr, 1000, 1, false, 0xFF, "0 1 1 1"},
        {true, true, nullptr, 1000, 1, true, 2, "1 1 0 0"},
        {true, true, nullptr, 1000, 0, false, 0xFD, "0 1 1 0"},
        {true, true, nullptr, 999, 0, false, 2, "0 1 1 0"},
    };
    for (const auto &row : rows) {
        panel.RouteCommands(row.bPanelRoutes);
        frame.RouteCommands(row.bFrameRoutes);
        for (CStation *pStation : {&control, &panel, &frame}) {
            pStation->m_nSeen = 0;
            pStation->m_bTake = pStation == row.pTaker;
        }
        command.m_nDone = 0;
        command.m_nState = row.nState;
        Send(panel, row.nID, row.nCode, row.bFromControl ? control.GetHandle() : nullptr);
        EXPECT_EQ(row.way, Text("%d %d %d %d", control.m_nSeen, panel.m_nSeen, frame.m_nSeen,
                                command.m_nDone))
            << &row - rows;
    }
    EXPECT_EQ(0, reports.Total());
}

TEST(CommandRouting, SurvivesHandlersThatDeleteTheirWindowOrThemselves)
{
    CReports reports;
    auto window = std::make_unique<CTestWindow>();
    auto command = std::make_unique<CCommand>(1000);
    window->RouteCommands(true);
    command->m_onState = [&] { CCUICommandMap::Remove(command.get()); };
    Send(*window, 1000);
    EXPECT_EQ(0, command->m_nDone);
    CCUICommandMap::Add(command.get());
    command->m_onState = [] {};
    command->m_onCommand = command->m_onUpdate = [&] { window.reset(); };
    Send(*window, 1000);
    EXPECT_EQ(nullptr, window);
    window = std::make_unique<CTestWindow>();
    window->RouteCommands(true);
    CCUIMenu menu;
    AppendMenuA(menu.GetHandle(), MF_STRING, 1000, "one");
    SendMessageA(*window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu.GetHandle()), 0);
    EXPECT_EQ(nullptr, window);
    // Nor does it matter what they do to the menu.
    command->m_onUpdate = [&] { InsertMenuA(menu.GetHandle(), 0, MF_BYPOSITION, 1001, "new"); };
    command->m_nState = 0;
    CCUICommandMap::UpdateMenu(menu.GetHandle());
    EXPECT_EQ("new", Item(menu.GetHandle(), 0));
    EXPECT_EQ(0, reports.Total());
}

TEST(CommandRouting, SetsTheItemsOfAMenuAsTheHandlersSay)
{
    CCommand command(1000);
    CCUIMenu menu;
    const HMENU hMenu = menu.GetHandle(), hSub = CreatePopupMenu();
    AppendMenuA(hMenu, MF_STRING, 1000, "one\tCtrl+O");
    AppendMenuA(hMenu, MF_OWNERDRAW, 1000, nullptr);
    AppendMenuA(hMenu, MF_STRING | MF_GRAYED | MF_CHECKED, 1001, "other");
    AppendMenuA(hMenu, MF_POPUP, reinterpret_cast<UINT_PTR>(hSub), "sub");
    AppendMenuA(hSub, MF_STRING | MF_CHECKED, 1000, "inside");
    const struct
    {
        unsigned short nState;
        const char *text, *item, *owned;
        int nUpdates;  // of the two items
    } rows[] = {
        {0x02, "two", "one\tCtrl+O", "", 2},
        {0x00, "", "one\tCtrl+O disabled", " disabled", 2},
        {0x43, "", "one\tCtrl+O checked", " checked", 2},
        {0xC2, "", "one\tCtrl+O checked radio", " checked", 2},
        {0x101, "two", "two\tCtrl+O disabled", " disabled", 2},
        {0x106, "three\tF3", "three\tF3", "", 0},
        {0xBA, "", "three\tF3 radio", "", 0},
    };
    for (const auto &row : rows) {
        command.m_nState = row.nState;
        command.m_text = row.text;
        command.m_nUpdates = 0;
        CCUICommandMap::UpdateMenu(hMenu);
        EXPECT_EQ(row.item, Item(hMenu, 0));
        EXPECT_EQ(row.owned, Item(hMenu, 1)) << row.item;
        EXPECT_EQ(row.nUpdates, command.m_nUpdates) << row.item;
    }
    EXPECT_EQ("other disabled checked", Item(hMenu, 2));
    EXPECT_EQ("inside checked", Item(hSub, 0));
}

TEST(CommandRouting, MenuByKeyboardAndAcceleratorShowAndDoWhatTheHandlerSays)
{
    CCommand first(1000), second(1001);
    CTestWindow window;
    ShowWindow(window, SW_SHOWNORMAL);
    CCUIMenu menu;
    AppendMenuA(menu.GetHandle(), MF_STRING | MF_CHECKED, 1000, "first");
    AppendMenuA(menu.GetHandle(), MF_STRING, 1001, "second");
    first.m_nState = 0;
    for (const bool bRoutes : {false, true}) {
        window.RouteCommands(bRoutes);
        const auto wParam = reinterpret_cast<WPARAM>(menu.GetHandle());
        SendMessageA(window, WM_INITMENUPOPUP, wParam, MAKELPARAM(0, TRUE));
        EXPECT_EQ("first checked", Item(menu.GetHandle(), 0)) << "as a system menu";
        for (const int nKey : {VK_DOWN, VK_DOWN, VK_RETURN})
            PostMessageA(window, WM_KEYDOWN, static_cast<WPARAM>(nKey), 1);
        POINT at = {50, 50};
        window.DisplayPopupMenu(&menu, 0, at, nullptr);
        PumpWaiting();
        EXPECT_EQ(bRoutes ? "first disabled" : "first checked", Item(menu.GetHandle(), 0));
        EXPECT_EQ(bRoutes, second.m_nDone);
    }
    ACCEL key = {FVIRTKEY, VK_F5, 1001};
    window.SetAccelerators(&key, 1);
    MSG msg = {window, WM_KEYDOWN, VK_F5, 1, 0, {}};
    EXPECT_EQ(1, CCUIWindow::PerformPreTranslation(&msg));
    EXPECT_EQ("2 0", Text("%d %d", second.m_nDone, first.m_nDone));
}
