// A frame with a menu, a bar, a client and a status bar: its start is measured against PlainFrame.
#include "CUI/FrameWindow.h"
#include "FrameProgramBars.h"

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE, LPSTR, int nShow)
{
    CCUIFrameWindow frame;
    CFrameBar bar;
    CFrameStatusBar statusBar;
    CCUIWindow client;
    frame.CreateFrame(FRAME_TITLE);
    frame.SetMenu(hInstance, MAKEINTRESOURCEA(IDR_FRAME));
    bar.CreateBar(frame);
    statusBar.CreateBar(frame);
    client.CreateEx(WS_EX_CLIENTEDGE, "EDIT", "", WS_CHILD | WS_VISIBLE | ES_MULTILINE, 0, 0, 0, 0,
                    frame, reinterpret_cast<HMENU>(3));
    frame.AddBar(&bar, CUI_BAR_TOP);
    frame.SetStatusBar(&statusBar, nullptr);
    frame.SetClient(&client);
    ShowWindow(frame, nShow);
    UpdateWindow(frame);
    return CCUIWindow::RunLoop();
}
