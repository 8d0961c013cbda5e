#include <gtest/gtest.h>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "CU/String.h"
#include "Support/Fuzz.h"
#include "Support/GuardedBuffer.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"

namespace {

class CFormatted : public CCUString
{
public:
    using CCUString::FormatV;
};

const char TOO_LONG[] = "_vstprintf(m_pchData, pszFormat, argListSave) <= GetAllocLength()";

void Expect(const CCUString &text, int nReserved, const char *expected)
{
    EXPECT_STREQ(text, expected);
    EXPECT_EQ(text.GetAllocLength(), nReserved) << expected;
}

// Without the compiler's check: of formats that it does not like.
CCUString Formatted(const char *pszFormat, ...)
{
    CFormatted result;
    va_list args;
    va_start(args, pszFormat);
    result.FormatV(pszFormat, args);
    va_end(args);
    return result;
}

}  // namespace

TEST(Format, ReservesWhatTheFormatLetsExpect)
{
    CReports reports;
    Expect(Formatted("plain 100%%"), 10, "plain 100%");
    Expect(Formatted("%10s", "ab"), 10, "        ab");
    Expect(Formatted("%s%-4s|", "", "ab"), 6, "ab  |");
    Expect(Formatted("%.0s", "abc"), 3, "");
    Expect(Formatted("%c%5c", 'x', 'y'), 7, "x    y");
    Expect(Formatted("%hs %S %ls %hS", "a", L"bc", L"def", "g"), 10, "a bc def g");
    Expect(Formatted("%d", -5), 32, "-5");
    Expect(Formatted("%#x", 255), 34, "0xff");
    Expect(Formatted("%##-+ 0.40u", 1), 44, "0000000000000000000000000000000000000001");
    Expect(Formatted("%ld %hd %Fi", 1L, 2, 3), 98, "1 2 3");
    Expect(Formatted("%Lg%le", 0.5, 1.0), 1024, "0.51.000000e+000");
    Expect(Formatted("%*d%.*f", 33, 1, 1, 0.25), 545, "                                10.3");
    // What a precision cuts needs no NUL.
    CGuardedBuffer noNul(3);
    memcpy(noNul.Data(), "abc", 3);
    Expect(Formatted("%.3s", noNul.Data()), 3, "abc");
    int nCount = 0;
    Expect(Formatted("ab%n", &nCount), 2, "ab");
    EXPECT_EQ(nCount, 2);
    // A larger block of the string's own is kept.
    CCUString text('x', 100);
    text.Format("%d", 1);
    Expect(text, 100, "1");
    EXPECT_TRUE(reports.Asserts().empty());
    EXPECT_EQ(reports.Of("String", [] { Formatted("%*5s|", 3, "x"); }).substr(0, 3), "0; ");
}

TEST(Format, ReportsAndCutsWhatDoesNotFit)
{
    CReports reports;
    const CHeapWatch heap;
    const auto reported = [&](auto act) { return reports.Of("String", act); };
    EXPECT_EQ(reported([] { Expect(Formatted("%10.3s", "abcdef"), 3, "   "); }), TOO_LONG);
    const char *pNull = nullptr;
    EXPECT_EQ(reported([&] { Expect(Formatted("%s", pNull), 1, "("); }), TOO_LONG);
    EXPECT_EQ(reported([] { Expect(Formatted("%E %s", 1.1, "abc"), 2, "1."); }),
              std::string("0; ") + TOO_LONG);
    EXPECT_EQ(reported([] { Expect(Formatted("%I64d %ls", 5LL, L"abc"), 5, "5 abc"); }), "0");
    EXPECT_EQ(reported([] { Expect(Formatted("%*s", -3, "a"), 1, "a"); }),
              std::string("nWidth >= 0; ") + TOO_LONG);
    EXPECT_EQ(reported([] { Expect(Formatted("a%.*d", -1, 7), 33, "a7"); }), "nPrecision >= 0");
    EXPECT_EQ(reported([] { Expect(Formatted("%2147483647d", 1), 0, ""); }).substr(0, 20),
              "nLen <= 2147483647-1");
}

TEST(Format, TakesItsOwnTextAsArgument)
{
    const CHeapWatch heap;
    CCUString text("abc"), copy("%s!");
    text.Format("%s-%s", text.GetString(), text.GetString() + 1);
    EXPECT_STREQ(text, "abc-bc");
    copy.Format(copy, text.GetString());
    EXPECT_STREQ(copy, "abc-bc!");
    copy.LockBuffer();
    copy.Format("%s", copy.GetString() + 4);
    EXPECT_STREQ(copy, "bc!");
    EXPECT_EQ(copy.GetAllocLength(), 7);
}

// Conversions that the estimate does not know are written all the same, where there is room.
TEST(Format, WritesWhatItDoesNotKnowIntoTheRoomThatThereIs)
{
    CReports reports;
    const CHeapWatch heap;
    CCUString text('x', 300), shared('x', 20), locked;
    const char *const pchOld = text;
    const auto reported = [&](auto act) { return reports.Of("String", act); };
    EXPECT_EQ(reported([&] { text.Format("at %E|%d", 1.5, 7); }), "0");
    Expect(text, 300, "at 1.500000E+000|7");
    EXPECT_EQ(reported([&] { __extension__ text.Format("%I64d %s", 12345678901LL, pchOld + 16); }),
              "0");
    Expect(text, 300, "12345678901 |7");
    EXPECT_EQ(text.GetString(), pchOld);
    CCUString copy(shared);
    EXPECT_EQ(reported([&] { shared.Format("%E", 1.5); }), "0");
    Expect(shared, 20, "1.500000E+000");
    EXPECT_STREQ(copy, std::string(20, 'x').c_str());
    locked = "abc";
    locked.LockBuffer();
    EXPECT_EQ(reported([&] { locked.Format("%E|%d", 1.5, 7); }), "0");
    Expect(locked, 33, "1.500000E+000|7");
    copy = locked;
    EXPECT_NE(copy.GetString(), locked.GetString());
    // Half of 1.2 is no width: 858,993,459 characters.
    heap.TakeLargest();
    EXPECT_EQ(Formatted("%E %*d", 1.2, 5, 7).GetAllocLength(), 33);
    EXPECT_LT(heap.TakeLargest(), 10000U);
    // "%n" may write to the string's own block, which has to live that long.
    CCUString counted("abcd");
    int *const pCount = reinterpret_cast<int *>(counted.GetBuffer(4));
    counted.Format("%s%n", "longer", pCount);
    EXPECT_NE(*pCount, 6) << "written to after its end";
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
    const char *const tokens[] = {"%", "%", "%", "%", "%", ".",    "*",    "#",  "-", "+",  "0",
                                  " ", "h", "l", "F", "N", "L",    "I64",  "w",  "c", "C",  "s",
                                  "s", "S", "d", "i", "o", "p",    "u",    "x",  "X", "e",  "f",
                                  "g", "G", "E", "n", "a", "text", "\xE9", "\n", "7", "12", "345 "};
    std::vector<char> expected(1 << 20), original(0x1000);
    for (size_t n = 0; n < 64; ++n)
        memcpy(&original[n * 16], n % 2 ? "s\0h\0o\0r\0t\0\0" : "bytes", n % 2 ? 12 : 6);
    const auto format = [&](CFormatted &text, const char *pszFormat, DWORD *args) {
        // "%n" may have written to a text that another item shows.
        memcpy(texts, original.data(), original.size());
        text.FormatV(pszFormat, reinterpret_cast<va_list>(args));
    };
    for (int i = 0; i < FuzzInputs(); ++i) {
        std::string tried;
        for (unsigned int n = random() % 10; n > 0; --n)
            tried += tokens[random() % (sizeof tokens / sizeof *tokens)];
        const char *pszFormat = tried.c_str();
        DWORD args[32];
        for (DWORD &arg : args)
            arg = nBase + random() % 64 * 16;
        // A string with room for 0 to 299, its own, locked or shared.
        CFormatted text, other, empty;
        text.GetBuffer(static_cast<int>(random() % (random() % 300 + 1)));
        if (random() % 3 == 0)
            text.LockBuffer();
        else if (random() % 2 == 0)
            other = text;
        const int nKept = other.GetAllocLength() > 0 ? 0 : text.GetAllocLength();
        format(empty, pszFormat, args);
        format(text, pszFormat, args);
        // Empty are also those that would be too long.
        const int nRoom = text.GetAllocLength();
        ASSERT_TRUE(nRoom == std::max(nKept, empty.GetAllocLength()) || !empty.GetAllocLength())
            << pszFormat;
        memcpy(texts, original.data(), original.size());
        const int n = _vsnprintf(expected.data(), expected.size(), pszFormat,
                                 reinterpret_cast<va_list>(args));
        if (n < 0)
            continue;
        expected[std::min(static_cast<size_t>(nRoom), expected.size() - 1)] = '\0';
        ASSERT_STREQ(text, expected.data()) << pszFormat;
        ASSERT_EQ(static_cast<size_t>(text.GetLength()), strlen(expected.data())) << pszFormat;
    }
}
