#include "Window/RunWindow.h"

#include <algorithm>

#include "CUI/Settings.h"
#include "Window/MainWindow.h"
#include "Window/Scaled.h"

namespace {

const SIZE FIRST_SIZE = {960, 700};  // at 96 pixels an inch

}  // namespace

int RunWindow(int nShow)
{
    CUISetSettingsKey("Software\\Disc Maker");
    CMainWindow window;
    // Large enough for the face, where the screen is, until the user has another size.
    RECT work = {};
    SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
    const int cx = std::min<int>(Scaled(FIRST_SIZE.cx), work.right - work.left);
    const int cy = std::min<int>(Scaled(FIRST_SIZE.cy), work.bottom - work.top);
    if (!window.CreateEx(0, nullptr, "Disc Maker", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                         CW_USEDEFAULT, cx, cy, nullptr, nullptr))
        return 1;
    // Before it is shown, so that everything is painted once.
    window.OnCommandLine(GetCommandLineA(), "");
    if (window.GetDocument().IsEmpty())
        window.Begin();
    window.ShowKept("Frame", nShow);
    window.OfferRecovery();
    return CCUIWindow::RunLoop();
}
