// A frame with a menu, a bar, a client and a status bar: its start is measured against PlainFrame.
#include "FrameProgram.h"

#include "CUI/BmpLoad.h"
#include "CUI/CommandHandler.h"
#include "CUI/ControlBar.h"
#include "CUI/Data.h"
#include "CUI/FrameWindow.h"
#include "CUI/StatusBar.h"

namespace {

// A strip of as many pictures as there are buttons.
CCUIBitmap MakePictures()
{
    const CUIData &data = *CUIGetWinData();
    const HDC hScreen = GetDC(nullptr);
    const HDC hDC = CreateCompatibleDC(hScreen);
    const HBITMAP hBitmap = CreateCompatibleBitmap(hScreen, FRAME_BUTTONS * 16, 16);
    const HGDIOBJ hOld = SelectObject(hDC, hBitmap);
    for (int i = 0; i < FRAME_BUTTONS; ++i) {
        const RECT face = {i * 16, 0, i * 16 + 16, 16};
        FillRect(hDC, &face, i % 2 ? data.hbrBtnShadow : data.hbrWindow);
        const RECT inner = {i * 16 + 4, 4, i * 16 + 12, 12};
        FillRect(hDC, &inner, data.hbrBtnHilite);
    }
    SelectObject(hDC, hOld);
    DeleteDC(hDC);
    ReleaseDC(nullptr, hScreen);
    return CCUIBitmap(hBitmap, nullptr);
}

}  // namespace

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE, LPSTR, int nShow)
{
    CCUICommandHandler commands(ID_FRAME_FIRST, FRAME_BUTTONS);
    CCUIFrameWindow frame;
    CCUIControlBar bar;
    CCUIStatusBar statusBar;
    CCUIWindow client;
    unsigned int buttons[FRAME_BUTTONS];
    for (unsigned int i = 0; i < FRAME_BUTTONS; ++i)
        buttons[i] = ID_FRAME_FIRST + i;
    frame.CreateFrame(FRAME_TITLE);
    frame.SetMenu(hInstance, MAKEINTRESOURCEA(IDR_FRAME));
    bar.SetPictures(MakePictures(), 16);
    bar.CreateBar(frame, 1);
    bar.SetButtons(buttons, FRAME_BUTTONS);
    statusBar.CreateBar(frame, 2);
    statusBar.SetText(0, FRAME_READY);
    client.CreateEx(WS_EX_CLIENTEDGE, "EDIT", "", WS_CHILD | WS_VISIBLE | ES_MULTILINE, 0, 0, 0, 0,
                    frame, reinterpret_cast<HMENU>(3));
    frame.AddBar(&bar);
    frame.SetStatusBar(&statusBar);
    frame.SetClient(&client);
    ShowWindow(frame, nShow);
    UpdateWindow(frame);
    return CCUIWindow::RunLoop();
}
