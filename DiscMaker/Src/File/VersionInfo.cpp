// A version resource is a tree of blocks: length, length of the value, whether that is text, key,
// value, blocks below; key, value and each block at multiples of 4.

#include "File/VersionInfo.h"

#include <set>

namespace {

const size_t ALIGNMENT = 4;
const size_t HEAD_SIZE = 6;
const int DEEPEST = 8;

struct CVersionBlock
{
    bool m_bText = false;
    CWideText m_sKey;
    std::vector<BYTE> m_value;
    std::vector<CVersionBlock> m_children;
};

bool IsKey(const CVersionBlock &block, const char *pszKey)
{
    return block.m_sKey == CWideText(pszKey, CP_ACP);
}

bool ReadBlock(const CByteView &data, int nDepth, CVersionBlock &block)
{
    const size_t nEnd = data.Word(0);
    if (nDepth > DEEPEST || nEnd < HEAD_SIZE || nEnd > data.Size())
        return false;
    block.m_bText = data.Word(4) != 0;
    size_t nOffset = HEAD_SIZE;
    for (WCHAR ch; nOffset < nEnd && (ch = data.Word(nOffset)) != 0; nOffset += 2)
        block.m_sKey.Append(ch);
    nOffset = AlignUp(nOffset + 2, ALIGNMENT);
    // Some compilers count a text's value in characters, some in bytes.
    const size_t nValue = data.Word(2) * (block.m_bText ? 2U : 1U);
    block.m_value = data.Part(0, nEnd).Part(nOffset, nValue).Copy();
    for (nOffset = AlignUp(nOffset + block.m_value.size(), ALIGNMENT); nOffset < nEnd;) {
        block.m_children.emplace_back();
        if (!ReadBlock(data.Part(0, nEnd).From(nOffset), nDepth + 1, block.m_children.back()))
            return false;
        nOffset = AlignUp(nOffset + data.Word(nOffset), ALIGNMENT);
    }
    return true;
}

// At the end of the bytes, which are aligned.
void WriteBlock(const CVersionBlock &block, std::vector<BYTE> &bytes)
{
    bytes.resize(AlignUp(bytes.size(), ALIGNMENT));
    const size_t nStart = bytes.size();
    AppendWord(bytes, 0);
    const size_t nValue = block.m_value.size() / (block.m_bText ? 2 : 1);
    AppendWord(bytes, static_cast<UINT>(nValue));
    AppendWord(bytes, block.m_bText ? 1 : 0);
    for (size_t i = 0; i < block.m_sKey.Length(); ++i)
        AppendWord(bytes, block.m_sKey.Data()[i]);
    AppendWord(bytes, 0);
    if (!block.m_value.empty())
        bytes.resize(AlignUp(bytes.size(), ALIGNMENT));
    Append(bytes, CByteView(block.m_value));
    for (const CVersionBlock &child : block.m_children)
        WriteBlock(child, bytes);
    PutWord(bytes, nStart, static_cast<UINT>(bytes.size() - nStart));
}

CVersionBlock *FindStrings(CVersionBlock &root)
{
    for (CVersionBlock &child : root.m_children) {
        if (IsKey(child, "StringFileInfo") && !child.m_children.empty())
            return &child.m_children.front();
    }
    return nullptr;
}

// Up to the first NUL.
CWideText TextOf(const CVersionBlock &block)
{
    const CByteView value(block.m_value);
    size_t nLength = 0;
    while (nLength * 2 < value.Size() && value.Word(nLength * 2) != 0)
        ++nLength;
    CWideText sText;
    for (size_t i = 0; i < nLength; ++i)
        sText.Append(value.Word(i * 2));
    return sText;
}

void SetText(CVersionBlock &block, const CWideText &sText)
{
    block.m_bText = true;
    block.m_value.clear();
    for (size_t i = 0; i < sText.Length(); ++i)
        AppendWord(block.m_value, sText.Data()[i]);
    AppendWord(block.m_value, 0);
}

CVersionBlock NewString(const CWideText &sKey, const CWideText &sText)
{
    CVersionBlock block;
    block.m_sKey = sKey;
    SetText(block, sText);
    return block;
}

void ReplaceStrings(CVersionBlock &table, const CVersionStrings &strings)
{
    std::vector<CVersionBlock> kept;
    std::set<CWideText> done;
    for (CVersionBlock &block : table.m_children) {
        const auto entry = strings.find(block.m_sKey);
        if (entry == strings.end() || !done.insert(block.m_sKey).second)
            continue;
        if (TextOf(block) != entry->second)
            SetText(block, entry->second);
        kept.push_back(block);
    }
    for (const auto &entry : strings) {
        if (done.insert(entry.first).second)
            kept.push_back(NewString(entry.first, entry.second));
    }
    table.m_children.swap(kept);
}

}  // namespace

bool ReadVersionStrings(const CByteView &data, CVersionStrings &strings)
{
    CVersionBlock root;
    if (!ReadBlock(data, 0, root))
        return false;
    if (const CVersionBlock *const pStrings = FindStrings(root)) {
        for (const CVersionBlock &block : pStrings->m_children)
            strings[block.m_sKey] = TextOf(block);
    }
    return true;
}

std::vector<BYTE> WriteVersionStrings(const CByteView &data, const CVersionStrings &strings)
{
    CVersionBlock root;
    std::vector<BYTE> bytes;
    CVersionBlock *pStrings = nullptr;
    if (!ReadBlock(data, 0, root) || (pStrings = FindStrings(root)) == nullptr)
        return bytes;
    ReplaceStrings(*pStrings, strings);
    WriteBlock(root, bytes);
    // The lengths are in 16 bits.
    if (bytes.size() > 0xFFFF)
        bytes.clear();
    return bytes;
}
