// The way of a message, from top to bottom: the window procedure, the window's object, the object's
// hooks, the message table, the base handlers, default processing.

#include "Base/Array.h"
#include "Base/Compiler.h"
#include "Base/Stack.h"
#include "CU/Assert.h"
#include "CUI/Menu.h"
#include "Menu/MenuHooks.h"
#include "CUI/Window.h"
#include "Window/WindowBinding.h"
#include "Window/WindowHookList.h"
#include "Window/WindowMap.h"

#define CU_SOURCE "Window"

// What all the base handlers call: a copy in each would only make the program larger.
#define CUI_OUT_OF_LINE CU_NOINLINE

CCUIWindow::CWatch::CWatch(CCUIWindow *pWindow)
    : m_pLife(pWindow->m_pLife ? pWindow->m_pLife : new CLife{pWindow, 1})
{
    pWindow->m_pLife = m_pLife;
    ++m_pLife->nUsers;
}

CCUIWindow::CWatch::~CWatch()
{
    if (--m_pLife->nUsers == 0)
        delete m_pLife;
}

// The message that a window is handling, on the stack of the window procedure.
class CCUIWindow::CMessage : public CCUIWindow::CWatch
{
public:
    CMessage(CCUIWindow *pWindow, UINT message, WPARAM wParam, LPARAM lParam);
    ~CMessage();

    const UINT m_message;
    const WPARAM m_wParam;
    const LPARAM m_lParam;
    long m_answer;  // of a handler that returns nothing

private:
    CCUIWindow *const m_pOwner;
};

// The messages that a window is handling, the innermost last. They end in another order where
// fibers switch in handlers, and some never do: those whose handlers were left by an exception that
// the system has swallowed or by a jump, or with their thread. So a message is looked at only while
// it lies on the part of the stack that is in use.
class CCUIWindow::CMessages
{
public:
    void Begin(CMessage *pMessage)
    {
        DropLeft(reinterpret_cast<char *>(pMessage));
        m_messages.Add(pMessage);
    }
    void End(const CMessage *pMessage)
    {
        int i = m_messages.Count() - 1;
        while (i >= 0 && m_messages[i] != pMessage)
            --i;
        if (i >= 0)
            m_messages.Remove(i, 1);
    }
    // The innermost of this stack, or null.
    CMessage *Current()
    {
        char here = 0;
        DropLeft(&here);
        const char *const pBase = static_cast<char *>(CUStackBounds().StackBase);
        for (int i = m_messages.Count() - 1; i >= 0; --i) {
            const auto *const p = reinterpret_cast<char *>(m_messages[i]);
            if (p > &here && p < pBase)
                return m_messages[i];
        }
        return nullptr;
    }

private:
    void DropLeft(const char *pInUse)
    {
        const char *const pEnd = static_cast<char *>(CUStackBounds().StackLimit);
        for (int i = m_messages.Count() - 1; i >= 0; --i) {
            const auto *const p = reinterpret_cast<char *>(m_messages[i]);
            if (p < pInUse && p >= pEnd)
                m_messages.Remove(i, 1);
        }
    }

    CCUArray<CMessage *> m_messages;
};

CCUIWindow::CMessage::CMessage(CCUIWindow *pWindow, UINT message, WPARAM wParam, LPARAM lParam)
    : CWatch(pWindow),
      m_message(message),
      m_wParam(wParam),
      m_lParam(lParam),
      m_answer(0),
      m_pOwner(pWindow)
{
    if (!pWindow->m_pMessages)
        pWindow->m_pMessages = new CMessages;
    pWindow->m_pMessages->Begin(this);
}

CCUIWindow::CMessage::~CMessage()
{
    if (!IsGone() && m_pOwner->m_pMessages)
        m_pOwner->m_pMessages->End(this);
}

CUI_OUT_OF_LINE CCUIWindow::CMessage *CCUIWindow::CurrentMessage()
{
    return m_pMessages ? m_pMessages->Current() : nullptr;
}

// What was handled for a window that has gone unheard: its thread may have ended with it, and
// others have that stack now.
void CCUIWindow::ForgetMessages()
{
    delete m_pMessages;
    m_pMessages = nullptr;
}

void CCUIWindow::EndLife()
{
    ForgetMessages();
    if (!m_pLife)
        return;
    m_pLife->pWindow = nullptr;
    if (--m_pLife->nUsers == 0)
        delete m_pLife;
    m_pLife = nullptr;
}

CUI_OUT_OF_LINE CCUIWindow *CCUIWindow::FromHandle(HWND hWnd)
{
    bool bDoubted = false;
    CCUIWindow *const pWindow = CUIWindowMapFind(hWnd, bDoubted);
    return pWindow && bDoubted && !CUIIsStillBound(hWnd, pWindow) ? nullptr : pWindow;
}

LRESULT CALLBACK CCUIWindow::StaticWindowProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    // A window with a message lives: a binding that is doubted is not asked about.
    bool bDoubted = false;
    CCUIWindow *const pWindow = CUIWindowMapFind(hWnd, bDoubted);
    if (!pWindow)
        return ForwardUnbound(hWnd, message, wParam, lParam);
    CMessage current(pWindow, message, wParam, lParam);
    long result = 0;
    if (!pWindow->m_pHooks || !pWindow->CallHooks(current, result)) {
        if (pWindow->m_hWnd != hWnd)  // a hook has detached it
            return ForwardUnbound(hWnd, message, wParam, lParam);
        result = pWindow->WindowProc(message, wParam, lParam);
    }
    const bool bLast = message == WM_NCDESTROY;
    if (bLast && !current.IsGone() && pWindow->m_hWnd == hWnd) {
        // The base OnDestroy, which lets go of the window, was not reached.
        pWindow->m_bMissedDetach = 1;
        pWindow->Detach();
        CUIWindowMapRemove(hWnd);
    }
    return result;
}

// A message for a window without an object whose chain of procedures still has ours.
LRESULT CCUIWindow::ForwardUnbound(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CUIWindowBinding binding = {nullptr, nullptr};
    if (CUIWindowMapGet(hWnd, binding) && message == WM_NCDESTROY)
        CUIWindowMapRemove(hWnd);
    return CallProcedure(binding.pOldProc, hWnd, message, wParam, lParam);
}

// True when the message is done with: a hook handled it, or the object is gone.
bool CCUIWindow::CallHooks(const CMessage &message, long &result)
{
    // A hook that is inserted on the way sees the next message first.
    CCUIWindowHookList::CWalk walk(*m_pHooks);
    while (CCUIWindowHook *const pHook = walk.Next()) {
        if (pHook->OnHookMessage(message.m_message, message.m_wParam, message.m_lParam, result) ||
            message.IsGone())
            return true;
    }
    return false;
}

// --- The message table ---

namespace {

// The framework's own messages.
const UINT SET_WINDOW_STATE = WM_USER + 0x35;
const UINT SHOW_TOOL_TIPS = WM_USER + 0x38;

// Messages that Windows 95 and NT 4 did not have: WM_XBUTTONDOWN and so on.
const UINT X_BUTTON_DOWN = 0x020B;
const UINT X_BUTTON_UP = 0x020C;
const UINT X_BUTTON_DBLCLK = 0x020D;
const UINT MOUSE_H_WHEEL = 0x020E;
const UINT DPI_CHANGED = 0x02E0;
// The lowest number of a message that is registered by name.
const UINT FIRST_REGISTERED = 0xC000;
// The system uses the other bits of a WM_SYSCOMMAND itself.
const UINT SYSTEM_COMMAND = 0xFFF0;

// A position in signed 16-bit halves: while a window has captured the mouse, positions to the left
// of it and above it come too.
class CPointArg : public POINT
{
public:
    explicit CPointArg(LPARAM lParam)
    {
        x = static_cast<SHORT>(LOWORD(lParam));
        y = static_cast<SHORT>(HIWORD(lParam));
    }
};

inline UINT LowArg(WPARAM param)
{
    return LOWORD(param);
}

inline UINT LowArg(LPARAM param)
{
    return LOWORD(param);
}

inline UINT HighArg(WPARAM param)
{
    return HIWORD(param);
}

inline UINT HighArg(LPARAM param)
{
    return HIWORD(param);
}

inline int SignedHighArg(WPARAM param)
{
    return static_cast<SHORT>(HIWORD(param));
}

template <typename T>
inline T HandleArg(WPARAM wParam)
{
    return reinterpret_cast<T>(wParam);
}

template <typename T>
inline T HandleArg(LPARAM lParam)
{
    return reinterpret_cast<T>(lParam);
}

// Windows 95 and NT 3.51 know no wheel. There the mouse's own software registers this message and
// sends it to the window with the focus.
bool IsOldWheel(UINT message)
{
    static UINT s_nOldWheel;
    if (message < FIRST_REGISTERED)
        return false;
    if (!s_nOldWheel)
        s_nOldWheel = RegisterWindowMessageA("MSWHEEL_ROLLMSG");
    return message == s_nOldWheel;
}

// The flags that the other mouse messages bring along, and that one does not.
UINT MouseFlags()
{
    static const struct
    {
        int nKey;
        UINT nFlag;
    } FLAGS[] = {{VK_LBUTTON, MK_LBUTTON},
                 {VK_RBUTTON, MK_RBUTTON},
                 {VK_MBUTTON, MK_MBUTTON},
                 {VK_SHIFT, MK_SHIFT},
                 {VK_CONTROL, MK_CONTROL}};
    UINT nFlags = 0;
    for (const auto &flag : FLAGS) {
        if (GetKeyState(flag.nKey) < 0)
            nFlags |= flag.nFlag;
    }
    return nFlags;
}

}  // namespace

// What a further message is answered with. The message may be missing, where WindowProc is called
// from elsewhere; the object may be gone when the answer is fetched.
class CCUIWindow::CAnswer
{
public:
    explicit CAnswer(CMessage *pMessage) : m_pMessage(pMessage) {}
    void Set(long answer)
    {
        if (m_pMessage)
            m_pMessage->m_answer = answer;
    }
    long Get() const { return m_pMessage ? m_pMessage->m_answer : 0; }

private:
    CMessage *const m_pMessage;
};

long CCUIWindow::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    CPointArg point(lParam);
    const auto w = static_cast<UINT>(wParam);

    // clang-format off
    switch (message) {
    case WM_CREATE:         return OnCreate(HandleArg<CREATESTRUCTA *>(lParam));
    case WM_DESTROY:        OnDestroy(); return 0;
    case WM_SIZE:           OnSize(w, static_cast<int>(LowArg(lParam)), static_cast<int>(HighArg(lParam))); return 0;
    case WM_ACTIVATE:       OnActivate(LowArg(wParam), HighArg(wParam), HandleArg<HWND>(lParam)); return 0;
    case WM_SETFOCUS:       OnSetFocus(HandleArg<HWND>(wParam)); return 0;
    case WM_KILLFOCUS:      OnKillFocus(HandleArg<HWND>(wParam)); return 0;
    case WM_PAINT:          OnPaint(HandleArg<HDC>(wParam)); return 0;
    case WM_CLOSE:          OnClose(); return 0;
    case WM_ERASEBKGND:     return OnEraseBkgnd(HandleArg<HDC>(wParam));
    case WM_SYSCOLORCHANGE: OnSysColorChange(); return 0;
    case WM_SHOWWINDOW:     OnShowWindow(static_cast<int>(wParam), lParam); return 0;
    case WM_WININICHANGE:   OnWinIniChange(wParam, HandleArg<const char *>(lParam)); return 0;
    case WM_CANCELMODE:     OnCancelMode(); return 0;
    case WM_SETCURSOR:      return OnSetCursor(HandleArg<HWND>(wParam), LowArg(lParam), HighArg(lParam));
    case WM_DRAWITEM:       return OnDrawItem(w, HandleArg<DRAWITEMSTRUCT *>(lParam));
    case WM_MEASUREITEM:    return OnMeasureItem(w, HandleArg<MEASUREITEMSTRUCT *>(lParam));
    case WM_NOTIFY:         return OnNotify(w, HandleArg<NMHDR *>(lParam));
    case WM_CONTEXTMENU:    OnContextMenu(HandleArg<HWND>(wParam), point); return 0;
    case WM_COMMAND:        OnCommand(HighArg(wParam), LowArg(wParam), HandleArg<HWND>(lParam)); return 0;
    case WM_INITMENUPOPUP:  OnInitMenuPopup(HandleArg<HMENU>(wParam), LowArg(lParam), static_cast<int>(HighArg(lParam))); return 0;
    case WM_MENUSELECT:     OnMenuSelect(LowArg(wParam), HighArg(wParam), HandleArg<HMENU>(lParam)); return 0;
    case WM_MENUCHAR:       return OnMenuChar(LowArg(wParam) & 0xFF, HighArg(wParam), HandleArg<HMENU>(lParam));
    case WM_MOUSEMOVE:      OnMouseMove(w, point); return 0;
    case WM_LBUTTONDOWN:    OnLButtonDown(w, point); return 0;
    case WM_LBUTTONUP:      OnLButtonUp(w, point); return 0;
    case WM_LBUTTONDBLCLK:  OnLButtonDblClk(w, point); return 0;
    case WM_RBUTTONDOWN:    OnRButtonDown(w, point); return 0;
    case WM_RBUTTONUP:      OnRButtonUp(w, point); return 0;
    case WM_RBUTTONDBLCLK:  OnRButtonDblClk(w, point); return 0;
    case WM_PARENTNOTIFY:   OnParentNotify(LowArg(wParam), HighArg(wParam), lParam); return 0;
    case WM_CAPTURECHANGED: OnCaptureChanged(HandleArg<HWND>(lParam)); return 0;
    case SET_WINDOW_STATE:  OnSetWindowState(w); return 0;
    case SHOW_TOOL_TIPS:    OnShowToolTips(static_cast<int>(wParam)); return 0;
    default:                return DispatchFurther(message, wParam, lParam);
    }
    // clang-format on
}

// The further messages, in a table of their own, so that those above are as fast as without them.
CUI_OUT_OF_LINE long CCUIWindow::DispatchFurther(UINT message, WPARAM wParam, LPARAM lParam)
{
    CAnswer answer(CurrentMessage());
    CPointArg point(lParam);
    const auto w = static_cast<UINT>(wParam);

    // clang-format off
    switch (message) {
    case WM_QUERYENDSESSION: return OnQueryEndSession(static_cast<UINT>(lParam));
    case WM_ENDSESSION:     OnEndSession(static_cast<int>(wParam), static_cast<UINT>(lParam)); break;
    case WM_GETMINMAXINFO:  OnGetMinMaxInfo(HandleArg<MINMAXINFO *>(lParam)); break;
    case WM_DISPLAYCHANGE:  OnDisplayChange(w, static_cast<int>(LowArg(lParam)), static_cast<int>(HighArg(lParam))); break;
    case WM_KEYDOWN:        OnKeyDown(w, LowArg(lParam), HighArg(lParam)); break;
    case WM_KEYUP:          OnKeyUp(w, LowArg(lParam), HighArg(lParam)); break;
    case WM_CHAR:           OnChar(w, LowArg(lParam), HighArg(lParam)); break;
    case WM_SYSKEYDOWN:     OnSysKeyDown(w, LowArg(lParam), HighArg(lParam)); break;
    case WM_SYSKEYUP:       OnSysKeyUp(w, LowArg(lParam), HighArg(lParam)); break;
    case WM_SYSCHAR:        OnSysChar(w, LowArg(lParam), HighArg(lParam)); break;
    case WM_SYSCOMMAND:     OnSysCommand(w & SYSTEM_COMMAND, lParam); break;
    case WM_HSCROLL:        OnHScroll(LowArg(wParam), HighArg(wParam), HandleArg<HWND>(lParam)); break;
    case WM_VSCROLL:        OnVScroll(LowArg(wParam), HighArg(wParam), HandleArg<HWND>(lParam)); break;
    case WM_MBUTTONDOWN:    OnMButtonDown(w, point); break;
    case WM_MBUTTONUP:      OnMButtonUp(w, point); break;
    case WM_MBUTTONDBLCLK:  OnMButtonDblClk(w, point); break;
    case WM_MOUSEWHEEL:     OnMouseWheel(LowArg(wParam), SignedHighArg(wParam), point); break;
    case X_BUTTON_DOWN:     answer.Set(1); OnXButtonDown(LowArg(wParam), HighArg(wParam), point); break;
    case X_BUTTON_UP:       answer.Set(1); OnXButtonUp(LowArg(wParam), HighArg(wParam), point); break;
    case X_BUTTON_DBLCLK:   answer.Set(1); OnXButtonDblClk(LowArg(wParam), HighArg(wParam), point); break;
    case MOUSE_H_WHEEL:     OnMouseHWheel(LowArg(wParam), SignedHighArg(wParam), point); break;
    case WM_DROPFILES:      OnDropFiles(HandleArg<HDROP>(wParam)); break;
    case WM_MOUSELEAVE:     OnMouseLeave(); break;
    case DPI_CHANGED:       OnDpiChanged(LowArg(wParam), HandleArg<const RECT *>(lParam)); break;
    case WM_ENABLE:         OnEnable(static_cast<int>(wParam)); break;
    case WM_GETDLGCODE:     return static_cast<long>(OnGetDlgCode(HandleArg<const MSG *>(lParam)));
    case WM_MOVE:           OnMove(point.x, point.y); break;
    case WM_COPYDATA:       return OnCopyData(HandleArg<HWND>(wParam), HandleArg<const COPYDATASTRUCT *>(lParam));
    default:
        if (!IsOldWheel(message))
            return OnMessage(message, wParam, lParam);
        OnMouseWheel(MouseFlags(), static_cast<int>(wParam), point); break;
    }
    // clang-format on
    return answer.Get();
}

// --- Handlers that leave the message to default processing ---

// clang-format off
int CCUIWindow::OnCreate(CREATESTRUCTA *) { return Default(); }
void CCUIWindow::OnClose() { Default(); }
void CCUIWindow::OnActivate(UINT, UINT, HWND) { Default(); }
void CCUIWindow::OnSize(UINT, int, int) { Default(); }
void CCUIWindow::OnPaint(HDC) { Default(); }
int CCUIWindow::OnEraseBkgnd(HDC) { return Default(); }
void CCUIWindow::OnLButtonDown(UINT, POINT &) { Default(); }
void CCUIWindow::OnLButtonUp(UINT, POINT &) { Default(); }
void CCUIWindow::OnLButtonDblClk(UINT, POINT &) { Default(); }
void CCUIWindow::OnRButtonDown(UINT, POINT &) { Default(); }
void CCUIWindow::OnRButtonUp(UINT, POINT &) { Default(); }
void CCUIWindow::OnRButtonDblClk(UINT, POINT &) { Default(); }
void CCUIWindow::OnMouseMove(UINT, POINT &) { Default(); }
void CCUIWindow::OnShowWindow(int, int) { Default(); }
int CCUIWindow::OnSetCursor(HWND, UINT, UINT) { return Default(); }
void CCUIWindow::OnSetFocus(HWND) { Default(); }
void CCUIWindow::OnKillFocus(HWND) { Default(); }
void CCUIWindow::OnParentNotify(UINT, UINT, LPARAM) { Default(); }
void CCUIWindow::OnMenuSelect(UINT, UINT, HMENU) { Default(); }
void CCUIWindow::OnCancelMode() { Default(); }
void CCUIWindow::OnCaptureChanged(HWND) { Default(); }
void CCUIWindow::OnSetWindowState(UINT) { Default(); }
// clang-format on

// --- Handlers that hand the message to OnMessage ---

CUI_OUT_OF_LINE long CCUIWindow::HandOn()
{
    // On the stack: OnMessage may delete the object.
    CMessage *const pMessage = CurrentMessage();
    if (!pMessage)
        return 0;
    const long answer = OnMessage(pMessage->m_message, pMessage->m_wParam, pMessage->m_lParam);
    pMessage->m_answer = answer;
    return answer;
}

// clang-format off
void CCUIWindow::OnKeyDown(UINT, UINT, UINT) { HandOn(); }
void CCUIWindow::OnKeyUp(UINT, UINT, UINT) { HandOn(); }
void CCUIWindow::OnChar(UINT, UINT, UINT) { HandOn(); }
void CCUIWindow::OnSysKeyDown(UINT, UINT, UINT) { HandOn(); }
void CCUIWindow::OnSysKeyUp(UINT, UINT, UINT) { HandOn(); }
void CCUIWindow::OnSysChar(UINT, UINT, UINT) { HandOn(); }
void CCUIWindow::OnMouseWheel(UINT, int, POINT &) { HandOn(); }
void CCUIWindow::OnMouseHWheel(UINT, int, POINT &) { HandOn(); }
void CCUIWindow::OnMouseLeave() { HandOn(); }
void CCUIWindow::OnMButtonDown(UINT, POINT &) { HandOn(); }
void CCUIWindow::OnMButtonUp(UINT, POINT &) { HandOn(); }
void CCUIWindow::OnMButtonDblClk(UINT, POINT &) { HandOn(); }
void CCUIWindow::OnXButtonDown(UINT, UINT, POINT &) { HandOn(); }
void CCUIWindow::OnXButtonUp(UINT, UINT, POINT &) { HandOn(); }
void CCUIWindow::OnXButtonDblClk(UINT, UINT, POINT &) { HandOn(); }
void CCUIWindow::OnHScroll(UINT, UINT, HWND) { HandOn(); }
void CCUIWindow::OnVScroll(UINT, UINT, HWND) { HandOn(); }
void CCUIWindow::OnDropFiles(HDROP) { HandOn(); }
void CCUIWindow::OnGetMinMaxInfo(MINMAXINFO *) { HandOn(); }
int CCUIWindow::OnQueryEndSession(UINT) { return HandOn(); }
void CCUIWindow::OnEndSession(int, UINT) { HandOn(); }
void CCUIWindow::OnSysCommand(UINT, LPARAM) { HandOn(); }
void CCUIWindow::OnDisplayChange(UINT, int, int) { HandOn(); }
void CCUIWindow::OnDpiChanged(UINT, const RECT *) { HandOn(); }
void CCUIWindow::OnEnable(int) { HandOn(); }
UINT CCUIWindow::OnGetDlgCode(const MSG *) { return static_cast<UINT>(HandOn()); }
void CCUIWindow::OnMove(int, int) { HandOn(); }
int CCUIWindow::OnCopyData(HWND, const COPYDATASTRUCT *) { return HandOn(); }
// clang-format on

// --- Handlers with something of their own to do ---

void CCUIWindow::OnContextMenu(HWND, POINT &point)
{
    if (!m_pContextMenu) {
        Default();
        return;
    }
    POINT at = point;
    if (at.x == -1 && at.y == -1) {
        // Asked for by the keyboard: nowhere in particular.
        at.x = at.y = 0;
        ClientToScreen(m_hWnd, &at);
    }
    DisplayPopupMenu(m_pContextMenu, TPM_LEFTALIGN | TPM_RIGHTBUTTON, at, nullptr);
}

void CCUIWindow::OnShowToolTips(int bShow)
{
    m_bShowToolTips = bShow;
    Default();
}

int CCUIWindow::PreTranslateMessage(MSG *pMsg)
{
    return m_hAccelerators && TranslateAcceleratorA(m_hWnd, m_hAccelerators, pMsg);
}

// --- Messages that a child sent come back to the child first ---

long CCUIWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    return ReflectOrDefault(FindReflectChild(message, wParam, lParam));
}

long CCUIWindow::OnNotify(UINT, NMHDR *pHeader)
{
    return ReflectOrDefault(pHeader ? pHeader->hwndFrom : nullptr);
}

void CCUIWindow::OnCommand(UINT nCode, UINT nID, HWND hControl)
{
    if (m_bRoutesCommands)
        RouteCommand(nCode, nID, hControl);
    else
        ReflectOrDefault(hControl);
}

// Of a menu, the message is not for a child; a menu that draws itself answers it.

int CCUIWindow::OnDrawItem(UINT, DRAWITEMSTRUCT *pDraw)
{
    const bool bMenu = pDraw && pDraw->CtlType == ODT_MENU;
    if (bMenu && g_pMenuHooks && g_pMenuHooks->draw(*pDraw))
        return 1;
    return ReflectOrDefault(pDraw && !bMenu ? pDraw->hwndItem : nullptr);
}

int CCUIWindow::OnMeasureItem(UINT nID, MEASUREITEMSTRUCT *pMeasure)
{
    const bool bMenu = pMeasure && pMeasure->CtlType == ODT_MENU;
    if (bMenu && g_pMenuHooks && g_pMenuHooks->measure(*pMeasure))
        return 1;
    const bool bControl = pMeasure && !bMenu;
    return ReflectOrDefault(bControl ? GetDlgItem(m_hWnd, static_cast<int>(nID)) : nullptr);
}

long CCUIWindow::OnMenuChar(UINT nChar, UINT, HMENU hMenu)
{
    const long answer = g_pMenuHooks ? g_pMenuHooks->character(nChar, hMenu) : 0;
    return answer ? answer : Default();
}

// The child that sent one of the messages without a handler of their own; null for all others.
HWND CCUIWindow::FindReflectChild(UINT message, WPARAM, LPARAM lParam) const
{
    switch (message) {
    case WM_CTLCOLORMSGBOX:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSCROLLBAR:
    case WM_CTLCOLORSTATIC:
    case WM_HSCROLL:
    case WM_VSCROLL:
    case WM_CHARTOITEM:
    case WM_VKEYTOITEM: return HandleArg<HWND>(lParam);
    case WM_COMPAREITEM: return lParam ? HandleArg<COMPAREITEMSTRUCT *>(lParam)->hwndItem : nullptr;
    case WM_DELETEITEM: return lParam ? HandleArg<DELETEITEMSTRUCT *>(lParam)->hwndItem : nullptr;
    default: return nullptr;
    }
}

CUI_OUT_OF_LINE long CCUIWindow::ReflectOrDefault(HWND hChild)
{
    // The child may delete this object; the message, on the stack, then tells.
    const CMessage *const pMessage = CurrentMessage();
    long result = 0;
    if (hChild && ReflectLastMessage(hChild, &result))
        return result;
    return pMessage && pMessage->IsGone() ? 0 : Default();
}

int CCUIWindow::ReflectLastMessage(HWND hChild, long *pResult)
{
    CCUIWindow *const pChild = FromHandle(hChild);
    // WM_CTLCOLORDLG asks a dialog about itself, with its own handle.
    const CMessage *const pMessage = CurrentMessage();
    if (!pMessage || !pChild || pChild == this)
        return 0;
    const CMessage &message = *pMessage;
    long result = 0;
    int bHandled = 0;
    if (message.m_message == WM_NOTIFY)
        bHandled = pChild->OnReflectedNotification(static_cast<UINT>(message.m_wParam),
                                                   HandleArg<NMHDR *>(message.m_lParam), result);
    else
        bHandled = pChild->OnReflectedMessage(message.m_message, message.m_wParam, message.m_lParam,
                                              result);
    if (bHandled && pResult)
        *pResult = result;
    return bHandled;
}

int CCUIWindow::OnReflectedNotification(UINT, NMHDR *, long &)
{
    return 0;
}

int CCUIWindow::OnReflectedMessage(UINT, WPARAM, LPARAM, long &)
{
    return 0;
}

// --- Default processing ---

long CCUIWindow::CallProcedure(WNDPROC pProc, HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    return pProc ? CallWindowProcA(pProc, hWnd, message, wParam, lParam)
                 : DefWindowProcA(hWnd, message, wParam, lParam);
}

long CCUIWindow::DefProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    // While it handles a message the window lives. At other times its handle may have become
    // another window's.
    if (!CurrentMessage())
        HasWindow();
    return DefProcNow(message, wParam, lParam);
}

long CCUIWindow::DefProcNow(UINT message, WPARAM wParam, LPARAM lParam)
{
    CU_ASSERT_TEXT(m_hWnd && IsWindow(m_hWnd), "Exist()");
    return CallProcedure(m_pOldProc, m_hWnd, message, wParam, lParam);
}

CUI_OUT_OF_LINE long CCUIWindow::Default()
{
    const CMessage *const pMessage = CurrentMessage();
    return pMessage ? DefProcNow(pMessage->m_message, pMessage->m_wParam, pMessage->m_lParam) : 0;
}
