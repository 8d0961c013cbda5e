#pragma once

#include <vector>

#include "Model/Blob.h"

// Bytes of a file in memory, numbers in them with the low byte first. Whatever an offset says,
// nothing outside of them is read: there is nothing but zeros.
class CByteView
{
public:
    CByteView() : m_pBytes(nullptr), m_nSize(0) {}
    CByteView(const BYTE *pBytes, size_t nSize) : m_pBytes(pBytes), m_nSize(nSize) {}
    explicit CByteView(const std::vector<BYTE> &bytes) : CByteView(bytes.data(), bytes.size()) {}
    explicit CByteView(const CBytes &bytes) : CByteView(bytes.data(), bytes.size()) {}

    const BYTE *Data() const { return m_pBytes; }
    size_t Size() const { return m_nSize; }
    bool Has(size_t nOffset, size_t nSize) const
    {
        return nOffset <= m_nSize && nSize <= m_nSize - nOffset;
    }

    BYTE Byte(size_t nOffset) const { return nOffset < m_nSize ? m_pBytes[nOffset] : BYTE(0); }
    WORD Word(size_t nOffset) const
    {
        return static_cast<WORD>(Byte(nOffset) | Byte(nOffset + 1) << 8);
    }
    DWORD Dword(size_t nOffset) const
    {
        return Word(nOffset) | static_cast<DWORD>(Word(nOffset + 2)) << 16;
    }
    // As much of it as there is.
    CByteView Part(size_t nOffset, size_t nSize) const
    {
        if (nOffset > m_nSize)
            return CByteView();
        return CByteView(m_pBytes + nOffset, nSize < m_nSize - nOffset ? nSize : m_nSize - nOffset);
    }
    CByteView From(size_t nOffset) const { return Part(nOffset, m_nSize); }
    std::vector<BYTE> Copy() const { return std::vector<BYTE>(m_pBytes, m_pBytes + m_nSize); }

private:
    const BYTE *m_pBytes;
    size_t m_nSize;
};

// These write numbers in the same form: behind the bytes, or over some that are there.
inline void AppendWord(std::vector<BYTE> &bytes, UINT nValue)
{
    bytes.push_back(static_cast<BYTE>(nValue));
    bytes.push_back(static_cast<BYTE>(nValue >> 8));
}

inline void AppendDword(std::vector<BYTE> &bytes, DWORD nValue)
{
    AppendWord(bytes, nValue & 0xFFFF);
    AppendWord(bytes, nValue >> 16);
}

inline void Append(std::vector<BYTE> &bytes, const CByteView &more)
{
    bytes.insert(bytes.end(), more.Data(), more.Data() + more.Size());
}

inline void PutWord(std::vector<BYTE> &bytes, size_t nOffset, UINT nValue)
{
    bytes[nOffset] = static_cast<BYTE>(nValue);
    bytes[nOffset + 1] = static_cast<BYTE>(nValue >> 8);
}

inline void PutDword(std::vector<BYTE> &bytes, size_t nOffset, DWORD nValue)
{
    PutWord(bytes, nOffset, nValue & 0xFFFF);
    PutWord(bytes, nOffset + 2, nValue >> 16);
}

inline size_t AlignUp(size_t nValue, size_t nAlignment)
{
    return (nValue + nAlignment - 1) / nAlignment * nAlignment;
}
