#include <gtest/gtest.h>

#include "CU/Clock.h"
#include "CU/Version.h"
#include "Support/FailingCall.h"

TEST(Clock, DoubleTimeFillsInBetweenTicks)
{
    EXPECT_EQ(-11644473600.0, CUFileTimeToSeconds(FILETIME()));
    FILETIME now = {};
    LARGE_INTEGER frequency, counter = {};
    const CFakeCall<void(FILETIME *)> clock("GetSystemTimeAsFileTime",
                                            [&](FILETIME *time) { *time = now; });
    const CFakeCall<BOOL(LARGE_INTEGER *)> counting("QueryPerformanceCounter",
                                                    [&](LARGE_INTEGER *time) {
                                                        *time = counter;
                                                        return TRUE;
                                                    });
    // As on Windows 95.
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> noFunction("GetProcAddress",
                                                         [](HMODULE, LPCSTR) { return nullptr; });
    // A tick is 55 ms. Time goes on with the counter while the clock stands still, never past the
    // end of the tick or behind the clock, and follows when the clock is set.
    const double steps[][3] = {{1000, 5, 1000},           {1000, 5.004, 1000.004},
                               {1000, 5.07, 1000.055},    {1000.055, 5.08, 1000.065},
                               {1000.11, 5.081, 1000.11}, {1500, 5.083, 1500}};
    QueryPerformanceFrequency(&frequency);
    for (const auto &step : steps) {
        const long long nTicks = 116444736000000000 + static_cast<long long>(step[0] * 1e7);
        now = {static_cast<DWORD>(nTicks), static_cast<DWORD>(nTicks >> 32)};
        counter.QuadPart = static_cast<LONGLONG>(step[1] * static_cast<double>(frequency.QuadPart));
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
    EXPECT_EQ(increment - adjustment, 0.0 + dwIncrement - dwAdjustment);
    SYSTEMTIME set = {};
    UINT nBroadcast = 0;
    const CFakeCall<BOOL(const SYSTEMTIME *)> setTime("SetSystemTime", [&](const SYSTEMTIME *time) {
        set = *time;
        return time->wYear != 0;
    });
    const CFakeCall<BOOL(HWND, UINT, WPARAM, LPARAM)> notify(
        "SendNotifyMessageA", [&](HWND hWnd, UINT message, WPARAM, LPARAM) {
            nBroadcast = hWnd == HWND_BROADCAST ? message : 0;
            return TRUE;
        });
    const CFailingCall<BOOL(HANDLE, DWORD, PHANDLE)> noToken("OpenProcessToken");
    CFailPlan::Start(CFailPlan::ALL);
    EXPECT_FALSE(CUSetSystemTimeAdjustment(7));
    EXPECT_TRUE(CUSetSystemTime(994264215.75));
    const SYSTEMTIME expected = {2001, 7, 3, 4, 16, 30, 15, 750};
    EXPECT_EQ(0, memcmp(&expected, &set, sizeof expected));
    EXPECT_EQ(0u + WM_TIMECHANGE, nBroadcast);
    nBroadcast = 0;
    for (const double never : {1e300, -1e300, -2e10, 9.2e11})
        EXPECT_FALSE(CUSetSystemTime(never)) << never;
    EXPECT_EQ(0u, nBroadcast);
}

TEST(Version, IsTheSystemsAnswer)
{
    OSVERSIONINFOA expected = {sizeof expected, 0, 0, 0, 0, ""};
    ASSERT_TRUE(GetVersionExA(&expected));
    const CCUVersionInfo version;
    EXPECT_EQ(expected.dwPlatformId == VER_PLATFORM_WIN32_NT, version.IsWinNT());
    EXPECT_EQ(expected.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS, version.IsWin95());
    EXPECT_EQ(static_cast<int>(expected.dwMajorVersion), version.GetMajor());
    EXPECT_EQ(static_cast<int>(expected.dwMinorVersion), version.GetMinor());
    EXPECT_EQ(static_cast<int>(expected.dwBuildNumber), version.GetBuildNumber());
    EXPECT_STREQ(expected.szCSDVersion, version.GetVerString());
}
