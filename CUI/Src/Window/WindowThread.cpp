#include "Window/WindowThread.h"

#include "Base/Lock.h"
#include "Base/Module.h"

namespace {

CCULazyLock s_lock;
CUIWindowThread *s_pFirstThread;  // under the lock

}  // namespace

void (*volatile CUIWindowThread::s_forget)(const CUIWindowThread *pThread);

CUIWindowMapLock::CUIWindowMapLock()
{
    s_lock.Enter();
}

CUIWindowMapLock::~CUIWindowMapLock()
{
    s_lock.Leave();
}

CUIWindowThread::CUIWindowThread(DWORD nThread)
    : m_pHookWin(nullptr),
      m_hNextHook(nullptr),
      m_nThread(nThread),
      m_pNext(s_pFirstThread),
      m_nBound(0),
      m_hWatch(nullptr)
{
    s_pFirstThread = this;
}

CUIWindowThread &CUIWindowThread::Current()
{
    const DWORD nThread = GetCurrentThreadId();
    CUIWindowThread *pThread = nullptr;
    {
        const CUIWindowMapLock lock;
        for (pThread = s_pFirstThread; pThread; pThread = pThread->m_pNext) {
            if (pThread->m_nThread == nThread)
                return *pThread;
        }
        pThread = new CUIWindowThread(nThread);
    }
    CURegisterThreadExitHandler(pThread);
    return *pThread;
}

void CUIWindowThread::StopWaiting(const CCUIWindow *pWindow)
{
    const CUIWindowMapLock lock;
    for (CUIWindowThread *pThread = s_pFirstThread; pThread; pThread = pThread->m_pNext) {
        if (pThread->m_pHookWin.Get() == pWindow)
            pThread->Disarm();
    }
}

// With a thread the system destroys its windows, without a message to them. Their handles may come
// back for other windows, and its number for another thread.
void CUIWindowThread::OnThreadExit(bool)
{
    // A module that is unloaded needs the records until CUIUnloadWindows deletes them all.
    if (g_moduleEnd == CUModuleUnloads)
        return;
    if (s_forget)
        s_forget(this);
    {
        const CUIWindowMapLock lock;
        Disarm();
        CUIWindowThread **ppThread = &s_pFirstThread;
        while (*ppThread != this)
            ppThread = &(*ppThread)->m_pNext;
        *ppThread = m_pNext;
    }
    delete this;
}

void CUIWindowThread::DeleteAll()
{
    while (CUIWindowThread *const pThread = s_pFirstThread) {
        s_pFirstThread = pThread->m_pNext;
        pThread->Disarm();
        if (pThread->m_hWatch)
            UnhookWindowsHookEx(pThread->m_hWatch);
        delete pThread;
    }
}

void CUIWindowThread::Disarm()
{
    if (m_hNextHook)
        UnhookWindowsHookEx(m_hNextHook);
    m_hNextHook = nullptr;
    m_pHookWin.Set(nullptr);
}

void CUIWindowThread::Watch(HOOKPROC watchProc)
{
    if (!m_hWatch)
        m_hWatch = SetWindowsHookExA(WH_CBT, watchProc, nullptr, m_nThread);
}

void CUIWindowThread::Unbind()
{
    if (--m_nBound > 0 || !m_hWatch)
        return;
    UnhookWindowsHookEx(m_hWatch);
    m_hWatch = nullptr;
}
