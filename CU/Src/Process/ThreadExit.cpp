#include "CU/ThreadExit.h"

#include "Base/Atomic.h"
#include "Base/Lock.h"
#include "Base/Module.h"
#include "Base/Sections.h"
#include "Base/SystemLibrary.h"
#include "CU/CU.h"
#include "Process/ThreadExit.h"

// The handlers of the calling thread, the latest first; the head is the thread's value in one slot.
class CCUThreadExitList
{
public:
    static bool Add(CCUThreadExitHandler *pHandler);
    static bool Remove(CCUThreadExitHandler *pHandler);
    // A handler may register others, which are called too.
    static void Run(bool bKillTimer);
    // Called by the system, which may hold locks meanwhile.
    static void RunAtThreadEnd();
    static bool IsAtThreadEnd() { return CUGetThreadLocalStorage(s_nEndingSlot) != nullptr; }

private:
    static CCUThreadExitHandler *Head()
    {
        return static_cast<CCUThreadExitHandler *>(CUGetThreadLocalStorage(s_nSlot));
    }
    static void RunAtProcessExit()
    {
        if (g_moduleEnd != CUModuleEndsWithProcess)
            Run(true);
    }

    static volatile LONG s_nState;
    static int s_nSlot;
    static int s_nEndingSlot;  // a value while RunAtThreadEnd runs
};

volatile LONG CCUThreadExitList::s_nState = 0;
int CCUThreadExitList::s_nSlot = -1;
int CCUThreadExitList::s_nEndingSlot = -1;

bool CCUThreadExitList::Add(CCUThreadExitHandler *pHandler)
{
    CUOnce(s_nState, [] {
        s_nSlot = CUAllocateThreadLocalStorageIndex();
        s_nEndingSlot = CUAllocateThreadLocalStorageIndex();
        CURegisterTerminationHandler(RunAtProcessExit);
    });
    Remove(pHandler);
    pHandler->m_pNextHandler = Head();
    return CUSetThreadLocalStorage(s_nSlot, pHandler);
}

bool CCUThreadExitList::Remove(CCUThreadExitHandler *pHandler)
{
    CCUThreadExitHandler *pPrevious = nullptr;
    CCUThreadExitHandler *pWalk = Head();
    while (pWalk && pWalk != pHandler) {
        pPrevious = pWalk;
        pWalk = pWalk->m_pNextHandler;
    }
    if (!pWalk)
        return false;
    if (pPrevious)
        pPrevious->m_pNextHandler = pHandler->m_pNextHandler;
    else
        CUSetThreadLocalStorage(s_nSlot, pHandler->m_pNextHandler);
    pHandler->m_pNextHandler = nullptr;
    return true;
}

void CCUThreadExitList::Run(bool bKillTimer)
{
    while (CCUThreadExitHandler *pHandler = Head()) {
        Remove(pHandler);
        pHandler->OnThreadExit(bKillTimer);
    }
}

void CCUThreadExitList::RunAtThreadEnd()
{
    if (!Head())
        return;
    CUSetThreadLocalStorage(s_nEndingSlot, &s_nEndingSlot);  // any value but null
    Run(true);
    // The end of a fiber is not that of its thread.
    CUSetThreadLocalStorage(s_nEndingSlot, nullptr);
}

bool CUIsAtThreadEnd()
{
    return CCUThreadExitList::IsAtThreadEnd();
}

CCUThreadExitHandler::~CCUThreadExitHandler()
{
    CCUThreadExitList::Remove(this);
}

bool CUUnregisterThreadExitHandler(CCUThreadExitHandler *pHandler)
{
    return pHandler && CCUThreadExitList::Remove(pHandler);
}

// How the end of a thread is noticed. The loader's callback exists on every system, but on some
// (Wine 8 is one) it comes when the thread's windows are already gone, unseen by their window
// procedures. The callback of a fiber-local slot comes before anything of the thread goes; systems
// have those since Windows Server 2003 and Vista.
namespace {

typedef void WINAPI FlsCallback(void *value);
typedef DWORD WINAPI FlsAllocFunction(FlsCallback *callback);
typedef BOOL WINAPI FlsSetValueFunction(DWORD nIndex, void *value);
typedef BOOLEAN WINAPI ShutdownInProgressFunction();

volatile LONG s_nFlsState = 0;
DWORD s_nFlsIndex = TLS_OUT_OF_INDEXES;
FlsAllocFunction *s_flsAlloc = nullptr;
FlsSetValueFunction *s_flsSetValue = nullptr;
ShutdownInProgressFunction *s_shutdownInProgress = nullptr;

void WINAPI OnFiberLocalEnd(void *)
{
    // The slot is being freed, for the value of whatever thread.
    if (s_nFlsIndex == TLS_OUT_OF_INDEXES)
        return;
    // When the process ends, the system has already killed the other threads, maybe in the middle
    // of something; no handler is worth the risk of waiting for what they held.
    if (s_shutdownInProgress())
        CCULazyLock::DeleteAll();
    else
        CCUThreadExitList::RunAtThreadEnd();
}

bool IsProgram()
{
    return CUInstance() == GetModuleHandleA(nullptr);
}

// Windows calls a program's callback at the end of the process, too. Wine 8 does not; there the
// slot above tells it, if the last thread has one. A module's end is told to Module.cpp.
void NTAPI OnLoaderNotice(void *, DWORD nReason, void *)
{
    if (nReason == DLL_THREAD_DETACH)
        CCUThreadExitList::RunAtThreadEnd();
    else if (nReason == DLL_PROCESS_DETACH && IsProgram())
        CCULazyLock::DeleteAll();
}

void FindSystemFunctions()
{
    s_flsAlloc = CUFindFunction<FlsAllocFunction>("kernel32.dll", "FlsAlloc");
    s_flsSetValue = CUFindFunction<FlsSetValueFunction>("kernel32.dll", "FlsSetValue");
    s_shutdownInProgress =
        CUFindFunction<ShutdownInProgressFunction>("ntdll.dll", "RtlDllShutdownInProgress");
}

// Has the system tell the calling thread's end.
void WatchThreadEnd()
{
    // Not within CUOnce: it takes the loader's lock, which a thread that waits there may hold.
    // Threads that meet find the same.
    if (s_nFlsState != CUOnceDone)
        FindSystemFunctions();
    CUOnce(s_nFlsState, [] {
        if (s_flsAlloc && s_flsSetValue && s_shutdownInProgress)
            s_nFlsIndex = s_flsAlloc(OnFiberLocalEnd);
    });
    if (s_nFlsIndex != TLS_OUT_OF_INDEXES)
        s_flsSetValue(s_nFlsIndex, &s_nFlsIndex);  // any value but null
}

}  // namespace

bool CURegisterThreadExitHandler(CCUThreadExitHandler *pHandler)
{
    if (!pHandler)
        return false;
    WatchThreadEnd();
    return CCUThreadExitList::Add(pHandler);
}

CU_LOADER_CALLBACK(g_CUThreadEndCallback, OnLoaderNotice)

// Windows XP and before do not tell the loader's callbacks of modules that came after the start.
void CUModuleThreadEnd()
{
    CCUThreadExitList::RunAtThreadEnd();
}

// From here on a thread that ends is none of ours.
void CUUnloadThreadEnd()
{
    const DWORD nIndex = s_nFlsIndex;
    if (nIndex == TLS_OUT_OF_INDEXES)
        return;
    s_nFlsIndex = TLS_OUT_OF_INDEXES;
    typedef BOOL WINAPI FlsFreeFunction(DWORD nIndex);
    if (FlsFreeFunction *const flsFree = CUFindFunction<FlsFreeFunction>("kernel32.dll", "FlsFree"))
        flsFree(nIndex);
}
