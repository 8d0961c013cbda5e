#pragma once

#include <new>

#include "CU/Platform.h"

#include "Base/Atomic.h"

// How long the state lives that a whole process shares. There is one rule, for every source.
//
// Made. State is plain static data with a constant first value (a number, a handle, a lock, a
// list), or it is made at its first use, whichever thread comes first: a CCUShared object, or
// something that the source makes under a lock of its own. So it is there for every caller, even
// while statics are constructed, and the order of sources says nothing. What must happen at the
// start regardless is a function marked `constructor`: New.cpp learns there which thread starts the
// program, Data.cpp reads the system's settings.
//
// The end of a program, by `exit` or a return from main, has three steps:
//   1. The destructors of statics and the handlers of CURegisterTerminationHandler run, the latest
//      first. All state may be used as before; other threads still run.
//   2. The last calls run, the latest named first: each gives back the state of one source. What is
//      used later than that is made anew, and again given back if it is before the last of these
//      calls. Only the trace stays closed: from then on CUDump reaches the debugger alone.
//   3. The system ends all other threads, wherever they are, and tells the last one (ThreadExit.cpp
//      says how). That one deletes the locks, so that nobody waits for a thread that is gone; a
//      lock that is used still later makes itself anew. Nothing else is touched: it may be half
//      changed.
// ExitProcess, called by any thread, is step 3 alone. TerminateProcess has no step at all. A crash
// ends in one or the other, as the system and CUShutdownAfterCrash have it. What steps 1 and 2
// would have given back is then the system's to take.
//
// A module (DLL) that FreeLibrary unloads first takes back what it has given to other threads (see
// Base/Module.h), then goes through steps 1 and 2. The very last of its last calls takes back all
// that the system would otherwise keep. When the process of a module ends, only the destructors in
// step 1 run, after step 3.

// A last call. Plain static data, all zeros until it is named.
struct CCULastCall
{
    void (*function)(CCULastCall &call);
    CCULastCall *next;
};

// Has the function called in step 2 above. Nothing where this call has been named and is still to
// come. One call must not be named by two threads at a time.
void CUAtLast(CCULastCall &call, void (*function)(CCULastCall &call));

// How the module ends, once it does. With its process: other threads have been killed, maybe in the
// middle of something, so nothing may be waited for.
enum CUModuleEnd
{
    CUModuleStays,
    CUModuleUnloads,
    CUModuleEndsWithProcess
};
extern CUModuleEnd g_moduleEnd;

// An object that the whole process shares, in static memory. Declare it static.
template <typename T>
class CCUShared : private CCULastCall
{
public:
    constexpr CCUShared() : CCULastCall(), m_nState(0), m_memory() {}
    CCUShared(const CCUShared &) = delete;
    CCUShared &operator=(const CCUShared &) = delete;

    // Makes the object if there is none.
    T &Get()
    {
        CUOnce(m_nState, [this] {
            new (m_memory) T;
            // An object with nothing to give back stays.
            if constexpr (!__has_trivial_destructor(T))
                CUAtLast(*this, Delete);
        });
        return Object();
    }
    // Null when there is none.
    T *IfMade() { return m_nState == CUOnceDone ? &Object() : nullptr; }

private:
    T &Object() { return *reinterpret_cast<T *>(m_memory); }
    static void Delete(CCULastCall &call)
    {
        auto &self = static_cast<CCUShared &>(call);
        self.Object().~T();
        InterlockedExchange(&self.m_nState, 0);
    }

    volatile LONG m_nState;  // CUOnce's
    alignas(T) char m_memory[sizeof(T)];
};
