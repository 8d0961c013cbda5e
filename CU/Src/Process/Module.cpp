// The ends of a module with the framework inside: see Base/Module.h. The compiler's start-up code
// of modules, and no program's, calls DllEntryPoint; the linker takes this source for it.

#define CU_MODULE
#include "Base/Module.h"

#include <string.h>

#include "Base/Lock.h"

namespace {

CCULastCall s_takeBackRest;

void TakeBackRest(CCULastCall &)
{
    if (g_moduleEnd != CUModuleUnloads)
        return;
    if (CUIUnloadWindows)
        CUIUnloadWindows(CUUnloadRest);
    if (CUUnloadTimers)
        CUUnloadTimers(CUUnloadRest);
    if (CUUnloadMessageWindow)
        CUUnloadMessageWindow(CUUnloadRest);
    if (CUIUnloadClasses)
        CUIUnloadClasses();
    if (CUIUnloadData)
        CUIUnloadData();
    if (CUIUnloadLibraries)
        CUIUnloadLibraries();
    if (CUUnloadProcessInfo)
        CUUnloadProcessInfo();
    if (CUUnloadMultimedia)
        CUUnloadMultimedia();
    if (CUUnloadSlots)
        CUUnloadSlots();
    CCULazyLock::DeleteAll();
}

// Threads' ends first: from then on none comes in between.
void TakeBackOfOthers()
{
    g_moduleEnd = CUModuleUnloads;
    if (CUUnloadThreadEnd)
        CUUnloadThreadEnd();
    if (CUUnloadCrashReport)
        CUUnloadCrashReport();
    if (CUIUnloadWindows)
        CUIUnloadWindows(CUUnloadOthers);
    if (CUUnloadTimers)
        CUUnloadTimers(CUUnloadOthers);
    if (CUUnloadMessageWindow)
        CUUnloadMessageWindow(CUUnloadOthers);
}

}  // namespace

// Called before all constructors, and between DllMain and the destructors.
extern "C" BOOL WINAPI DllEntryPoint(HINSTANCE, DWORD nReason, void *pProcessEnds)
{
    if (nReason == DLL_PROCESS_ATTACH) {
        CUAtLast(s_takeBackRest, TakeBackRest);  // the first to be named is the last to be called
    } else if (nReason == DLL_PROCESS_DETACH && pProcessEnds) {
        g_moduleEnd = CUModuleEndsWithProcess;
        // Windows XP and before do not tell the loader's callbacks of modules that came later.
        CCULazyLock::DeleteAll();
    } else if (nReason == DLL_PROCESS_DETACH) {
        TakeBackOfOthers();
    } else if (nReason == DLL_THREAD_DETACH && CUModuleThreadEnd) {
        CUModuleThreadEnd();
    }
    return TRUE;
}

namespace {

// PostMessageA(user data, message, timer, 0), which returns to the system: nobody comes back here.
#pragma pack(push, 1)
struct CTimerCode
{
    BYTE start[13];
    UINT uMessage;
    BYTE middle[3];
    decltype(&::PostMessageA) post;
    BYTE end[2];
};
#pragma pack(pop)

const CTimerCode TIMER_CODE = {{0x58,              // pop  eax       return address
                                0x59,              // pop  ecx       timer
                                0x5A, 0x5A,        // pop  edx       user data
                                0x83, 0xC4, 0x08,  // add  esp, 8
                                0xE3, 0x0F,        // jecxz end      no timer: return
                                0x6A, 0x00,        // push 0
                                0x51,              // push ecx
                                0x68},             // push uMessage
                               0,
                               {0x52,   // push edx
                                0x50,   // push eax
                                0xB8},  // mov  eax, post
                               nullptr,
                               {0xFF, 0xE0}};  // end: jmp eax

WNDPROC MakeTimerCode(UINT uMessage)
{
    void *const place =
        VirtualAlloc(nullptr, sizeof TIMER_CODE, MEM_COMMIT, PAGE_EXECUTE_READWRITE);
    if (!place)
        return nullptr;
    CTimerCode code = TIMER_CODE;
    code.uMessage = uMessage;
    code.post = PostMessageA;
    memcpy(place, &code, sizeof code);
    return reinterpret_cast<WNDPROC>(place);
}

}  // namespace

// When the module goes, the system's timer thread may be on its way into a callback or out of it,
// and may not be waited for. So the callback is a piece of code in memory that stays, one a
// process: a class of windows, of which there are none, remembers it for the modules to come.
LPTIMECALLBACK CUModuleTimerCallback(UINT uMessage)
{
    WNDCLASSA keeper = {};
    char szName[32];
    wsprintfA(szName, "CUTimerCallback-%x", uMessage);
    const HINSTANCE hProgram = GetModuleHandleA(nullptr);
    if (!GetClassInfoA(hProgram, szName, &keeper)) {
        keeper.lpfnWndProc = MakeTimerCode(uMessage);
        keeper.hInstance = hProgram;
        keeper.lpszClassName = szName;
        // Where another thread has been faster, this one's is not found again.
        if (keeper.lpfnWndProc)
            RegisterClassA(&keeper);
    }
    return reinterpret_cast<LPTIMECALLBACK>(keeper.lpfnWndProc);
}
