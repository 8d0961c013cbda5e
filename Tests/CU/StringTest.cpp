#include "CU/String.h"

#include <ctype.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "Support/GuardedBuffer.h"
#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/Threads.h"

namespace {

class CProbe : public CCUString
{
public:
    using CCUString::CCUString;
    using CCUString::ConcatCopy;
    using CCUString::GetData;
    static CCUStringData *DataOf(const CCUString &string)
    {
        return static_cast<const CProbe &>(string).GetData();
    }
    static int Refs(const CCUString &string) { return DataOf(string)->nRefs; }
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
    EXPECT_TRUE(string.IsEmpty() && string.GetLength() == 0 && string.GetAllocLength() == 0);
}

int Sign(int n)
{
    return (n > 0) - (n < 0);
}

}  // namespace

TEST(String, EmptyStringsAreTheNilBlockAndNeverAllocate)
{
    const CHeapWatch heap;
    const CCUString none, abc("abc");
    const char *pNull = nullptr;
    ExpectNil(none);
    ExpectNil(pNull);
    ExpectNil(reinterpret_cast<const unsigned char *>(pNull));
    ExpectNil(reinterpret_cast<const unsigned short *>(pNull));
    for (const CCUString &string : {abc.Mid(9, 2), abc.Left(-1), CCUString("ab", 0),
                                    CCUString('x', -7), none.Encode64(), none.Decode64()})
        ExpectNil(string);
    ExpectNil(none + "" + none);
    ExpectNil(L"");
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
        {"+= itself", [](CCUString &s) { s += s; }, " ab  ab "},
        {"+= own part", [](CCUString &s) { s += Chars(s) + 2; }, " ab b "},
        {"= own part", [](CCUString &s) { s = Chars(s) + 1; }, "ab "},
        {"MakeUpper", [](CCUString &s) { s.MakeUpper(); }, " AB "},
        {"TrimLeft", [](CCUString &s) { s.TrimLeft(); }, "ab "},
        {"TrimRight", [](CCUString &s) { s.TrimRight(); }, " ab"},
        {"GetBuffer", [](CCUString &s) { *s.GetBuffer(9) = 'X'; }, "Xab "},
        {"ReleaseBuffer", [](CCUString &s) { s.ReleaseBuffer(2); }, " a"},
        {"Format", [](CCUString &s) { s.Format("<%s>", Chars(s)); }, "< ab >"},
    };
    for (const auto &change : changes) {
        SCOPED_TRACE(change.name);
        const CHeapWatch heap;
        {
            // With room behind the text.
            CCUString original, assigned("x");
            memcpy(original.GetBuffer(20), " ab ", 5);
            original.ReleaseBuffer();
            CCUString copy(original);
            assigned = copy;
            ASSERT_TRUE(heap.Made() == 2 && Chars(assigned) == Chars(original));
            ASSERT_EQ(CProbe::Refs(original), 3);
            change.change(copy);
            EXPECT_EQ(heap.Made(), 3);
            EXPECT_EQ(Text(copy) + "|" + Text(original), change.result + std::string("| ab "));
            EXPECT_EQ(CProbe::Refs(original), 2);
            EXPECT_EQ(abs(CProbe::Refs(copy)), 1);
        }
        EXPECT_EQ(heap.Live(), 0);
    }
}

TEST(String, CapacityIsExactAndKeptWhereItSuffices)
{
    const CHeapWatch heap;
    {
        CCUString s("abc");
        (s += "de") += 'f';
        EXPECT_EQ(s.GetAllocLength(), 6);
        const CCUString sum = "12" + s + 'g' + CCUString("h"), whole = s.Mid(0);
        EXPECT_EQ(Text(sum), "12abcdefgh");
        EXPECT_EQ(sum.GetAllocLength(), 10);
        EXPECT_NE(Chars(whole), Chars(s));
        const int nMade = heap.Made();
        ((s = "xy") += "zw") += s.Left(0);
        s = CCUString();
        EXPECT_EQ(heap.Made(), nMade);
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
    const CHeapWatch heap;
    {
        CCUString s("hello"), assigned;
        s.GetBuffer(10);
        char *pch = s.LockBuffer();
        const CCUString copy(s);
        assigned = s;
        EXPECT_TRUE(Chars(copy) != pch && Chars(assigned) != pch);
        EXPECT_EQ(Text(copy) + Text(assigned), "hellohello");
        s = CCUString("abc");
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
    EXPECT_EQ(heap.Live(), 0);
}

TEST(String, AgreesWithTheStandardStringOnRandomTexts)
{
    CReports reports;
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
        std::string changed(a + '\0');
        changed[static_cast<size_t>(number(nSize + 1))] ^= 1;
        changed.resize(a.size());
        ASSERT_EQ(Sign(s.Compare(String(changed))), Sign(strcmp(a.c_str(), changed.c_str())));
        ASSERT_EQ(Text(s + b.c_str()), a + b);
        CCUString left(s), right(s), reversed(s);
        left.TrimLeft();
        ASSERT_EQ(Text(left), a.substr(std::min(a.find_first_not_of(" \t"), a.size())));
        right.TrimRight();
        ASSERT_EQ(Text(right), a.substr(0, a.find_last_not_of(" \t") + 1));
        reversed.MakeReverse();
        ASSERT_EQ(Text(reversed), std::string(a.rbegin(), a.rend()));
    }
    EXPECT_TRUE(reports.Asserts().empty());
}

TEST(String, OperatorsFollowCompare)
{
    for (const char *a : {"", "a", "B", "\x80"}) {
        for (const char *b : {"", "a", "B", "\x80"}) {
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
    EXPECT_TRUE(CCUString("ABC").CompareNoCase("abc") == 0 && CCUString().Compare(nullptr) == 0);
    EXPECT_TRUE(CCUString("abc").CompareNoCase("ABD") < 0 && CCUString("abc").Collate("abd") < 0);
}

TEST(String, ChangesCaseAsTheSystemDoesAndSpaceAsTheLibraryDoes)
{
    char all[256] = "";
    for (int i = 1; i < 256; ++i) {
        all[i - 1] = static_cast<char>(i);
        CCUString left(all[i - 1], 2), right(all[i - 1], 2);
        left.TrimLeft();
        right.TrimRight();
        EXPECT_TRUE(left.IsEmpty() == (isspace(i) != 0) && right == left) << i;
    }
    CCUString upper(all), lower(all);
    upper.MakeUpper();
    lower.MakeLower();
    EXPECT_STREQ(upper, CharUpperA(all));
    EXPECT_STREQ(lower, CharLowerA(all));
}

TEST(String, ConvertsBetweenWideAndAnsiWithinItsBuffers)
{
    const CCUString s(L"w\u00E9\u20AC");
    EXPECT_STREQ(s, "w\xE9\x80");
    EXPECT_EQ(s.GetAllocLength(), 6);
    CCUString t("a longer text");
    t = L"w\u00E9\u20AC";
    EXPECT_TRUE(t == s && t.GetAllocLength() == 13);
    for (const char *text : {"", "ab", "\xE9\x80\xFF"}) {
        CCUString wide = CCUString(text).ConvertToWide();
        wchar_t expected[10];
        EXPECT_EQ(wide.GetLength(), 2 * MultiByteToWideChar(CP_ACP, 0, text, -1, expected, 10));
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
        EXPECT_TRUE(!nExpected || (strcmp(narrow.Data(), "abc") | wcscmp(pWide, L"abc")) == 0);
    }
}

TEST(String, FirstThreadKeepsSomeOfItsSmallBlocksForTheNextStrings)
{
    const CHeapWatch heap;
    const auto makeAndFree = [&](size_t nLength) {
        const int nBefore = heap.Made();
        std::vector<CCUString> strings;
        std::vector<std::string> expected;
        strings.reserve(100);
        for (size_t i = 0; i < 100; ++i) {
            expected.emplace_back(nLength + i % 3, static_cast<char>('A' + i % 26));
            strings.push_back(String(expected[i]));
        }
        for (size_t i = 0; i < 100; ++i)
            EXPECT_EQ(Text(strings[i]), expected[i]);
        return heap.Made() - nBefore;
    };
    const int nAll = makeAndFree(17);  // 30 to 32 bytes: one step of the heap
    g_nBlockKeeper = GetCurrentThreadId();
    g_bBlocksAreMalloced = true;
    makeAndFree(17);
    const int nLive = heap.Live(), nKept = nAll - makeAndFree(17);
    EXPECT_TRUE(nKept > 0 && nKept <= 16) << nKept;
    CThreads::Run(1, [&](int) { EXPECT_EQ(makeAndFree(17), nAll); });
    EXPECT_EQ(makeAndFree(116), nAll);
    EXPECT_EQ(heap.Live(), nLive);
    CCUString grown;
    std::string text;
    for (char ch = 0; ch < 127; ++ch) {
        (grown += ch) += String(text).Left(3);
        text += ch + text.substr(0, 3);
        ASSERT_TRUE(Text(grown) == text && grown.GetAllocLength() == grown.GetLength());
    }
}

// What a string reports while `act` runs.
class StringReports : public testing::Test
{
protected:
    template <typename Act>
    void Expect(const char *expressions, Act act)
    {
        EXPECT_EQ(m_reports.Of("String", act), expressions);
    }
    CReports m_reports;
};

TEST_F(StringReports, ImpossibleLengthsStayInsideTheBlock)
{
    const CHeapWatch heap;
    CProbe s;
    const char *const tooLong = "nLen <= 2147483647-1";
    const char *const tooMuch = "nNewLength <= GetData()->nAllocLength";
    Expect("nLen >= 0", [] { ExpectNil(CCUString("abc", -1)); });
    Expect(tooLong, [] { ExpectNil(CCUString('x', INT_MAX)); });
    Expect(tooLong, [&] { s.ConcatCopy(INT_MAX, "a", INT_MAX, "b"); });
    ExpectNil(s);
    Expect("", [] { ExpectNil(CCUString(static_cast<const char *>(nullptr), 5)); });
    s = "abc";
    Expect("nMinBufLength >= 0", [&] { s.GetBuffer(-5); });
    EXPECT_EQ(s.GetLength(), 3);
    Expect(tooMuch, [&] { s.ReleaseBuffer(4); });
    EXPECT_STREQ(s, "abc");
    memset(s.GetBuffer(3), 'x', 4);
    Expect(tooMuch, [&] { s.ReleaseBuffer(); });
    EXPECT_STREQ(s, "xxx");
    Expect("nNewLength >= 0; nMinBufLength >= 0", [&] { s.GetBufferSetLength(-1); });
    EXPECT_EQ(s.GetLength(), 0);
    EXPECT_EQ(s.GetAllocLength(), 3);
    Expect("", [&] { strcpy(s.GetBuffer(3), "abc"), s.ReleaseBuffer(-5); });
    EXPECT_EQ(s.GetLength(), 0);
    Expect(tooLong, [&] { s.GetBufferSetLength(INT_MAX); });
    ExpectNil(s);
    s = "abc";
    EXPECT_STREQ(s.Mid(1, INT_MAX) + s.Mid(INT_MIN) + s.Mid(INT_MAX, INT_MAX), "bcabc");
    Expect("", [&] { EXPECT_STREQ(s.Right(INT_MAX), "abc"); });
}

TEST_F(StringReports, BadIndexesAndCountsAreNotStopped)
{
    CCUString s("abc");
    s.GetBuffer(10);
    Expect("", [&] { EXPECT_EQ(s[3], '\0'); });
    Expect("nIndex <= GetData()->nDataLength", [&] { EXPECT_EQ(s.GetAt(4), Chars(s)[4]); });
    Expect("nIndex >= 0", [&] { EXPECT_EQ(s[-1], Chars(s)[-1]); });
    Expect("nIndex >= 0", [&] { s.SetAt(-1, Chars(s)[-1]); });
    Expect("nIndex < GetData()->nDataLength", [&] { s.SetAt(5, 'X'); });
    EXPECT_EQ(Chars(s)[5], 'X');
    CCUString copy(s);
    Expect("GetData()->nRefs == -1", [&] { copy.UnlockBuffer(); });
    EXPECT_EQ(CProbe::Refs(s), 2);
    Expect("GetData()->nRefs != 0", [] { CProbe::DataOf(CCUString("x"))->nRefs = 0; });
    char narrow[10];
    wchar_t wide[10];
    Expect("mbstr == 0 || result <= (int)count",
           [&] { CUWideToMultiByteString(narrow, L"abc", 0x80000000U); });
    Expect("wcstr == 0 || result <= (int)count",
           [&] { CUMultiByteToWideString(wide, "abc", 0x80000000U); });
}

// Copies, lets go of and takes for itself each block at the moment at which another thread does.
TEST(String, ThreadsShareBlocks)
{
    const int nBlocks = 20000;
    static CCUString s_shared[4][nBlocks];
    static volatile LONG s_nArrived[nBlocks], s_nWrong;
    const CHeapWatch heap;
    for (int i = 0; i < nBlocks; ++i) {
        s_shared[0][i] = "shared by many";
        for (int nThread = 1; nThread < 4; ++nThread)
            s_shared[nThread][i] = s_shared[0][i];
    }
    CThreads::Run(4, [](int nThread) {
        for (int i = 0; i < nBlocks; ++i) {
            CCUString &string = s_shared[nThread][i];
            InterlockedIncrement(&s_nArrived[i]);
            for (int nWait = 0; nWait < 1000 && s_nArrived[i] < 2; ++nWait)
                YieldProcessor();
            bool bRight = true;
            for (int n = 0; n < 10; ++n) {
                const CCUString copy(string), other(copy);
                bRight = bRight && other == "shared by many";
            }
            if (i % 2)
                string.MakeUpper();
            else
                string = Chars(string) + 7;
            if (!bRight || string != (i % 2 ? "SHARED BY MANY" : "by many"))
                InterlockedIncrement(&s_nWrong);
            string.Empty();
        }
    });
    EXPECT_EQ(s_nWrong, 0);
    // But for what the test program itself takes.
    EXPECT_LT(heap.Live(), 10);
}
