#pragma once

#include "CU/String.h"
#include "Script/ScriptText.h"

enum ScriptTokenKind
{
    TokenEnd,
    TokenWord,
    TokenNumber,
    TokenText,       // "..." or L"..."
    TokenDirective,  // a whole line that begins with #
    TokenOther       // one character
};

struct CScriptToken
{
    ScriptTokenKind m_kind = TokenEnd;
    size_t m_nStart = 0;
    size_t m_nEnd = 0;
    UINT m_nLine = 0;  // from 1
};

// Cuts a script into words. Comments and white space are between them.
class CScriptLexer
{
public:
    explicit CScriptLexer(const CScriptText &text);

    CScriptToken Next();
    // The name of a file without quotation marks begins with this word and goes on to the next
    // white space.
    CScriptToken FileName(const CScriptToken &first);
    // The next directive: what is between is passed over.
    CScriptToken NextDirective();
    // A trail byte of some code pages looks like a backslash.
    void SetCodePage(UINT nCodePage) { m_nCodePage = nCodePage; }

    // What is wrong with the words so far, for once; null when nothing is.
    const char *TakeFault();

private:
    bool SkipSpace();
    void SkipLineEnd();
    bool SkipComment();
    void SkipText();
    void SkipDirective();
    size_t SplicedAt(size_t nPlace) const;
    bool IsPair(size_t nPlace) const;
    CScriptToken Token(ScriptTokenKind kind, size_t nStart, UINT nLine) const;

    const CScriptText &m_text;
    size_t m_nPlace;
    UINT m_nLine;
    UINT m_nCodePage;
    bool m_bLineStart;  // nothing but white space is before this in its line
    const char *m_pszFault;
};

bool IsWordStart(WCHAR ch);
bool IsDigit(WCHAR ch);
