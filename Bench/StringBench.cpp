#include <limits.h>
#include <stdio.h>
#include <string.h>

#include <new>
#include <string>

#include "Bench.h"
#include "CU/String.h"

namespace {

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, as the framework's functions do.
__attribute__((noinline)) int Take(CCUString text)
{
    BenchKeep(text);
    return text.GetLength();
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the same.
__attribute__((noinline)) int TakeStandard(std::string text)
{
    BenchKeep(text);
    return static_cast<int>(text.size());
}

void CompareCopies(const char *name, int nLength, double ceiling)
{
    const CCUString ours('x', nLength);
    const std::string peer(static_cast<size_t>(nLength), 'x');
    BenchCompare(
        name, [&] { BenchKeep(Take(ours)); }, "std::string", [&] { BenchKeep(TakeStandard(peer)); },
        ceiling);
}

// What sharing a block between threads costs at least, on the same scale.
void CompareCountAlone(const char *name, int nLength)
{
    const std::string peer(static_cast<size_t>(nLength), 'x');
    static volatile LONG s_nCount = 1;
    BenchCompare(
        name,
        [] {
            InterlockedIncrement(&s_nCount);
            InterlockedDecrement(&s_nCount);
        },
        "std::string", [&] { BenchKeep(TakeStandard(peer)); }, 0);
}

template <typename Text>
void AppendOneByOne(int nCharacters)
{
    Text text;
    for (int i = 0; i < nCharacters; ++i)
        text += 'x';
    BenchKeep(text);
}

void CompareWithGrowing(const char *name, int nCharacters)
{
    BenchCompare(
        name, [=] { AppendOneByOne<CCUString>(nCharacters); }, "std::string",
        [=] { AppendOneByOne<std::string>(nCharacters); }, 0, 15);
}

void CompareAppends(const char *name, int nCharacters, double ceiling)
{
    BenchCompare(
        name, [=] { AppendOneByOne<CCUString>(nCharacters); }, "exact-fit new, copy, delete",
        [=] {
            char *text = new char[1];
            for (int i = 0; i < nCharacters; ++i) {
                char *longer = new char[static_cast<size_t>(i) + 2];
                memcpy(longer, text, static_cast<size_t>(i));
                longer[i] = 'x';
                longer[i + 1] = '\0';
                delete[] text;
                text = longer;
            }
            BenchKeep(text);
            delete[] text;
        },
        ceiling, 15);
}

const char s_alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Base64 as one writes it down first: a table, one character after the other.
void EncodePlainly(const std::string &bytes, char *out)
{
    const unsigned char *p = reinterpret_cast<const unsigned char *>(bytes.data());
    for (size_t i = 0; i + 2 < bytes.size(); i += 3) {
        const unsigned int nGroup =
            static_cast<unsigned int>(p[i] << 16 | p[i + 1] << 8 | p[i + 2]);
        *out++ = s_alphabet[nGroup >> 18];
        *out++ = s_alphabet[nGroup >> 12 & 63];
        *out++ = s_alphabet[nGroup >> 6 & 63];
        *out++ = s_alphabet[nGroup & 63];
    }
}

void DecodePlainly(const std::string &text, char *out, const unsigned char *values)
{
    unsigned int nBits = 0;
    int nBitCount = 0;
    for (const char ch : text) {
        const unsigned int nValue = values[static_cast<unsigned char>(ch)];
        if (nValue > 63)
            continue;
        nBits = nBits << 6 | nValue;
        nBitCount += 6;
        if (nBitCount >= 8) {
            nBitCount -= 8;
            *out++ = static_cast<char>(nBits >> nBitCount);
        }
    }
}

void CompareBase64(const char *encodeName, const char *decodeName, int nBytes, double ceiling)
{
    std::string bytes(static_cast<size_t>(nBytes), '\0');
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 2654435761U >> 13);
    const CCUString decoded(bytes.data(), nBytes), encoded = decoded.Encode64();
    const std::string text(encoded);
    unsigned char values[256];
    memset(values, 0xFF, sizeof values);
    for (int i = 0; i < 64; ++i)
        values[static_cast<unsigned char>(s_alphabet[i])] = static_cast<unsigned char>(i);
    BenchCompare(
        encodeName, [&] { BenchKeep(decoded.Encode64()); }, "plain table loop into new char[]",
        [&] {
            char *out = new char[(bytes.size() + 2) / 3 * 4 + 1];
            EncodePlainly(bytes, out);
            BenchKeep(out);
            delete[] out;
        },
        ceiling);
    BenchCompare(
        decodeName, [&] { BenchKeep(encoded.Decode64()); }, "plain table loop into new char[]",
        [&] {
            char *out = new char[text.size() / 4 * 3 + 1];
            DecodePlainly(text, out, values);
            BenchKeep(out);
            delete[] out;
        },
        ceiling);
}

void CompareFinds(const char *name, int nLength, double ceiling)
{
    std::string text;
    while (text.size() < static_cast<size_t>(nLength))
        text += "a line of common words, ";
    text.replace(static_cast<size_t>(nLength) - 6, std::string::npos, "needle");
    const CCUString ours(text.c_str());
    BenchCompare(
        name, [&] { BenchKeep(ours.Find("needle")); }, "std::string::find",
        [&] { BenchKeep(text.find("needle")); }, ceiling);
}

void CompareParts(const char *name, int nLength, int nCount, double ceiling)
{
    const std::string text(static_cast<size_t>(nLength), 'x');
    const CCUString ours(text.c_str());
    BenchCompare(
        name, [&] { BenchKeep(ours.Mid(5, nCount)); }, "std::string::substr",
        [&] { BenchKeep(text.substr(5, static_cast<size_t>(nCount))); }, ceiling);
}

}  // namespace

BENCH_GROUP(String)
{
    CompareCopies("String: copy and pass by value, 10 characters", 10, 2.0);
    CompareCopies("String: copy and pass by value, 40 characters", 40, 0.15);
    CompareCopies("String: copy and pass by value, 1,000 characters", 1000, 0);
    CompareCopies("String: copy and pass by value, 4,000 characters", 4000, 0.1);
    CompareCopies("String: copy and pass by value, 100,000 characters", 100000, 0);
    CompareCountAlone("String: one interlocked pair, 40 characters", 40);
    CompareCountAlone("String: one interlocked pair, 4,000 characters", 4000);

    const std::string text40(40, 'x'), other40(40, 'x');
    const CCUString ours40('x', 40), otherOurs40('x', 40), copy40(ours40);
    CCUString target(ours40);
    std::string peerTarget(text40);
    // Between strings of one block there is nothing to do; the peer copies its characters.
    BenchCompare(
        "String: assign between two strings of one block",
        [&] { target = copy40, BenchKeep(target); }, "std::string",
        [&] { peerTarget = text40, BenchKeep(peerTarget); }, 0.2);
    BenchCompare(
        "String: concatenate 40 + 40", [&] { BenchKeep(ours40 + otherOurs40); }, "std::string",
        [&] { BenchKeep(text40 + other40); }, 0.6);
    CompareFinds("String: find a substring at the end of 200", 200, 1.1);
    CompareFinds("String: find a substring at the end of 100,000", 100000, 0);
    BenchCompare(
        "String: compare 40 equal characters", [&] { BenchKeep(ours40.Compare(otherOurs40)); },
        "std::string::compare", [&] { BenchKeep(text40.compare(other40)); }, 1.1);
    BenchCompare(
        "String: compare 40 equal characters by ==", [&] { BenchKeep(ours40 == otherOurs40); },
        "std::string", [&] { BenchKeep(text40 == other40); }, 1.1);
    BenchCompare(
        "String: compare with 40 equal characters of a const char *",
        [&] { BenchKeep(ours40.Compare(other40.c_str())); }, "std::string::compare",
        [&] { BenchKeep(text40.compare(other40.c_str())); }, 0);
    CompareParts("String: Mid of 10 in 40", 40, 10, 3.0);
    CompareParts("String: Mid of 100 in 200", 200, 100, 1.0);
    CompareParts("String: Mid of 1,000 in 2,000", 2000, 1000, 0);
    BenchCompare(
        "String: Format(\"%d %s\")",
        [] {
            CCUString text;
            text.Format("%d %s", 12345, "a few words");
            BenchKeep(text);
        },
        "snprintf into a std::string",
        [] {
            char buffer[64];
            snprintf(buffer, sizeof buffer, "%d %s", 12345, "a few words");
            BenchKeep(std::string(buffer));
        },
        1.1);
    CompareAppends("String: append one character, 10 times", 10, 0);
    CompareAppends("String: append one character, 1,000 times", 1000, 0);
    CompareAppends("String: append one character, 10,000 times", 10000, 1.0);
    CompareWithGrowing("String: append one character, 1,000 times", 1000);
    CompareWithGrowing("String: append one character, 10,000 times", 10000);
    CompareWithGrowing("String: append one character, 100,000 times", 100000);
    CompareBase64("String: Encode64 of 1 KiB", "String: Decode64 to 1 KiB", 1024, 0);
    CompareBase64("String: Encode64 of 1 MiB", "String: Decode64 to 1 MiB", 1 << 20, 0.8);
}
