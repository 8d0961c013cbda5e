#include "Script/ScriptLexer.h"

bool IsDigit(WCHAR ch)
{
    return ch >= '0' && ch <= '9';
}

bool IsWordStart(WCHAR ch)
{
    return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z') || ch == '_' || ch >= 0x80;
}

CScriptLexer::CScriptLexer(const CScriptText &text)
    : m_text(text),
      m_nPlace(text.Start()),
      m_nLine(1),
      m_nCodePage(0),
      m_bLineStart(true),
      m_pszFault(nullptr)
{
}

const char *CScriptLexer::TakeFault()
{
    const char *const pszFault = m_pszFault;
    m_pszFault = nullptr;
    return pszFault;
}

CScriptToken CScriptLexer::Token(ScriptTokenKind kind, size_t nStart, UINT nLine) const
{
    CScriptToken token;
    token.m_kind = kind;
    token.m_nStart = nStart;
    token.m_nEnd = m_nPlace;
    token.m_nLine = nLine;
    return token;
}

// A backslash at the end of a line joins it with the next one: how many characters that is, or 0.
size_t CScriptLexer::SplicedAt(size_t nPlace) const
{
    if (m_text.At(nPlace) != '\\' || !m_text.IsNewLine(nPlace + 1))
        return 0;
    return m_text.At(nPlace + 1) == '\r' && m_text.At(nPlace + 2) == '\n' ? 3 : 2;
}

void CScriptLexer::SkipLineEnd()
{
    if (m_text.At(m_nPlace) == '\r' && m_text.At(m_nPlace + 1) == '\n')
        ++m_nPlace;
    ++m_nPlace;
    ++m_nLine;
}

bool CScriptLexer::SkipComment()
{
    const WCHAR ch = m_text.At(m_nPlace + 1);
    if (m_text.At(m_nPlace) != '/' || (ch != '/' && ch != '*'))
        return false;
    m_nPlace += 2;
    while (m_nPlace < m_text.Length()) {
        if (ch == '*' && m_text.At(m_nPlace) == '*' && m_text.At(m_nPlace + 1) == '/') {
            m_nPlace += 2;
            return true;
        }
        if (!m_text.IsNewLine(m_nPlace))
            ++m_nPlace;
        else if (ch == '/')
            return true;
        else
            SkipLineEnd();
    }
    if (ch == '*')
        m_pszFault = "A comment that begins with /* is not ended by */.";
    return true;
}

bool CScriptLexer::SkipSpace()
{
    if (m_nPlace >= m_text.Length())
        return false;
    if (m_text.IsNewLine(m_nPlace)) {
        SkipLineEnd();
        m_bLineStart = true;
    } else if (m_text.IsSpace(m_nPlace)) {
        ++m_nPlace;
    } else if (const size_t nSplice = SplicedAt(m_nPlace)) {
        m_nPlace += nSplice;
        ++m_nLine;
    } else {
        return SkipComment();
    }
    return true;
}

// Whether a character of a text has a second one: an escape, "" or one of two bytes.
bool CScriptLexer::IsPair(size_t nPlace) const
{
    const WCHAR ch = m_text.At(nPlace);
    if (ch == '"')
        return m_text.At(nPlace + 1) == '"';
    const bool bLead =
        !m_text.IsWide() && IsDBCSLeadByteEx(m_nCodePage, static_cast<BYTE>(ch)) != FALSE;
    return (ch == '\\' || bLead) && !m_text.IsNewLine(nPlace + 1);
}

// From the first quotation mark on to behind the last one, or to the end of the line.
void CScriptLexer::SkipText()
{
    for (++m_nPlace; m_nPlace < m_text.Length() && !m_text.IsNewLine(m_nPlace); ++m_nPlace) {
        const WCHAR ch = m_text.At(m_nPlace);
        if (const size_t nSplice = SplicedAt(m_nPlace)) {
            m_nPlace += nSplice - 1;
            ++m_nLine;
        } else if (IsPair(m_nPlace)) {
            ++m_nPlace;
        } else if (ch == '"') {
            ++m_nPlace;
            return;
        }
    }
    if (m_nPlace > m_text.Length())
        m_nPlace = m_text.Length();
    m_pszFault =
        "A text has no quotation mark at its end (one behind a single \\ does not end it).";
}

void CScriptLexer::SkipDirective()
{
    while (m_nPlace < m_text.Length() && !m_text.IsNewLine(m_nPlace)) {
        if (const size_t nSplice = SplicedAt(m_nPlace)) {
            m_nPlace += nSplice;
            ++m_nLine;
        } else if (!SkipComment()) {
            ++m_nPlace;
        }
    }
}

CScriptToken CScriptLexer::Next()
{
    while (SkipSpace()) {
    }
    const bool bLineStart = m_bLineStart;
    m_bLineStart = false;
    const size_t nStart = m_nPlace;
    const UINT nLine = m_nLine;
    const WCHAR ch = m_text.At(nStart);
    if (nStart >= m_text.Length())
        return Token(TokenEnd, nStart, nLine);
    if (ch == '#' && bLineStart) {
        SkipDirective();
        return Token(TokenDirective, nStart, nLine);
    }
    if (ch == '"' || (ch == 'L' && m_text.At(nStart + 1) == '"')) {
        m_nPlace += ch == 'L' ? 1 : 0;
        SkipText();
        return Token(TokenText, nStart, nLine);
    }
    if (!IsWordStart(ch) && !IsDigit(ch)) {
        ++m_nPlace;
        return Token(TokenOther, nStart, nLine);
    }
    while (IsWordStart(m_text.At(m_nPlace)) || IsDigit(m_text.At(m_nPlace)))
        ++m_nPlace;
    return Token(IsDigit(ch) ? TokenNumber : TokenWord, nStart, nLine);
}

CScriptToken CScriptLexer::FileName(const CScriptToken &first)
{
    m_nPlace = first.m_nStart;
    while (m_nPlace < m_text.Length() && !m_text.IsSpace(m_nPlace))
        ++m_nPlace;
    return Token(TokenWord, first.m_nStart, first.m_nLine);
}

CScriptToken CScriptLexer::NextDirective()
{
    for (;;) {
        const CScriptToken token = Next();
        if (token.m_kind == TokenDirective || token.m_kind == TokenEnd) {
            return token;
        }
    }
}
