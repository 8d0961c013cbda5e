#include "CU/String.h"

#include <ctype.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <algorithm>
#include <random>
#include <string>

#include "Support/GuardedBuffer.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"

namespace {

class CProbe : public CCUString
{
public:
    using CCUString::CCUString;
    using CCUString::ConcatCopy;
    using CCUString::GetData;
    CProbe(const CCUString &string) : CCUString(string) {}
    static int Refs(const CCUString &string) { return CProbe::DataOf(string)->nRefs; }
    static CCUStringData *DataOf(const CCUString &string)
    {
        return static_cast<const CProbe &>(string).GetData();
    }
};

const char *Chars(const CCUString &string)
{
    return string;
}

std::string Text(const CCUString &string)
{
    return std::string(Chars(string), static_cast<size_t>(string.GetLength()));
}

CCUString String(const std::string &text)
{
    return CCUString(text.data(), static_cast<int>(text.size()));
}

void ExpectNil(const CCUString &string)
{
    EXPECT_EQ(Chars(string), CUPchNil);
    EXPECT_EQ(string.GetLength(), 0);
    EXPECT_EQ(string.GetAllocLength(), 0);
    EXPECT_TRUE(string.IsEmpty());
}

int Sign(int n)
{
    return (n > 0) - (n < 0);
}

}  // namespace

TEST(String, EmptyStringsAreTheNilBlockAndNeverAllocate)
{
    const CHeapWatch heap;
    const CCUString string, abc("abc");
    ExpectNil(CCUString(string));
    ExpectNil(static_cast<const char *>(nullptr));
    ExpectNil("");
    ExpectNil(static_cast<const unsigned char *>(nullptr));
    ExpectNil(static_cast<const unsigned short *>(nullptr));
    ExpectNil(L"");
    ExpectNil(CCUString("abc", 0));
    ExpectNil(CCUString('x', -7));
    ExpectNil(string + "" + string);
    ExpectNil(abc.Mid(9, 2));
    ExpectNil(abc.Left(-1));
    ExpectNil(string.Encode64());
    ExpectNil(string.Decode64());
    EXPECT_EQ(heap.Made(), 1);
    EXPECT_EQ(CUDataNil->nRefs, -1);
}

TEST(String, CopiesShareTheBlockUntilOneOfThemIsChanged)
{
    const struct
    {
        const char *name;
        void (*change)(CCUString &);
        const char *result;
    } changes[] = {
        {"SetAt", [](CCUString &s) { s.SetAt(1, 'X'); }, " Xb "},
        {"+= char", [](CCUString &s) { s += 'c'; }, " ab c"},
        {"+= itself", [](CCUString &s) { s += s; }, " ab  ab "},
        {"+= own part", [](CCUString &s) { s += Chars(s) + 2; }, " ab b "},
        {"= own part", [](CCUString &s) { s = Chars(s) + 1; }, "ab "},
        {"MakeUpper", [](CCUString &s) { s.MakeUpper(); }, " AB "},
        {"MakeReverse", [](CCUString &s) { s.MakeReverse(); }, " ba "},
        {"TrimLeft", [](CCUString &s) { s.TrimLeft(); }, "ab "},
        {"TrimRight", [](CCUString &s) { s.TrimRight(); }, " ab"},
        {"GetBuffer", [](CCUString &s) { *s.GetBuffer(9) = 'X'; }, "Xab "},
        {"LockBuffer", [](CCUString &s) { *s.LockBuffer() = 'X'; }, "Xab "},
        {"ReleaseBuffer", [](CCUString &s) { s.ReleaseBuffer(2); }, " a"},
        {"Format", [](CCUString &s) { s.Format("<%s>", Chars(s)); }, "< ab >"},
    };
    for (const auto &change : changes) {
        const CHeapWatch heap;
        {
            // With room behind the text.
            CCUString original, assigned("x");
            memcpy(original.GetBuffer(20), " ab ", 5);
            original.ReleaseBuffer();
            CCUString copy(original);
            assigned = copy;
            ASSERT_EQ(heap.Made(), 2) << change.name;
            ASSERT_EQ(Chars(assigned), Chars(original)) << change.name;
            ASSERT_EQ(CProbe::Refs(original), 3) << change.name;
            change.change(copy);
            EXPECT_EQ(heap.Made(), 3) << change.name;
            EXPECT_EQ(Text(copy), change.result) << change.name;
            EXPECT_EQ(Text(original), " ab ") << change.name;
            EXPECT_EQ(CProbe::Refs(original), 2) << change.name;
            EXPECT_EQ(abs(CProbe::Refs(copy)), 1) << change.name;
        }
        EXPECT_EQ(heap.Live(), 0) << change.name;
    }
}

TEST(String, CapacityIsExactAndKeptWhereItSuffices)
{
    const CHeapWatch heap;
    {
        CCUString s("abc");
        s += "de";
        s += 'f';
        EXPECT_EQ(s.GetAllocLength(), 6);
        const CCUString sum = "12" + s + 'g' + CCUString("h"), whole = s.Mid(0);
        EXPECT_EQ(Text(sum), "12abcdefgh");
        EXPECT_EQ(sum.GetAllocLength(), 10);
        EXPECT_NE(Chars(whole), Chars(s));
        const int nMade = heap.Made();
        s = "xy";
        s += "zw";
        s += s.Left(0);
        s = CCUString();
        EXPECT_EQ(heap.Made(), nMade + 0);
        EXPECT_EQ(s.GetAllocLength(), 6);
        memcpy(s.GetBuffer(20), "hello", 6);
        EXPECT_EQ(s.GetLength(), 0);
        s.ReleaseBuffer();
        EXPECT_EQ(Text(s), "hello");
        EXPECT_EQ(s.GetAllocLength(), 20);
        s.FreeExtra();
        EXPECT_EQ(s.GetAllocLength(), 5);
        memcpy(s.GetBufferSetLength(3), "\0z", 2);
        EXPECT_EQ(Text(s), std::string("\0zl", 3));
        s.Empty();
        ExpectNil(s);
    }
    EXPECT_EQ(heap.Live(), 0);
}

TEST(String, ALockedBlockStaysWithItsString)
{
    CCUString s("hello");
    s.GetBuffer(10);
    char *pch = s.LockBuffer();
    const CCUString copy(s), other("abc");
    CCUString assigned;
    assigned = s;
    EXPECT_NE(Chars(copy), pch);
    EXPECT_NE(Chars(assigned), pch);
    EXPECT_EQ(Text(copy) + Text(assigned), "hellohello");
    s = other;
    EXPECT_EQ(Chars(s), pch);
    s.Empty();
    EXPECT_EQ(s.GetAllocLength(), 10);
    s += "def";
    EXPECT_EQ(Chars(s), pch);
    // Still locked in a larger block.
    s = "0123456789ab";
    EXPECT_EQ(CProbe::Refs(s), -1);
    s += s;
    s.GetBuffer(100);
    s.FreeExtra();
    EXPECT_EQ(CProbe::Refs(s), -1);
    s.UnlockBuffer();
    EXPECT_EQ(CProbe::Refs(s), 1);
    EXPECT_EQ(Text(s), "0123456789ab0123456789ab");
}

TEST(String, AgreesWithTheStandardStringOnRandomTexts)
{
    const CReports reports;
    const CHeapWatch heap;
    std::mt19937 random(1);
    const auto number = [&](int nBelow) {
        return static_cast<int>(random() % static_cast<unsigned int>(nBelow));
    };
    const auto text = [&](int nMost) {
        std::string result(static_cast<size_t>(number(nMost + 1)), '\0');
        for (char &ch : result)
            ch = "aab \t\0\xE9Z"[number(8)];
        return result;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::string a = text(12), b(text(3).c_str());
        const CCUString s = String(a);
        const int nSize = s.GetLength(), nFirst = number(20) - 4, nCount = number(20) - 4;
        const char ch = "ab\0"[number(3)];
        const auto from = static_cast<size_t>(std::min(std::max(nFirst, 0), nSize));
        const auto count = static_cast<size_t>(std::min(std::max(nCount, 0), nSize));
        SCOPED_TRACE(testing::PrintToString(a) + " " + b);
        ASSERT_EQ(Text(s.Mid(nFirst, nCount)), a.substr(from, count));
        ASSERT_EQ(Text(s.Mid(nFirst)), a.substr(from));
        ASSERT_EQ(Text(s.Left(nCount)), a.substr(0, count));
        ASSERT_EQ(Text(s.Right(nCount)), a.substr(a.size() - count));
        ASSERT_EQ(Text(s.SpanIncluding(b.c_str())), a.substr(0, a.find_first_not_of(b)));
        ASSERT_EQ(Text(s.SpanExcluding(b.c_str())), a.substr(0, a.find_first_of(b)));
        ASSERT_EQ(s.Find(b.c_str()), static_cast<int>(a.find(b)));
        ASSERT_EQ(s.Find(ch), static_cast<int>(a.find(ch)));
        ASSERT_EQ(s.ReverseFind(ch), static_cast<int>(a.rfind(ch)));
        ASSERT_EQ(s.FindOneOf(b.c_str()), static_cast<int>(a.find_first_of(b)));
        const int nOrder = Sign(std::string(a.c_str()).compare(b));
        ASSERT_EQ(Sign(s.Compare(b.c_str())), nOrder);
        ASSERT_EQ(Sign(s.Compare(String(b))), nOrder);
        ASSERT_EQ(s.Compare(s + ""), 0);
        ASSERT_EQ(Text(s + b.c_str()), a + b);
        CCUString trimmed(s), reversed(s);
        trimmed.TrimLeft();
        ASSERT_EQ(Text(trimmed), a.substr(std::min(a.find_first_not_of(" \t"), a.size())));
        trimmed = s;
        trimmed.TrimRight();
        ASSERT_EQ(Text(trimmed), a.substr(0, a.find_last_not_of(" \t") + 1));
        reversed.MakeReverse();
        ASSERT_EQ(Text(reversed), std::string(a.rbegin(), a.rend()));
        ASSERT_EQ(Text(s.Encode64().Decode64()), a);
    }
    EXPECT_EQ(reports.Total(), 0);
}

TEST(String, OperatorsFollowCompare)
{
    for (const char *a : {"", "a", "B", "ab", "\x80"}) {
        for (const char *b : {"", "a", "B", "ab", "\x80"}) {
            const CCUString s(a), t(b);
            const int n = Sign(strcmp(a, b));
            const bool expected[] = {n == 0, n != 0, n<0, n> 0, n <= 0, n >= 0};
            const bool ours[][6] = {
                {s == t, s != t, s<t, s> t, s <= t, s >= t},
                {s == b, s != b, s<b, s> b, s <= b, s >= b},
                {a == t, a != t, a<t, a> t, a <= t, a >= t},
            };
            for (const auto &form : ours)
                EXPECT_TRUE(std::equal(form, form + 6, expected)) << a << " " << b;
        }
    }
    EXPECT_EQ(CCUString("ABC").CompareNoCase("abc"), 0);
    EXPECT_LT(CCUString("abc").CompareNoCase("ABD"), 0);
    EXPECT_LT(CCUString("abc").Collate("abd"), 0);
    EXPECT_EQ(CCUString().Compare(nullptr), 0);
}

TEST(String, ChangesCaseAsTheSystemDoesAndSpaceAsTheLibraryDoes)
{
    char all[256] = "", upper[256] = "", lower[256] = "";
    for (int i = 0; i < 255; ++i)
        all[i] = upper[i] = lower[i] = static_cast<char>(i + 1);
    CharUpperA(upper);
    CharLowerA(lower);
    CCUString s(all), t(all);
    s.MakeUpper();
    t.MakeLower();
    EXPECT_STREQ(s, upper);
    EXPECT_STREQ(t, lower);
    for (int i = 1; i < 256; ++i) {
        CCUString left(static_cast<char>(i), 2), right(static_cast<char>(i), 2);
        left.TrimLeft();
        right.TrimRight();
        EXPECT_EQ(left.IsEmpty(), isspace(i) != 0) << i;
        EXPECT_EQ(right.IsEmpty(), isspace(i) != 0) << i;
    }
}

TEST(String, ConvertsBetweenWideAndAnsiWithinItsBuffers)
{
    const CCUString s(L"w\u00E9\u20AC");
    EXPECT_STREQ(s, "w\xE9\x80");
    EXPECT_EQ(s.GetAllocLength(), 6);
    CCUString t("a longer text");
    t = L"w\u00E9\u20AC";
    EXPECT_EQ(t, s);
    EXPECT_EQ(t.GetAllocLength(), 13);
    for (const char *text : {"", "ab", "\xE9\x80\xFF"}) {
        CCUString wide = CCUString(text).ConvertToWide();
        const int nLength = static_cast<int>(strlen(text));
        EXPECT_EQ(wide.GetLength(), 2 * (nLength + 1));
        wchar_t expected[10];
        MultiByteToWideChar(CP_ACP, 0, text, -1, expected, 10);
        EXPECT_EQ(memcmp(wide, expected, static_cast<size_t>(wide.GetLength())), 0);
        // The source lies in the string itself.
        wide = reinterpret_cast<const unsigned short *>(Chars(wide));
        EXPECT_STREQ(wide, text);
    }
    EXPECT_EQ(CUWideToMultiByteString(nullptr, L"abc", 0), 4);
    EXPECT_EQ(CUMultiByteToWideString(nullptr, "abc", 0), 4);
    for (unsigned int nRoom = 0; nRoom < 6; ++nRoom) {
        CGuardedBuffer narrow(nRoom), wide(2 * nRoom);
        wchar_t *pWide = reinterpret_cast<wchar_t *>(wide.Data());
        const int nExpected = nRoom < 4 ? 0 : 4;
        EXPECT_EQ(CUWideToMultiByteString(narrow.Data(), L"abc", nRoom), nExpected);
        EXPECT_EQ(CUMultiByteToWideString(pWide, "abc", nRoom), nExpected);
        if (nExpected) {
            EXPECT_STREQ(narrow.Data(), "abc");
            EXPECT_STREQ(pWide, L"abc");
        }
    }
}

TEST(String, ReportsImpossibleLengthsAndStaysInsideItsBlock)
{
    const CReports reports;
    const CHeapWatch heap;
    ExpectNil(CCUString("abc", -1));
    ExpectNil(CCUString('x', INT_MAX));
    EXPECT_EQ(reports.Count("nLen >= 0"), 1);
    EXPECT_EQ(reports.Count("nLen <= 2147483647-1"), 1);
    CProbe sum;
    sum.ConcatCopy(INT_MAX, "a", INT_MAX, "b");
    ExpectNil(sum);
    EXPECT_EQ(reports.Count("nLen <= 2147483647-1"), 2);
    CCUString s("abc");
    s.GetBufferSetLength(-1);
    EXPECT_EQ(s.GetLength(), 0);
    EXPECT_EQ(reports.Count("nNewLength >= 0"), 1);
    EXPECT_EQ(reports.Count("nMinBufLength >= 0"), 1);
    s.ReleaseBuffer(4);
    EXPECT_EQ(s.GetLength(), 3);
    memset(s.GetBuffer(3), 'x', 4);
    s.ReleaseBuffer();
    EXPECT_STREQ(s, "xxx");
    EXPECT_EQ(reports.Count("nNewLength <= GetData()->nAllocLength"), 2);
    s.GetBufferSetLength(INT_MAX);
    EXPECT_EQ(s.GetLength(), s.GetAllocLength());
    s = "abc";
    EXPECT_STREQ(s.Mid(1, INT_MAX), "bc");
    EXPECT_STREQ(s.Mid(INT_MIN), "abc");
    EXPECT_STREQ(s.Mid(INT_MAX, INT_MAX), "");
    EXPECT_STREQ(s.Right(INT_MAX), "abc");
    EXPECT_EQ(reports.Total(), 8);
}

TEST(String, ReportsBadIndexesAndCountsAndGoesOn)
{
    const CReports reports;
    CCUString s("abc");
    s.GetBuffer(10);
    EXPECT_EQ(s[3], '\0');
    EXPECT_EQ(reports.Total(), 0);
    EXPECT_EQ(s.GetAt(4), Chars(s)[4]);
    EXPECT_EQ(reports.Count("nIndex <= GetData()->nDataLength"), 1);
    EXPECT_EQ(s[-1], Chars(s)[-1]);
    EXPECT_EQ(reports.Count("nIndex >= 0"), 1);
    s.SetAt(5, 'X');
    EXPECT_EQ(Chars(s)[5], 'X');
    EXPECT_EQ(reports.Count("nIndex < GetData()->nDataLength"), 1);
    {
        CCUString copy(s);
        copy.UnlockBuffer();
        EXPECT_EQ(CProbe::Refs(s), 2);
    }
    EXPECT_EQ(reports.Count("GetData()->nRefs == -1"), 1);
    CProbe::DataOf(s)->nRefs = 0;
    {
        // Takes the count to 1 and, destroyed, back to 0.
        CProbe::DataOf(s)->nRefs = 0;
        const CCUString copy(s);  // NOLINT(performance-unnecessary-copy-initialization)
        EXPECT_EQ(reports.Count("stringSrc.GetData()->nRefs != 0"), 1);
        CProbe::DataOf(s)->nRefs = 2;
    }
    {
        CCUString dying("x"), growing("x");
        CProbe::DataOf(dying)->nRefs = CProbe::DataOf(growing)->nRefs = 0;
        growing += 'y';
    }
    EXPECT_EQ(reports.Count("GetData()->nRefs != 0"), 1);
    EXPECT_EQ(reports.Count("pData->nRefs != 0"), 1);
    char chRoom[10];
    EXPECT_EQ(CUWideToMultiByteString(chRoom, L"abc", 0x80000000U), 0);
    EXPECT_EQ(reports.Count("mbstr == 0 || result <= (int)count"), 1);
    unsigned short chWideRoom[10];
    EXPECT_EQ(CUMultiByteToWideString(chWideRoom, "abc", 0x80000000U), 0);
    EXPECT_EQ(reports.Count("wcstr == 0 || result <= (int)count"), 1);
}

namespace {

const int SHARED_BLOCKS = 20000;

struct CSharing
{
    CCUString strings[SHARED_BLOCKS];
};
CSharing s_sharing[4];
volatile LONG s_nArrived[SHARED_BLOCKS];

// Copies, lets go of and takes for itself each block at the moment at which another thread does.
DWORD WINAPI ShareBlocks(void *parameter)
{
    for (int i = 0; i < SHARED_BLOCKS; ++i) {
        CCUString &string = static_cast<CSharing *>(parameter)->strings[i];
        InterlockedIncrement(&s_nArrived[i]);
        for (int nWait = 0; nWait < 1000 && s_nArrived[i] < 2; ++nWait)
            YieldProcessor();
        for (int n = 0; n < 10; ++n) {
            const CCUString copy(string), other(copy);
            if (other != "shared by many")
                return 1;
        }
        if (i % 2)
            string.MakeUpper();
        else
            string = Chars(string) + 7;
        if (string != (i % 2 ? "SHARED BY MANY" : "by many"))
            return 1;
    }
    return 0;
}

}  // namespace

TEST(String, ThreadsShareBlocks)
{
    const CHeapWatch heap;
    for (int i = 0; i < SHARED_BLOCKS; ++i) {
        const CCUString shared("shared by many");
        for (CSharing &sharing : s_sharing)
            sharing.strings[i] = shared;
    }
    HANDLE threads[4];
    for (int i = 0; i < 4; ++i)
        threads[i] = CreateThread(nullptr, 0, ShareBlocks, &s_sharing[i], 0, nullptr);
    WaitForMultipleObjects(4, threads, TRUE, INFINITE);
    for (const HANDLE thread : threads) {
        DWORD nResult = 1;
        GetExitCodeThread(thread, &nResult);
        EXPECT_EQ(nResult, 0U);
        CloseHandle(thread);
    }
    for (CSharing &sharing : s_sharing) {
        for (CCUString &string : sharing.strings)
            string.Empty();
    }
    // But for what the test program itself takes.
    EXPECT_LT(heap.Live(), 10);
}
