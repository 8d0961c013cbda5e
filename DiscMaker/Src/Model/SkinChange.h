#pragma once

#include "Model/Skin.h"

// One value of a skin.
struct SkinPart
{
    enum Kind
    {
        Entry,    // m_nID of the language number m_nLanguage
        Picture,  // m_nID is a SkinPicture
        Icon,
        Version  // m_name
    };
    Kind m_kind = Entry;
    UINT m_nID = 0;
    size_t m_nLanguage = 0;
    CWideText m_name;

    bool operator==(const SkinPart &other) const
    {
        return m_kind == other.m_kind && m_nID == other.m_nID && m_nLanguage == other.m_nLanguage &&
               m_name == other.m_name;
    }
};

// What became of one value, to be undone and done again. Of a text only what is different is kept,
// and of bytes a pointer, so that a step costs the same however long the texts are.
class CSkinChange
{
public:
    // Gives a part of `skin` a new value. A null text: the entry goes.
    CSkinChange(CSkin &skin, const SkinPart &part, const CWideText *pText);
    CSkinChange(CSkin &skin, const SkinPart &part, const CBlob &blob);

    // The skin must be as it was when the change was made, or as it was afterwards.
    void Undo(CSkin &skin) const;
    void Redo(CSkin &skin) const;
    // Makes one change of this one and the one that followed it, for the same part of `skin` as it
    // is now.
    void Join(const CSkin &skin, const CSkinChange &next);

    const SkinPart &Part() const { return m_part; }
    bool IsNothing() const;

private:
    void Put(CSkin &skin, bool bHas, const std::vector<WCHAR> &from,
             const std::vector<WCHAR> &to) const;
    void KeepDifference(const CWideText &before, const CWideText &after);

    SkinPart m_part;
    bool m_bHad = false;  // there was an entry; there is one
    bool m_bHas = false;
    size_t m_nStart = 0;       // of what is different
    std::vector<WCHAR> m_cut;  // what was there
    std::vector<WCHAR> m_put;  // what is there
    CBlob m_before;
    CBlob m_after;
};
