#include "CU/Clock.h"

#include "Base/Handle.h"
#include "Base/Lock.h"
#include "Base/SystemLibrary.h"
#include "Time/Clock.h"

namespace {

// The functions of the clock's adjustment, which Windows 95 lacks.
typedef BOOL WINAPI GetAdjustmentCall(PDWORD, PDWORD, PBOOL);
typedef BOOL WINAPI SetAdjustmentCall(DWORD, BOOL);

// Opens this process's token. Whether the calls went well; AdjustTokenPrivileges calls it success
// when the user has no such privilege.
bool EnableSystemTime(CCUObjectHandle &token, DWORD dwAccess)
{
    TOKEN_PRIVILEGES privileges = {};
    privileges.PrivilegeCount = 1;
    privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    return OpenProcessToken(GetCurrentProcess(), dwAccess, token.Receive()) &&
           LookupPrivilegeValueA(nullptr, "SeSystemtimePrivilege",
                                 &privileges.Privileges[0].Luid) &&
           AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
}

// The value truncated to an integer within the limits; what is no number becomes the lowest.
template <typename T>
T Truncated(double value, double lowest, double highest)
{
    if (!(value > lowest))
        return static_cast<T>(lowest);
    return static_cast<T>(value < highest ? value : highest);
}

double SystemTick()
{
    double increment = 0;
    double adjustment = 0;
    // Windows 95 has no such call. Its clock advances with the timer interrupt, every 55 ms.
    return CUGetSystemTimeAdjustment(increment, adjustment) ? increment * 1e-7 : 0.055;
}

double CounterSeconds()
{
    LARGE_INTEGER frequency;
    LARGE_INTEGER counter;
    if (!QueryPerformanceFrequency(&frequency) || !QueryPerformanceCounter(&counter))
        return 0;
    return static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
}

}  // namespace

long long CUEpochTicks()
{
    static long long s_nEpoch;
    static volatile LONG s_nKnown;
    // A crash report asks for the time, and must not wait for a thread that stands still in here.
    CUOnceWithoutWait(s_nKnown, [] {
        SYSTEMTIME epoch = {};
        epoch.wYear = 1970;
        epoch.wMonth = 1;
        epoch.wDay = 1;
        FILETIME file = {};
        SystemTimeToFileTime(&epoch, &file);
        s_nEpoch = CUFileTimeToTicks(file);
    });
    return s_nEpoch;
}

double CUFileTimeToSeconds(const FILETIME &time)
{
    // A time from the far end of the 64 bits wraps.
    const long long nTicks =
        static_cast<long long>(static_cast<unsigned long long>(CUFileTimeToTicks(time)) -
                               static_cast<unsigned long long>(CUEpochTicks()));
    // By way of memory, which rounds to a double: the x87 register's further bits would make equal
    // times differ.
    const volatile double seconds = static_cast<double>(nTicks) * 1e-7;
    return seconds;
}

double CUGetSystemTimeSeconds()
{
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return CUFileTimeToSeconds(now);
}

double CUDoubleTime()
{
    static CCULazyLock s_lock;
    static double s_tick;
    // What is to be added to the counter.
    static double s_base;
    const CCULockGuard guard(s_lock);
    if (s_tick <= 0)
        s_tick = SystemTick();
    const double system = CUGetSystemTimeSeconds();
    const double counter = CounterSeconds();
    // Counter and clock drift apart. The sum must lie within the clock's present tick.
    const double earliest = system;
    const double latest = system + s_tick;
    if (s_base + counter < earliest)
        s_base = earliest - counter;
    else if (s_base + counter > latest)
        s_base = latest - counter;
    return s_base + counter;
}

bool CUGetSystemTimeAdjustment(double &increment, double &adjustment)
{
    GetAdjustmentCall *const pGet =
        CUFindFunction<GetAdjustmentCall>("kernel32.dll", "GetSystemTimeAdjustment");
    DWORD dwAdjustment = 0;
    DWORD dwIncrement = 0;
    BOOL bDisabled = FALSE;
    if (!pGet || !pGet(&dwAdjustment, &dwIncrement, &bDisabled))
        return false;
    increment = dwIncrement;
    adjustment = dwAdjustment;
    return true;
}

bool CUSetSystemTimeAdjustment(double adjustment)
{
    CCUObjectHandle token;
    if (!EnableSystemTime(token, TOKEN_ADJUST_PRIVILEGES))
        return false;
    SetAdjustmentCall *const pSet =
        CUFindFunction<SetAdjustmentCall>("kernel32.dll", "SetSystemTimeAdjustment");
    if (pSet)
        pSet(Truncated<DWORD>(adjustment, 0, 4294967295.0), FALSE);
    return true;
}

bool CUSetSystemTime(double seconds)
{
    // Both limits give a time with the highest bit set, which FileTimeToSystemTime refuses.
    const unsigned long long nTicks =
        static_cast<unsigned long long>(CUEpochTicks()) +
        static_cast<unsigned long long>(Truncated<long long>(seconds * 1e7, -9.2e18, 9.2e18));
    FILETIME file;
    file.dwLowDateTime = static_cast<DWORD>(nTicks);
    file.dwHighDateTime = static_cast<DWORD>(nTicks >> 32);
    SYSTEMTIME time = {};
    // The record of a time that is refused stays all zeros, which SetSystemTime refuses.
    FileTimeToSystemTime(&file, &time);
    // Goes on where the privilege cannot be had: Windows 95 knows none, and wants none.
    CCUObjectHandle token;
    EnableSystemTime(token, TOKEN_ALL_ACCESS);
    token.Close();
    if (!SetSystemTime(&time))
        return false;
    SendNotifyMessageA(HWND_BROADCAST, WM_TIMECHANGE, 0, 0);
    return true;
}
