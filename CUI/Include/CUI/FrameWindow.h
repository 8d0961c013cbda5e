#pragma once

/// @file
/// The main window of a program.

#include "CU/String.h"
#include "CUI/BarSide.h"
#include "CUI/ControlWindow.h"
#include "CUI/HelpText.h"
#include "CUI/Menu.h"
#include "CUI/ResourceName.h"

class CCUIFrameDocks;
class CCUIRecentFiles;

/// A top-level window that puts a menu, bars, one client window and a status bar together:
///
///     +--------------------------------------+
///     | menu                                 |
///     +--------------------------------------+
///     | bar at the top                       |
///     +-----+--------------------------------+
///     | bar |                                |
///     | at  |            client              |
///     | the |                                |
///     | left|                                |
///     +-----+--------------------------------+
///     | status bar                           |
///     +--------------------------------------+
///
/// A menu that is open in it or in a window that it owns is closed before the frame's menu or full
/// screen changes, and when its size does (from Windows 98 and the service pack 3 of NT 4 on).
///
/// It routes commands (CCUIWindow::RouteCommands), shows their help texts while a menu is open,
/// gives the focus back to the child that had it, and asks before it closes. Commands are refreshed
/// (CCUICommandMap::IdleUpdate) before it is shown, so that its first painting has their states.
/// None of the windows put together here is owned: their objects are the program's, usually members
/// of its frame, and may go at any time. For the user-interface thread only.
class CCUIFrameWindow : public CCUIWindow
{
public:
    /// Bound to no window; routes commands.
    CUI_API CCUIFrameWindow();
    CUI_API ~CCUIFrameWindow() override;

    /// Makes the window, hidden, where the system likes it. The name is that of the program, in the
    /// title behind the document's. 1, or 0 on failure. Create and CreateEx may be called instead.
    CUI_API int CreateFrame(const char *pszProgram);

    /// A null class name becomes "pzl-FrameWindow", a class with the program's icon. A failed
    /// registration is reported as "CUIWindowClassRegister(CUI_CLASS_FRAMEWINDOW)". Children are
    /// clipped.
    CUI_API int PreCreate(CREATESTRUCTA *pCreate) override;
    /// The first frame becomes the main frame.
    CUI_API void PostCreate() override;

    // --- The main frame ---

    /// The frame whose end ends the program: when its window is destroyed, WM_QUIT is posted with
    /// exit code 0. It is the first one that is created while there is none; null: none.
    CUI_API static CCUIFrameWindow *GetMainFrame();
    /// Makes this frame the main frame in the place of the one that there is.
    CUI_API void MakeMainFrame();

    // --- Menu and keys ---

    /// Puts a menu bar on, and destroys the former one; null: none. It goes with the window. 1, or
    /// 0 when it stays the caller's: no window, no menu, or the system refuses. During full screen
    /// the menu comes back with the rest.
    /// @{
    CUI_API int SetMenu(HMENU hMenu);
    int SetMenu(const CCUIMenu &menu) { return SetMenu(menu.GetHandle()); }
    /// @}
    /// Loads a menu resource; 0 when there is none.
    /// @{
    CUI_API int SetMenu(HINSTANCE hInstance, const char *name);
    template <typename Wide>
    int SetMenu(HINSTANCE hInstance, const Wide *name)
    {
        return SetMenu(hInstance, CUIResourceName(name));
    }
    /// @}
    /// The menu bar, also while full screen hides it; null: none.
    CUI_API HMENU GetMenu() const;

    using CCUIWindow::SetAccelerators;
    /// Loads a table of accelerators; 0 when there is none. The keys work in all that is inside the
    /// frame, and not while the frame is disabled.
    /// @{
    CUI_API int SetAccelerators(HINSTANCE hInstance, const char *name);
    template <typename Wide>
    int SetAccelerators(HINSTANCE hInstance, const Wide *name)
    {
        return SetAccelerators(hInstance, CUIResourceName(name));
    }
    /// @}

    // --- What is inside ---

    /// Puts a bar, a child of the frame, behind the others at its side, as thick as its
    /// GetFixedSize() and as long as the room that the bars before it have left; added again, it
    /// goes to the other side and keeps its turn. A hidden bar takes no room. 1, or 0 where it has
    /// no window in this frame.
    CUI_API int AddBar(CCUIControlWindow *pBar, CUIBarSide side);
    /// The same of a bar that knows its side itself, as a control bar does, which the user drags:
    /// its GetSide() is asked with each layout.
    template <typename Bar>
    int AddBar(Bar *pBar)
    {
        return AddBar(pBar, CUI_BAR_TOP, [](CCUIControlWindow *pAsked) {
            return static_cast<Bar *>(pAsked)->GetSide();
        });
    }
    /// The frame forgets the bar, which stays where it is.
    CUI_API void RemoveBar(CCUIControlWindow *pBar);
    /// Puts a status bar, a child of the frame, below everything; null: none. pHelp shows the help
    /// texts of menus for as long as the bar's window lives, usually the bar itself; null: nobody.
    /// @{
    CUI_API void SetStatusBar(CCUIControlWindow *pStatusBar, CCUIHelpText *pHelp);
    template <typename Bar>
    void SetStatusBar(Bar *pStatusBar)
    {
        SetStatusBar(pStatusBar, pStatusBar);
    }
    /// @}
    /// Gives a child of the frame all the room that is left, and the focus; null: nobody. The
    /// former one stays where it is, to be hidden or destroyed.
    CUI_API void SetClient(CCUIWindow *pClient);
    /// Gives the focus to the client, as a bar does that is done with the keyboard.
    CUI_API void FocusClient();
    /// Puts all children to their places in one step; what stands right is left alone. The frame
    /// does so by itself when its size, a bar's or its visibility changes.
    CUI_API void Layout();

    // --- The title ---

    /// "document* - program": the last part of a path, a mark while it is modified, and the name
    /// that the frame was created with. Without a document ("") the title is the program's name.
    /// @{
    CUI_API void SetDocument(const char *pszPath);
    CUI_API void SetModified(bool bModified);
    const CCUString &GetDocument() const { return m_sDocument; }  ///< as it was set
    bool IsModified() const { return m_bModified; }
    /// @}

    // --- Place ---

    /// Shows the frame at the place, in the size and in the state (normal or maximised) that it had
    /// when it was last destroyed, which the settings keep in that section
    /// (CUI/Settings.h), value "Placement". A size of other dots per inch is scaled and then kept
    /// on the screen, what is larger than the screen is cut, and what no screen shows any more is
    /// moved onto the nearest. nShow: as WinMain gets it; minimised and maximised starts are
    /// honoured.
    CUI_API void ShowKept(const char *pszSection, int nShow = SW_SHOWNORMAL);
    /// Restores a minimised frame and brings it, or the dialog that it waits for, to the front.
    CUI_API void BringToFront();

    /// Covers the frame's screen, with neither caption nor menu nor bars, or goes back. Escape goes
    /// back too where nobody in the frame takes it. 1, or 0 without a window.
    CUI_API int SetFullScreen(bool bFull);
    bool IsFullScreen() const { return m_bFullScreen; }  ///< what was set last

    // --- What comes from outside ---

    /// Whether files may be dropped on the frame. The first drop loads shell32.dll; without it
    /// nothing is opened, which is traced.
    CUI_API void AcceptFiles(bool bAccept);

    /// Asked to open a file by the user: dropped, chosen from the recent files or named in a
    /// command line. sPath is the whole path. The base does nothing. While the frame is disabled,
    /// as a dialog's owner is, files from outside are not opened, which is traced: the dialog comes
    /// to the front.
    CUI_API virtual void OnOpenFile(const CCUString &sPath);
    /// The command line of this program, for which its entry calls it, or of another run of it
    /// (CUI/SingleInstance.h), which was started in that folder; "" is the current one. The base
    /// opens the arguments that begin neither with "/" nor with "-", one after the other.
    CUI_API virtual void OnCommandLine(const CCUString &sCommandLine, const CCUString &sFolder);

    /// The accelerators come first. Behind them, of what nobody inside takes: Alt with a character
    /// that is a mnemonic in the frame (CUITranslateMnemonic), F6 for the next control bar, with
    /// Shift the one before (CCUIControlBar::ActivateNext), and the Escape of full screen.
    CUI_API int PreTranslateMessage(MSG *pMsg) override;

protected:
    /// Whether the frame may close: asked before OnClose destroys the window, and before the
    /// session ends, which then destroys it as well. To be overridden where work may be lost; the
    /// base answers true.
    CUI_API virtual bool QueryClose();
    /// Files were dropped at a client position. The base opens them, one after the other.
    CUI_API virtual void OnFilesDropped(const CCUString *pFiles, int nFiles, const POINT &point);
    /// Full screen begins or ends: the bars are hidden or shown, the frame is about to be moved.
    /// What else is not to be seen with them is hidden here. Drawing is off meanwhile, so that all
    /// of it is seen in one step: the system takes the frame and what is inside for hidden
    /// (IsWindowVisible), and shows what is painted here no more than the rest. IsShown tells the
    /// truth about a window inside. The base does nothing.
    CUI_API virtual void OnFullScreen(bool bFull);

    /// Lays out, remembers and gives back the focus, shows help texts, keeps the place, posts the
    /// end: an override calls its base.
    /// @{
    CUI_API long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    CUI_API int OnCreate(CREATESTRUCTA *pCreate) override;
    CUI_API void OnDestroy() override;
    CUI_API void OnClose() override;
    CUI_API void OnActivate(UINT nState, UINT nMinimized, HWND hOther) override;
    CUI_API void OnSize(UINT nType, int cx, int cy) override;
    CUI_API void OnSetFocus(HWND hOld) override;
    CUI_API void OnParentNotify(UINT nEvent, UINT nID, LPARAM lParam) override;
    CUI_API void OnMenuSelect(UINT nItem, UINT nFlags, HMENU hMenu) override;
    CUI_API void OnInitMenuPopup(HMENU hMenu, UINT nIndex, int bSystemMenu) override;
    CUI_API void OnDropFiles(HDROP hDrop) override;
    CUI_API int OnQueryEndSession(UINT nReason) override;
    CUI_API void OnEndSession(int bEnding, UINT nReason) override;
    CUI_API void OnDisplayChange(UINT nBitsPerPixel, int cx, int cy) override;
    CUI_API void OnDpiChanged(UINT nDpi, const RECT *pSuggested) override;
    /// @}

private:
    friend class CCUIFrameDocks;
    friend class CCUIRecentFiles;

    typedef CUIBarSide SideOf(CCUIControlWindow *pBar);
    CUI_API int AddBar(CCUIControlWindow *pBar, CUIBarSide side, SideOf *pSideOf);
    void TakeProgram(const CREATESTRUCTA *pCreate);
    bool TranslateOwnKey(const MSG &msg);
    bool MayOpen(const CCUString &sPath);
    bool Ask();
    void End();
    void KeepPlacement();
    void UpdateTitle();
    bool RefreshCommands();
    bool CloseMenu();
    void EnterFullScreen();
    void LeaveFullScreen();
    void CoverScreen();

    CCUIFrameDocks *m_pDocks;
    CCUIRecentFiles *m_pRecentFiles;  // whose items the menus have
    CCUString m_sProgram;
    CCUString m_sDocument;
    CCUString m_sSection;      // of the settings; "": the place is not kept
    WINDOWPLACEMENT m_before;  // of full screen, as are the next two
    LONG m_nStyleBefore;
    HMENU m_hMenuBefore;
    HWND m_hFocus;  // had the focus when the frame was deactivated
    bool m_bModified;
    bool m_bFullScreen;  // what was set last, which m_bCovering follows
    bool m_bCovering;
    bool m_bSwitching;  // between the two
    bool m_bAsking;     // QueryClose is under way
    bool m_bLayingOut;
    bool m_bLayOutAgain;  // something has changed meanwhile
    bool m_bRefreshing;   // the commands, before the frame is seen
};
