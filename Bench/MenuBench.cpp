#include <stdio.h>

#include "Bench.h"
#include "CUI/Menu.h"
#include "CUI/Window.h"

namespace {

const int ITEMS = 50;
const UINT FIRST_ID = 1000;

void Fill(HMENU hMenu)
{
    for (UINT i = 0; i < ITEMS; ++i) {
        char szText[32];
        snprintf(szText, sizeof szText, "Command number &%u\tCtrl+%u", i % 10, i);
        AppendMenuA(hMenu, MF_STRING, FIRST_ID + i, szText);
    }
}

// Shows it, which paints it, and closes it at once.
void Open(HWND hWnd, HMENU hMenu)
{
    PostMessageA(hWnd, WM_KEYDOWN, VK_ESCAPE, 1);
    TrackPopupMenuEx(hMenu, 0, 10, 10, hWnd, nullptr);
}

}  // namespace

BENCH_GROUP(Menu)
{
    CCUIWindow window;
    const RECT rect = {0, 0, 300, 200};
    window.Create(nullptr, "menus", WS_OVERLAPPEDWINDOW | WS_VISIBLE, rect, nullptr, 0);
    CCUIMenu ours;
    const HMENU hSystem = CreatePopupMenu();
    Fill(ours.GetHandle());
    Fill(hSystem);
    BenchCompare(
        "open a popup of 50 items", [&] { Open(window, ours.GetHandle()); }, "the system's own",
        [&] { Open(window, hSystem); }, 1.5);
    DestroyMenu(hSystem);
    window.Destroy();
}
