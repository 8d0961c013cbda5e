// Control bars and status bars, beside the system's own toolbar and status bar.
#include <stdio.h>
#include <stdlib.h>

#include <deque>

#include "Bench.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/ControlBar.h"
#include "CUI/StatusBar.h"

#include <commctrl.h>

namespace {

const unsigned int FIRST_ID = 10000;

class CBarCommand final : public CCUICommandHandler
{
public:
    explicit CBarCommand(unsigned int nID) : CCUICommandHandler(nID, 1) {}
    void HandleUpdate(unsigned int nID) override { m_nUpdates += nID; }
    CCUString GetShortTT(unsigned int) override { return "Do it"; }

private:
    unsigned int m_nUpdates = 0;
};

// A shown window with a bar of nButtons along its upper edge.
struct CBarScene
{
    explicit CBarScene(int nButtons)
    {
        frame.Create(nullptr, "", WS_POPUP | WS_VISIBLE, {0, 0, 700, 300}, nullptr, 0);
        bar.CreateBar(frame, 1);
        std::vector<unsigned int> ids;
        for (int i = 0; i < nButtons; ++i) {
            ids.push_back(FIRST_ID + static_cast<unsigned int>(i));
            commands.emplace_back(ids.back());
        }
        bar.SetButtons(ids.data(), nButtons);
        MoveWindow(bar, 0, 0, 700, bar.GetFixedSize(), TRUE);
        UpdateWindow(bar);
    }
    CCUIWindow frame;
    std::deque<CBarCommand> commands;
    CCUIControlBar bar;
};

void Repaint(HWND hWnd)
{
    InvalidateRect(hWnd, nullptr, TRUE);
    UpdateWindow(hWnd);
}

void CompareIdlePass()
{
    CBarScene scene(200);
    std::vector<CCUICommandHandler *> handlers;
    for (CBarCommand &command : scene.commands)
        handlers.push_back(&command);
    BenchCompare(
        "idle pass, a bar of 200 unchanged buttons", CCUICommandMap::IdleUpdate,
        "loop of 200 virtual calls",
        [&] {
            for (CCUICommandHandler *const pHandler : handlers)
                pHandler->HandleUpdate(0);
        },
        1.5);
    if (GetUpdateRect(scene.bar, nullptr, FALSE)) {
        fprintf(stderr, "An idle pass repaints a bar that has not changed.\n");
        exit(1);
    }
}

void CompareRepaint()
{
    CBarScene scene(10);
    std::vector<TBBUTTON> buttons;
    for (int i = 0; i < 10; ++i) {
        TBBUTTON button = {I_IMAGENONE,
                           100 + i,
                           TBSTATE_ENABLED,
                           TBSTYLE_BUTTON,
                           {},
                           0,
                           reinterpret_cast<INT_PTR>("Do it")};
        buttons.push_back(button);
    }
    const HWND hToolbar =
        CreateToolbarEx(scene.frame, WS_CHILD | WS_VISIBLE | TBSTYLE_LIST, 9, 0, nullptr, 0,
                        buttons.data(), 10, 0, 0, 0, 0, sizeof(TBBUTTON));
    MoveWindow(hToolbar, 0, 100, 700, 30, TRUE);
    BenchCompare(
        "repaint of a bar of 10 texts", [&] { Repaint(scene.bar); }, "the system's toolbar",
        [&] { Repaint(hToolbar); }, 1.1, 15);
}

void CompareStatus()
{
    CBarScene scene(1);
    CCUIStatusBar status;
    status.AddPane(CUI_PANE_FIXED, 100);
    status.AddPane(CUI_PANE_FIXED, 100);
    status.CreateBar(scene.frame, 2);
    MoveWindow(status, 0, 270, 700, status.GetFixedSize(), TRUE);
    const HWND hSystem = CreateStatusWindowA(WS_CHILD | WS_VISIBLE, "", scene.frame, 3);
    const int ends[] = {480, 590, 690};
    SendMessageA(hSystem, SB_SETPARTS, 3, reinterpret_cast<LPARAM>(ends));
    MoveWindow(hSystem, 0, 200, 700, 22, TRUE);
    int nOurs = 0;
    int nTheirs = 0;
    const char *const texts[] = {"Line 7", "Line 8"};
    BenchCompare(
        "another text in a pane, painted",
        [&] {
            status.SetText(1, texts[++nOurs % 2]);
            UpdateWindow(status);
        },
        "the system's status bar",
        [&] {
            SendMessageA(hSystem, SB_SETTEXTA, 1, reinterpret_cast<LPARAM>(texts[++nTheirs % 2]));
            UpdateWindow(hSystem);
        },
        1.1, 15);
}

}  // namespace

BENCH_GROUP(Bars)
{
    CompareIdlePass();
    CompareRepaint();
    CompareStatus();
}
