#include <gtest/gtest.h>

#include <limits>

#include "CU/Clock.h"
#include "CU/Version.h"
#include "Support/FailingCall.h"

namespace {

const double s_notANumber = std::numeric_limits<double>::quiet_NaN();
FILETIME s_now;
LARGE_INTEGER s_counter;
SYSTEMTIME s_set;
BOOL s_bSettable;
DWORD s_dwAdjustment, s_dwBroadcast;

FILETIME ToFileTime(double seconds)
{
    const long long nTicks = 116444736000000000 + static_cast<long long>(seconds * 1e7);
    return {static_cast<DWORD>(nTicks), static_cast<DWORD>(nTicks >> 32)};
}

// In the places of the system's calls.
struct CFake
{
    static void WINAPI Now(FILETIME *time) { *time = s_now; }
    static BOOL WINAPI Counter(LARGE_INTEGER *counter)
    {
        *counter = s_counter;
        return TRUE;
    }
    static BOOL WINAPI SetTime(const SYSTEMTIME *time)
    {
        s_set = *time;
        return s_bSettable;
    }
    static BOOL WINAPI SendNotify(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
    {
        s_dwBroadcast = hWnd == HWND_BROADCAST && !wParam && !lParam ? message : 0;
        return TRUE;
    }
    static BOOL WINAPI SetAdjustment(DWORD dwAdjustment, BOOL bDisabled)
    {
        s_dwAdjustment = bDisabled ? 0 : dwAdjustment;
        return FALSE;
    }
    // The reading call is missing, as on Windows 95.
    static FARPROC WINAPI GetFunction(HMODULE, LPCSTR name)
    {
        const bool bSet = strcmp(name, "SetSystemTimeAdjustment") == 0;
        return bSet ? reinterpret_cast<FARPROC>(SetAdjustment) : nullptr;
    }
};

}  // namespace

TEST(Clock, DoubleTimeFillsInBetweenTicks)
{
    EXPECT_EQ(-11644473600.0, CUFileTimeToSeconds(FILETIME()));
    EXPECT_EQ(910692730085.47758, CUFileTimeToSeconds({0, 0x80000000}));  // wraps
    const CImportHook now("GetSystemTimeAsFileTime", CFake::Now);
    const CImportHook counter("QueryPerformanceCounter", CFake::Counter);
    const CImportHook functions("GetProcAddress", CFake::GetFunction);
    // A tick is 55 ms. Time goes on with the counter while the clock stands still, never past the
    // end of the tick or behind the clock, and follows when the clock is set.
    const double steps[][3] = {{1000, 5, 1000},
                               {1000, 5.004, 1000.004},
                               {1000, 5.07, 1000.055},
                               {1000.055, 5.07, 1000.055},
                               {1000.055, 5.08, 1000.065},
                               {1000.11, 5.081, 1000.11},
                               {2000, 5.082, 2000},
                               {1500, 5.083, 1500.055}};
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    for (const auto &step : steps) {
        s_now = ToFileTime(step[0]);
        s_counter.QuadPart =
            static_cast<LONGLONG>(step[1] * static_cast<double>(frequency.QuadPart));
        EXPECT_NEAR(step[0], CUGetSystemTimeSeconds(), 1e-6);
        EXPECT_NEAR(step[2], CUDoubleTime(), 1e-5);
    }
}

TEST(Clock, AdjustmentNeedsThePrivilegeAndTheClockOnlyTries)
{
    double increment = -1, adjustment = -1;
    DWORD dwAdjustment = 0, dwIncrement = 0;
    BOOL bDisabled = FALSE;
    ASSERT_TRUE(GetSystemTimeAdjustment(&dwAdjustment, &dwIncrement, &bDisabled));
    EXPECT_TRUE(CUGetSystemTimeAdjustment(increment, adjustment));
    EXPECT_TRUE(increment == dwIncrement && adjustment == dwAdjustment);
    const CImportHook functions("GetProcAddress", CFake::GetFunction);
    const CImportHook setTime("SetSystemTime", CFake::SetTime);
    const CImportHook notify("SendNotifyMessageA", CFake::SendNotify);
    EXPECT_FALSE(CUGetSystemTimeAdjustment(increment, adjustment));
    EXPECT_TRUE(increment == dwIncrement && adjustment == dwAdjustment);
    s_bSettable = TRUE;
    const double adjustments[][2] = {
        {99000.9, 99000}, {-5, 0}, {1e20, 4294967295.0}, {s_notANumber, 0}};
    for (const auto &item : adjustments) {
        EXPECT_TRUE(CUSetSystemTimeAdjustment(item[0]));
        EXPECT_EQ(item[1], s_dwAdjustment);
    }

    // Each call for the privilege failing in turn, and then none.
    CFailingCall<BOOL(HANDLE, DWORD, PHANDLE)> open("OpenProcessToken");
    CFailingCall<BOOL(LPCSTR, LPCSTR, PLUID)> lookUp("LookupPrivilegeValueA");
    CFailingCall<BOOL(HANDLE, BOOL, PTOKEN_PRIVILEGES, DWORD, PTOKEN_PRIVILEGES, PDWORD)> enable(
        "AdjustTokenPrivileges");
    int nAdjusted = 0, nSet = 0;
    CFailPlan::RunAll([&] {
        s_dwAdjustment = 1;
        const bool bDone = CUSetSystemTimeAdjustment(7);
        EXPECT_EQ(bDone ? 7u : 1u, s_dwAdjustment);
        nAdjusted += bDone;
    });
    CFailPlan::RunAll([&] { nSet += CUSetSystemTime(994264215.75); });
    EXPECT_EQ(1, nAdjusted);
    EXPECT_EQ(4, nSet);
    const SYSTEMTIME expected = {2001, 7, 3, 4, 16, 30, 15, 750};
    EXPECT_EQ(0, memcmp(&expected, &s_set, sizeof expected));
    EXPECT_EQ(static_cast<DWORD>(WM_TIMECHANGE), s_dwBroadcast);
    EXPECT_TRUE(CUSetSystemTime(0) && s_set.wYear == 1970 && s_set.wDay == 1 && s_set.wHour == 0);
    EXPECT_TRUE(CUSetSystemTime(9e11) && s_set.wYear == 30489);
    s_bSettable = FALSE;
    s_dwBroadcast = 0;
    for (const double never : {1e300, -1e300, -2e10, 9.2e11, s_notANumber})
        EXPECT_TRUE(!CUSetSystemTime(never) && s_set.wYear == 0) << never;
    EXPECT_EQ(0u, s_dwBroadcast);
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
    EXPECT_TRUE(version.GetMajor() == static_cast<int>(expected.dwMajorVersion) &&
                version.GetMinor() == static_cast<int>(expected.dwMinorVersion) &&
                version.GetBuildNumber() == static_cast<int>(expected.dwBuildNumber));
    EXPECT_STREQ(expected.szCSDVersion, version.GetVerString());
}
