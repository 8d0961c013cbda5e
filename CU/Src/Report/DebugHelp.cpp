#include "Report/DebugHelp.h"

#include <string.h>

#include "Base/Compiler.h"
#include "Base/Lock.h"
#include "Base/SystemLibrary.h"
#include "Report/FaultGuard.h"

namespace {

// The library's functions, their names in the same order, and their addresses.
enum EFunction
{
    fnStackWalk,
    fnSymFunctionTableAccess,
    fnSymGetModuleBase,
    fnSymLoadModule,
    fnSymGetSymFromAddr,
    fnSymInitialize,
    fnSymSetOptions,
    fnSymGetLineFromAddr,  // missing on Windows 95 and NT 4; without the others there is no help
    fnCount
};
const char *const FUNCTION_NAMES =
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
// The library of Wine 8 uses some 12 KiB to read a program's symbols; others may use more.
const int STACK_FOR_LIBRARY = 0x10000;

void LoadDebugHelp()
{
    HMODULE hLibrary = CULoadSystemLibrary("dbghelp.dll");
    if (!hLibrary)
        hLibrary = CULoadSystemLibrary("imagehlp.dll");
    if (!hLibrary)
        return;
    const char *name = FUNCTION_NAMES;
    for (int i = 0; i < fnCount; ++i, name += strlen(name) + 1) {
        s_functions[i] = GetProcAddress(hLibrary, name);
        if (!s_functions[i] && i != fnSymGetLineFromAddr)
            return;
    }
    HELP(SymSetOptions)(SYMOPT_UNDNAME | SYMOPT_LOAD_LINES);
    // Fails when the program has initialised the library for itself; then it works for us too.
    HELP(SymInitialize)(GetCurrentProcess(), nullptr, FALSE);
    s_bAvailable = true;
}

// Tells the library of each module when a walk meets it. So modules that were loaded later count
// too, and nobody waits for the symbols of modules that the walk does not meet.
DWORD WINAPI FindModule(HANDLE hProcess, DWORD dwAddress)
{
    const DWORD dwKnown = HELP(SymGetModuleBase)(hProcess, dwAddress);
    if (dwKnown)
        return dwKnown;
    char szPath[MAX_PATH];
    const DWORD dwModule = CUFindModule(dwAddress, szPath);
    // A path of the buffer's length may have been cut, and then means no file or another one.
    if (!dwModule || strlen(szPath) == sizeof szPath - 1)
        return 0;
    return HELP(SymLoadModule)(hProcess, nullptr, szPath, nullptr, dwModule, 0);
}

// Windows 95 and 98 also walk the thread's 16-bit stack, and call this for its addresses even when
// no routine is given. All code here has flat segments, in which the offset is the address.
DWORD WINAPI TranslateAddress(HANDLE, HANDLE, LPADDRESS address)
{
    return address->Offset;
}

bool HasEnoughStack()
{
    const char *const here = reinterpret_cast<const char *>(CU_FRAME_ADDRESS());
    MEMORY_BASIC_INFORMATION memory;
    return VirtualQuery(here, &memory, sizeof memory) &&
           here - static_cast<const char *>(memory.AllocationBase) >= STACK_FOR_LIBRARY;
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

DWORD CUFindModule(DWORD dwAddress, char (&szPath)[MAX_PATH])
{
    MEMORY_BASIC_INFORMATION memory;
    // Free memory has no base, and for no module the system would name the program.
    if (!VirtualQuery(reinterpret_cast<void *>(dwAddress), &memory, sizeof memory) ||
        !memory.AllocationBase ||
        !GetModuleFileNameA(static_cast<HMODULE>(memory.AllocationBase), szPath, sizeof szPath))
        return 0;
    // Windows XP and before leave the NUL out when they cut a path.
    szPath[sizeof szPath - 1] = '\0';
    return reinterpret_cast<DWORD>(memory.AllocationBase);
}

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
