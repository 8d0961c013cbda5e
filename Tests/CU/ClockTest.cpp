#include <gtest/gtest.h>

#include <limits>

#include "CU/Clock.h"
#include "CU/Version.h"
#include "Support/FailingCall.h"

namespace {

LONGLONG s_nSystem;   // 100 ns since 1601
LONGLONG s_nCounter;  // a million in a second
SYSTEMTIME s_set;
BOOL s_bSettable;
DWORD s_dwAdjustment;
DWORD s_dwMessage;

void WINAPI FakeSystemTime(FILETIME *time)
{
    time->dwLowDateTime = static_cast<DWORD>(s_nSystem);
    time->dwHighDateTime = static_cast<DWORD>(s_nSystem >> 32);
}

BOOL WINAPI FakeCounter(LARGE_INTEGER *counter)
{
    counter->QuadPart = s_nCounter;
    return TRUE;
}

BOOL WINAPI FakeFrequency(LARGE_INTEGER *frequency)
{
    frequency->QuadPart = 1000000;
    return TRUE;
}

BOOL WINAPI FakeSetSystemTime(const SYSTEMTIME *time)
{
    s_set = *time;
    return s_bSettable;
}

BOOL WINAPI FakeSendNotify(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    s_dwMessage = hWnd == HWND_BROADCAST && !wParam && !lParam ? message : 0;
    return TRUE;
}

BOOL WINAPI FakeGetAdjustment(DWORD *adjustment, DWORD *increment, BOOL *)
{
    *adjustment = 99000;
    *increment = 100000;
    return s_bSettable;
}

BOOL WINAPI FakeSetAdjustment(DWORD dwAdjustment, BOOL bDisabled)
{
    s_dwAdjustment = bDisabled ? 0 : dwAdjustment;
    return FALSE;
}

FARPROC WINAPI FakeGetProcAddress(HMODULE, LPCSTR name)
{
    return strcmp(name, "SetSystemTimeAdjustment") == 0
               ? reinterpret_cast<FARPROC>(FakeSetAdjustment)
               : reinterpret_cast<FARPROC>(FakeGetAdjustment);
}

BOOL WINAPI AdjustNothing(HANDLE, BOOL, TOKEN_PRIVILEGES *privileges, DWORD, TOKEN_PRIVILEGES *,
                          DWORD *)
{
    return privileges->PrivilegeCount == 1 &&
           privileges->Privileges[0].Attributes == SE_PRIVILEGE_ENABLED;
}

}  // namespace

TEST(Clock, TellsSecondsSince1970)
{
    const long long nEpoch = 116444736000000000;
    const struct
    {
        long long nTicks;
        double seconds;
    } cases[] = {{nEpoch, 0}, {nEpoch + 15, 1.5e-6}, {0, -11644473600.0}, {-1, -11644473600.0}};
    for (const auto &item : cases) {
        const FILETIME time = {static_cast<DWORD>(item.nTicks),
                               static_cast<DWORD>(item.nTicks >> 32)};
        EXPECT_NEAR(item.seconds, CUFileTimeToSeconds(time), 1e-6) << item.nTicks;
    }
    FILETIME before;
    GetSystemTimeAsFileTime(&before);
    const double elapsed = CUGetSystemTimeSeconds() - CUFileTimeToSeconds(before);
    EXPECT_TRUE(elapsed >= 0 && elapsed < 60) << elapsed;
}

TEST(Clock, DoubleTimeFillsInBetweenTicks)
{
    const CImportHook system("GetSystemTimeAsFileTime", FakeSystemTime);
    const CImportHook counter("QueryPerformanceCounter", FakeCounter);
    const CImportHook frequency("QueryPerformanceFrequency", FakeFrequency);
    const CImportHook adjustment("GetProcAddress", FakeGetProcAddress);
    s_bSettable = TRUE;
    const auto at = [](double seconds, LONGLONG nCounter) {
        s_nSystem = 116444736000000000 + static_cast<LONGLONG>(seconds * 1e7);
        s_nCounter = nCounter;
        return CUDoubleTime();
    };
    // A tick is 10 ms here. Time goes on with the counter while the clock stands still...
    EXPECT_DOUBLE_EQ(1000.000, at(1000, 5000000));
    EXPECT_NEAR(1000.004, at(1000, 5004000), 1e-6);
    // ...never past the end of the tick, never behind the clock...
    EXPECT_NEAR(1000.010, at(1000, 5030000), 1e-6);
    EXPECT_NEAR(1000.010, at(1000.010, 5030000), 1e-6);
    EXPECT_NEAR(1000.013, at(1000.010, 5033000), 1e-6);
    EXPECT_NEAR(1000.020, at(1000.020, 5034000), 1e-6);
    // ...and follows when the clock is set, either way.
    EXPECT_NEAR(2000.000, at(2000, 5035000), 1e-6);
    EXPECT_NEAR(1500.010, at(1500, 5036000), 1e-6);
}

TEST(Clock, AdjustmentNeedsThePrivilegeAndTheClockOnlyTries)
{
    const CImportHook functions("GetProcAddress", FakeGetProcAddress);
    const CImportHook setTime("SetSystemTime", FakeSetSystemTime);
    const CImportHook notify("SendNotifyMessageA", FakeSendNotify);
    double increment = -1;
    double adjustment = -1;
    s_bSettable = FALSE;
    EXPECT_FALSE(CUGetSystemTimeAdjustment(increment, adjustment));
    EXPECT_EQ(-2, increment + adjustment);
    s_bSettable = TRUE;
    EXPECT_TRUE(CUGetSystemTimeAdjustment(increment, adjustment));
    EXPECT_TRUE(increment == 100000 && adjustment == 99000);

    const CImportHook adjust("AdjustTokenPrivileges", AdjustNothing);
    const struct
    {
        double adjustment;
        DWORD dwExpected;
    } cases[] = {{99000.9, 99000},
                 {-5, 0},
                 {1e20, 0xFFFFFFFF},
                 {std::numeric_limits<double>::quiet_NaN(), 0}};
    for (const auto &item : cases) {
        s_dwAdjustment = 1;
        EXPECT_TRUE(CUSetSystemTimeAdjustment(item.adjustment));
        EXPECT_EQ(item.dwExpected, s_dwAdjustment);
    }

    // Each call for the privilege failing in turn, and then none.
    CFailingCall<BOOL(HANDLE, DWORD, PHANDLE)> open("OpenProcessToken");
    CFailingCall<BOOL(LPCSTR, LPCSTR, PLUID)> lookUp("LookupPrivilegeValueA");
    CFailingCall<BOOL(HANDLE, BOOL, PTOKEN_PRIVILEGES, DWORD, PTOKEN_PRIVILEGES, PDWORD)> enable(
        "AdjustTokenPrivileges");
    int nSucceeded = 0;
    int nSet = 0;
    CFailPlan::RunAll([&] {
        s_dwAdjustment = 1;
        const bool bDone = CUSetSystemTimeAdjustment(7);
        EXPECT_EQ(bDone ? 7u : 1u, s_dwAdjustment);
        nSucceeded += bDone;
    });
    EXPECT_EQ(1, nSucceeded);
    CFailPlan::RunAll([&] { nSet += CUSetSystemTime(994264215.75); });
    EXPECT_EQ(4, nSet);
    const SYSTEMTIME expected = {2001, 7, 3, 4, 16, 30, 15, 750};
    EXPECT_EQ(0, memcmp(&expected, &s_set, sizeof expected));
    EXPECT_EQ(static_cast<DWORD>(WM_TIMECHANGE), s_dwMessage);
    EXPECT_TRUE(CUSetSystemTime(0) && s_set.wYear == 1970 && s_set.wDay == 1 && s_set.wHour == 0);
    s_bSettable = FALSE;
    s_dwMessage = 0;
    for (const double never : {1e300, -1e300, -2e10, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_FALSE(CUSetSystemTime(never)) << never;
    EXPECT_EQ(0u, s_dwMessage);
}

TEST(Version, IsTheSystemsAnswer)
{
    OSVERSIONINFOA expected = {};
    expected.dwOSVersionInfoSize = sizeof expected;
    ASSERT_TRUE(GetVersionExA(&expected));
    const CCUVersionInfo version;
    EXPECT_EQ(expected.dwPlatformId == VER_PLATFORM_WIN32_NT, version.IsWinNT());
    EXPECT_EQ(expected.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS, version.IsWin95());
    EXPECT_FALSE(version.IsWin32());
    EXPECT_EQ(expected.dwMajorVersion, static_cast<DWORD>(version.GetMajor()));
    EXPECT_EQ(expected.dwMinorVersion, static_cast<DWORD>(version.GetMinor()));
    EXPECT_EQ(expected.dwBuildNumber, static_cast<DWORD>(version.GetBuildNumber()));
    EXPECT_STREQ(expected.szCSDVersion, version.GetVerString());
}
