#include "Window/RunWindow.h"

#include "CUI/Settings.h"
#include "Window/MainWindow.h"

int RunWindow(int nShow)
{
    CUISetSettingsKey("Software\\Disc Maker");
    CMainWindow window;
    if (!window.CreateFrame("Disc Maker"))
        return 1;
    window.Begin();
    window.ShowKept("Frame", nShow);
    window.OnCommandLine(GetCommandLineA(), "");
    return CCUIWindow::RunLoop();
}
