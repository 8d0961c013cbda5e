#include "Model/SkinBytes.h"

#include <string.h>

namespace {

// Of this form; the sum of the bytes behind it follows.
const DWORD MARK = 0x314D4B00 | SKIN_BEGINS;
const size_t HEAD_SIZE = 2 * sizeof(DWORD);

DWORD SumOf(const BYTE *pBytes, size_t nBytes)
{
    DWORD nSum = 2166136261U;
    for (size_t i = 0; i < nBytes; ++i)
        nSum = (nSum ^ pBytes[i]) * 16777619U;
    return nSum;
}

class CPacker
{
public:
    void Number(size_t n)
    {
        const DWORD nValue = static_cast<DWORD>(n);
        Bytes(&nValue, sizeof nValue);
    }
    void Text(const CWideText &text)
    {
        Number(text.Length());
        Bytes(text.Data(), text.Length() * sizeof(WCHAR));
    }
    void Blob(const CBlob &blob)
    {
        Number(blob ? blob->size() + 1 : 0);
        if (blob)
            Bytes(blob->data(), blob->size());
    }

    std::vector<BYTE> m_bytes;

private:
    void Bytes(const void *p, size_t n)
    {
        const BYTE *const pFirst = static_cast<const BYTE *>(p);
        if (n)
            m_bytes.insert(m_bytes.end(), pFirst, pFirst + n);
    }
};

// Reads no further than there are bytes; from the first failure on everything is 0 and empty.
class CUnpacker
{
public:
    CUnpacker(const BYTE *pBytes, size_t nBytes) : m_p(pBytes), m_nLeft(nBytes) {}

    size_t Number()
    {
        DWORD nValue = 0;
        Bytes(&nValue, sizeof nValue);
        return nValue;
    }
    CWideText Text()
    {
        const size_t nLength = Number();
        if (nLength > m_nLeft / sizeof(WCHAR)) {
            m_bFailed = true;
            return CWideText();
        }
        std::vector<WCHAR> text(nLength);
        Bytes(text.data(), nLength * sizeof(WCHAR));
        return CWideText(text.data(), nLength);
    }
    CBlob Blob()
    {
        const size_t nSize = Number();
        if (nSize == 0)
            return CBlob();
        if (nSize - 1 > m_nLeft) {
            m_bFailed = true;
            return CBlob();
        }
        std::vector<BYTE> bytes(nSize - 1);
        Bytes(bytes.data(), nSize - 1);
        return MakeBlob(std::move(bytes));
    }
    bool Failed() const { return m_bFailed; }
    bool IsAtEnd() const { return !m_bFailed && m_nLeft == 0; }

private:
    void Bytes(void *p, size_t n)
    {
        m_bFailed = m_bFailed || n > m_nLeft;
        if (m_bFailed || n == 0)
            return;
        memcpy(p, m_p, n);
        m_p += n;
        m_nLeft -= n;
    }

    const BYTE *m_p;
    size_t m_nLeft;
    bool m_bFailed = false;
};

}  // namespace

std::vector<BYTE> PackSkin(const CSkin &skin)
{
    CPacker packer;
    packer.Number(skin.m_texts.size());
    for (const CSkinTexts &texts : skin.m_texts) {
        packer.Number(texts.m_nLanguage);
        packer.Number(texts.m_entries.size());
        for (const auto &entry : texts.m_entries) {
            packer.Number(entry.first);
            packer.Text(entry.second);
        }
    }
    for (const CBlob &picture : skin.m_pictures)
        packer.Blob(picture);
    packer.Blob(skin.m_icon);
    packer.Number(skin.m_version.size());
    for (const auto &text : skin.m_version) {
        packer.Text(text.first);
        packer.Text(text.second);
    }
    CPacker all;
    all.Number(MARK);
    all.Number(SumOf(packer.m_bytes.data(), packer.m_bytes.size()));
    all.m_bytes.insert(all.m_bytes.end(), packer.m_bytes.begin(), packer.m_bytes.end());
    return all.m_bytes;
}

bool UnpackSkin(const BYTE *pBytes, size_t nBytes, CSkin &skin)
{
    CUnpacker unpacker(pBytes, nBytes);
    if (unpacker.Number() != MARK || nBytes < HEAD_SIZE ||
        unpacker.Number() != SumOf(pBytes + HEAD_SIZE, nBytes - HEAD_SIZE))
        return false;
    CSkin read;
    for (size_t i = unpacker.Number(); i > 0 && !unpacker.Failed(); --i) {
        read.m_texts.push_back({static_cast<LANGID>(unpacker.Number()), {}});
        for (size_t j = unpacker.Number(); j > 0 && !unpacker.Failed(); --j) {
            const UINT nID = static_cast<UINT>(unpacker.Number());
            read.m_texts.back().m_entries[nID] = unpacker.Text();
        }
    }
    for (CBlob &picture : read.m_pictures)
        picture = unpacker.Blob();
    read.m_icon = unpacker.Blob();
    for (size_t i = unpacker.Number(); i > 0 && !unpacker.Failed(); --i) {
        const CWideText name = unpacker.Text();
        read.m_version[name] = unpacker.Text();
    }
    if (!unpacker.IsAtEnd())
        return false;
    skin = read;
    return true;
}

bool IsDamagedSkin(const BYTE *pBytes, size_t nBytes)
{
    if (nBytes < HEAD_SIZE)
        return memcmp(pBytes, &MARK, nBytes < sizeof MARK ? nBytes : sizeof MARK) == 0;
    CUnpacker unpacker(pBytes, nBytes);
    return unpacker.Number() == MARK &&
           unpacker.Number() != SumOf(pBytes + HEAD_SIZE, nBytes - HEAD_SIZE);
}
