#include "DebugHelp.h"

#include "LazyLock.h"
#include "SystemLibrary.h"

namespace {

struct CFunctions
{
    decltype(&::StackWalk) StackWalk;
    decltype(&::SymFunctionTableAccess) SymFunctionTableAccess;
    decltype(&::SymGetModuleBase) SymGetModuleBase;
    decltype(&::SymLoadModule) SymLoadModule;
    decltype(&::SymGetSymFromAddr) SymGetSymFromAddr;
    decltype(&::SymGetLineFromAddr) SymGetLineFromAddr;  // null before Windows 98 and 2000
};

CCULazyLock s_lock;
bool s_bTried = false;
CFunctions s_functions = {};
bool s_bAvailable = false;

template <typename F>
bool GetFunctionOf(HMODULE hLibrary, const char *name, F &function)
{
    function = reinterpret_cast<F>(GetProcAddress(hLibrary, name));
    return function != nullptr;
}

void LoadDebugHelp()
{
    HMODULE hLibrary = CULoadSystemLibrary("dbghelp.dll");
    if (!hLibrary)
        hLibrary = CULoadSystemLibrary("imagehlp.dll");
    if (!hLibrary)
        return;
    decltype(&::SymInitialize) initialize;
    decltype(&::SymSetOptions) setOptions;
    CFunctions &f = s_functions;
    GetFunctionOf(hLibrary, "SymGetLineFromAddr", f.SymGetLineFromAddr);
    if (!GetFunctionOf(hLibrary, "StackWalk", f.StackWalk) ||
        !GetFunctionOf(hLibrary, "SymFunctionTableAccess", f.SymFunctionTableAccess) ||
        !GetFunctionOf(hLibrary, "SymGetModuleBase", f.SymGetModuleBase) ||
        !GetFunctionOf(hLibrary, "SymLoadModule", f.SymLoadModule) ||
        !GetFunctionOf(hLibrary, "SymGetSymFromAddr", f.SymGetSymFromAddr) ||
        !GetFunctionOf(hLibrary, "SymInitialize", initialize) ||
        !GetFunctionOf(hLibrary, "SymSetOptions", setOptions))
        return;
    setOptions(SYMOPT_UNDNAME | SYMOPT_LOAD_LINES);
    // Fails when the program uses the library itself, which serves as well.
    initialize(GetCurrentProcess(), nullptr, FALSE);
    s_bAvailable = true;
}

// Modules are announced one by one as a walk meets them, so that those loaded later count too and
// nobody waits for the symbols of all the others.
DWORD WINAPI FindModule(HANDLE hProcess, DWORD dwAddress)
{
    const DWORD dwBase = s_functions.SymGetModuleBase(hProcess, dwAddress);
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
    return s_functions.SymLoadModule(hProcess, nullptr, szPath, nullptr,
                                     reinterpret_cast<DWORD>(memory.AllocationBase), 0);
}

bool FindSymbols(DWORD dwAddress)
{
    return s_bAvailable && FindModule(GetCurrentProcess(), dwAddress) != 0;
}

}  // namespace

CCUDebugHelp::CCUDebugHelp()
{
    s_lock.Enter();
    if (!s_bTried)
        LoadDebugHelp();
    s_bTried = true;
}

CCUDebugHelp::~CCUDebugHelp()
{
    s_lock.Leave();
}

bool CCUDebugHelp::Walk(HANDLE hThread, STACKFRAME &frame, CONTEXT &context) const
{
    return s_bAvailable &&
           s_functions.StackWalk(IMAGE_FILE_MACHINE_I386, GetCurrentProcess(), hThread, &frame,
                                 &context, nullptr, s_functions.SymFunctionTableAccess, FindModule,
                                 nullptr);
}

bool CCUDebugHelp::GetFunction(DWORD dwAddress, char *name, unsigned int nSize,
                               DWORD &dwOffset) const
{
    const DWORD MostCharacters = 256;
    union
    {
        IMAGEHLP_SYMBOL symbol;
        char bytes[sizeof(IMAGEHLP_SYMBOL) + MostCharacters];
    } u = {};
    u.symbol.SizeOfStruct = sizeof u.symbol;
    u.symbol.MaxNameLength = MostCharacters;
    if (!FindSymbols(dwAddress) ||
        !s_functions.SymGetSymFromAddr(GetCurrentProcess(), dwAddress, &dwOffset, &u.symbol))
        return false;
    lstrcpynA(name, u.symbol.Name, static_cast<int>(nSize));
    return *name != '\0';
}

bool CCUDebugHelp::GetLine(DWORD dwAddress, const char *&file, DWORD &nLine) const
{
    IMAGEHLP_LINE line = {};
    line.SizeOfStruct = sizeof line;
    DWORD dwOffset = 0;
    if (!FindSymbols(dwAddress) || !s_functions.SymGetLineFromAddr ||
        !s_functions.SymGetLineFromAddr(GetCurrentProcess(), dwAddress, &dwOffset, &line))
        return false;
    file = line.FileName;
    nLine = line.LineNumber;
    return file != nullptr;
}
