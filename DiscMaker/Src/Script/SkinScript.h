#pragma once

#include <map>

#include "Model/Problem.h"
#include "Model/Skin.h"
#include "Script/ScriptSymbols.h"
#include "Script/ScriptText.h"

// A part of a script's characters.
struct CScriptRange
{
    size_t m_nStart;
    size_t m_nEnd;
};

// One entry of a string table, or of the version's texts.
struct CScriptEntry
{
    UINT m_nID;            // 0 in the version
    CWideText m_sKey;      // the version's name for it; empty in a string table
    CScriptRange m_whole;  // from the id, or VALUE, to the end of the text
    CScriptRange m_text;   // all adjacent literals
    CScriptRange m_name;   // the id
    UINT m_nLine;
    UINT m_nCodePage;
    CWideText m_sText;
};

// A STRINGTABLE block, or the first table of the version's texts.
struct CScriptTable
{
    LANGID m_nLanguage;
    CScriptRange m_body;  // between BEGIN and END
    UINT m_nCodePage;     // as it is at END
    std::vector<CScriptEntry> m_entries;
};

// A statement that names a picture's file.
struct CScriptPicture
{
    bool m_bIcon;
    UINT m_nID;
    UINT m_nLine;
    CScriptRange m_whole;
    CScriptRange m_name;  // with quotation marks, if there are any
    CCUString m_sFile;    // with backslashes
};

// What a skin's resource script says, and where.
class CSkinScript
{
public:
    // False when a resource compiler would refuse it; sWhere is what problems call it. #include
    // lines give the names that headers beside the script define: sFolder is where they are; empty:
    // none.
    bool Read(const CByteView &file, const CCUString &sWhere, const CCUString &sFolder,
              CProblems &problems);

    const CScriptText &Text() const { return m_text; }
    const CScriptSymbols &Symbols() const { return m_symbols; }
    const std::vector<CScriptTable> &Tables() const { return m_tables; }
    // Whether it has version information, and the texts of that: null when it has none.
    bool HasVersion() const { return m_bVersion; }
    const CScriptTable *Version() const
    {
        return m_version.m_body.m_nStart != 0 ? &m_version : nullptr;
    }
    // The first statement for that resource; null when there is none.
    const CScriptPicture *FindPicture(bool bIcon, UINT nId) const
    {
        for (const CScriptPicture &picture : m_pictures) {
            if (picture.m_bIcon == bIcon && picture.m_nID == nId)
                return &picture;
        }
        return nullptr;
    }
    // How many picture statements name a file.
    int CountUses(const CCUString &sFile) const;
    // Names of headers beside the script.
    const std::vector<CCUString> &Headers() const { return m_headers; }
    // The last statement about a picture; null when there is none.
    const CScriptPicture *LastPicture() const
    {
        return m_pictures.empty() ? nullptr : &m_pictures.back();
    }
    // What holds for statements at its end.
    UINT CodePage() const { return m_nCodePage; }
    LANGID Language() const { return m_nLanguage; }

    // The string tables as the launcher would have them: one a language, the last text of an id.
    std::vector<CSkinTexts> Texts() const;
    std::map<CWideText, CWideText> VersionTexts() const;

private:
    friend class CSkinScriptReader;

    CScriptText m_text;
    CScriptSymbols m_symbols;
    std::vector<CScriptTable> m_tables;
    std::vector<CScriptPicture> m_pictures;
    std::vector<CCUString> m_headers;
    CScriptTable m_version = {};  // its body begins at 0 when there is none
    bool m_bVersion = false;
    UINT m_nCodePage = 0;
    LANGID m_nLanguage = 0;
};
