#include <gtest/gtest.h>

#include "CU/Registry.h"
#include "CU/Time.h"
#include "Support/ImportHook.h"

namespace {

const SYSTEMTIME s_fields = {2001, 7, 0, 4, 16, 30, 15, 0};
// Two hours east of Greenwich, with summer time all over July.
TIME_ZONE_INFORMATION s_zone = {
    -120, L"Winter", {0, 10, 0, 5, 3, 0, 0, 0}, 0, L"Summer", {0, 3, 0, 5, 2, 0, 0, 0}, -60};

CCUString Formatted(const CCUString &sFormat)
{
    return CCUTime(2001, 7, 4, 16, 30, 15, -1, &s_zone).FormatTZI(sFormat, &s_zone);
}

CCUString Date(DWORD dwFlags)
{
    char szText[256] = "";
    GetDateFormatA(LOCALE_USER_DEFAULT, dwFlags, &s_fields, nullptr, szText, sizeof szText);
    return szText;
}

// What "%sx" gives when the pictures are read afresh.
CCUString AbbreviatedDate()
{
    CCUTime::TimeFormatChanged(true);
    return Formatted("%sx");
}

}  // namespace

TEST(TimeFormat, ExpandsTheUsersPicturesAndZoneNames)
{
    char szTime[256] = "";
    GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &s_fields, nullptr, szTime, sizeof szTime);
    const CCUString sShort = Date(0), sFill('a', 127 - sShort.GetLength());
    memcpy(s_zone.DaylightName, L"Zone of 32 characters, no NUL...", sizeof s_zone.DaylightName);
    const CCUString cases[][2] = {
        {"%x%x!%X %lx", sShort + sShort + "!" + szTime + ' ' + Date(DATE_LONGDATE)},
        {"%Z|%z", "Zone of 32 characters, no NUL...|Zone of 32 characters, no NUL..."},
        {"%Y-%m-%d %H:%M:%S %a %j%%", "2001-07-04 16:30:15 Wed 185%"},
        {"%", ""},
        {sFill + "%x", sFill + sShort},
        {sFill + "%x1", ""}};
    for (const auto &item : cases)
        EXPECT_STREQ(item[1], Formatted(item[0])) << item[0];
    const CCUTime winter(2001, 1, 1, 0, 0, 0, -1, &s_zone);
    EXPECT_STREQ("Winter", winter.FormatTZI("%Z", &s_zone));
    EXPECT_STREQ("2000-12-31 22:00:00", winter.FormatGmt("%Y-%m-%d %H:%M:%S"));
    // Names that hold codes, or make some with what is left of the format.
    wcscpy(s_zone.DaylightName, L"%Zx");
    EXPECT_STREQ("x", Formatted("%Z").Right(1));
}

TEST(TimeFormat, ReadsTheLongDatePictureAfreshWhenTold)
{
    EXPECT_TRUE(CCUTime::IsTimeFormatChanged());
    // The settings of this process alone: other tests read the user's meanwhile.
    CCURegistry ownUser(HKEY_CURRENT_USER, "Software\\CUTimeFormatTest", false);
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CURRENT_USER, ownUser.GetKey()));
    CCURegistry registry(HKEY_CURRENT_USER, "Control Panel\\International", false);
    // 80 bytes are read, the NUL among them; a value may come without one.
    const CCUString sLong = "yyyy'" + CCUString('x', 73) + "'";
    EXPECT_TRUE(registry.SetString("sLongDate", "dddd, MMMM dd, yyyy 'dddd MMMM'"));
    EXPECT_STREQ("Wed, Jul 04, 2001 dddd MMMM", AbbreviatedDate());
    EXPECT_TRUE(registry.SetString("sLongDate", sLong + "d"));
    EXPECT_STREQ("Jul 4, 2001", AbbreviatedDate());
    EXPECT_TRUE(registry.SetBinary("sLongDate", sLong + "  ", 80));
    EXPECT_FALSE(CCUTime::IsTimeFormatChanged());
    EXPECT_STREQ("Jul 4, 2001", Formatted("%sx"));
    EXPECT_STREQ("2001" + CCUString('x', 73) + " ", AbbreviatedDate());
    // Windows 95 keeps it in win.ini; of other systems nothing is known.
    DWORD dwPlatform = VER_PLATFORM_WIN32_WINDOWS;
    const CFakeCall<BOOL(OSVERSIONINFOA *)> system("GetVersionExA", [&](OSVERSIONINFOA *version) {
        version->dwPlatformId = dwPlatform;
        return TRUE;
    });
    EXPECT_STREQ("Jul 4, 2001", AbbreviatedDate());
    EXPECT_TRUE(WriteProfileStringA("Intl", "sLongDate", "MMMM yyyy"));
    EXPECT_STREQ("Jul 2001", AbbreviatedDate());
    WriteProfileStringA("Intl", "sLongDate", nullptr);
    dwPlatform = VER_PLATFORM_WIN32s;
    EXPECT_STREQ("Jul 4, 2001", AbbreviatedDate());
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    CCURegistry(HKEY_CURRENT_USER, "Software", false).DeleteKey("CUTimeFormatTest");
}
