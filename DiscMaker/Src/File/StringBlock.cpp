#include "File/StringBlock.h"

bool ReadStringBlock(const CByteView &data, UINT nBlock, CStringEntries &entries)
{
    size_t nOffset = 0;
    for (UINT i = 0; i < STRING_BLOCK_ENTRIES; ++i) {
        const size_t nLength = data.Word(nOffset);
        if (!data.Has(nOffset, 2 + nLength * 2))
            return false;
        CWideText sText;
        for (size_t j = 0; j < nLength; ++j)
            sText.Append(data.Word(nOffset + 2 + j * 2));
        if (nLength > 0)
            entries[(nBlock - 1) * STRING_BLOCK_ENTRIES + i] = sText;
        nOffset += 2 + nLength * 2;
    }
    return true;
}

std::vector<BYTE> WriteStringBlock(UINT nBlock, const CStringEntries &entries)
{
    std::vector<BYTE> data;
    bool bEmpty = true;
    for (UINT i = 0; i < STRING_BLOCK_ENTRIES; ++i) {
        const auto entry = entries.find((nBlock - 1) * STRING_BLOCK_ENTRIES + i);
        const size_t nWhole = entry == entries.end() ? 0 : entry->second.Length();
        const size_t nLength = nWhole < STRING_LIMIT ? nWhole : STRING_LIMIT;
        AppendWord(data, static_cast<UINT>(nLength));
        for (size_t j = 0; j < nLength; ++j)
            AppendWord(data, entry->second.Data()[j]);
        bEmpty = bEmpty && nLength == 0;
    }
    if (bEmpty)
        data.clear();
    return data;
}
