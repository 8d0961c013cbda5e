#pragma once

#include <gtest/gtest.h>

#include "CU/Platform.h"

// How many GDI objects the process has, counted in the system's own table, which the process
// environment block points to: the byte at 14 of an entry is not 0. DCs of windows do not show in
// it when they leak. Warm up what is counted: the first use of GDI makes objects that stay.
inline int GdiCount()
{
    const char *pPeb = nullptr;
    asm("movl %%fs:0x30, %0" : "=r"(pPeb));
    const BYTE *const pTable = *reinterpret_cast<const BYTE *const *>(pPeb + 0x94);
    int nCount = 0;
    for (int i = 0; i < 65536; ++i)
        nCount += pTable[i * 24 + 14] != 0;
    return nCount;
}

// Does `work` so often, and expects that it leaves no GDI objects behind.
template <typename Work>
void ExpectNoGdiLeft(int nTimes, Work work)
{
    const int WARM_UP = 5;
    int nBefore = 0;
    for (int i = 0; i < nTimes + WARM_UP; ++i) {
        if (i == WARM_UP)
            nBefore = GdiCount();
        work();
    }
    EXPECT_NEAR(nBefore, GdiCount(), 2);
}
