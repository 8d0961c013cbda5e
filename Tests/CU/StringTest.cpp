#include "CU/String.h"

#include <ctype.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
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

std::mt19937 s_random(1);

int Number(int nBelow)
{
    return static_cast<int>(s_random() % static_cast<unsigned int>(nBelow));
}

std::string RandomText(int nMost)
{
    std::string result(static_cast<size_t>(Number(nMost + 1)), '\0');
    for (char &ch : result)
        ch = "aab \t\0\xE9Z"[Number(8)];
    return result;
}

// The six ways to compare.
template <typename T, typename U>
std::vector<bool> Relations(const T &a, const U &b)
{
    return {a == b, a != b, a<b, a> b, a <= b, a >= b};
}

}  // namespace

TEST(String, BlocksAreSharedAndHaveRoomForTheTextAndNoMore)
{
    const CHeapWatch heap;
    const CCUString none;
    const char *pNull = nullptr;
    CCUString s("abc");
    for (const CCUString &string :
         {none, CCUString(pNull), s.Left(-1), CCUString('x', -7), none + "", none.Encode64(),
          CCUString(reinterpret_cast<const wchar_t *>(pNull))})
        EXPECT_EQ(Chars(string), CUPchNil);
    CCUString copy(s), other;
    other = copy;
    EXPECT_EQ(heap.Made(), 1);
    EXPECT_EQ(CProbe::DataOf(s)->nRefs, 3);
    copy = "1" + s + 'g' + CCUString('h', 2) + "i";
    EXPECT_STREQ(copy, "1abcghhi");
    EXPECT_EQ(copy.GetAllocLength(), 8);
    const int nMade = heap.Made();
    (copy = "xy") += s;
    EXPECT_EQ(heap.Made(), nMade);
    EXPECT_EQ(copy.GetAllocLength(), 8);
    copy.FreeExtra();
    EXPECT_EQ((copy += 'f').GetAllocLength(), 6);
    copy.LockBuffer();
    other = copy;
    EXPECT_NE(Chars(other), Chars(copy));
    copy.Empty();
    EXPECT_EQ(copy.GetAllocLength(), 6);
    EXPECT_NE(Chars(s.Mid(0)), Chars(s));
}

// Copied, changed and locked at random, each keeps its own text.
static void PlayAtRandom()
{
    CCUString strings[4];
    std::string texts[4];
    bool locked[4] = {};
    for (int i = 0; i < 30000; ++i) {
        const int nA = Number(4), nB = Number(4), n = Number(strings[nB].GetLength() + 1);
        CCUString &a = strings[nA];
        std::string &text = texts[nA];
        const std::string other = texts[nB], right = other.c_str() + n;
        const int nOp = text.size() > 60 ? 0 : Number(12);
        switch (nOp) {
        case 0: a.Empty(), text = ""; break;
        case 1: a = strings[nB], text = other; break;
        case 2: a = Chars(strings[nB]) + n, text = right; break;
        case 3: a += strings[nB], text += other; break;
        case 4: a += Chars(strings[nB]) + n, text += right; break;
        case 5: a += 'x', text += 'x'; break;
        case 6: a.MakeReverse(), std::reverse(text.begin(), text.end()); break;
        case 7: a.FreeExtra(); break;
        case 8:
            memset(a.GetBuffer(n), ' ', static_cast<size_t>(n));
            a.ReleaseBuffer(n), text.assign(static_cast<size_t>(n), ' ');
            break;
        case 9: a.Format("<%s>", Chars(a)), text = "<" + std::string(text.c_str()) + ">"; break;
        case 10: a.LockBuffer(), locked[nA] = true; break;
        default:
            if (std::exchange(locked[nA], false))
                a.UnlockBuffer();
            if (a.GetLength() > 0)
                a.SetAt(0, 'X'), text[0] = 'X';
        }
        locked[nA] = locked[nA] && Chars(a) != CUPchNil;
        for (int k = 0; k < 4; ++k) {
            const bool bAlone = locked[k] || Chars(strings[k]) == CUPchNil;
            ASSERT_EQ(CProbe::DataOf(strings[k])->nRefs < 0, bAlone) << i << " operation " << nOp;
            ASSERT_EQ(Text(strings[k]), texts[k]) << i << " operation " << nOp;
            ASSERT_EQ(Chars(strings[k])[texts[k].size()], '\0') << i << " operation " << nOp;
        }
    }
}

TEST(String, CopiesAreIndependent)
{
    const CReports reports;
    {
        const CHeapWatch heap;
        PlayAtRandom();
        EXPECT_EQ(heap.Live(), 0);
    }
    // With the blocks that the first thread keeps, some of each size.
    std::vector<CCUString> many;
    for (int i = 0; i < 100; ++i)
        many.push_back(CCUString('x', 17 + i % 4));
    many.clear();
    PlayAtRandom();
    EXPECT_EQ(reports.Total(), 0);
}

TEST(String, AgreesWithTheStandardStringOnRandomTexts)
{
    CReports reports;
    const CHeapWatch heap;
    for (int i = 0; i < 20000; ++i) {
        const std::string a = RandomText(12), b(RandomText(3).c_str());
        const CCUString s = String(a), t = String(b);
        const int nSize = s.GetLength(), nFirst = Number(20) - 4, nCount = Number(20) - 4;
        const char ch = "ab\0"[Number(3)], *psz = Chars(t);
        const auto from = static_cast<size_t>(std::min(std::max(nFirst, 0), nSize));
        const auto count = static_cast<size_t>(std::min(std::max(nCount, 0), nSize));
        const std::string input = testing::PrintToString(a) + " " + b;
        ASSERT_EQ(Text(s.Mid(nFirst, nCount)), a.substr(from, count)) << input;
        ASSERT_EQ(Text(s.Mid(nFirst)), a.substr(from)) << input;
        ASSERT_EQ(Text(s.Left(nCount)), a.substr(0, count)) << input;
        ASSERT_EQ(Text(s.Right(nCount)), a.substr(a.size() - count)) << input;
        ASSERT_EQ(Text(s.SpanIncluding(psz)), a.substr(0, a.find_first_not_of(b))) << input;
        ASSERT_EQ(Text(s.SpanExcluding(psz)), a.substr(0, a.find_first_of(b))) << input;
        ASSERT_EQ(s.Find(psz), static_cast<int>(a.find(b))) << input;
        ASSERT_EQ(s.Find(ch), static_cast<int>(a.find(ch))) << input;
        ASSERT_EQ(s.ReverseFind(ch), static_cast<int>(a.rfind(ch))) << input;
        ASSERT_EQ(s.FindOneOf(psz), static_cast<int>(a.find_first_of(b))) << input;
        ASSERT_EQ(Text(s + psz) + Text(psz + s), a + b + b + a) << input;
        CCUString right(s);
        right.TrimRight();
        ASSERT_EQ(Text(right), a.substr(0, a.find_last_not_of(" \t") + 1)) << input;
        std::string changed = a;
        if (nSize > 0)
            changed[static_cast<size_t>(Number(nSize))] = "ab"[Number(2)];
        for (const std::string &compared : {b, changed}) {
            const CCUString u = String(compared);
            const std::vector<bool> expected = Relations(strcmp(a.c_str(), compared.c_str()), 0);
            const bool bSame = a == compared;
            ASSERT_EQ(Relations(s, Chars(u)), expected) << input;
            ASSERT_EQ(Relations(Chars(s), u), expected) << input;
            ASSERT_EQ(Relations(s, u), bSame ? Relations(0, 0) : expected) << input;
        }
    }
    EXPECT_EQ(CCUString("ABC").CompareNoCase("abc"), 0);
    EXPECT_LT(CCUString("abc").CompareNoCase("ABD"), 0);
    EXPECT_LT(CCUString("abc").Collate("abd"), 0);
    EXPECT_EQ(CCUString().Compare(nullptr), 0);
    EXPECT_EQ(reports.Total(), 0);
}

TEST(String, ChangesCaseAsTheSystemDoesAndSpaceAsTheLibraryDoes)
{
    for (int i = 1; i < 256; ++i) {
        char text[] = {static_cast<char>(i), '\0'};
        CCUString left(text), right(text), upper(text), lower(text);
        left.TrimLeft(), right.TrimRight(), upper.MakeUpper(), lower.MakeLower();
        EXPECT_EQ(left.GetLength() + right.GetLength(), isspace(i) ? 0 : 2) << i;
        EXPECT_STREQ(upper, CharUpperA(text));
        EXPECT_STREQ(lower, CharLowerA(text));
    }
}

TEST(String, ConvertsBetweenWideAndAnsiWithinItsBuffers)
{
    CCUString s(L"w\u00E9\u20AC"), t("a longer text");
    EXPECT_STREQ(s, "w\xE9\x80");
    EXPECT_EQ(s.GetAllocLength(), 6);
    EXPECT_STREQ(t = L"w\u00E9\u20AC", s.ConvertToANSI());
    for (const char *text : {"", "ab", "\xE9\x80\xFF"}) {
        CCUString wide = CCUString(text).ConvertToWide();
        EXPECT_EQ(wide.GetLength(), 2 * static_cast<int>(strlen(text)) + 2);
        // The source lies in the string itself.
        wide = reinterpret_cast<const unsigned short *>(Chars(wide));
        EXPECT_STREQ(wide, text);
    }
    EXPECT_EQ(CUWideToMultiByteString(nullptr, L"abc", 0), 4);
    EXPECT_EQ(CUMultiByteToWideString(nullptr, "abc", 0), 4);
    for (unsigned int nRoom = 0; nRoom < 6; ++nRoom) {
        CGuardedBuffer narrow(nRoom), wide(2 * nRoom);
        auto *pWide = reinterpret_cast<unsigned short *>(wide.Data());
        EXPECT_EQ(CUWideToMultiByteString(narrow.Data(), L"abc", nRoom), nRoom < 4 ? 0 : 4);
        EXPECT_EQ(CUMultiByteToWideString(pWide, "abc", nRoom), nRoom < 4 ? 0 : 4);
    }
}

TEST(String, ReportsBadArgumentsAndStaysInsideTheBlock)
{
    CReports reports;
    const auto expect = [&](const char *expressions, auto act) {
        EXPECT_EQ(reports.Of("String", act), expressions);
    };
    const char *const tooMuch = "nNewLength <= GetData()->nAllocLength";
    CProbe s("abc"), nil;
    CCUString copy(s);
    expect("nLen >= 0", [] { EXPECT_STREQ(CCUString("abc", -1), ""); });
    expect("nLen <= 2147483647-1", [&] { nil.ConcatCopy(INT_MAX, "a", INT_MAX, "b"); });
    expect("GetData()->nRefs == -1", [&] { copy.UnlockBuffer(); });
    EXPECT_EQ(s.GetData()->nRefs, 2);
    expect(tooMuch, [&] { s.ReleaseBuffer(4); });
    EXPECT_STREQ(s, "abc");
    expect("", [&] { EXPECT_EQ(s[3], '\0'); });
    expect("nIndex <= GetData()->nDataLength", [&] { s.GetAt(4); });
    expect("nIndex >= 0", [&] { EXPECT_EQ(s[-1], Chars(s)[-1]); });
    expect("nNewLength >= 0; nMinBufLength >= 0", [&] { s.GetBufferSetLength(-1); });
    s.GetBuffer(10);
    expect("nIndex < GetData()->nDataLength", [&] { s.SetAt(5, 'X'); });
    EXPECT_EQ(Chars(s)[5], 'X');
    expect("GetData()->nRefs != 0", [] { CProbe::DataOf(CCUString("x"))->nRefs = 0; });
    EXPECT_STREQ(copy.Mid(1, INT_MAX) + copy.Mid(INT_MIN) + copy.Mid(INT_MAX, INT_MAX), "bcabc");
}

TEST(String, ThreadsShareBlocks)
{
    static CCUString s_shared[4][10000];
    static volatile LONG s_nArrived[10000], s_nWrong;
    const CHeapWatch heap;
    for (int i = 0; i < 40000; ++i)
        s_shared[i % 4][i / 4] = i % 4 ? s_shared[0][i / 4] : CCUString("shared");
    CThreads::Run(4, [](int nThread) {
        for (int i = 0; i < 10000; ++i) {
            CCUString &string = s_shared[nThread][i];
            // At the moment at which another thread does.
            InterlockedIncrement(&s_nArrived[i]);
            for (int nWait = 0; nWait < 1000 && s_nArrived[i] < 2; ++nWait)
                YieldProcessor();
            const CCUString copy(string), other(copy);
            string.MakeUpper();
            if (other != "shared" || string != "SHARED")
                s_nWrong = 1;
            string.Empty();
        }
    });
    EXPECT_EQ(s_nWrong, 0);
    EXPECT_LT(heap.Live(), 20);  // but for what the test program itself takes
}
