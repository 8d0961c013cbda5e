#pragma once

#include "Base/Atomic.h"
#include "CU/ThreadExit.h"
#include "CUI/Window.h"

// What is kept for a thread with windows, from its first one to its end: the object that waits for
// its window, and the hook that hears of windows that are destroyed. The other half of the window
// map, under the same lock. The records are a list that is searched by the thread's number: of
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
    void Watch();
    void Bind() { ++m_nBound; }
    void Unbind();

    CCUAtomic<CCUIWindow *> m_pHookWin;  // waits for its window
    HHOOK m_hNextHook;                   // the creation hook

private:
    explicit CUIWindowThread(DWORD nThread);
    static LRESULT CALLBACK WatchProc(int nCode, WPARAM wParam, LPARAM lParam);

    const DWORD m_nThread;
    CUIWindowThread *m_pNext;
    int m_nBound;
    HHOOK m_hWatch;  // null: no window is bound, or the system has refused the hook
};
