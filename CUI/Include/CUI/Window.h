#pragma once

/// @file
/// Windows: objects, messages, loops.

#include "CU/Timer.h"
#include "CUI/Platform.h"
// HDROP, and what asks it for its files.
#include <shellapi.h>

class CCUIMenu;
class CCUString;
class CCUIWindow;
class CCUIWindowHookList;

/// Sees a window's messages before the window does; see CCUIWindow::InsertMessageHook. It must be
/// removed before it dies.
class CUI_API CCUIWindowHook
{
public:
    /// Answers nonzero when it handled the message and wrote `result`: nobody else sees it then.
    virtual int OnHookMessage(UINT message, WPARAM wParam, LPARAM lParam, long &result) = 0;
    /// The object has let go of its window, which was destroyed or goes on without it. The hook
    /// stays inserted, and may be removed here. The base does nothing.
    virtual void OnUnbound() {}

protected:
    ~CCUIWindowHook() = default;
};

/// Called at the end of every idle pass of a message loop; see CCUIWindow::SetIdleCallback.
class CUI_API CCUIIdleCallback
{
public:
    /// Runs on the thread of the loop, which waits for it.
    virtual void OnIdle() = 0;

protected:
    ~CCUIIdleCallback() = default;
};

/// One object bound to one window. The window is subclassed: each of its messages reaches the
/// message hooks and then one virtual handler of the object. The object may exist before its window
/// and outlive it; destroyed first, it destroys the window.
///
/// Every base handler passes its message to default processing: a handler that is overridden and
/// does not call its base swallows the message. A handler may destroy its own object; once it has
/// called Destroy or Detach, it must not call its base any more: there is no window left for
/// default processing, which reports "Exist()" and goes to the system without one. A window's
/// object is used on the thread of the window only; FromHandle may be called anywhere. Each thread
/// may create windows, at the same time as others.
class CUI_API CCUIWindow : public CCUTimer
{
public:
    /// Bound to no window.
    CCUIWindow();
    CCUIWindow(const CCUIWindow &) = delete;
    CCUIWindow &operator=(const CCUIWindow &) = delete;

    /// Destroys the window if there still is one, and traces that.
    ~CCUIWindow() override;

    // --- The virtual operations, in slot order; the handlers among them are protected, below. ---

    /// Called before a creation with what is about to be created, to be changed at will; 0 cancels.
    /// The base turns a null class name into the framework's plain window class, registered here.
    virtual int PreCreate(CREATESTRUCTA *pCreate);

    /// Creates a window and binds it before its first message. `rect` is in the coordinates that
    /// CreateWindow takes; `nID` is the identifier of a WS_CHILD window, else ignored. 1 on
    /// success, 0 on failure (the object has no window then, unless a handler gave it another). An
    /// object that has a window keeps it: 0, reported as "m_hWnd == 0". The same goes for a call
    /// from its own handlers while the window is being created, and for an object whose PreCreate
    /// created a window. Several threads may create windows at once, each for objects of its own.
    /// @{
    virtual int Create(const char *className, const char *windowName, DWORD style, const RECT &rect,
                       HWND hParent, UINT nID);
    virtual int CreateEx(DWORD exStyle, const char *className, const char *windowName, DWORD style,
                         int x, int y, int cx, int cy, HWND hParent, HMENU hMenuOrID,
                         void *param = nullptr);
    /// @}

    /// Called after a successful creation, when CreateWindow has returned.
    virtual void PostCreate();

    /// Destroys the window. 1 on success, 0 when there is none (any more) or it belongs to another
    /// thread.
    virtual int Destroy();

protected:
    /// Takes the message's arguments apart and calls its handler.
    virtual long WindowProc(UINT message, WPARAM wParam, LPARAM lParam);

    /// Every message without a handler of its own.
    virtual long OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

    /// What this window, as a child, sent to its parent, and the parent gives back before it looks
    /// at it itself: a WM_NOTIFY, and any other reflected message (WM_COMMAND, WM_CTLCOLOR…,
    /// WM_DRAWITEM, WM_MEASUREITEM, WM_COMPAREITEM, WM_DELETEITEM, WM_HSCROLL, WM_VSCROLL,
    /// WM_CHARTOITEM, WM_VKEYTOITEM). Nonzero: handled, `result` is the answer.
    /// @{
    virtual int OnReflectedNotification(UINT nID, NMHDR *pHeader, long &result);
    virtual int OnReflectedMessage(UINT message, WPARAM wParam, LPARAM lParam, long &result);
    /// @}

    /// WM_CREATE; -1 ends the creation.
    virtual int OnCreate(CREATESTRUCTA *pCreate);
    /// The base unbinds the object and then lets the window's own procedure have the message.
    virtual void OnDestroy();
    /// The message of that name, as the system documents it.
    /// @{
    virtual void OnClose();
    virtual void OnActivate(UINT nState, UINT nMinimized, HWND hOther);
    virtual void OnSize(UINT nType, int cx, int cy);
    /// @}
    /// The base gives the message back to the child that sent it, before default processing. Of a
    /// window that routes commands, the base OnCommand then carries out the command, if it is one.
    /// @{
    virtual long OnNotify(UINT nID, NMHDR *pHeader);
    virtual void OnCommand(UINT nCode, UINT nID, HWND hControl);
    /// @}
    /// hDC is what the sender of WM_PAINT gave, null from the system: a handler paints between
    /// BeginPaint and EndPaint.
    virtual void OnPaint(HDC hDC);
    /// The message of that name, as the system documents it.
    virtual int OnEraseBkgnd(HDC hDC);
    /// Mouse positions are signed client pixels.
    /// @{
    virtual void OnLButtonDown(UINT nFlags, POINT &point);
    virtual void OnLButtonUp(UINT nFlags, POINT &point);
    virtual void OnLButtonDblClk(UINT nFlags, POINT &point);
    virtual void OnRButtonDown(UINT nFlags, POINT &point);
    virtual void OnRButtonUp(UINT nFlags, POINT &point);
    virtual void OnRButtonDblClk(UINT nFlags, POINT &point);
    /// @}
    /// Screen pixels; (-1, -1) when asked for by the keyboard. The base shows the context menu.
    virtual void OnContextMenu(HWND hWnd, POINT &point);
    /// Signed client pixels.
    virtual void OnMouseMove(UINT nFlags, POINT &point);
    /// For a top-level window the base of this one and of OnWinIniChange refreshes the shared GDI
    /// data (CUIGetWinData), once a change for all windows, and passes the message on to all
    /// windows inside.
    virtual void OnSysColorChange();
    /// The message of that name, as the system documents it.
    /// @{
    virtual void OnShowWindow(int bShow, int nStatus);
    virtual int OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMessage);
    /// @}
    /// As OnSysColorChange; `section` may be null.
    virtual void OnWinIniChange(WPARAM nAction, const char *section);
    /// The message of that name, as the system documents it; another window may be null.
    /// @{
    virtual void OnSetFocus(HWND hOld);
    virtual void OnKillFocus(HWND hNew);
    virtual void OnParentNotify(UINT nEvent, UINT nID, LPARAM lParam);
    /// @}
    /// The framework's WM_USER + 0x38: keeps the flag that GetShowToolTips answers.
    virtual void OnShowToolTips(int bShow);
    /// The base gives the message back to the control that it is about; that of a menu goes to the
    /// CCUIMenu, if it is one's.
    /// @{
    virtual int OnMeasureItem(UINT nID, MEASUREITEMSTRUCT *pMeasure);
    virtual int OnDrawItem(UINT nID, DRAWITEMSTRUCT *pDraw);
    /// @}
    /// The message of that name, as the system documents it. Of a window that routes commands, the
    /// base OnInitMenuPopup refreshes the menu: fill it before you call that, also for a CCUIMenu,
    /// which draws the items that it finds then. The base OnMenuChar finds a CCUIMenu's mnemonics.
    /// @{
    virtual void OnMenuSelect(UINT nItem, UINT nFlags, HMENU hMenu);
    virtual void OnInitMenuPopup(HMENU hMenu, UINT nIndex, int bSystemMenu);
    virtual long OnMenuChar(UINT nChar, UINT nFlags, HMENU hMenu);
    virtual void OnCancelMode();
    virtual void OnCaptureChanged(HWND hNew);
    /// @}
    /// The framework's window-state notification, WM_USER + 0x35.
    virtual void OnSetWindowState(UINT nState);

public:
    /// Sees a queued message of this window, of its children and of the popups that it owns, with
    /// all in them, before it is translated and dispatched. Nonzero: consumed. The base tries the
    /// accelerators.
    virtual int PreTranslateMessage(MSG *pMsg);

protected:
    // --- Handlers of further messages. Their bases hand the message to OnMessage, as if it had no
    // handler of its own, and it is answered with what that says; else with 0 (the X buttons' with
    // 1, which the system wants where they are handled). ---

    /// Keys: nKey is a VK_ code, nChar a character of the ANSI code page (one of two bytes comes as
    /// two messages), nRepeat how many times the key was pressed, nFlags the upper half of lParam
    /// (KF_EXTENDED, KF_REPEAT and so on). The Sys ones come with Alt, or without a focus window:
    /// their bases open the menus.
    /// @{
    virtual void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags);
    virtual void OnKeyUp(UINT nKey, UINT nRepeat, UINT nFlags);
    virtual void OnChar(UINT nChar, UINT nRepeat, UINT nFlags);
    virtual void OnSysKeyDown(UINT nKey, UINT nRepeat, UINT nFlags);
    virtual void OnSysKeyUp(UINT nKey, UINT nRepeat, UINT nFlags);
    virtual void OnSysChar(UINT nChar, UINT nRepeat, UINT nFlags);
    /// @}
    /// The wheel, turned away from the user (H: to the right) where nDelta is positive; a notch is
    /// WHEEL_DELTA, and a finer wheel sends parts of it. nFlags are MK_ flags; the position is in
    /// screen pixels. The bases let the system ask the parent. OnMouseWheel hears of the wheel on
    /// Windows 95 and NT 3.51 too, from the mouse's own software (MSH_MOUSEWHEEL).
    /// @{
    virtual void OnMouseWheel(UINT nFlags, int nDelta, POINT &point);
    virtual void OnMouseHWheel(UINT nFlags, int nDelta, POINT &point);
    /// @}
    /// The mouse has left the client area; comes once after TrackMouseLeave.
    virtual void OnMouseLeave();
    /// As the left button's. nButton is 1 or 2: back and forward on most mice.
    /// @{
    virtual void OnMButtonDown(UINT nFlags, POINT &point);
    virtual void OnMButtonUp(UINT nFlags, POINT &point);
    virtual void OnMButtonDblClk(UINT nFlags, POINT &point);
    virtual void OnXButtonDown(UINT nFlags, UINT nButton, POINT &point);
    virtual void OnXButtonUp(UINT nFlags, UINT nButton, POINT &point);
    virtual void OnXButtonDblClk(UINT nFlags, UINT nButton, POINT &point);
    /// @}
    /// nCode is an SB_ code. nPos counts with SB_THUMBTRACK and SB_THUMBPOSITION only, and is cut
    /// to 16 bits: GetScrollInfo has the whole position. hScrollBar is the control, or null for the
    /// window's own bar. The base gives the message back to the control.
    /// @{
    virtual void OnHScroll(UINT nCode, UINT nPos, HWND hScrollBar);
    virtual void OnVScroll(UINT nCode, UINT nPos, HWND hScrollBar);
    /// @}
    /// Files were dropped on the window, which has the style WS_EX_ACCEPTFILES: DragQueryFile lists
    /// them, and the handler calls DragFinish, which the base does not.
    virtual void OnDropFiles(HDROP hDrop);
    /// The limits of the window's size, to be changed; also while it is created, before OnCreate.
    virtual void OnGetMinMaxInfo(MINMAXINFO *pInfo);
    /// The session is about to end: 0 objects. nReason: ENDSESSION_LOGOFF, or 0.
    virtual int OnQueryEndSession(UINT nReason);
    /// What was asked is settled: the session ends (the process may go as soon as this returns), or
    /// it does not.
    virtual void OnEndSession(int bEnding, UINT nReason);
    /// A command of the system menu, the caption or the Alt key: SC_CLOSE and so on, without the
    /// four lowest bits, which are the system's own. lParam: a position or a character.
    virtual void OnSysCommand(UINT nCommand, LPARAM lParam);
    /// The screen has another size or depth.
    virtual void OnDisplayChange(UINT nBitsPerPixel, int cx, int cy);
    /// The window of a program that says it is aware of such changes has got to a screen of nDpi
    /// dots per inch. The handler moves it to the suggested rectangle.
    virtual void OnDpiChanged(UINT nDpi, const RECT *pSuggested);
    /// The window has been enabled or disabled.
    virtual void OnEnable(int bEnable);
    /// What of the keyboard the window wants from the dialog around it: DLGC_ flags. pMsg, the key
    /// message that the dialog asks about, may be null.
    virtual UINT OnGetDlgCode(const MSG *pMsg);
    /// The client area's new top left corner: in the parent's client pixels, or those of the
    /// screen.
    virtual void OnMove(int x, int y);
    /// Another program's data, to be read only and copied: it goes when the handler returns.
    /// hSender may be null. Nonzero: taken.
    virtual int OnCopyData(HWND hSender, const COPYDATASTRUCT *pData);

public:
    // --- Binding ---

    /// Binds the object to an existing window of this process. An object that was bound to it
    /// before loses it. Asserts "!m_pOldProc" and "!m_hWnd". Stays unbound when the window cannot
    /// carry a property (no window, or another process's).
    void Attach(HWND hWnd);

    /// Unbinds and returns the window, which lives on with the procedure that it had. A procedure
    /// that somebody installed after Attach stays; what it passes on reaches the former procedure.
    HWND Detach();

    /// The object that is bound to the window, or null. No call to the system, unless somebody has
    /// begun to destroy the window: a procedure that was installed later may keep the end of it to
    /// itself, and then only the system knows.
    static CCUIWindow *FromHandle(HWND hWnd);

    /// Arms and disarms the creation hook: the next window that this thread creates is bound to
    /// this object before its first message. The windows of the input method (classes "IME" and
    /// "MSCTFIME UI"), which the system makes on the way, are passed over, also when one is what is
    /// meant. One object of a thread may wait at a time; asserts "!s_pHookWin", "!s_hNextHook",
    /// "m_hWnd == 0" and "s_hNextHook" (Hook), "s_pHookWin" and "s_hNextHook" (UnHook). The wait
    /// also ends with the object, on whichever thread it is destroyed, and with the thread.
    /// @{
    void Hook();
    void UnHook();
    /// @}

    /// Message hooks are asked in the order of insertion. They are not owned; they may be inserted
    /// and removed while a message passes through them; a hook that is inserted meanwhile sees
    /// messages from the next one on. One that is inserted twice is asked twice and removed at
    /// once; null is ignored. Where a hook takes WM_DESTROY there is no OnDestroy, and the object
    /// is unbound at WM_NCDESTROY, whether or not a hook takes that too.
    /// @{
    void InsertMessageHook(CCUIWindowHook *pHook);
    void RemoveMessageHook(CCUIWindowHook *pHook);
    /// @}

    // --- State ---

    /// The window; null when the object is not bound to one.
    /// @{
    HWND GetHandle() const { return m_hWnd; }
    operator HWND() const { return m_hWnd; }
    /// @}
    /// Whether the window exists (1 or 0). A handle alone does not tell: the system may have given
    /// it to another window meanwhile.
    int Exist() const;
    /// Whether a run of the dialog is under way (1 or 0).
    int IsActive() const { return m_bActive; }

    /// Where PerformPreTranslation goes on from this window when its parent is no framework window;
    /// null: nowhere. The program alone sets it: without it Tab in a control that is a framework
    /// window, in a panel that is none, does not reach the dialog around the panel.
    /// @{
    HWND GetOwner() const { return m_hWndOwner; }
    void SetOwner(HWND hOwner) { m_hWndOwner = hOwner; }
    /// @}

    /// The window that a dialog of this window must have as its owner: this one or, for a child,
    /// the nearest ancestor that is not a child. Where the chain of parents goes on to another,
    /// enabled top-level window, that one is disabled and stored in *phDisabled (else null), to be
    /// enabled again by the caller; with a null phDisabled none is.
    HWND GetSafeOwner(HWND *phDisabled);
    /// The end of the chain of parents and owners.
    HWND GetTopLevelWindow() const;

    /// Copies the table; a count of 0 removes it. 1, or 0 on failure: the former table is gone then
    /// as well.
    int SetAccelerators(ACCEL *pAccelerators, int nCount);
    /// What SetAccelerators made; the object's. Null: there is none.
    HACCEL GetAccelerators() const { return m_hAccelerators; }

    /// The menu that the base OnContextMenu shows; not owned. The base OnDestroy drops it.
    /// @{
    void SetContextMenu(CCUIMenu *pMenu) { m_pContextMenu = pMenu; }
    CCUIMenu *GetContextMenu() const { return m_pContextMenu; }
    /// @}
    /// Shows a menu at a screen position with TrackPopupMenu's flags and waits; its commands come
    /// to this window. Clicks inside pExclude (null: none) do not close it where the system has
    /// that. With TPM_RETURNCMD the chosen identifier, else nonzero on success.
    int DisplayPopupMenu(CCUIMenu *pMenu, unsigned nFlags, POINT &point, const RECT *pExclude);

    /// Whether the commands that come to the window (from menus, accelerators and the clicks of
    /// controls) go to their handlers in the CCUICommandMap; false at first. A command is first
    /// offered to the control that sent it, and to OnCommand of this window; then, from a WS_CHILD
    /// window, to the nearest window above that routes commands, up to the one that is no child; at
    /// last to its handler (CCUICommandMap::Execute), which is not called for a disabled one. What
    /// has no handler gets default processing. Popup menus of a window that routes are refreshed as
    /// they open (CCUICommandMap::UpdateMenu); the system menu is not.
    /// @{
    void RouteCommands(bool bRoute) { m_bRoutesCommands = bRoute; }
    bool RoutesCommands() const { return m_bRoutesCommands; }
    /// @}

    /// Asks for one OnMouseLeave, when the mouse leaves the client area, or soon if it is not
    /// there: to be called in OnMouseMove. 1, or 0 where the system has nothing of the kind: on
    /// Windows 95, unless the program has loaded a comctl32.dll of version 4.70 or above (Internet
    /// Explorer 3).
    int TrackMouseLeave();

    /// What the last OnShowToolTips said; 1 at first.
    int GetShowToolTips() const { return m_bShowToolTips; }

    // --- What programs do daily. Without a window nothing is done, and nothing answered. ---

    void Show(bool bShow = true);  ///< or hides it; a top-level window becomes the active one
    bool IsShown() const;          ///< and not hidden, whatever its parents are
    void Enable(bool bEnable);     ///< or disables it
    bool IsEnabled() const;        ///< and not disabled, whatever its parents are
    void Focus();                  ///< gives it the keyboard focus
    bool HasFocus() const;         ///< itself, not a child
    /// The caption, or the text of a control, of any length. Null counts as "".
    /// @{
    void SetText(const char *pszText);
    CCUString GetText() const;
    /// @}
    /// The whole window, in the parent's client pixels or, of a top-level window, in those of the
    /// screen. Move leaves order and activation as they are.
    /// @{
    RECT GetPlace() const;
    void Move(const RECT &place);
    /// @}
    RECT GetClientArea() const;                  ///< in client pixels: left and top are 0
    void Invalidate(const RECT *prc = nullptr);  ///< to be painted soon; null: all of it

    // --- Messages ---

    /// Default processing: the procedure that was replaced when the object was bound, or
    /// DefWindowProc. Asserts "Exist()".
    long DefProc(UINT message, WPARAM wParam, LPARAM lParam);
    /// Default processing of the message that is being handled; 0 outside of a message.
    long Default();

    /// Sends the message to all children and their children, parents first. *pnSent (may be null)
    /// grows by the number of windows that got it. 1, or 0 when the window is none.
    static int SendMessageToDescendants(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam,
                                        int *pnSent);
    /// Gives the message that is being handled back to the child that sent it; 1 when the child is
    /// a framework window and handled it: *pResult is its answer.
    int ReflectLastMessage(HWND hChild, long *pResult);

    // --- The message loop ---

    /// Runs the thread's loop until WM_QUIT; returns its exit code.
    ///
    /// In this loop and in ModalLoop, when the queue goes empty after a message that counts as
    /// activity, one idle pass refreshes the commands (CCUICommandMap::IdleUpdate) and calls the
    /// idle callback. Mouse moves, timers, paints, multimedia notifications, messages from WM_USER
    /// up and the framework's own do not count. With the debug switch "MessageDebug"
    /// ("\Debug\Window") at 1 or above, messages and idle passes that take more than a second are
    /// traced.
    static int RunLoop();
    /// Runs the loop until m_bEnded is set, the window has gone without that, the object goes to
    /// another window or it is destroyed, which is reported as "!m_bDead". WM_QUIT ends it too and
    /// is posted again, with exit code 0, for the loop around it. Only CCUIDialog sets m_bEnded by
    /// itself, and clears it for its next run: the loop neither sets nor clears it. A class with
    /// modal runs of its own clears it before the loop and sets it in OnDestroy.
    void ModalLoop();
    /// Fetches one message, waiting for it, and handles it. 0 for WM_QUIT, else 1.
    static int PumpMessage(MSG *pMsg);
    /// Offers the message to the framework windows from its target up, each parent in turn, after a
    /// popup its owner; nonzero when one took it. From a framework window whose parent is not one,
    /// the way leads to GetOwner instead. After a key message (down or up) that nobody took, the
    /// cursor is set to where it is, so that the window under it gets WM_SETCURSOR.
    static int PerformPreTranslation(MSG *pMsg);
    /// Handles waiting messages for |nMilliseconds| at the most; with 0 it handles one message. A
    /// negative number also waits for further messages until that time has passed. Restricted, it
    /// handles only timers, multimedia notifications and the first three messages of the
    /// framework's message window, if there is one. WM_QUIT ends it and is posted again.
    static void IdleLoop(long nMilliseconds, int bRestricted);
    /// Cancels all dialogs that the window owns, the deepest first: presses the control with the
    /// identifier IDCANCEL, then, if the dialog still exists, IDNO. Tooltips are left alone.
    static void AbortDialog(HWND hWnd);
    /// Sets who is called at the end of each idle pass; not owned. Null: nobody.
    static void SetIdleCallback(CCUIIdleCallback *pCallback);
    /// A number of milliseconds that a program keeps here for its idle work; 0 at first.
    /// @{
    static void SetIdleTime(long nMilliseconds);
    static long GetIdleTime();
    /// @}
    /// CUGetTime at the start of RunLoop and at the last idle pass; 0 before.
    /// @{
    static unsigned long GetLoopStartTime();
    static unsigned long GetLastIdleTime();
    /// @}

protected:
    class CWatch;

    /// To be called with the result of a creation that the hook was armed for. Returns 1 when the
    /// object is bound to that window. Otherwise it undoes the creation and the hook, and returns
    /// 0; a window that a handler gave the object meanwhile stays.
    int FinishCreation(HWND hWnd);
    /// Whether the object has a window. A window that has gone without the object's hearing of it
    /// is let go of.
    bool HasWindow();
    /// The nearest window above this one, which is a child, that routes commands, up to the first
    /// that is no child; or null.
    CCUIWindow *FindRouter() const;

    /// A number that no message has.
    enum : UINT
    {
        NoMessage = 0xFFFFFFFF  ///< the number in a MSG that the system has not written yet
    };

    HWND m_hWnd;         ///< null: bound to none
    WNDPROC m_pOldProc;  ///< the procedure that the binding replaced
    HWND m_hWndOwner;    ///< what GetOwner answers
    int m_bActive;       ///< in a run of a dialog
    int m_bEnded;        ///< the modal run must stop; see ModalLoop
    /// What its modal loop is about to fetch (NoMessage in it), or handles; null: neither.
    const MSG *m_pAwaited;
    int m_bDead;  ///< the destructor has begun

private:
    class CMessage;
    class CMessages;
    class CAnswer;
    struct CLife;

    static LRESULT CALLBACK StaticWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK CreationHookProc(int nCode, WPARAM wParam, LPARAM lParam);
    static long CallProcedure(WNDPROC pProc, HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT ForwardUnbound(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    bool CallHooks(const CMessage &message, long &result);
    HWND FindReflectChild(UINT message, WPARAM wParam, LPARAM lParam) const;
    long ReflectOrDefault(HWND hChild);
    bool RefusesWindow();
    long DispatchFurther(UINT message, WPARAM wParam, LPARAM lParam);
    long HandOn();
    void RouteCommand(UINT nCode, UINT nID, HWND hControl);
    CMessage *CurrentMessage();
    void ForgetMessages();
    void EndLife();
    long DefProcNow(UINT message, WPARAM wParam, LPARAM lParam);

    HACCEL m_hAccelerators;
    CCUIMenu *m_pContextMenu;
    int m_bShowToolTips;
    bool m_bRoutesCommands;
    int m_bMissedDetach;     // the window died attached: OnDestroy did not reach the base
    HWND m_hCreated;         // what the creation under way has bound
    CMessages *m_pMessages;  // being handled; null: there has been none yet
    CLife *m_pLife;          // shared with the watches; null: there has been none yet
    CCUIWindowHookList *m_pHooks;
};

/// Outlives the object for as long as somebody watches it. A watch that never ends, since its
/// function was left by an exception or with its thread, costs these bytes and no more.
struct CCUIWindow::CLife
{
    CCUIWindow *pWindow;  ///< null: gone
    int nUsers;           ///< the object and its watches
};

/// Tells, on the stack of a function that calls user code, whether the object still stands.
class CUI_API CCUIWindow::CWatch
{
public:
    /// The object must stand, and is watched until one of the two goes.
    explicit CWatch(CCUIWindow *pWindow);
    ~CWatch();
    CWatch(const CWatch &) = delete;
    CWatch &operator=(const CWatch &) = delete;
    /// Whether the object's destructor has run.
    bool IsGone() const { return !m_pLife->pWindow; }

private:
    CLife *const m_pLife;
};
