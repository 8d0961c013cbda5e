#pragma once

#include "Script/SkinScript.h"

// Changes a script: what is asked for, in the style of what is around it, and nothing else.
class CScriptEditor
{
public:
    explicit CScriptEditor(const CSkinScript &script) : m_script(script) {}

    // The string tables as they shall be.
    void SetTexts(const std::vector<CSkinTexts> &texts);
    // Version information without a table of texts stays as it is.
    void SetVersion(const std::map<CWideText, CWideText> &texts);
    // The file of a picture; empty: the script names none for it.
    void SetPicture(bool bIcon, UINT nId, const CCUString &sFile);

    // The script's file with all that.
    std::vector<BYTE> Finish() const;

private:
    struct CEdit
    {
        CScriptRange m_range;
        CScriptChars m_chars;
    };

    void SetLanguageTexts(const CSkinTexts &texts);
    void AddEntry(const CScriptTable &table, UINT nId, const CWideText &sText);
    void AddTable(const CSkinTexts &texts);
    void AddVersion(const std::map<CWideText, CWideText> &texts);
    void AddVersionText(const CWideText &sKey, const CWideText &sText);
    void Replace(const CScriptRange &range, const CScriptChars &chars);
    void Insert(size_t nPlace, const CScriptChars &chars);
    void InsertBehind(const CScriptRange &statement, const CScriptChars &chars);
    void Remove(const CScriptRange &statement);
    bool FindLines(const CScriptRange &statement, CScriptRange &lines) const;
    size_t LineStart(size_t nPlace) const;
    CScriptChars Chars(size_t nStart, size_t nEnd) const;
    CScriptChars Literal(const CWideText &sText, UINT nCodePage) const;
    CScriptChars EntryChars(const CScriptEntry *pStyle, UINT nId, const CScriptChars &text) const;
    void AppendLine(CScriptChars &chars, const char *psz) const;

    const CSkinScript &m_script;
    std::vector<CEdit> m_edits;
    CScriptChars m_end;  // goes behind the script
};
