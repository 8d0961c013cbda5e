// Commands: the map of their handlers, their way there from menus, keys and controls, and back into
// menus.
#include <random>

#include "CU/IDGenerator.h"
#include "CUI/CommandMap.h"
#include "CUI/Menu.h"
#include "Support/HeapWatch.h"
#include "Support/MenuItems.h"
#include "Support/Reports.h"
#include "Support/TestCommand.h"

namespace {

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

// A control that does something to its parent before it says no.
struct CCloser : CTestWindow
{
    using CTestWindow::CTestWindow;
    int OnReflectedMessage(UINT, WPARAM, LPARAM, long &) override { return m_onSeen(), 0; }
    std::function<void()> m_onSeen;
};

}  // namespace

TEST(CommandMap, FindsWhatWasAddedOrPutThereLast)
{
    const CReports reports;
    const auto find = CCUICommandMap::Lookup;
    CTestCommand edge(1126, 2), drawn(0, 3), none(0x80000000);
    EXPECT_TRUE(find(1126) == &edge && find(1127) == &edge && !find(1125) && !find(1128));
    EXPECT_EQ(&drawn, find(drawn.GetID() + 2));
    EXPECT_EQ(drawn.GetID() + 3, CCUIIDGenerator::GetNextID());
    EXPECT_EQ(0u, none.GetID());
    EXPECT_EQ(0, CCUICommandMap::Remove(&none));
    {
        // Tables grow in steps of 64; removal finds a handler wherever it has been put.
        CTestCommand later(10070, 70);
        EXPECT_EQ(&later, find(10139));
        EXPECT_EQ(nullptr, CCUICommandMap::Override(10191, &later));
        EXPECT_EQ(&edge, CCUICommandMap::Override(1127, &later));
        EXPECT_TRUE(find(10191) == &later && find(1127) == &later);
        EXPECT_EQ(nullptr, CCUICommandMap::Override(10192, &later));
    }
    for (const unsigned nID : {0u, 1127u, 10070u, 10191u, 10192u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        EXPECT_EQ(nullptr, find(nID)) << nID;
    EXPECT_EQ(0, reports.Total());
}

TEST(CommandRouting, TakesCommandsThroughControlAndWindowsToTheHandler)
{
    CReports reports;
    CTestCommand command(1000);
    CStation frame, panel, control;
    ASSERT_TRUE(CreateTestWindow(frame));
    // A panel that is no framework window lies between.
    ASSERT_TRUE(CreateTestWindow(panel, MakePlain("STATIC", frame), WS_CHILD));
    ASSERT_TRUE(CreateTestWindow(control, panel, WS_CHILD));
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        for (CStation *pStation : {&control, &panel, &frame}) {
            pStation->m_nSeen = 0;
            pStation->m_bTake = random() % 5 == 0;
            pStation->RouteCommands(random() % 2);
        }
        command.Done();
        command.m_nState = static_cast<unsigned short>(random());
        const unsigned nID = 999 + random() % 2, nCode = random() % 3 / 2 + random() % 2;
        const bool bFromControl = random() % 2;
        const bool bAsked = bFromControl && !panel.m_bTake;
        const bool bCommand = nCode == 0 || (nCode == 1 && !bFromControl);
        const bool bRouted = !panel.m_bTake && !(bFromControl && control.m_bTake) &&
                             panel.RoutesCommands() && bCommand;
        const bool bFrame = bRouted && frame.RoutesCommands();
        const bool bDone = bRouted && !(bFrame && frame.m_bTake) && nID == 1000 &&
                           (command.m_nState & CUI_COMMAND_ACTIVE);
        SendMessageA(panel, WM_COMMAND, MAKEWPARAM(nID, nCode),
                     bFromControl ? reinterpret_cast<LPARAM>(control.GetHandle()) : 0);
        EXPECT_EQ(Text("%d 1 %d %s", bAsked, bFrame, bDone ? "0 " : ""),
                  Text("%d %d %d %s", control.m_nSeen, panel.m_nSeen, frame.m_nSeen,
                       command.Done().c_str()))
            << i;
    }
    EXPECT_EQ(0, reports.Total());
}

TEST(CommandRouting, SurvivesHandlersThatDeleteTheirWindowOrThemselves)
{
    CReports reports;
    const CHeapWatch heap;  // what is used of a dead window is wrong
    auto window = std::make_unique<CTestWindow>();
    auto command = std::make_unique<CTestCommand>(1000);
    window->RouteCommands(true);
    command->m_onState = [&] { CCUICommandMap::Remove(command.get()); };
    SendMessageA(*window, WM_COMMAND, 1000, 0);
    EXPECT_EQ("", command->Done());
    CCUICommandMap::Add(command.get());
    command->m_onState = [] {};
    command->m_onCommand = command->m_onUpdate = [&] { window.reset(); };
    SendMessageA(*window, WM_COMMAND, 1000, 0);
    EXPECT_EQ(nullptr, window);
    window = std::make_unique<CTestWindow>();
    window->RouteCommands(true);
    CCUIMenu menu;
    AppendMenuA(menu.GetHandle(), MF_STRING, 1000, "one");
    SendMessageA(*window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu.GetHandle()), 0);
    EXPECT_EQ(nullptr, window);
    // Nor does it matter what they do to the menu.
    const HMENU hMenu = menu.GetHandle();
    command->m_onUpdate = [&] { InsertMenuA(hMenu, 0, MF_BYPOSITION, 1001, "new"); };
    command->m_nState = CUI_COMMAND_TEXT;
    CCUICommandMap::UpdateMenu(hMenu);
    command->m_onText = std::exchange(command->m_onUpdate, [] {});
    CCUICommandMap::UpdateMenu(hMenu);
    EXPECT_EQ("new new one", ItemsOf(hMenu));
    // A control that closes or deletes the window ends the command's way.
    command->m_onText = [] {};
    command->m_nState = CUI_COMMAND_ACTIVE;
    for (const int nWay : {0, 1, 2}) {
        window = std::make_unique<CTestWindow>();
        window->RouteCommands(nWay < 2);
        CCloser closer(*window, WS_CHILD);
        closer.m_onSeen = [&] { nWay ? window.reset() : void(window->Destroy()); };
        SendMessageA(*window, WM_COMMAND, 1000, reinterpret_cast<LPARAM>(closer.GetHandle()));
    }
    EXPECT_EQ("0 ", command->Done());
    EXPECT_EQ(0, reports.Total());
}

TEST(CommandRouting, RefreshesTheItemsOfAMenuAndWhatIsIdleAsTheHandlersSay)
{
    CTestCommand command(1000);
    int nUpdates = 0;
    command.m_onUpdate = [&] { ++nUpdates; };
    CCUIMenu menu;
    const HMENU hMenu = menu.GetHandle(), hSub = CreatePopupMenu();
    AppendMenuA(hMenu, MF_STRING, 1000, "one\tCtrl+O");
    AppendMenuA(hMenu, MF_OWNERDRAW, 1000, nullptr);
    AppendMenuA(hMenu, MF_STRING | MF_GRAYED | MF_CHECKED, 1001, "other");
    AppendMenuA(hMenu, MF_POPUP, reinterpret_cast<UINT_PTR>(hSub), "sub");
    AppendMenuA(hSub, MF_STRING | MF_CHECKED, 1000, "inside");
    std::mt19937 random(1);
    std::string text = "one\tCtrl+O";
    for (int i = 0; i < 300; ++i) {
        const unsigned n = command.m_nState = random() % 0x200;
        command.m_text = random() % 2 ? "two\tF3" : "three";
        const std::string said = command.m_text, shortcut = text.substr(text.find('\t'));
        if (n & CUI_COMMAND_TEXT)
            text = said.find('\t') == std::string::npos ? said + shortcut : said;
        const std::string state = std::string(n & CUI_COMMAND_ACTIVE ? "" : " disabled") +
                                  (n & CUI_COMMAND_CHECKED ? " checked" : "");
        nUpdates = 0;
        CCUICommandMap::UpdateMenu(hMenu);
        EXPECT_EQ(text + state + (n & CUI_COMMAND_RADIO ? " radio" : ""), ItemOf(hMenu, 0));
        EXPECT_EQ("*" + state, ItemOf(hMenu, 1)) << n;
        EXPECT_EQ(n & 0x3C ? 0 : 2, nUpdates) << n;  // minimised, hidden, by a timer
        nUpdates = 0;
        CCUICommandMap::IdleUpdate();
        EXPECT_EQ(!(n & 0x3D), nUpdates) << n;  // nor those that menus refresh
    }
    EXPECT_EQ("other disabled checked", ItemOf(hMenu, 2));
    EXPECT_EQ("inside checked", ItemOf(hSub, 0));
}
