#include <gtest/gtest.h>

#include "CU/Clock.h"
#include "CU/Version.h"
#include "Support/FailingCall.h"

namespace {

FILETIME s_now;
LARGE_INTEGER s_counter;
SYSTEMTIME s_set;
UINT s_nBroadcast;

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
        return time->wYear != 0;
    }
    static BOOL WINAPI SendNotify(HWND hWnd, UINT message, WPARAM, LPARAM)
    {
        s_nBroadcast = hWnd == HWND_BROADCAST ? message : 0;
        return TRUE;
    }
    // As on Windows 95.
    static FARPROC WINAPI NoFunction(HMODULE, LPCSTR) { return nullptr; }
};

}  // namespace

TEST(Clock, DoubleTimeFillsInBetweenTicks)
{
    EXPECT_EQ(-11644473600.0, CUFileTimeToSeconds(FILETIME()));
    const CImportHook now("GetSystemTimeAsFileTime", CFake::Now);
    const CImportHook counter("QueryPerformanceCounter", CFake::Counter);
    const CImportHook functions("GetProcAddress", CFake::NoFunction);
    // A tick is 55 ms. Time goes on with the counter while the clock stands still, never past the
    // end of the tick or behind the clock, and follows when the clock is set.
    const double steps[][3] = {{1000, 5, 1000},           {1000, 5.004, 1000.004},
                               {1000, 5.07, 1000.055},    {1000.055, 5.08, 1000.065},
                               {1000.11, 5.081, 1000.11}, {1500, 5.083, 1500}};
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    for (const auto &step : steps) {
        const long long nTicks = 116444736000000000 + static_cast<long long>(step[0] * 1e7);
        s_now = {static_cast<DWORD>(nTicks), static_cast<DWORD>(nTicks >> 32)};
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
    EXPECT_EQ(increment, dwIncrement);
    EXPECT_EQ(adjustment, dwAdjustment);
    const CImportHook setTime("SetSystemTime", CFake::SetTime);
    const CImportHook notify("SendNotifyMessageA", CFake::SendNotify);
    const CImportHook functions("GetProcAddress", CFake::NoFunction);
    EXPECT_FALSE(CUGetSystemTimeAdjustment(increment, adjustment));
    EXPECT_TRUE(CUSetSystemTimeAdjustment(7));
    const CFailingCall<BOOL(HANDLE, DWORD, PHANDLE)> noToken("OpenProcessToken");
    CFailPlan::Start(CFailPlan::ALL);
    EXPECT_FALSE(CUSetSystemTimeAdjustment(7));
    EXPECT_TRUE(CUSetSystemTime(994264215.75));
    const SYSTEMTIME expected = {2001, 7, 3, 4, 16, 30, 15, 750};
    EXPECT_EQ(0, memcmp(&expected, &s_set, sizeof expected));
    EXPECT_EQ(0u + WM_TIMECHANGE, s_nBroadcast);
    s_nBroadcast = 0;
    for (const double never : {1e300, -1e300, -2e10, 9.2e11})
        EXPECT_FALSE(CUSetSystemTime(never)) << never;
    EXPECT_EQ(0u, s_nBroadcast);
}

TEST(Version, IsTheSystemsAnswer)
{
    OSVERSIONINFOA expected = {};
    expected.dwOSVersionInfoSize = sizeof expected;
    ASSERT_TRUE(GetVersionExA(&expected));
    const CCUVersionInfo version;
    EXPECT_EQ(expected.dwPlatformId == VER_PLATFORM_WIN32_NT, version.IsWinNT());
    EXPECT_EQ(expected.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS, version.IsWin95());
    EXPECT_EQ(version.GetMajor(), static_cast<int>(expected.dwMajorVersion));
    EXPECT_EQ(version.GetMinor(), static_cast<int>(expected.dwMinorVersion));
    EXPECT_EQ(version.GetBuildNumber(), static_cast<int>(expected.dwBuildNumber));
    EXPECT_STREQ(expected.szCSDVersion, version.GetVerString());
}
