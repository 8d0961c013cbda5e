#pragma once

#include "Base/Atomic.h"
#include "CU/ThreadExit.h"
#include "CUI/Window.h"

// What is kept for a thread with windows, from its first one to its end: the object that waits for
// its window, and the hook by which the window map hears of windows that are destroyed. Under one
// lock with the map. The records are a list that is searched by the thread's number: of
// thread-local slots, the other way, NT 4 has 64 a process, and they may be used up.
class CUIWindowThread : public CCUThreadExitHandler
{
public:
    // The calling thread's.
    static CUIWindowThread &Current();
    // Deletes all threads' records, when a module is unloaded.
    static void DeleteAll();
    // Ends the wait of an object, on whichever thread that is.
    static void StopWaiting(const CCUIWindow *pWindow);

    void OnThreadExit(bool bKillTimer) override;

    // Takes the creation hook away.
    void Disarm();
    // For the map: a thread's windows are watched while any of them is bound. Bind and Unbind count
    // them, under the lock.
    void Watch(HOOKPROC watchProc);
    HHOOK GetWatch() const { return m_hWatch; }
    void Bind() { ++m_nBound; }
    void Unbind();

    CCUAtomic<CCUIWindow *> m_pHookWin;  // waits for its window
    HHOOK m_hNextHook;                   // the creation hook

    // Removes a thread's windows from the map; null before there is one in it.
    static void (*volatile s_forget)(const CUIWindowThread *pThread);

private:
    explicit CUIWindowThread(DWORD nThread);

    const DWORD m_nThread;
    CUIWindowThread *m_pNext;
    int m_nBound;
    HHOOK m_hWatch;  // null: no window is bound, or the system has refused the hook
};

// Keeps others from changing the map, and the threads' records.
class CUIWindowMapLock
{
public:
    CUIWindowMapLock();
    ~CUIWindowMapLock();
    CUIWindowMapLock(const CUIWindowMapLock &) = delete;
    CUIWindowMapLock &operator=(const CUIWindowMapLock &) = delete;
};
