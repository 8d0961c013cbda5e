#pragma once

#include <stddef.h>

#include "CU/Platform.h"

// A buffer that ends right before a page that nobody may touch: one byte too far is a crash.
class CGuardedBuffer
{
public:
    explicit CGuardedBuffer(size_t nSize)
    {
        const size_t nPage = 4096, nRoom = (nSize + nPage - 1) / nPage * nPage;
        m_base =
            static_cast<char *>(VirtualAlloc(nullptr, nRoom + nPage, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(m_base, nRoom, MEM_COMMIT, PAGE_READWRITE);
        m_data = m_base + nRoom - nSize;
    }
    ~CGuardedBuffer() { VirtualFree(m_base, 0, MEM_RELEASE); }
    CGuardedBuffer(const CGuardedBuffer &) = delete;
    CGuardedBuffer &operator=(const CGuardedBuffer &) = delete;

    char *Data() { return m_data; }

private:
    char *m_base, *m_data;
};
