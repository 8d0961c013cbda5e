#pragma once

#include <stddef.h>

#include "CU/String.h"
#include "CUI/Platform.h"

// The SHA-256 sum (FIPS 180-4) of bytes that come piece by piece.
class CSha256
{
public:
    static const size_t SIZE = 32;

    CSha256();
    void Add(const void *p, size_t nSize);
    // Once, after the last piece: 64 digits in lower case.
    CCUString Finish();
    // Of bytes that are all there.
    static CCUString Of(const void *p, size_t nSize);

    // For measures and tests: only the code that runs on every processor.
    void UsePlainCode() { m_pAddBlocks = AddBlocks; }

private:
    static const size_t BLOCK = 64;
    typedef void FAddBlocks(DWORD *pState, const BYTE *p, size_t nBlocks);

    static void AddBlocks(DWORD *pState, const BYTE *p, size_t nBlocks);
    // With the processor's own instructions, some eight times as fast.
    static void AddBlocksBySha(DWORD *pState, const BYTE *p, size_t nBlocks);
    static bool HasShaInstructions();

    DWORD m_state[SIZE / sizeof(DWORD)];
    ULONGLONG m_nSize;
    BYTE m_block[BLOCK];  // the begun one
    FAddBlocks *m_pAddBlocks;
};
