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

#include "Support/HeapWatch.h"
#include "Support/Reports.h"
#include "Support/Threads.h"

namespace {

class CProbe : public CCUString
{
public:
    using CCUString::CCUString;
    using CCUString::FormatV;
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
         {none, CCUString(pNull), s.Left(-1), CCUString('x', -7), none + "", none.Encode64()})
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
    copy.FreeExtra();
    EXPECT_EQ((copy += 'f').GetAllocLength(), 6);
    copy.LockBuffer();
    EXPECT_NE(Chars(CCUString(copy)), Chars(copy));
    EXPECT_NE(Chars(s.Mid(0)), Chars(s));
    EXPECT_STREQ(s.Mid(1, INT_MAX) + s.Mid(INT_MIN) + s.Mid(INT_MAX, INT_MAX), "bcabc");
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
        for (const int nFrom : {1, 3, 7})
            ASSERT_EQ(s.Find(psz, nFrom), static_cast<int>(a.find(b, size_t(nFrom)))) << input;
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
    const CHeapWatch heap;
    for (unsigned int nRoom = 1; nRoom < 6; ++nRoom) {
        std::vector<char> narrow(nRoom);
        std::vector<unsigned short> wide(nRoom);
        EXPECT_EQ(CUWideToMultiByteString(narrow.data(), L"abc", nRoom), nRoom < 4 ? 0 : 4);
        EXPECT_EQ(CUMultiByteToWideString(wide.data(), "abc", nRoom), nRoom < 4 ? 0 : 4);
    }
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

// The compiler does not check these.
static void ExpectFormat(const char *text, const char *format, ...)
{
    CProbe result;
    va_list args;
    va_start(args, format);
    result.FormatV(format, args);
    va_end(args);
    EXPECT_STREQ(result, text) << format;
}

TEST(Format, HasRoomForWhatTheFormatLetsExpect)
{
    ExpectFormat("plain 100%", "plain 100%%");
    ExpectFormat("FFFF", "%X", 0xFFFF);
    ExpectFormat("1.5", "%G", 1.5);
    ExpectFormat("0000002A", "%p", 42);
    ExpectFormat("        ab", "%10s", "ab");
    ExpectFormat("x ", "%c %.0s", 'x', "abc");
    ExpectFormat("a bc def g", "%hs %S %ls %hS", "a", L"bc", L"def", "g");
    ExpectFormat("0000000000000000000000000000000000000001 -5", "%##-+ 0.40u %d", 1, -5);
    ExpectFormat("                                10.3", "%*d%.*f", 33, 1, 1, 0.25);
    // What is not known is reported, and cut only where the string has no room for it.
    CReports reports;
    CCUString text;
    text.GetBuffer(300);
    EXPECT_EQ("0", reports.Of("String", [&] { text.Format("at %E|%d", 1.5, 7); }));
    EXPECT_STREQ(text, "at 1.500000E+000|7");
    EXPECT_EQ(text.GetAllocLength(), 300);
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
    std::vector<char> expected(1 << 20);
    // "%n" may write to a text that another item shows.
    const auto restore = [&] {
        for (int n = 0; n < 64; ++n)
            memcpy(texts + n * 16, n % 2 ? "s\0h\0o\0r\0t\0\0" : "bytes", n % 2 ? 12 : 6);
    };
    for (int i = 0; i < 25000; ++i) {
        std::string format(s_random() % 16, ' ');
        for (char &ch : format)
            ch = "%%%%%%%%%%%%.*#-+0 hlFNLIwcCsssSdiopuxXefgGEnat\xE9\n715"[Number(50)];
        DWORD args[32];
        for (DWORD &arg : args)
            arg = nBase + s_random() % 64 * 16;
        const auto list = reinterpret_cast<va_list>(args);
        // A string with room for 0 to 299, its own or shared.
        CProbe text, other;
        text.GetBuffer(Number(Number(300) + 1));
        if (Number(2))
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

// One bit after the other.
static std::string DecodeBits(const std::string &alphabet, const std::string &text)
{
    std::string bits, bytes;
    for (const char ch : text) {
        const size_t nValue = alphabet.find(ch);
        for (int nBit = 5; nBit >= 0 && nValue != std::string::npos; --nBit)
            bits += nValue >> nBit & 1 ? '1' : '0';
    }
    for (size_t n = 0; n + 8 <= bits.size(); n += 8)
        bytes += static_cast<char>(strtol(bits.substr(n, 8).c_str(), nullptr, 2));
    return bytes;
}

TEST(Base64, EncodesAndDecodesAnyBytes)
{
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    EXPECT_STREQ(CCUString("M").Encode64() + CCUString("Ma").Encode64(), "TQ==TWE=");
    EXPECT_EQ(CCUString("TQ==").Decode64().GetAllocLength(), 1);
    const CHeapWatch heap;
    for (int i = 0; i < 10000; ++i) {
        std::string bytes(s_random() % (i % 50 ? 40 : 600), '\0');
        const int nAccepted = Number(17);  // of 16, from nearly all to nearly none
        for (char &ch : bytes)
            ch = Number(16) < nAccepted ? alphabet[s_random() % 64] : "=\n\r -_\0\xE9"[Number(8)];
        const CCUString text = String(bytes), encoded = text.Encode64();
        ASSERT_EQ(Text(text.Decode64()), DecodeBits(alphabet, bytes)) << i;
        ASSERT_EQ(encoded.GetAllocLength(), static_cast<int>((bytes.size() + 2) / 3 * 4));
        ASSERT_EQ(DecodeBits(alphabet, Chars(encoded)), bytes);
        ASSERT_EQ(CCUString('=', (3 - text.GetLength() % 3) % 3),
                  encoded.Mid(encoded.SpanIncluding(alphabet.c_str()).GetLength()));
    }
}
