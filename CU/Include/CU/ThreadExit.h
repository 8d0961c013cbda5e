#pragma once

/// @file
/// Notice of the end of a thread.

#include "CU/Platform.h"

/// An object that hears of the end of a thread. OnThreadExit is called once, on the thread that
/// registered the object, when that thread ends: by return or ExitThread, or by exit, which the end
/// of main calls too. A thread that is terminated from outside, or by the end of the process, calls
/// nobody. The deletion of a fiber that registered an object counts as the end of the thread that
/// deletes it. When a module with the framework inside is unloaded, the objects of the thread that
/// unloads it are called; those of other threads are forgotten.
class CU_API CCUThreadExitHandler
{
public:
    CCUThreadExitHandler() = default;
    CCUThreadExitHandler(const CCUThreadExitHandler &) = delete;
    CCUThreadExitHandler &operator=(const CCUThreadExitHandler &) = delete;

    /// The thread ends. The object is not registered any more and usually deletes itself.
    /// bKillTimer: system timers may be stopped. It must neither wait for another thread nor take
    /// the loader's lock (LoadLibrary, GetProcAddress): the system may hold that lock, or one that
    /// its holder waits for.
    virtual void OnThreadExit(bool bKillTimer) = 0;
    /// Takes the object off the calling thread's list; it must not be in another thread's.
    virtual ~CCUThreadExitHandler();

private:
    friend class CCUThreadExitList;

    CCUThreadExitHandler *m_pNextHandler = nullptr;
};

/// Adds an object to the calling thread's list, which does not own it; the latest is called first.
/// One that is in the list already becomes the latest. False when there is no storage slot left,
/// and for null.
CU_API bool CURegisterThreadExitHandler(CCUThreadExitHandler *pHandler);
/// Takes an object off the calling thread's list; false when it is not in there.
CU_API bool CUUnregisterThreadExitHandler(CCUThreadExitHandler *pHandler);
