#pragma once

#include <atomic>

#include "CU/ThreadExit.h"
#include "CUI/Window.h"

// What is kept for a thread with windows, from its first one to its end: who waits for a window,
// and the hook that hears of windows that are destroyed. The threads' records are a list, searched
// by number: that needs no storage slot, of which a process may have no more.
class CUIWindowThread : public CCUThreadExitHandler
{
public:
    // The calling thread's.
    static CUIWindowThread &Current();
    // All threads', when a module goes.
    static void DeleteAll();
    // Ends the wait of an object, on whichever thread that is.
    static void StopWaiting(const CCUIWindow *pWindow);

    void OnThreadExit(bool bKillTimer) override;

    // Takes the creation hook away.
    void Disarm();
    // The map calls these, the last two while it has the lock: they count the thread's bindings.
    // The windows are watched while there are any.
    void Watch();
    void Bind() { ++m_nBound; }
    void Unbind();

    std::atomic<CCUIWindow *> m_pHookWin;  // waits for its window
    HHOOK m_hNextHook;                     // the creation hook

private:
    explicit CUIWindowThread(DWORD nThread);
    static LRESULT CALLBACK WatchProc(int nCode, WPARAM wParam, LPARAM lParam);

    const DWORD m_nThread;
    CUIWindowThread *m_pNext;
    int m_nBound;
    HHOOK m_hWatch;  // null: none, or the system has refused it
};
