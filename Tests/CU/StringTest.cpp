#include "CU/String.h"

#include <ctype.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <algorithm>
#include <memory>
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
    EXPECT_EQ(string.GetLength() + string.GetAllocLength(), 0);
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

// A block of characters as the rules have it, and a string that may share it with others.
struct CBlock
{
    std::string text;
    int nCapacity;
    bool bLocked;
};

struct CModel
{
    bool IsNil() const { return block->nCapacity == 0; }
    bool IsShared() const { return !IsNil() && block.use_count() > 1; }
    int Length() const { return static_cast<int>(block->text.size()); }
    // Makes a block of its own, locked as the old one was.
    void Take(int nCapacity)
    {
        const bool bLocked = nCapacity > 0 && block->bLocked;
        block = std::make_shared<CBlock>(CBlock{"", nCapacity, bLocked});
    }
    void Reserve(int nCapacity, const std::string &text)
    {
        if (IsShared() || nCapacity > block->nCapacity)
            Take(std::max(nCapacity, Length()));
        block->text = text;
    }
    void Write(const std::string &text)
    {
        const int nLength = static_cast<int>(text.size());
        if (IsShared() || nLength > block->nCapacity)
            Take(nLength);
        block->text = text;
    }
    void Assign(const CModel &other)
    {
        if (block->bLocked || other.block->bLocked || other.IsNil())
            Write(std::string(other.block->text));
        else
            block = other.block;
    }

    std::shared_ptr<CBlock> block = std::make_shared<CBlock>();
};

// Copies, changes and locks strings at random: they keep to the rules of who shares what and has
// room for how much.
void PlayAtRandom()
{
    CCUString strings[4];
    CModel models[4], part;
    for (int i = 0; i < 30000; ++i) {
        const int nA = Number(4), nB = Number(4), nRoom = Number(30);
        CCUString &a = strings[nA];
        const CCUString &b = strings[nB];
        CModel &model = models[nA];
        const std::string text = model.block->text, other = models[nB].block->text;
        const int nOp = text.size() > 60 ? 0 : Number(16), n = Number(b.GetLength() + 1);
        const std::string right = other.c_str() + n,
                          formatted = "<" + std::string(text.c_str()) + ">";
        switch (nOp) {
        case 0:
            a.Empty();
            if (model.block->bLocked || text.empty())
                model.block->text.clear();
            else
                model.Take(0);
            break;
        case 1: a = b, model.Assign(models[nB]); break;
        case 2: a = Chars(b) + n, model.Write(right); break;
        case 3:
            a = b.Left(n);
            part.Take(n);
            part.block->text = other.substr(0, static_cast<size_t>(n));
            model.Assign(part);
            part.Take(0);
            break;
        case 4: a += b, other.empty() ? void() : model.Write(text + other); break;
        case 5: a += Chars(b) + n, right.empty() ? void() : model.Write(text + right); break;
        case 6: a += 'x', model.Write(text + "x"); break;
        case 7:
            a.MakeReverse();
            model.IsShared() ? model.Take(model.Length()) : void();
            model.block->text.assign(text.rbegin(), text.rend());
            break;
        case 8:
            a.TrimLeft();
            model.IsShared() ? model.Take(model.Length()) : void();
            model.block->text = &text[std::min(text.find_first_not_of(' '), text.size())];
            break;
        case 9:
            a.FreeExtra();
            if (model.Length() != model.block->nCapacity)
                model.Take(model.Length()), model.block->text = text;
            break;
        case 10: a.GetBuffer(nRoom), a.ReleaseBuffer(), model.Reserve(nRoom, text.c_str()); break;
        case 11:
            memset(a.GetBufferSetLength(nRoom), ' ', static_cast<size_t>(nRoom));
            model.Reserve(nRoom, std::string(static_cast<size_t>(nRoom), ' '));
            break;
        case 12:
            a.Format("<%s>", Chars(a));
            model.Reserve(std::max(3, static_cast<int>(formatted.size())), formatted);
            break;
        case 13:
            a.LockBuffer(), model.Reserve(0, text);
            model.block->bLocked = !model.IsNil();
            break;
        case 14:
            if (model.block->bLocked)
                a.UnlockBuffer();
            model.block->bLocked = false;
            break;
        default:
            if (!text.empty())
                a.SetAt(0, ' '), model.IsShared() ? model.Take(model.Length()) : void(),
                    model.block->text = " " + text.substr(1);
        }
        for (int k = 0; k < 4; ++k) {
            const CBlock &block = *models[k].block;
            const bool bAlone = models[k].IsNil() || block.bLocked;
            ASSERT_EQ(Text(strings[k]), block.text) << i << " operation " << nOp;
            ASSERT_EQ(strings[k].GetAllocLength(), block.nCapacity) << i << " operation " << nOp;
            ASSERT_EQ(CProbe::DataOf(strings[k])->nRefs, bAlone ? -1 : models[k].block.use_count())
                << i << " operation " << nOp;
            ASSERT_EQ(Chars(strings[k])[block.text.size()], '\0') << i << " operation " << nOp;
        }
    }
}

}  // namespace

TEST(String, EmptyStringsAreTheNilBlockAndCopiesShareTheirs)
{
    const CHeapWatch heap;
    const CCUString none, abc("abc"), copy(abc);
    const char *pNull = nullptr;
    ExpectNil(pNull);
    ExpectNil(reinterpret_cast<const unsigned char *>(pNull));
    ExpectNil(reinterpret_cast<const unsigned short *>(pNull));
    ExpectNil(CCUString(pNull, 5));
    for (const CCUString &string :
         {none, abc.Left(-1), CCUString("ab", 0), CCUString('x', -7), none.Encode64()})
        ExpectNil(string);
    ExpectNil(none + "" + none);
    EXPECT_EQ(heap.Made(), 1);
    EXPECT_EQ(CUDataNil->nRefs, -1);
    EXPECT_STREQ("1" + abc + 'g' + CCUString('h', 2) + "i", "1abcghhi");
}

TEST(String, SharesCopiesAndGrowsByTheRules)
{
    const CReports reports;
    {
        const CHeapWatch heap;
        PlayAtRandom();
        EXPECT_EQ(heap.Live(), 0);
    }
    PlayAtRandom();  // with the blocks that the first thread keeps
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
        char text[] = {static_cast<char>(i), static_cast<char>(i), '\0'};
        CCUString left(text), right(text), upper(text), lower(text);
        left.TrimLeft(), right.TrimRight(), upper.MakeUpper(), lower.MakeLower();
        EXPECT_EQ(left.IsEmpty(), isspace(i) != 0) << i;
        EXPECT_EQ(right, left) << i;
        EXPECT_STREQ(upper, CharUpperA(text));
        EXPECT_STREQ(lower, CharLowerA(text));
    }
}

TEST(String, ConvertsBetweenWideAndAnsiWithinItsBuffers)
{
    CCUString s(L"w\u00E9\u20AC"), t("a longer text");
    EXPECT_STREQ(s, "w\xE9\x80");
    EXPECT_EQ(s.GetAllocLength(), 6);
    t = L"w\u00E9\u20AC";
    EXPECT_EQ(t, s);
    EXPECT_EQ(t.GetAllocLength(), 13);
    EXPECT_EQ(s.ConvertToANSI(), s);
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
        auto *pWide = reinterpret_cast<unsigned short *>(wide.Data());
        EXPECT_EQ(CUWideToMultiByteString(narrow.Data(), L"abc", nRoom), nRoom < 4 ? 0 : 4);
        EXPECT_EQ(CUMultiByteToWideString(pWide, "abc", nRoom), nRoom < 4 ? 0 : 4);
        EXPECT_EQ(nRoom < 4 ? 0 : pWide[2] * 256 + pWide[3], nRoom < 4 ? 0 : 'c' * 256);
    }
}

class StringReports : public testing::Test
{
protected:
    // What a string reports while `act` runs.
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
    s = "abc";
    Expect("nMinBufLength >= 0", [&] { s.GetBuffer(-5); });
    Expect(tooMuch, [&] { s.ReleaseBuffer(4); });
    EXPECT_STREQ(s, "abc");
    memset(s.GetBuffer(3), 'x', 4);
    Expect(tooMuch, [&] { s.ReleaseBuffer(); });
    EXPECT_STREQ(s, "xxx");
    Expect("nNewLength >= 0; nMinBufLength >= 0", [&] { s.GetBufferSetLength(-1); });
    EXPECT_EQ(s.GetLength(), 0);
    s = "abc";
    EXPECT_STREQ(s.Mid(1, INT_MAX) + s.Mid(INT_MIN) + s.Mid(INT_MAX, INT_MAX), "bcabc");
}

TEST_F(StringReports, BadIndexesAndCountsAreNotStopped)
{
    CCUString s("abc"), copy(s);
    Expect("", [&] { EXPECT_EQ(s[3], '\0'); });
    Expect("nIndex <= GetData()->nDataLength", [&] { s.GetAt(4); });
    Expect("nIndex >= 0", [&] { EXPECT_EQ(s[-1], Chars(s)[-1]); });
    Expect("GetData()->nRefs == -1", [&] { copy.UnlockBuffer(); });
    EXPECT_EQ(CProbe::DataOf(s)->nRefs, 2);
    s.GetBuffer(10);
    Expect("nIndex < GetData()->nDataLength", [&] { s.SetAt(5, 'X'); });
    EXPECT_EQ(Chars(s)[5], 'X');
    Expect("nIndex >= 0", [&] { s.SetAt(-1, Chars(s)[-1]); });
    Expect("GetData()->nRefs != 0", [] { CProbe::DataOf(CCUString("x"))->nRefs = 0; });
}

// Copies, lets go of and takes for itself each block at the moment at which another thread does.
TEST(String, ThreadsShareBlocks)
{
    const int nBlocks = 10000;
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
            for (int n = 0; n < 10; ++n) {
                const CCUString copy(string), other(copy);
                if (other != "shared by many")
                    s_nWrong = 1;
            }
            if (i % 2)
                string.MakeUpper();
            else
                string = Chars(string) + 7;
            if (string != (i % 2 ? "SHARED BY MANY" : "by many"))
                s_nWrong = 1;
            string.Empty();
        }
    });
    EXPECT_EQ(s_nWrong, 0);
    EXPECT_LT(heap.Live(), 20);  // but for what the test program itself takes
}
