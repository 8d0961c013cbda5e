#pragma once

#include <string.h>

#include <memory>
#include <utility>
#include <vector>

#include "CUI/Platform.h"

// Bytes that nobody changes any more: all that something holds, or a part of that, which keeps it.
class CBytes
{
public:
    CBytes(std::shared_ptr<const void> pHolder, const BYTE *pBytes, size_t nSize)
        : m_pHolder(std::move(pHolder)), m_pBytes(pBytes), m_nSize(nSize)
    {
    }

    // NOLINTBEGIN(readability-identifier-naming): as the library's containers call them
    const BYTE *data() const { return m_pBytes; }
    size_t size() const { return m_nSize; }
    bool empty() const { return m_nSize == 0; }
    const BYTE *begin() const { return m_pBytes; }
    const BYTE *end() const { return m_pBytes + m_nSize; }
    // NOLINTEND(readability-identifier-naming)
    BYTE operator[](size_t nIndex) const { return m_pBytes[nIndex]; }
    bool operator==(const CBytes &other) const
    {
        return m_nSize == other.m_nSize &&
               (m_nSize == 0 || memcmp(m_pBytes, other.m_pBytes, m_nSize) == 0);
    }
    const std::shared_ptr<const void> &Holder() const { return m_pHolder; }

private:
    std::shared_ptr<const void> m_pHolder;
    const BYTE *m_pBytes;
    size_t m_nSize;
};

// Shared by all that hold them: copies of a skin and steps that can be undone cost a pointer. Null:
// there are none.
typedef std::shared_ptr<const CBytes> CBlob;

inline CBlob MakeBlob(std::vector<BYTE> bytes)
{
    const auto pHolder = std::make_shared<const std::vector<BYTE>>(std::move(bytes));
    return std::make_shared<const CBytes>(pHolder, pHolder->data(), pHolder->size());
}

// A part of others, without a copy: these live as long as it does. One that does not begin where
// numbers of four bytes may stand is copied, for headers are read in place.
inline CBlob PartOf(const CBlob &whole, size_t nOffset, size_t nSize)
{
    const BYTE *const pBytes = whole->data() + nOffset;
    if (reinterpret_cast<UINT_PTR>(pBytes) % sizeof(DWORD) != 0)
        return MakeBlob(std::vector<BYTE>(pBytes, pBytes + nSize));
    return std::make_shared<const CBytes>(whole->Holder(), pBytes, nSize);
}

// Two that were read apart may be equal too. None is equal to none alone.
inline bool SameBytes(const CBlob &a, const CBlob &b)
{
    return a == b || (a && b && *a == *b);
}
