#pragma once

#include "Script/ScriptLexer.h"
#include "Script/SkinScript.h"

// Reads a script from its first word to its last, statement by statement.
class CSkinScriptReader
{
public:
    CSkinScriptReader(CSkinScript &script, const CCUString &sWhere, const CCUString &sFolder,
                      CProblems &problems);
    // False when there were errors.
    bool Read();

private:
    // Words.
    void Advance();
    bool Is(const char *pszWord) const;
    bool IsCharacter(char ch) const;
    bool IsBegin() const { return Is("BEGIN") || IsCharacter('{'); }
    bool IsEnd() const { return Is("END") || IsCharacter('}'); }
    bool AtEnd() const { return m_token.m_kind == TokenEnd; }
    CCUString Chars(size_t nStart, size_t nEnd) const;
    CCUString Word() const { return Chars(m_token.m_nStart, m_token.m_nEnd); }

    // Problems.
    void Add(ProblemWeight weight, UINT nLine, const CCUString &sWhat, const CCUString &sEffect);
    void Error(UINT nLine, const CCUString &sWhat);

    // Lines that begin with #.
    void Directive(const CScriptToken &token);
    void Condition(const CCUString &sWord, const CCUString &sRest, UINT nLine);
    void SkipGroup();
    void Define(const CCUString &sRest);
    void Include(const CCUString &sRest, UINT nLine);
    void Pragma(const CCUString &sRest, UINT nLine);
    void SetCodePage(UINT nCodePage);

    // Statements.
    void Statement();
    void Language(LANGID &nLanguage);
    void StringTable();
    bool TableOptions(CScriptTable &table);
    bool StringEntry(CScriptTable &table);
    void Resource();
    void Picture(bool bIcon, UINT nId, const CScriptToken &name);
    void Version();
    void VersionBlock(bool bStrings, int nDepth);
    void VersionValue(bool bStrings);
    void SkipResource(const CCUString &sType, UINT nLine);
    void SkipBlock(UINT nLine);
    void EndBlock(UINT nLine);
    void MissingEnd(UINT nLine);
    void SkipLine();

    // Parts of statements.
    bool Number(long &nValue);
    bool ReadText(CScriptEntry &entry);
    void CheckLiteral(const CScriptToken &token);
    bool IsMemoryFlag() const;
    CCUString FileNameOf(const CScriptToken &token) const;

    CSkinScript &m_script;
    CCUString m_sWhere;
    CCUString m_sFolder;
    CProblems &m_problems;
    CScriptLexer m_lexer;
    CScriptToken m_token;
    CScriptToken m_last;  // the one before
    UINT m_nCodePage;
    LANGID m_nLanguage;
    bool m_bCodePageSaid;
    bool m_bPragma = false;  // said so that every compiler knows it
    bool m_bEncodingTold;
    int m_nErrors;
    // One for each #if that is open: whether one of its groups has been read.
    std::vector<bool> m_conditions;
};
