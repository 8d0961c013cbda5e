#include <gtest/gtest.h>
#include <string.h>

#include <random>
#include <string>

#include "CU/String.h"
#include "Support/Fuzz.h"
#include "Support/HeapWatch.h"

namespace {

const std::string s_alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// One bit after the other.
std::string DecodeBits(const std::string &text)
{
    std::string bits, bytes;
    for (const char ch : text) {
        const size_t nValue = s_alphabet.find(ch);
        for (int nBit = 5; nBit >= 0 && nValue != std::string::npos; --nBit)
            bits += nValue >> nBit & 1 ? '1' : '0';
    }
    for (size_t n = 0; n + 8 <= bits.size(); n += 8)
        bytes += static_cast<char>(strtol(bits.substr(n, 8).c_str(), nullptr, 2));
    return bytes;
}

}  // namespace

TEST(Base64, MatchesThePublishedVectors)
{
    const char *const vectors[][2] = {{"", ""},
                                      {"f", "Zg=="},
                                      {"fo", "Zm8="},
                                      {"foo", "Zm9v"},
                                      {"foob", "Zm9vYg=="},
                                      {"fooba", "Zm9vYmE="},
                                      {"foobar", "Zm9vYmFy"},
                                      {"\xFB\xEF\xBE\xFF", "++++/w=="}};
    for (const auto &vector : vectors) {
        const CCUString encoded = CCUString(vector[0]).Encode64(), decoded = encoded.Decode64();
        EXPECT_STREQ(encoded, vector[1]);
        EXPECT_EQ(encoded.GetAllocLength(), static_cast<int>(strlen(vector[1])));
        EXPECT_STREQ(decoded, vector[0]);
        EXPECT_EQ(decoded.GetAllocLength(), static_cast<int>(strlen(vector[0])));
    }
}

TEST(Base64, EncodesALongTextAsItsPieces)
{
    const CHeapWatch heap;
    std::mt19937 random(5);
    for (int nLength = 4094; nLength < 4106; ++nLength) {
        CCUString text('x', nLength);
        for (int i = 0; i < nLength; ++i)
            text.SetAt(i, static_cast<char>(random()));
        CCUString pieces;
        for (int i = 0; i < nLength; i += 3)
            pieces += text.Mid(i, 3).Encode64();
        EXPECT_EQ(text.Encode64(), pieces) << nLength;
    }
}

TEST(Base64, DecodesAnyBytesToWhatTheAcceptedOnesGive)
{
    EXPECT_STREQ(CCUString("Zm\r\n9v\xE9 Yg").Decode64(), "foob");
    EXPECT_EQ(CCUString("=").Decode64().GetAllocLength(), 2);
    EXPECT_EQ(CCUString("ZZZZZ").Decode64().GetAllocLength(), 6);
    const CHeapWatch heap;
    std::mt19937 random(7);
    for (int i = 0; i < FuzzInputs(); ++i) {
        std::string text(random() % 40, '\0');
        // From nearly all accepted to nearly none.
        const unsigned int nAccepted = random() % 17;
        for (char &ch : text)
            ch = random() % 16 < nAccepted ? s_alphabet[random() % 64]
                                           : "=\n\r -_\0\xE9"[random() % 8];
        const CCUString decoded = CCUString(text.data(), static_cast<int>(text.size())).Decode64();
        ASSERT_EQ(std::string(decoded, static_cast<size_t>(decoded.GetLength())), DecodeBits(text))
            << testing::PrintToString(text);
        ASSERT_LE(decoded.GetLength(), decoded.GetAllocLength());
    }
}
