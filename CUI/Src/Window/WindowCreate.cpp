// How windows come into being and get bound to their objects.

#include "Base/Module.h"
#include "Base/Wrap.h"
#include "CU/Assert.h"
#include "CU/String.h"
#include "CUI/Window.h"
#include "CUI/WindowClass.h"
#include "Window/WindowThread.h"

#define CU_SOURCE "Window"

namespace {

// With the first window of a thread the system makes windows of the input method, which may come
// first.
bool IsHelperWindow(HWND hWnd)
{
    char szClass[16] = "";
    GetClassNameA(hWnd, szClass, sizeof szClass);
    return lstrcmpiA(szClass, "IME") == 0 || lstrcmpiA(szClass, "MSCTFIME UI") == 0;
}

}  // namespace

void CCUIWindow::Hook()
{
    CUIWindowThread &thread = CUIWindowThread::Current();
    CU_ASSERT_TEXT(!thread.m_pHookWin.Get(), "!s_pHookWin");
    CU_ASSERT_TEXT(!thread.m_hNextHook, "!s_hNextHook");
    CU_ASSERT(m_hWnd == 0);
    m_hCreated = nullptr;
    thread.Disarm();
    thread.m_pHookWin.Set(this);
    thread.m_hNextHook = SetWindowsHookExA(WH_CBT, CreationHookProc, nullptr, GetCurrentThreadId());
    CU_ASSERT_TEXT(thread.m_hNextHook, "s_hNextHook");
}

void CCUIWindow::UnHook()
{
    CUIWindowThread &thread = CUIWindowThread::Current();
    CU_ASSERT_TEXT(thread.m_pHookWin.Get(), "s_pHookWin");
    CU_ASSERT_TEXT(thread.m_hNextHook, "s_hNextHook");
    thread.Disarm();
}

LRESULT CALLBACK CCUIWindow::CreationHookProc(int nCode, WPARAM wParam, LPARAM lParam)
{
    const auto hWnd = reinterpret_cast<HWND>(wParam);
    CUIWindowThread &thread = CUIWindowThread::Current();
    CCUIWindow *pWaiting = nCode == HCBT_CREATEWND ? thread.m_pHookWin.Get() : nullptr;
    // An object that has got its window waits no more, though the hook is still armed: this window
    // is made by another hook, to which CallNextHookEx below has passed the creation on.
    if (pWaiting && (pWaiting->m_hCreated || IsHelperWindow(hWnd)))
        pWaiting = nullptr;
    if (pWaiting) {
        pWaiting->Attach(hWnd);
        pWaiting->m_hCreated = hWnd;
    }
    const LRESULT result = CallNextHookEx(thread.m_hNextHook, nCode, wParam, lParam);
    if (pWaiting && thread.m_pHookWin.Get() == pWaiting)
        pWaiting->UnHook();
    return result;
}

int CCUIWindow::PreCreate(CREATESTRUCTA *pCreate)
{
    if (!pCreate->lpszClass) {
        CUIWindowClassRegister(CUI_CLASS_WINDOW);
        pCreate->lpszClass = CUIWindowClassName(CUI_CLASS_WINDOW);
    }
    return 1;
}

int CCUIWindow::Create(const char *className, const char *windowName, DWORD style, const RECT &rect,
                       HWND hParent, UINT nID)
{
    const auto hMenuOrID = reinterpret_cast<HMENU>(style & WS_CHILD ? nID : 0);
    return CreateEx(0, className, windowName, style, rect.left, rect.top, CUIWidth(rect),
                    CUIHeight(rect), hParent, hMenuOrID);
}

int CCUIWindow::CreateEx(DWORD exStyle, const char *className, const char *windowName, DWORD style,
                         int x, int y, int cx, int cy, HWND hParent, HMENU hMenuOrID, void *param)
{
    CREATESTRUCTA create = {};
    create.lpCreateParams = param;
    create.hInstance = CUInstance();
    create.hMenu = hMenuOrID;
    create.hwndParent = hParent;
    create.cx = cx;
    create.cy = cy;
    create.x = x;
    create.y = y;
    create.style = static_cast<LONG>(style);
    create.lpszName = windowName;
    create.lpszClass = className;
    create.dwExStyle = exStyle;
    CWatch watch(this);
    if (RefusesWindow() || !PreCreate(&create) || watch.IsGone() || RefusesWindow())
        return 0;

    Hook();
    const HWND hWnd =
        CreateWindowExA(create.dwExStyle, create.lpszClass, create.lpszName,
                        static_cast<DWORD>(create.style), create.x, create.y, create.cx, create.cy,
                        create.hwndParent, create.hMenu, create.hInstance, create.lpCreateParams);
    if (watch.IsGone() || !FinishCreation(hWnd))
        return 0;
    PostCreate();
    return 1;
}

// Whether no window may be made for the object, which is reported.
bool CCUIWindow::RefusesWindow()
{
    const bool bHasWindow = HasWindow();
    CU_ASSERT_TEXT(!bHasWindow, "m_hWnd == 0");
    return bHasWindow;
}

int CCUIWindow::FinishCreation(HWND hWnd)
{
    if (CUIWindowThread::Current().m_pHookWin.Get() == this)
        UnHook();
    const bool bBound = hWnd && m_hWnd == hWnd;
    if (bBound) {
        m_hCreated = nullptr;
        return 1;
    }
    // A handler may have ended this creation and begun another, whose window stays.
    const bool bOtherCreation = m_hWnd != m_hCreated;
    if (!bOtherCreation)
        Detach();
    m_bMissedDetach = 0;
    if (hWnd)
        DestroyWindow(hWnd);
    return 0;
}

void CCUIWindow::PostCreate() {}
