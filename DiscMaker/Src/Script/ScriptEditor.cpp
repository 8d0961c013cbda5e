#include "Script/ScriptEditor.h"

#include <stdio.h>

#include <algorithm>

#include "Script/ScriptLiteral.h"

namespace {

const char *const INDENT = "    ";

void AppendChars(CScriptChars &chars, const CScriptChars &more)
{
    chars.insert(chars.end(), more.begin(), more.end());
}

// The one that counts: the last.
const CScriptEntry *FindEntry(const std::vector<CScriptTable> &tables, LANGID nLanguage, UINT nId)
{
    const CScriptEntry *pFound = nullptr;
    for (const CScriptTable &table : tables) {
        for (const CScriptEntry &entry : table.m_entries) {
            if (table.m_nLanguage == nLanguage && entry.m_nID == nId)
                pFound = &entry;
        }
    }
    return pFound;
}

const CSkinTexts *FindLanguage(const std::vector<CSkinTexts> &all, LANGID nLanguage)
{
    for (const CSkinTexts &texts : all) {
        if (texts.m_nLanguage == nLanguage)
            return &texts;
    }
    return nullptr;
}

// The last one of the language; null when it has none.
const CScriptTable *FindTable(const std::vector<CScriptTable> &tables, LANGID nLanguage)
{
    const CScriptTable *pFound = nullptr;
    for (const CScriptTable &table : tables) {
        if (table.m_nLanguage == nLanguage)
            pFound = &table;
    }
    return pFound;
}

}  // namespace

void CScriptEditor::Replace(const CScriptRange &range, const CScriptChars &chars)
{
    m_edits.push_back(CEdit{range, chars});
}

void CScriptEditor::Insert(size_t nPlace, const CScriptChars &chars)
{
    Replace(CScriptRange{nPlace, nPlace}, chars);
}

CScriptChars CScriptEditor::Chars(size_t nStart, size_t nEnd) const
{
    CScriptChars chars;
    for (size_t i = nStart; i < nEnd; ++i)
        chars.push_back(m_script.Text().At(i));
    return chars;
}

CScriptChars CScriptEditor::Literal(const CWideText &sText, UINT nCodePage) const
{
    return EncodeLiteral(sText, m_script.Text().IsWide(), nCodePage);
}

void CScriptEditor::AppendLine(CScriptChars &chars, const char *psz) const
{
    AppendAscii(chars, psz);
    AppendAscii(chars, m_script.Text().NewLine());
}

size_t CScriptEditor::LineStart(size_t nPlace) const
{
    while (nPlace > m_script.Text().Start() && !m_script.Text().IsNewLine(nPlace - 1))
        --nPlace;
    return nPlace;
}

// The whole lines of a statement, with comments behind it. False when it shares them.
bool CScriptEditor::FindLines(const CScriptRange &statement, CScriptRange &lines) const
{
    const CScriptText &text = m_script.Text();
    lines.m_nStart = LineStart(statement.m_nStart);
    lines.m_nEnd = statement.m_nEnd;
    for (size_t i = lines.m_nStart; i < statement.m_nStart; ++i) {
        if (!text.IsSpace(i))
            return false;
    }
    bool bComment = false;
    for (; lines.m_nEnd < text.Length() && !text.IsNewLine(lines.m_nEnd); ++lines.m_nEnd) {
        bComment = bComment || (text.At(lines.m_nEnd) == '/' && text.At(lines.m_nEnd + 1) == '/');
        if (!bComment && !text.IsSpace(lines.m_nEnd))
            return false;
    }
    lines.m_nEnd += text.At(lines.m_nEnd) == '\r' && text.At(lines.m_nEnd + 1) == '\n' ? 2 : 1;
    return lines.m_nEnd <= text.Length();
}

void CScriptEditor::Remove(const CScriptRange &statement)
{
    CScriptRange lines;
    Replace(FindLines(statement, lines) ? lines : statement, CScriptChars());
}

// Another statement like it: on a line of its own if that one is.
void CScriptEditor::InsertBehind(const CScriptRange &statement, const CScriptChars &chars)
{
    CScriptRange lines;
    CScriptChars inserted;
    if (!FindLines(statement, lines)) {
        inserted.push_back(' ');
        AppendChars(inserted, chars);
        return Insert(statement.m_nEnd, inserted);
    }
    inserted = Chars(lines.m_nStart, statement.m_nStart);
    AppendChars(inserted, chars);
    AppendLine(inserted, "");
    Insert(lines.m_nEnd, inserted);
}

void CScriptEditor::SetTexts(const std::vector<CSkinTexts> &texts)
{
    for (const CScriptTable &table : m_script.Tables()) {
        const CSkinTexts *const pTexts = FindLanguage(texts, table.m_nLanguage);
        for (const CScriptEntry &entry : table.m_entries) {
            if (!pTexts || !pTexts->m_entries.count(entry.m_nID))
                Remove(entry.m_whole);
        }
    }
    for (const CSkinTexts &language : texts)
        SetLanguageTexts(language);
}

void CScriptEditor::SetLanguageTexts(const CSkinTexts &texts)
{
    const CScriptTable *const pTable = FindTable(m_script.Tables(), texts.m_nLanguage);
    if (!pTable)
        return AddTable(texts);
    for (const auto &text : texts.m_entries) {
        const CScriptEntry *const pEntry =
            FindEntry(m_script.Tables(), texts.m_nLanguage, text.first);
        if (!pEntry && !text.second.IsEmpty())
            AddEntry(*pTable, text.first, text.second);
        else if (pEntry && pEntry->m_sText != text.second)
            Replace(pEntry->m_text, Literal(text.second, pEntry->m_nCodePage));
    }
}

// `IDS_SETUP "text"`, with the name and what is between as in another entry of the table.
CScriptChars CScriptEditor::EntryChars(const CScriptEntry *pStyle, UINT nId,
                                       const CScriptChars &text) const
{
    CCUString sName = m_script.Symbols().NameOf("IDS_", nId);
    CScriptChars between(1, ' ');
    if (pStyle) {
        const WCHAR chFirst = m_script.Text().At(pStyle->m_name.m_nStart);
        if (chFirst >= '0' && chFirst <= '9')
            sName.Empty();
        const CScriptChars chars = Chars(pStyle->m_name.m_nEnd, pStyle->m_text.m_nStart);
        const bool bPlain = std::all_of(chars.begin(), chars.end(), [](WCHAR ch) {
            return ch == ' ' || ch == '\t' || ch == ',';
        });
        between = bPlain && !chars.empty() ? chars : between;
    }
    if (sName.IsEmpty())
        sName.Format("%u", nId);
    CScriptChars entry;
    AppendAscii(entry, sName);
    AppendChars(entry, between);
    AppendChars(entry, text);
    return entry;
}

void CScriptEditor::AddEntry(const CScriptTable &table, UINT nId, const CWideText &sText)
{
    const CScriptEntry *pBefore = nullptr;
    for (const CScriptEntry &entry : table.m_entries) {
        if (entry.m_nID < nId && (!pBefore || entry.m_nID >= pBefore->m_nID))
            pBefore = &entry;
    }
    const CScriptEntry *const pFirst = table.m_entries.empty() ? nullptr : &table.m_entries[0];
    const CScriptChars entry =
        EntryChars(pBefore ? pBefore : pFirst, nId, Literal(sText, table.m_nCodePage));
    if (pBefore)
        return InsertBehind(pBefore->m_whole, entry);
    // In front of all others, or alone between BEGIN and END.
    CScriptChars inserted;
    AppendLine(inserted, "");
    AppendAscii(inserted, INDENT);
    AppendChars(inserted, entry);
    bool bLineEnds = false;
    for (size_t i = table.m_body.m_nStart; i < table.m_body.m_nEnd && !bLineEnds; ++i) {
        bLineEnds = m_script.Text().IsNewLine(i);
        if (!m_script.Text().IsSpace(i))
            break;
    }
    if (!bLineEnds)
        AppendLine(inserted, "");
    Insert(table.m_body.m_nStart, inserted);
}

void CScriptEditor::AddTable(const CSkinTexts &texts)
{
    CScriptChars entries;
    for (const auto &text : texts.m_entries) {
        if (text.second.IsEmpty())
            continue;
        AppendAscii(entries, INDENT);
        AppendChars(entries,
                    EntryChars(nullptr, text.first, Literal(text.second, m_script.CodePage())));
        AppendLine(entries, "");
    }
    if (entries.empty())
        return;
    AppendLine(m_end, "");
    AppendLine(m_end, "STRINGTABLE");
    if (texts.m_nLanguage != m_script.Language()) {
        char line[32] = "";
        _snprintf(line, sizeof line - 1, "LANGUAGE 0x%02X, 0x%02X",
                  PRIMARYLANGID(texts.m_nLanguage), SUBLANGID(texts.m_nLanguage));
        AppendLine(m_end, line);
    }
    AppendLine(m_end, "BEGIN");
    AppendChars(m_end, entries);
    AppendLine(m_end, "END");
}

void CScriptEditor::SetVersion(const std::map<CWideText, CWideText> &texts)
{
    const CScriptTable *const pVersion = m_script.Version();
    if (!m_script.HasVersion())
        return AddVersion(texts);
    if (!pVersion)
        return;
    for (const CScriptEntry &entry : pVersion->m_entries) {
        const auto text = texts.find(entry.m_sKey);
        if (text == texts.end())
            Remove(entry.m_whole);
        else if (text->second != entry.m_sText)
            Replace(entry.m_text, Literal(text->second, entry.m_nCodePage));
    }
    const std::map<CWideText, CWideText> known = m_script.VersionTexts();
    for (const auto &text : texts) {
        if (!known.count(text.first))
            AddVersionText(text.first, text.second);
    }
}

void CScriptEditor::AddVersionText(const CWideText &sKey, const CWideText &sText)
{
    const CScriptTable &version = *m_script.Version();
    CScriptChars value;
    AppendAscii(value, "VALUE ");
    AppendChars(value, Literal(sKey, version.m_nCodePage));
    AppendAscii(value, ", ");
    AppendChars(value, Literal(sText, version.m_nCodePage));
    if (!version.m_entries.empty())
        return InsertBehind(version.m_entries.back().m_whole, value);
    value.insert(value.begin(), ' ');
    value.push_back(' ');
    Insert(version.m_body.m_nStart, value);
}

// The launcher's script has a version of its own for skins that do not define this name.
void CScriptEditor::AddVersion(const std::map<CWideText, CWideText> &texts)
{
    if (texts.empty())
        return;
    AppendLine(m_end, "");
    AppendLine(m_end, "#define SKIN_VERSION");
    AppendLine(m_end, "1 VERSIONINFO");
    AppendLine(m_end, "BEGIN");
    AppendLine(m_end, "    BLOCK \"StringFileInfo\"");
    AppendLine(m_end, "    BEGIN");
    AppendLine(m_end, "        BLOCK \"040904E4\"");
    AppendLine(m_end, "        BEGIN");
    for (const auto &text : texts) {
        AppendAscii(m_end, "            VALUE ");
        AppendChars(m_end, Literal(text.first, m_script.CodePage()));
        AppendAscii(m_end, ", ");
        AppendChars(m_end, Literal(text.second, m_script.CodePage()));
        AppendLine(m_end, "");
    }
    AppendLine(m_end, "        END");
    AppendLine(m_end, "    END");
    AppendLine(m_end, "    BLOCK \"VarFileInfo\"");
    AppendLine(m_end, "    BEGIN");
    AppendLine(m_end, "        VALUE \"Translation\", 0x409, 1252");
    AppendLine(m_end, "    END");
    AppendLine(m_end, "END");
}

void CScriptEditor::SetPicture(bool bIcon, UINT nId, const CCUString &sFile)
{
    const CScriptPicture *const pPicture = m_script.FindPicture(bIcon, nId);
    const CScriptChars name = Literal(CWideText(sFile, CP_ACP), m_script.CodePage());
    if (pPicture && sFile.IsEmpty())
        return Remove(pPicture->m_whole);
    if (pPicture)
        return Replace(pPicture->m_name, name);
    if (sFile.IsEmpty())
        return;
    CCUString sName = m_script.Symbols().NameOf(bIcon ? "IDI_" : "IDB_", nId);
    if (sName.IsEmpty())
        sName.Format("%u", nId);
    CScriptChars statement;
    AppendAscii(statement, sName + (bIcon ? " ICON " : " BITMAP "));
    AppendChars(statement, name);
    if (m_script.LastPicture())
        return InsertBehind(m_script.LastPicture()->m_whole, statement);
    AppendChars(m_end, statement);
    AppendLine(m_end, "");
}

std::vector<BYTE> CScriptEditor::Finish() const
{
    // From the end on, so that the places of the others stay. What is put in at a place comes in
    // front of what is replaced there.
    std::vector<CEdit> edits = m_edits;
    std::stable_sort(edits.begin(), edits.end(), [](const CEdit &a, const CEdit &b) {
        if (a.m_range.m_nStart != b.m_range.m_nStart)
            return a.m_range.m_nStart < b.m_range.m_nStart;
        return a.m_range.m_nStart == a.m_range.m_nEnd && b.m_range.m_nStart != b.m_range.m_nEnd;
    });
    CScriptText text = m_script.Text();
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit)
        text.Replace(edit->m_range.m_nStart, edit->m_range.m_nEnd, edit->m_chars);
    if (!m_end.empty()) {
        CScriptChars end;
        if (text.Length() > text.Start() && !text.IsNewLine(text.Length() - 1))
            AppendLine(end, "");
        AppendChars(end, m_end);
        text.Replace(text.Length(), text.Length(), end);
    }
    return text.Write();
}
