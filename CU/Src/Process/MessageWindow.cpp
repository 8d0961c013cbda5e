#include <new>

#include "Base/Module.h"
#include "Base/Lock.h"
#include "CU/CU.h"
#include "CU/ThreadExit.h"
#include "Probe/ProberProtocol.h"
#include "Probe/ProberServer.h"
#include "Process/Shutdown.h"

namespace {

const char *const CLASS_NAME = CU_MESSAGE_WINDOW_CLASS;

CCULazyLock s_lock;
volatile HWND s_hWnd = nullptr;

// What the message window does with one message. Entries stay in the list until the module ends,
// because other threads may be walking it.
struct CMessageEntry
{
    CMessageEntry *next;
    unsigned int message;
    volatile CUMessageHandler handler;
};
CMessageEntry *volatile s_firstEntry = nullptr;

CMessageEntry *FindEntry(unsigned int uMessage)
{
    CMessageEntry *entry = s_firstEntry;
    while (entry && entry->message != uMessage)
        entry = entry->next;
    return entry;
}

LRESULT CALLBACK MessageWindowProc(HWND hWnd, UINT uMessage, WPARAM wParam, LPARAM lParam)
{
    const CMessageEntry *entry = FindEntry(uMessage);
    const CUMessageHandler handler = entry ? entry->handler : nullptr;
    if (handler) {
        handler(uMessage, wParam, lParam);
        return 0;
    }
    LRESULT result;
    if (CUServeProber(uMessage, wParam, lParam, result))
        return result;
    if (uMessage == WM_NCDESTROY) {
        s_hWnd = nullptr;
        CUEndProberServer();
    }
    return DefWindowProcA(hWnd, uMessage, wParam, lParam);
}

// Destroys the window in time, so that CUGetWindow never answers a dead one.
class CMessageWindowOwner : public CCUThreadExitHandler
{
public:
    explicit CMessageWindowOwner(HWND hWnd) : m_hWnd(hWnd) {}
    void OnThreadExit(bool) override
    {
        // The class stays: another thread may be about to use it.
        if (s_hWnd == m_hWnd)
            DestroyWindow(m_hWnd);
        delete this;
    }
    ~CMessageWindowOwner() override
    {
        if (s_pOwner == this)
            s_pOwner = nullptr;
    }
    static CMessageWindowOwner *s_pOwner;  // of the window that there is

private:
    HWND m_hWnd;
};
CMessageWindowOwner *CMessageWindowOwner::s_pOwner = nullptr;

HWND MakeWindow()
{
    WNDCLASSA wndClass = {};
    wndClass.lpfnWndProc = MessageWindowProc;
    wndClass.hInstance = CUInstance();
    wndClass.lpszClassName = CLASS_NAME;
    RegisterClassA(&wndClass);  // fails when another window was there before
    const HWND hWnd = CreateWindowExA(0, CLASS_NAME, CLASS_NAME, WS_POPUP, 0, 0, 0, 0, nullptr,
                                      nullptr, CUInstance(), nullptr);
    // The class may be from an earlier load of a module, without that one's procedure.
    if (hWnd) {
        SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(MessageWindowProc));
        CUStartProberServer(hWnd);
    }
    return hWnd;
}

// Has the window destroyed when its thread ends. False when there is no storage for that.
bool WatchThreadEnd(HWND hWnd)
{
    CMessageWindowOwner *const pOwner = new CMessageWindowOwner(hWnd);
    const bool bWatched = CURegisterThreadExitHandler(pOwner);
    if (bWatched)
        CMessageWindowOwner::s_pOwner = pOwner;
    else
        delete pOwner;
    return bWatched;
}

}  // namespace

HWND CUGetWindow()
{
    if (s_hWnd)
        return s_hWnd;
    CCULockGuard guard(s_lock);
    if (!s_hWnd && !CUIsShutdown()) {
        const HWND hWnd = MakeWindow();
        if (hWnd && !WatchThreadEnd(hWnd))
            DestroyWindow(hWnd);
        else
            s_hWnd = hWnd;
    }
    return s_hWnd;
}

HWND CUFindWindow()
{
    return s_hWnd;
}

bool CUSetMessageHandler(unsigned int uMessage, CUMessageHandler handler)
{
    const bool bUrgent = uMessage >= WM_USER && uMessage <= WM_USER + 2;
    if (!bUrgent && !CUIsYourMessage(uMessage))
        return false;
    CCULockGuard guard(s_lock);
    CMessageEntry *entry = FindEntry(uMessage);
    if (!entry) {
        entry = new CMessageEntry{s_firstEntry, uMessage, handler};
        s_firstEntry = entry;
    }
    entry->handler = handler;
    return true;
}

void CUUnloadMessageWindow(CUUnloadPhase phase)
{
    if (s_hWnd && CUIsUnloadTurn(s_hWnd, phase)) {
        CUUnloadWindow(s_hWnd);
        s_hWnd = nullptr;
        delete CMessageWindowOwner::s_pOwner;
    }
    if (phase == CUUnloadOthers)
        return;
    CUEndProberServer();
    UnregisterClassA(CLASS_NAME, CUInstance());
    while (CMessageEntry *const entry = s_firstEntry) {
        s_firstEntry = entry->next;
        delete entry;
    }
}
