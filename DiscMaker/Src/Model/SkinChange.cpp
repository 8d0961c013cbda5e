#include "Model/SkinChange.h"

#include <algorithm>

namespace {

// The text of a part; null: there is none.
const CWideText *FindText(const CSkin &skin, const SkinPart &part)
{
    if (part.m_kind == SkinPart::Version) {
        const auto found = skin.m_version.find(part.m_name);
        return found == skin.m_version.end() ? nullptr : &found->second;
    }
    if (part.m_nLanguage >= skin.m_texts.size())
        return nullptr;
    const auto &entries = skin.m_texts[part.m_nLanguage].m_entries;
    const auto found = entries.find(part.m_nID);
    return found == entries.end() ? nullptr : &found->second;
}

// A null text takes it away.
void SetText(CSkin &skin, const SkinPart &part, const CWideText *pText)
{
    if (part.m_kind == SkinPart::Version) {
        if (pText)
            skin.m_version[part.m_name] = *pText;
        else
            skin.m_version.erase(part.m_name);
        return;
    }
    if (part.m_nLanguage >= skin.m_texts.size())
        return;
    auto &entries = skin.m_texts[part.m_nLanguage].m_entries;
    if (pText)
        entries[part.m_nID] = *pText;
    else
        entries.erase(part.m_nID);
}

CBlob &Blob(CSkin &skin, const SkinPart &part)
{
    return part.m_kind == SkinPart::Icon ? skin.m_icon : skin.m_pictures[part.m_nID];
}

bool IsBlob(const SkinPart &part)
{
    return part.m_kind == SkinPart::Picture || part.m_kind == SkinPart::Icon;
}

CWideText TextOrEmpty(const CSkin &skin, const SkinPart &part)
{
    const CWideText *const pText = FindText(skin, part);
    return pText ? *pText : CWideText();
}

// `text` with `from`, which stands at nStart, replaced by `to`.
CWideText Replaced(const CWideText &text, size_t nStart, const std::vector<WCHAR> &from,
                   const std::vector<WCHAR> &to)
{
    std::vector<WCHAR> all(text.Data(), text.Data() + text.Length());
    const auto first = all.begin() + static_cast<ptrdiff_t>(nStart);
    const auto behind = all.erase(first, first + static_cast<ptrdiff_t>(from.size()));
    all.insert(behind, to.begin(), to.end());
    return CWideText(all.data(), all.size());
}

}  // namespace

CSkinChange::CSkinChange(CSkin &skin, const SkinPart &part, const CWideText *pText) : m_part(part)
{
    m_bHad = FindText(skin, part) != nullptr;
    m_bHas = pText != nullptr;
    KeepDifference(TextOrEmpty(skin, part), pText ? *pText : CWideText());
    SetText(skin, part, pText);
}

CSkinChange::CSkinChange(CSkin &skin, const SkinPart &part, const CBlob &blob)
    : m_part(part), m_before(Blob(skin, part)), m_after(blob)
{
    Blob(skin, part) = blob;
}

void CSkinChange::KeepDifference(const CWideText &before, const CWideText &after)
{
    const WCHAR *const pBefore = before.Data(), *const pAfter = after.Data();
    const size_t nShort = std::min(before.Length(), after.Length());
    m_nStart = 0;
    while (m_nStart < nShort && pBefore[m_nStart] == pAfter[m_nStart])
        ++m_nStart;
    size_t nBefore = before.Length(), nAfter = after.Length();
    while (nBefore > m_nStart && nAfter > m_nStart && pBefore[nBefore - 1] == pAfter[nAfter - 1]) {
        --nBefore;
        --nAfter;
    }
    m_cut.assign(pBefore + m_nStart, pBefore + nBefore);
    m_put.assign(pAfter + m_nStart, pAfter + nAfter);
}

void CSkinChange::Put(CSkin &skin, bool bHas, const std::vector<WCHAR> &from,
                      const std::vector<WCHAR> &to) const
{
    const CWideText text = Replaced(TextOrEmpty(skin, m_part), m_nStart, from, to);
    SetText(skin, m_part, bHas ? &text : nullptr);
}

void CSkinChange::Undo(CSkin &skin) const
{
    if (IsBlob(m_part))
        Blob(skin, m_part) = m_before;
    else
        Put(skin, m_bHad, m_put, m_cut);
}

void CSkinChange::Redo(CSkin &skin) const
{
    if (IsBlob(m_part))
        Blob(skin, m_part) = m_after;
    else
        Put(skin, m_bHas, m_cut, m_put);
}

void CSkinChange::Join(const CSkin &skin, const CSkinChange &next)
{
    m_after = next.m_after;
    if (IsBlob(m_part))
        return;
    const CWideText now = TextOrEmpty(skin, m_part);
    const CWideText between = Replaced(now, next.m_nStart, next.m_put, next.m_cut);
    KeepDifference(Replaced(between, m_nStart, m_put, m_cut), now);
    m_bHas = next.m_bHas;
}

bool CSkinChange::IsNothing() const
{
    return m_bHad == m_bHas && m_cut == m_put && m_before == m_after;
}
