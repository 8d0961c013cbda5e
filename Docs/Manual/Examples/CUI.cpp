// The examples of the reference for the user-interface layer: each is named after its class.

#include <utility>

#include "CU/Dump.h"
#include "CUI/Accelerators.h"
#include "CUI/Bitmap.h"
#include "CUI/BmpBlt.h"
#include "CUI/CommandHandler.h"
#include "CUI/CommandMap.h"
#include "CUI/CommandView.h"
#include "CUI/Control.h"
#include "CUI/ControlWindow.h"
#include "CUI/Data.h"
#include "CUI/Dialog.h"
#include "CUI/DialogTemplate.h"
#include "CUI/Draw.h"
#include "CUI/Font.h"
#include "CUI/FrameWindow.h"
#include "CUI/HelpText.h"
#include "CUI/Menu.h"
#include "CUI/NotifyIcon.h"
#include "CUI/OffScreenDC.h"
#include "CUI/RecentFiles.h"
#include "CUI/ResourceCommands.h"
#include "CUI/ResourceName.h"
#include "CUI/SingleInstance.h"
#include "CUI/Window.h"

enum : unsigned
{
    ID_COPY = 1000,
    ID_PASTE,
    ID_RECENT = 1100
};

void ShowAccelerators(HINSTANCE hInstance)
{
    //! [CCUIAccelerators]
    const CCUIAccelerators keys(hInstance, MAKEINTRESOURCE(100));
    const CCUString sTip = "Copy (" + keys.GetText(ID_COPY) + ")";  // "Copy (Ctrl+C)"
    //! [CCUIAccelerators]
}

void ShowBitmap(HDC hDC)
{
    //! [CCUIBitmap]
    const CCUIBitmap photo(CCUString("photo.bmp"), CUIBMP_FILE, nullptr);
    if (photo)
        CUIBmpBitBlt(hDC, 0, 0, photo, 0, 0, 0, 0, photo, FALSE);
    else
        CUDump("No picture: error %lu\n", GetLastError());
    //! [CCUIBitmap]
}

//! [CCUIFont]
class CHeading : public CCUIControl
{
public:
    CHeading() { SetFont(m_font); }
    // As the user's menus are written, only larger.
    void Enlarge()
    {
        LOGFONTA like = CCUIFont::Describe(CUIGetWinData()->hMenuFontBold);
        like.lfHeight = like.lfHeight * 3 / 2;
        CCUIFont font(like);
        SetFont(font);
        m_font = std::move(font);  // the one before is deleted when nobody has it any more
    }

private:
    CCUIFont m_font{"Arial", 14, FW_BOLD};
};
//! [CCUIFont]

//! [CCUICommandHandler]
class CClipboardCommands : public CCUICommandHandler
{
public:
    CClipboardCommands() : CCUICommandHandler(ID_COPY, 2) {}
    void HandleCommand(unsigned nID) override { CUDump(nID == ID_COPY ? "Copy\n" : "Paste\n"); }
    unsigned short GetState(unsigned nID) override
    {
        return CUICommandState(nID == ID_COPY || IsClipboardFormatAvailable(CF_TEXT));
    }
};
//! [CCUICommandHandler]

void ShowCommandMap()
{
    //! [CCUICommandMap]
    CCUICommandMap::Execute(ID_COPY);  // as if the user had chosen it
    //! [CCUICommandMap]
}

//! [CCUICommandView]
// A window whose caption is what a command is called.
class CCommandTitle : public CCUIWindow, private CCUICommandView
{
public:
    void Show(unsigned nID) { SetCommand(nID); }

private:
    void OnCommandChanged(unsigned short, const CCUString &sText) override { SetText(sText); }
};
//! [CCUICommandView]

//! [CCUIControl]
// A field of one colour, which tells its parent when it is clicked.
class CColorField : public CCUIControl
{
protected:
    void Paint(HDC hDC, const RECT &rect) override
    {
        Fill(hDC, rect, RGB(0, 96, 160));
        if (GetState() & CUI_STATE_FOCUSED)
            PaintFocus(hDC, rect);
    }
    void OnClick() override { TellParent(BN_CLICKED); }
};
//! [CCUIControl]

//! [CCUIControlWindow]
// In a layout: 80 pixels along it, and all of the room across.
class CPanel : public CCUIControlWindow
{
public:
    explicit CPanel(HWND hParent)
    {
        SetFixedSize(80);
        SetWindowColor(RGB(255, 255, 224));
        Create(nullptr, "", WS_CHILD | WS_VISIBLE, {0, 0, 0, 0}, hParent, 0);
    }
};
//! [CCUIControlWindow]

//! [CCUIDialog]
class CNameDialog : public CCUIDialog
{
public:
    CNameDialog() : CCUIDialog(GetModuleHandle(nullptr), MAKEINTRESOURCE(100)) {}
    CCUString m_sName;

protected:
    int ExchangeData(unsigned short nDirection) override
    {
        return ExchangeText(nDirection, 1001, m_sName, 40);
    }
};

CCUString AskName(CCUIWindow &parent)
{
    CNameDialog dialog;
    return dialog.DoModal(&parent) == IDOK ? dialog.m_sName : CCUString();
}
//! [CCUIDialog]

void ShowDialogTemplate(HINSTANCE hInstance)
{
    //! [CCUIDialogTemplate]
    SIZE size;
    const CCUIDialogTemplate dialog(hInstance, MAKEINTRESOURCE(100));
    if (dialog.GetSizeInPixels(size))
        CUDump("The dialog takes %ld by %ld pixels\n", size.cx, size.cy);
    //! [CCUIDialogTemplate]
}

//! [CCUIFrameWindow]
class CEditorFrame : public CCUIFrameWindow
{
public:
    void OnOpenFile(const CCUString &sPath) override  // named, dropped, or chosen again
    {
        SetDocument(sPath);
    }

protected:
    bool QueryClose() override { return !IsModified(); }
};

int RunEditor(int nShow)
{
    CEditorFrame frame;
    if (!frame.CreateFrame("Editor"))
        return 1;
    frame.ShowKept("Frame", nShow);
    return CCUIWindow::RunLoop();
}
//! [CCUIFrameWindow]

//! [CCUIHelpText]
// Shows the help of menu items in the caption of a window: frame.SetStatusBar(&bar, &help).
class CCaptionHelp : public CCUIHelpText
{
public:
    explicit CCaptionHelp(CCUIWindow &window) : m_window(window) {}
    void ShowHelp(const CCUString &sText) override { m_window.SetText(sText); }
    void ClearHelp() override { m_window.SetText("Editor"); }

private:
    CCUIWindow &m_window;
};
//! [CCUIHelpText]

//! [CCUIIdleCallback]
class CThumbnailMaker : public CCUIIdleCallback
{
public:
    CThumbnailMaker() { CCUIWindow::SetIdleCallback(this); }
    ~CThumbnailMaker() { CCUIWindow::SetIdleCallback(nullptr); }
    void OnIdle() override { CUDump("Nothing else to do: one more picture\n"); }
};
//! [CCUIIdleCallback]

void ShowMenu(CCUIWindow &window, POINT point)
{
    //! [CCUIMenu]
    CCUIMenu menu;
    menu.Append(ID_COPY, "&Copy\tCtrl+C");
    menu.Append(ID_PASTE, "&Paste\tCtrl+V");
    menu.Enable(ID_PASTE, false);
    menu.SetDefault(ID_COPY);
    window.DisplayPopupMenu(&menu, TPM_RIGHTBUTTON, point, nullptr);
    //! [CCUIMenu]
}

void ShowNotifyIcon(CCUIWindow &window, HINSTANCE hInstance)
{
    //! [CCUINotifyIcon]
    static CCUINotifyIcon s_icon;
    s_icon.SetCommandTarget(window);
    s_icon.SetDefaultCommand(ID_PASTE);  // what a double click does
    if (s_icon.Add(hInstance, MAKEINTRESOURCE(1), "Copier"))
        s_icon.ShowBalloon("Copier", "All files are copied.");
    //! [CCUINotifyIcon]
}

//! [CCUIOffScreenDC]
void PaintWithoutFlicker(HDC hDC, const RECT &area)
{
    if (const HDC hMemory = CUIGetOSDC()->GetDC(hDC, area.right, area.bottom)) {
        CUIDCFillSolidRect(hMemory, &area, GetSysColor(COLOR_WINDOW));
        TextOutA(hMemory, 8, 8, "Ready", 5);
        BitBlt(hDC, 0, 0, area.right, area.bottom, hMemory, 0, 0, SRCCOPY);
    }
    CUIGetOSDC()->ReleaseDC();
}
//! [CCUIOffScreenDC]

//! [CCUIRecentFiles]
// The item ID_RECENT of a frame's menu becomes the last eight files; a click opens one.
class CViewerFrame : public CCUIFrameWindow
{
public:
    CViewerFrame() : m_recent(this, ID_RECENT) {}
    void OnOpenFile(const CCUString &sPath) override { m_recent.Add(sPath); }

private:
    CCUIRecentFiles m_recent;
};
//! [CCUIRecentFiles]

//! [CCUIResourceCommands]
// In the string table: ID_COPY "&Copy\nCopies the selection." and so on.
class CEditCommands : public CCUIResourceCommands
{
public:
    CEditCommands() : CCUIResourceCommands(ID_COPY, 2) {}
    void HandleCommand(unsigned nID) override { CUDump("Command %u\n", nID); }
};
//! [CCUIResourceCommands]

int ShowSingleInstance()
{
    //! [CCUISingleInstance]
    CCUISingleInstance instance;
    if (instance.Start("Editor") == CCUISingleInstance::HandedOver)
        return 0;  // the first run has been told what to open
    //! [CCUISingleInstance]
    return CCUIWindow::RunLoop();
}

//! [CCUIWindow]
class CBlueWindow : public CCUIWindow
{
protected:
    int OnEraseBkgnd(HDC hDC) override
    {
        const RECT area = GetClientArea();
        CUIDCFillSolidRect(hDC, &area, RGB(0, 64, 128));
        return 1;
    }
    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }
};

int RunBlueWindow()
{
    CBlueWindow window;
    window.Create(nullptr, "Blue", WS_OVERLAPPEDWINDOW | WS_VISIBLE, {40, 40, 440, 340}, nullptr,
                  0);
    return CCUIWindow::RunLoop();
}
//! [CCUIWindow]

//! [CCUIWindowEventCallback]
class CFullScreenLog : public CCUIWindowEventCallback
{
public:
    explicit CFullScreenLog(CCUIControlWindow &window) { window.SetWindowEventCallback(this); }
    void OnWindowEvent(CCUString sEvent) override { CUDump("Event %s\n", sEvent.GetString()); }
};
//! [CCUIWindowEventCallback]

//! [CCUIWindowHook]
// Keeps the right button from a window.
class CNoRightButton : public CCUIWindowHook
{
public:
    int OnHookMessage(UINT message, WPARAM, LPARAM, long &result) override
    {
        result = 0;
        return message == WM_RBUTTONDOWN;
    }
};

void Calm(CCUIWindow &window)
{
    static CNoRightButton s_hook;
    window.InsertMessageHook(&s_hook);
}
//! [CCUIWindowHook]

void ShowData(HDC hDC)
{
    //! [CUIData]
    const HGDIOBJ hOldFont = SelectObject(hDC, CUIGetWinData()->hIconFont);
    TextOutA(hDC, 8, 8, "In the font of the desktop", 26);
    SelectObject(hDC, hOldFont);
    //! [CUIData]
}

//! [CUIResourceName]
// Takes MAKEINTRESOURCE(id) with UNICODE and without, as CCUIMenu and others do.
template <typename Wide>
HICON LoadOurIcon(HINSTANCE hInstance, const Wide *name)
{
    return LoadIconA(hInstance, CUIResourceName(name));
}
//! [CUIResourceName]
