#include <gtest/gtest.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "CU/String.h"
#include "Support/Fuzz.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"

namespace {

struct CFormatted : CCUString
{
    using CCUString::FormatV;
};

// What a format gives, and the room that is reserved for it. The compiler does not check these.
void Expect(const char *text, int nReserved, const char *format, ...)
{
    CFormatted result;
    va_list args;
    va_start(args, format);
    result.FormatV(format, args);
    va_end(args);
    EXPECT_STREQ(result, text) << format;
    EXPECT_EQ(result.GetAllocLength(), nReserved) << format;
}

}  // namespace

TEST(Format, ReservesWhatTheFormatLetsExpect)
{
    CReports reports;
    Expect("plain 100%", 10, "plain 100%%");
    Expect("        ab", 10, "%10s", "ab");
    Expect("ab  |", 6, "%s%-4s|", "", "ab");
    Expect("", 3, "%.0s", "abc");
    Expect("x    y", 7, "%c%5c", 'x', 'y');
    Expect("a bc def g", 10, "%hs %S %ls %hS", "a", L"bc", L"def", "g");
    Expect("-5", 32, "%d", -5);
    Expect("4294967291 ff -2147483648", 98, "%u %x %i", -5, 255, INT_MIN);
    Expect("0xff", 34, "%#x", 255);
    Expect("0000000000000000000000000000000000000001", 44, "%##-+ 0.40u", 1);
    Expect("1 2 3", 98, "%ld %hd %Fi", 1L, 2, 3);
    Expect("0.51.000000e+000", 1024, "%Lg%le", 0.5, 1.0);
    Expect("                                10.3", 545, "%*d%.*f", 33, 1, 1, 0.25);
    EXPECT_EQ(reports.Total(), 0);
}

TEST(Format, ReportsAndCutsWhatDoesNotFit)
{
    CReports reports;
    const std::string tooLong = "_vstprintf(m_pchData, pszFormat, argListSave) <= GetAllocLength()";
    const auto reported = [&](auto act) { return reports.Of("String", act); };
    EXPECT_EQ(reported([] { Expect("   ", 3, "%10.3s", "abcdef"); }), tooLong);
    EXPECT_EQ(reported([] { Expect("1.", 2, "%E %s", 1.1, "abc"); }), "0; " + tooLong);
    EXPECT_EQ(reported([] { Expect("a", 1, "%*s", -3, "a"); }), "nWidth >= 0; " + tooLong);
    EXPECT_EQ(reported([] { Expect("a7", 33, "a%.*d", -1, 7); }), "nPrecision >= 0");
}

// Arguments that are valid whatever a broken format takes them for: words that as integers are
// small enough for a width and as pointers show short, writable text, both 8-bit and wide.
TEST(Format, NeverLeavesItsBlockWhateverTheFormat)
{
    const DWORD nBase = 0x10000;
    char *texts = static_cast<char *>(VirtualAlloc(reinterpret_cast<void *>(nBase), 0x1000,
                                                   MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    ASSERT_TRUE(texts);
    const CHeapWatch heap;
    std::mt19937 random(3);
    const char alphabet[] = "%%%%%%%%%%%%.*#-+0 hlFNLIwcCsssSdiopuxXefgGEnat\xE9\n715";
    std::vector<char> expected(1 << 20);
    // "%n" may write to a text that another item shows.
    const auto restore = [&] {
        for (int n = 0; n < 64; ++n)
            memcpy(texts + n * 16, n % 2 ? "s\0h\0o\0r\0t\0\0" : "bytes", n % 2 ? 12 : 6);
    };
    for (int i = 0; i < FuzzInputs(25000); ++i) {
        std::string format(random() % 16, ' ');
        for (char &ch : format)
            ch = alphabet[random() % (sizeof alphabet - 1)];
        DWORD args[32];
        for (DWORD &arg : args)
            arg = nBase + random() % 64 * 16;
        const auto list = reinterpret_cast<va_list>(args);
        // A string with room for 0 to 299, its own or shared.
        CFormatted text, other;
        text.GetBuffer(static_cast<int>(random() % (random() % 300 + 1)));
        if (random() % 2)
            static_cast<CCUString &>(other) = text;
        restore();
        text.FormatV(format.c_str(), list);
        restore();
        if (_vsnprintf(expected.data(), expected.size(), format.c_str(), list) < 0)
            continue;
        expected[std::min(static_cast<size_t>(text.GetAllocLength()), expected.size() - 1)] = '\0';
        ASSERT_STREQ(text, expected.data()) << format;
    }
}
