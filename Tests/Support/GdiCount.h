#pragma once

#include "CU/Platform.h"

// How many GDI objects the process has, counted in the system's own table, which the process
// environment block points to. DCs of windows do not show in it when they leak. Warm up what is
// counted: the first use of GDI makes objects that stay.
inline int GdiCount()
{
    struct CEntry
    {
        BYTE m_head[14];
        BYTE m_type;
        BYTE m_tail[9];
    };
    static_assert(sizeof(CEntry) == 24, "one entry of the table");
    const char *pPeb = nullptr;
    asm("movl %%fs:0x30, %0" : "=r"(pPeb));
    const CEntry *pTable = *reinterpret_cast<const CEntry *const *>(pPeb + 0x94);
    int nCount = 0;
    for (int i = 0; i < 65536; ++i)
        nCount += pTable[i].m_type != 0;
    return nCount;
}
