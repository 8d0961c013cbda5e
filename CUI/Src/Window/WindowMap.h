#pragma once

#include "CUI/Window.h"

// From window handle to object for the whole process: asked for every message, so a look-up is a
// few reads in memory and takes no lock. Bindings change rarely and take one.

class CUIWindowThread;

struct CUIWindowBinding
{
    CCUIWindow *pWindow;  // null: unbound, but our procedure is still called for the window
    WNDPROC pOldProc;     // what our procedure replaced there, never null
};

// Objects lie on even addresses. A binding is doubted when its window may be gone without a word to
// our procedure: somebody has begun to destroy it, and a later subclass may keep that to itself.
CCUIWindow *CUIWindowMapFind(HWND hWnd, bool &bDoubted);
// What the system says of a binding that is doubted, which is dropped if it is the past.
bool CUIIsStillBound(HWND hWnd, CCUIWindow *pWindow);
// False when the window is not in the map.
bool CUIWindowMapGet(HWND hWnd, CUIWindowBinding &binding);
// To be called on the thread of the window.
void CUIWindowMapSet(HWND hWnd, const CUIWindowBinding &binding);
void CUIWindowMapRemove(HWND hWnd);
// The same for a binding to this object that is doubted: what the window's thread has made of it
// meanwhile stays.
void CUIWindowMapRemoveDoubted(HWND hWnd, const CCUIWindow *pWindow);
// The window is about to be destroyed, and with it those inside, of which nobody else tells: doubts
// their bindings. Those of windows that went before, unheard, are dropped.
void CUIWindowMapDoubt(HWND hWnd);
// Drops all bindings of the thread.
void CUIWindowMapRemoveThread(const CUIWindowThread *pThread);

// Keeps others from changing the map, and the threads' records.
class CUIWindowMapLock
{
public:
    CUIWindowMapLock();
    ~CUIWindowMapLock();
    CUIWindowMapLock(const CUIWindowMapLock &) = delete;
    CUIWindowMapLock &operator=(const CUIWindowMapLock &) = delete;
};
