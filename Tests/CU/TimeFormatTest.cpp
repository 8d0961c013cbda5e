#include <gtest/gtest.h>

#include "CU/Registry.h"
#include "CU/Time.h"
#include "Support/ImportHook.h"

namespace {

const SYSTEMTIME s_fields = {2001, 7, 0, 4, 16, 30, 15, 0};

// Two hours east of Greenwich, with summer time all over July.
TIME_ZONE_INFORMATION Zone()
{
    TIME_ZONE_INFORMATION zone = {
        -120, L"Winter", {0, 10, 0, 5, 3, 0, 0, 0}, 0, L"Summer", {0, 3, 0, 5, 2, 0, 0, 0}, -60};
    return zone;
}

CCUTime Independence()
{
    const TIME_ZONE_INFORMATION zone = Zone();
    return CCUTime(2001, 7, 4, 16, 30, 15, -1, &zone);
}

CCUString Date(DWORD dwFlags, const char *picture)
{
    char szText[256] = "";
    GetDateFormatA(LOCALE_USER_DEFAULT, dwFlags, &s_fields, picture, szText, sizeof szText);
    return szText;
}

// What "%sx" gives when the pictures are read afresh.
CCUString AbbreviatedDate()
{
    const TIME_ZONE_INFORMATION zone = Zone();
    CCUTime::TimeFormatChanged(true);
    EXPECT_TRUE(CCUTime::IsTimeFormatChanged());
    return Independence().FormatTZI("%sx", &zone);
}

DWORD s_dwPlatform;

BOOL WINAPI FakeVersion(OSVERSIONINFOA *version)
{
    version->dwPlatformId = s_dwPlatform;
    return TRUE;
}

}  // namespace

TEST(TimeFormat, ExpandsTheUsersPicturesAndZoneNames)
{
    TIME_ZONE_INFORMATION zone = Zone();
    const CCUTime time = Independence();
    char szTime[256] = "";
    GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &s_fields, nullptr, szTime, sizeof szTime);
    const CCUString sShort = Date(0, nullptr);
    memcpy(zone.DaylightName, L"Zone of 32 characters, no NUL...", sizeof zone.DaylightName);
    const CCUString sLongName("Zone of 32 characters, no NUL...");
    const CCUString cases[][2] = {{"%x %X", sShort + " " + szTime},
                                  {"%x%x!%X", sShort + sShort + "!" + szTime},
                                  {"%Z %z", sLongName + " " + sLongName},
                                  {"%Y-%m-%d %H:%M:%S %a %j%%", "2001-07-04 16:30:15 Wed 185%"},
                                  {"", ""},
                                  {"plain", "plain"},
                                  {"%", ""},
                                  {CCUString('a', 127), CCUString('a', 127)},
                                  {CCUString('a', 128), ""},
                                  {CCUString('a', 127 - sShort.GetLength()) + "%x",
                                   CCUString('a', 127 - sShort.GetLength()) + sShort}};
    for (const auto &item : cases)
        EXPECT_STREQ(item[1], time.FormatTZI(item[0], &zone)) << item[0];
    EXPECT_STREQ("", time.FormatTZI(nullptr, &zone));
    EXPECT_STREQ("2001-07-04 13:30:15", time.FormatGmt("%Y-%m-%d %H:%M:%S"));
    TIME_ZONE_INFORMATION current = {};
    GetTimeZoneInformation(&current);
    EXPECT_STREQ(CCUString(current.StandardName), time.FormatGmt("%z"));
    // Names that hold codes, or make some with what is left of the format.
    wcscpy(zone.DaylightName, L"%Zx");
    EXPECT_STREQ("x", time.FormatTZI("%Z", &zone).Right(1));
    EXPECT_STREQ("", time.FormatTZI(CCUString("%Z%Z") + CCUString('%', 200), &zone));
    wcscpy(zone.DaylightName, L"Zulu");
    EXPECT_STREQ("Zuluulu", time.FormatTZI("%%Z", &zone));
    wcscpy(zone.DaylightName, L"Z");
    CCUString sMany('%', 5000);
    EXPECT_STREQ("", time.FormatTZI(sMany + 'Z', &zone));
    CCUTime before(0L);
    before -= CCUTimeSpan(1);
    EXPECT_STREQ("", before.FormatGmt("%x"));
}

TEST(TimeFormat, ReadsTheLongDatePictureAfreshWhenTold)
{
    EXPECT_TRUE(CCUTime::IsTimeFormatChanged());
    const TIME_ZONE_INFORMATION zone = Zone();
    EXPECT_STREQ(Date(DATE_LONGDATE, nullptr), Independence().FormatTZI("%lx", &zone));
    // The settings of this process alone: other tests read the user's meanwhile.
    CCURegistry ownUser(HKEY_CURRENT_USER, "Software\\CUTimeFormatTest", false);
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CURRENT_USER, ownUser.GetKey()));
    CCURegistry registry(HKEY_CURRENT_USER, "Control Panel\\International", false);
    // 80 bytes are read, the NUL among them; a value may come without one.
    const CCUString sLong = "yyyy'" + CCUString('x', 73) + "'";
    const CCUString pictures[][2] = {
        {"dddd, MMMM dd, yyyy 'dddd MMMM'", "Wed, Jul 04, 2001 dddd MMMM"},
        {sLong, "2001" + CCUString('x', 73)},
        {sLong + "d", "Jul 4, 2001"},
        {"yyyy MMM", "2001 Jul"}};
    for (const auto &picture : pictures) {
        EXPECT_TRUE(registry.SetString("sLongDate", picture[0]));
        EXPECT_STREQ(picture[1], AbbreviatedDate());
    }
    EXPECT_TRUE(registry.SetBinary("sLongDate", sLong + "  ", 80));
    EXPECT_FALSE(CCUTime::IsTimeFormatChanged());
    EXPECT_STREQ("2001 Jul", Independence().FormatTZI("%sx", &zone));
    EXPECT_STREQ("2001" + CCUString('x', 73) + " ", AbbreviatedDate());
    EXPECT_TRUE(registry.DeleteValue("sLongDate"));
    EXPECT_STREQ("Jul 4, 2001", AbbreviatedDate());
    // Windows 95 keeps it in win.ini; of other systems nothing is known.
    const CImportHook hook("GetVersionExA", FakeVersion);
    s_dwPlatform = VER_PLATFORM_WIN32_WINDOWS;
    EXPECT_STREQ("Jul 4, 2001", AbbreviatedDate());
    EXPECT_TRUE(WriteProfileStringA("Intl", "sLongDate", "MMMM yyyy"));
    EXPECT_STREQ("Jul 2001", AbbreviatedDate());
    WriteProfileStringA("Intl", "sLongDate", nullptr);
    s_dwPlatform = VER_PLATFORM_WIN32s;
    EXPECT_STREQ("Jul 4, 2001", AbbreviatedDate());
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    CCURegistry(HKEY_CURRENT_USER, "Software", false).DeleteKey("CUTimeFormatTest");
}
