#include <gtest/gtest.h>
#include <string.h>

#include <random>
#include <string>

#include "CU/String.h"
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

std::string Decoded(const CCUString &text)
{
    const CCUString decoded = text.Decode64();
    EXPECT_LE(decoded.GetLength(), decoded.GetAllocLength());
    return std::string(decoded, static_cast<size_t>(decoded.GetLength()));
}

}  // namespace

TEST(Base64, EncodesAndDecodesAnyBytes)
{
    EXPECT_STREQ(CCUString("M").Encode64() + CCUString("Ma").Encode64(), "TQ==TWE=");
    EXPECT_EQ(CCUString("TQ==").Decode64().GetAllocLength(), 1);
    EXPECT_EQ(CCUString("ZZZZZ").Decode64().GetAllocLength(), 6);
    const CHeapWatch heap;
    std::mt19937 random(7);
    for (int i = 0; i < 10000; ++i) {
        std::string bytes(random() % (i % 50 ? 40 : 600), '\0');
        const unsigned int nAccepted = random() % 17;  // of 16, from nearly all to nearly none
        for (char &ch : bytes)
            ch = random() % 16 < nAccepted ? s_alphabet[random() % 64]
                                           : "=\n\r -_\0\xE9"[random() % 8];
        const CCUString text(bytes.data(), static_cast<int>(bytes.size()));
        ASSERT_EQ(Decoded(text), DecodeBits(bytes)) << testing::PrintToString(bytes);
        const CCUString encoded = text.Encode64();
        ASSERT_EQ(encoded.GetAllocLength(), static_cast<int>((bytes.size() + 2) / 3 * 4));
        ASSERT_EQ(DecodeBits(static_cast<const char *>(encoded)), bytes);
        ASSERT_EQ(CCUString('=', (3 - text.GetLength() % 3) % 3),
                  encoded.Mid(encoded.SpanIncluding(s_alphabet.c_str()).GetLength()));
    }
}
