#include "CU/StackTrace.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "Base/Compiler.h"
#include "Base/KeepLastError.h"
#include "Base/Lock.h"
#include "Base/SystemLibrary.h"
#include "Process/ThreadExit.h"
#include "Report/DebugHelp.h"
#include "Report/Demangle.h"
#include "Report/StackTrace.h"

namespace {

struct CLine
{
    char text[1024];  // its parts at their longest take some 800
    int nLength;
};

bool IsCode(DWORD dwAddress)
{
    MEMORY_BASIC_INFORMATION memory;
    return VirtualQuery(reinterpret_cast<void *>(dwAddress), &memory, sizeof memory) &&
           memory.State == MEM_COMMIT &&
           (memory.Protect & (PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE |
                              PAGE_EXECUTE_WRITECOPY)) != 0;
}

void Add(CCUStackAddresses &stack, DWORD dwAddress)
{
    if (stack.nCount < CCUStackAddresses::Most)
        stack.address[stack.nCount++] = dwAddress;
}

// The end of the stack that holds the address. All from the address up to there can be read. 0
// when the address itself cannot be.
DWORD EndOfStack(DWORD dwAddress)
{
    MEMORY_BASIC_INFORMATION memory;
    if (!VirtualQuery(reinterpret_cast<void *>(dwAddress), &memory, sizeof memory) ||
        memory.State != MEM_COMMIT || (memory.Protect & (PAGE_NOACCESS | PAGE_GUARD)))
        return 0;
    return reinterpret_cast<DWORD>(memory.BaseAddress) + memory.RegionSize;
}

// Follows the frame pointers. Takes no lock, so the thread may be suspended wherever it is.
void WalkFramePointers(const CONTEXT &context, CCUStackAddresses &stack)
{
    const DWORD FrameSize = 2 * sizeof(DWORD);
    Add(stack, context.Eip);
    // The thread has called through a bad pointer: its caller is the return address on the stack.
    if (!IsCode(context.Eip) && context.Esp % 4 == 0 && EndOfStack(context.Esp))
        Add(stack, *reinterpret_cast<const DWORD *>(context.Esp));
    const DWORD dwEnd = EndOfStack(context.Ebp);
    DWORD dwLowest = context.Esp;
    DWORD dwFrame = context.Ebp;
    while (dwFrame >= dwLowest && dwFrame % 4 == 0 && dwEnd >= FrameSize &&
           dwFrame <= dwEnd - FrameSize && stack.nCount < CCUStackAddresses::Most)
    {
        const DWORD *frame = reinterpret_cast<const DWORD *>(dwFrame);
        if (!IsCode(frame[1]))
            break;
        Add(stack, frame[1]);
        dwLowest = dwFrame + FrameSize;
        dwFrame = frame[0];
    }
}

struct CWalk
{
    HANDLE hThread;
    CONTEXT context;  // the walk changes it
    CCUStackAddresses *stack;
};

void WalkDebugHelp(void *parameter)
{
    CWalk &walk = *static_cast<CWalk *>(parameter);
    STACKFRAME frame = {};
    frame.AddrPC.Offset = walk.context.Eip;
    frame.AddrPC.Mode = AddrModeFlat;
    frame.AddrFrame.Offset = walk.context.Ebp;
    frame.AddrFrame.Mode = AddrModeFlat;
    frame.AddrStack.Offset = walk.context.Esp;
    frame.AddrStack.Mode = AddrModeFlat;
    while (walk.stack->nCount < CCUStackAddresses::Most &&
           CUDebugHelpWalk(walk.hThread, frame, walk.context) && frame.AddrPC.Offset)
        Add(*walk.stack, frame.AddrPC.Offset);
}

const char *NameOfPath(const char *path)
{
    const char *name = path;
    for (; *path; ++path) {
        if (*path == '\\' || *path == '/')
            name = path + 1;
    }
    return name;
}

void Append(CLine &line, const char *format, ...) CU_PRINTF(2, 3);
void Append(CLine &line, const char *format, ...)
{
    va_list args;
    va_start(args, format);
    const int nRoom = static_cast<int>(sizeof line.text) - 1 - line.nLength;
    const int nLength =
        _vsnprintf(line.text + line.nLength, static_cast<size_t>(nRoom), format, args);
    va_end(args);
    line.nLength += nLength < 0 ? nRoom : nLength;
    line.text[line.nLength] = '\0';
}

// `dwInside` is an address in the instruction that is told. A return address is the one behind the
// call, which may belong to the next line or even to the next function.
void FormatLine(DWORD dwAddress, DWORD dwInside, CLine &line)
{
    line.nLength = 0;
    Append(line, "%08lx", dwAddress);
    if (CUIsAtThreadEnd())
        return;
    char szPath[MAX_PATH];
    const DWORD dwModule = CUFindModule(dwInside, szPath);
    if (!dwModule)
        return;
    Append(line, " %s", NameOfPath(szPath));

    CCUPlace place;
    place.dwAddress = dwInside;
    place.szFunction[0] = place.szFile[0] = '\0';
    CUAskDebugHelp(CUDebugHelpFindPlace, &place);
    if (!place.szFunction[0]) {
        Append(line, "+0x%lx", dwAddress - dwModule);
        return;
    }
    char szFunction[256];
    CUDemangle(place.szFunction, szFunction, sizeof szFunction);
    Append(line, " %s+0x%lx", szFunction, place.dwOffset + (dwAddress - dwInside));
    if (place.szFile[0])
        Append(line, " %s(%lu)", NameOfPath(place.szFile), place.nLine);
}

// For the thread that suspends another: two that suspended each other would stand for ever.
CCULazyLock s_suspendLock;

bool IsCallingThread(HANDLE hThread)
{
    if (hThread == GetCurrentThread())
        return true;
    typedef DWORD WINAPI GetThreadIdFunction(HANDLE);
    const auto getThreadId = CUFindFunction<GetThreadIdFunction>("kernel32.dll", "GetThreadId");
    return getThreadId && getThreadId(hThread) == GetCurrentThreadId();
}

// By its frame pointers alone: a suspended thread may hold locks that the debug-help library needs.
void WalkOtherThread(HANDLE hThread, CCUStackAddresses &stack)
{
    CONTEXT context = {};
    context.ContextFlags = CONTEXT_FULL;
    const CCULockGuard lock(s_suspendLock);
    if (SuspendThread(hThread) == static_cast<DWORD>(-1))
        return;
    if (GetThreadContext(hThread, &context))
        WalkFramePointers(context, stack);
    ResumeThread(hThread);
    stack.bFirstIsExact = true;
}

}  // namespace

void CUWalkStack(HANDLE hThread, const CONTEXT &context, CCUStackAddresses &stack)
{
    stack.nCount = 0;
    CWalk walk = {hThread, context, &stack};
    if (!CUIsAtThreadEnd())
        CUAskDebugHelp(WalkDebugHelp, &walk);
    // There is no library, or it did not get beyond the first address.
    if (stack.nCount < 2) {
        stack.nCount = 0;
        WalkFramePointers(context, stack);
    }
}

int CUFormatStack(const CCUStackAddresses &stack, char *buffer, unsigned int size)
{
    unsigned int nUsed = 0;
    int nLines = 0;
    for (; nLines < stack.nCount; ++nLines) {
        const DWORD dwAddress = stack.address[nLines];
        const bool bExact = nLines == 0 && stack.bFirstIsExact;
        CLine line;
        FormatLine(dwAddress, bExact ? dwAddress : dwAddress - 1, line);
        Append(line, "\n");
        const unsigned int nLength = static_cast<unsigned int>(line.nLength);
        if (nUsed + nLength >= size)
            break;
        memcpy(buffer + nUsed, line.text, nLength);
        nUsed += nLength;
    }
    if (size > 0)
        buffer[nUsed] = '\0';
    return nLines;
}

CU_NOINLINE int CUGetStackTrace(HANDLE hThread, char *buffer, unsigned int size)
{
    const CCUKeepLastError keepLastError;
    CCUStackAddresses stack = {};
    // At a thread's end the loader must not be asked for GetThreadId, so nobody knows whether any
    // other handle is the thread's own, which must not suspend itself. Such a stack stays empty.
    const bool bUnknown = hThread != GetCurrentThread() && CUIsAtThreadEnd();
    if (!bUnknown && IsCallingThread(hThread)) {
        // From where the thread will stand when this function has returned.
        CONTEXT context = {};
        void *const *const frame = CU_FRAME_ADDRESS();
        context.Ebp = reinterpret_cast<DWORD>(frame[0]);
        context.Eip = reinterpret_cast<DWORD>(frame[1]);
        context.Esp = reinterpret_cast<DWORD>(frame + 2);
        CUWalkStack(hThread, context, stack);
    } else if (!bUnknown) {
        WalkOtherThread(hThread, stack);
    }
    return CUFormatStack(stack, buffer, size);
}
