#include "Report/DebugHelp.h"

#include <string.h>

#include "Base/Lock.h"
#include "Report/FaultGuard.h"
#include "Process/SystemLibrary.h"

namespace {

// The library's functions: where they are kept, and their names in that order.
enum EFunction
{
    fnStackWalk,
    fnSymFunctionTableAccess,
    fnSymGetModuleBase,
    fnSymLoadModule,
    fnSymGetSymFromAddr,
    fnSymInitialize,
    fnSymSetOptions,
    fnSymGetLineFromAddr,  // the only one that may be missing: before Windows 98 and 2000
    fnCount
};
const char *const FunctionNames =
    "StackWalk\0"
    "SymFunctionTableAccess\0"
    "SymGetModuleBase\0"
    "SymLoadModule\0"
    "SymGetSymFromAddr\0"
    "SymInitialize\0"
    "SymSetOptions\0"
    "SymGetLineFromAddr";
FARPROC s_functions[fnCount];
#define HELP(name) reinterpret_cast<decltype(&::name)>(s_functions[fn##name])

CCULazyLock s_lock;
bool s_bTried = false;
bool s_bAvailable = false;
// Some 12 KiB are what Wine's library takes to read a program's symbols.
const int StackForLibrary = 0x10000;

void LoadDebugHelp()
{
    HMODULE hLibrary = CULoadSystemLibrary("dbghelp.dll");
    if (!hLibrary)
        hLibrary = CULoadSystemLibrary("imagehlp.dll");
    if (!hLibrary)
        return;
    const char *name = FunctionNames;
    for (int i = 0; i < fnCount; ++i, name += strlen(name) + 1) {
        s_functions[i] = GetProcAddress(hLibrary, name);
        if (!s_functions[i] && i != fnSymGetLineFromAddr)
            return;
    }
    HELP(SymSetOptions)(SYMOPT_UNDNAME | SYMOPT_LOAD_LINES);
    // Fails when the program uses the library itself, which serves as well.
    HELP(SymInitialize)(GetCurrentProcess(), nullptr, FALSE);
    s_bAvailable = true;
}

// Modules are announced one by one as a walk meets them, so that those loaded later count too and
// nobody waits for the symbols of all the others.
DWORD WINAPI FindModule(HANDLE hProcess, DWORD dwAddress)
{
    const DWORD dwBase = HELP(SymGetModuleBase)(hProcess, dwAddress);
    if (dwBase)
        return dwBase;
    MEMORY_BASIC_INFORMATION memory;
    if (!VirtualQuery(reinterpret_cast<void *>(dwAddress), &memory, sizeof memory))
        return 0;
    char szPath[MAX_PATH];
    const DWORD nLength =
        GetModuleFileNameA(static_cast<HMODULE>(memory.AllocationBase), szPath, MAX_PATH);
    // A longer one is cut, without a NUL on some systems.
    if (nLength == 0 || nLength >= MAX_PATH)
        return 0;
    return HELP(SymLoadModule)(hProcess, nullptr, szPath, nullptr,
                               reinterpret_cast<DWORD>(memory.AllocationBase), 0);
}

// On Windows 95 and 98 the walk asks for an address of the thread's 16-bit stack, if only to learn
// that no call here comes from there, and calls even a null routine. In flat segments, the only
// ones that such a walk meets, the offset is the address.
DWORD WINAPI TranslateAddress(HANDLE, HANDLE, LPADDRESS address)
{
    return address->Offset;
}

bool HasEnoughStack()
{
    const char *const here = static_cast<const char *>(__builtin_frame_address(0));
    MEMORY_BASIC_INFORMATION memory;
    return VirtualQuery(here, &memory, sizeof memory) &&
           here - static_cast<const char *>(memory.AllocationBase) >= StackForLibrary;
}

struct CQuestion
{
    void (*ask)(void *);
    void *argument;
};

void Ask(void *parameter)
{
    if (!s_bTried) {
        s_bTried = true;
        LoadDebugHelp();
    }
    const CQuestion &question = *static_cast<const CQuestion *>(parameter);
    if (s_bAvailable)
        question.ask(question.argument);
}

}  // namespace

void CUAskDebugHelp(void (*ask)(void *), void *argument)
{
    CQuestion question = {ask, argument};
    const CCULockGuard lock(s_lock);
    if (HasEnoughStack() && !CUCallGuarded(Ask, &question))
        s_bAvailable = false;
}

bool CUDebugHelpWalk(HANDLE hThread, STACKFRAME &frame, CONTEXT &context)
{
    return HELP(StackWalk)(IMAGE_FILE_MACHINE_I386, GetCurrentProcess(), hThread, &frame, &context,
                           nullptr, HELP(SymFunctionTableAccess), FindModule, TranslateAddress);
}

void CUDebugHelpFindPlace(void *parameter)
{
    CCUPlace &place = *static_cast<CCUPlace *>(parameter);
    const HANDLE hProcess = GetCurrentProcess();
    union
    {
        IMAGEHLP_SYMBOL symbol;
        char bytes[sizeof(IMAGEHLP_SYMBOL) + sizeof place.szFunction];
    } u = {};
    u.symbol.SizeOfStruct = sizeof u.symbol;
    u.symbol.MaxNameLength = sizeof place.szFunction;
    if (!FindModule(hProcess, place.dwAddress) ||
        !HELP(SymGetSymFromAddr)(hProcess, place.dwAddress, &place.dwOffset, &u.symbol))
        return;
    lstrcpynA(place.szFunction, u.symbol.Name, sizeof place.szFunction);
    IMAGEHLP_LINE line = {};
    line.SizeOfStruct = sizeof line;
    DWORD dwOffset = 0;
    if (!s_functions[fnSymGetLineFromAddr] ||
        !HELP(SymGetLineFromAddr)(hProcess, place.dwAddress, &dwOffset, &line) || !line.FileName)
        return;
    lstrcpynA(place.szFile, line.FileName, sizeof place.szFile);
    place.nLine = line.LineNumber;
}
