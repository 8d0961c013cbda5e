#pragma once

#include <stddef.h>

#include "CU/Platform.h"

// A buffer that ends right before a page that nobody may touch: one byte too far is a crash.
class CGuardedBuffer
{
public:
    explicit CGuardedBuffer(size_t nSize)
    {
        const size_t nPage = 4096;
        const size_t nPages = (nSize + nPage - 1) / nPage;
        m_base = static_cast<char *>(
            VirtualAlloc(nullptr, (nPages + 1) * nPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD old = 0;
        VirtualProtect(m_base + nPages * nPage, nPage, PAGE_NOACCESS, &old);
        m_data = m_base + nPages * nPage - nSize;
    }
    ~CGuardedBuffer() { VirtualFree(m_base, 0, MEM_RELEASE); }
    CGuardedBuffer(const CGuardedBuffer &) = delete;
    CGuardedBuffer &operator=(const CGuardedBuffer &) = delete;

    char *Data() { return m_data; }

private:
    char *m_base;
    char *m_data;
};
