#include "Script/ScriptLiteral.h"

#include <stdio.h>

#include "Base/Utf8.h"

namespace {

const WCHAR LAST_ASCII = 0x7F;

int HexDigit(WCHAR ch)
{
    if (ch >= '0' && ch <= '9')
        return ch - '0';
    const int nLetter = (ch | 0x20) - 'a';
    return nLetter >= 0 && nLetter < 6 ? nLetter + 10 : -1;
}

// Reads one literal: bytes are gathered and converted together, since a character may have several.
class CLiteralReader
{
public:
    CLiteralReader(const CScriptText &script, size_t nStart, size_t nEnd, UINT nCodePage)
        : m_script(script),
          m_nPlace(nStart),
          m_nEnd(nEnd),
          m_nCodePage(nCodePage),
          m_bWide(script.At(nStart) == 'L')
    {
        m_nPlace += m_bWide ? 2 : 1;
        while (m_nPlace < m_nEnd && ReadCharacter()) {
        }
        Flush();
    }
    CWideText m_sText;

private:
    // False at the end.
    bool ReadCharacter()
    {
        const WCHAR ch = m_script.At(m_nPlace++);
        if (ch == '"') {
            if (m_nPlace >= m_nEnd || m_script.At(m_nPlace) != '"')
                return false;
            ++m_nPlace;
            Plain('"');
        } else if (ch == '\\' && m_nPlace < m_nEnd) {
            ReadEscape();
        } else {
            Plain(ch);
            if (!m_script.IsWide() && IsDBCSLeadByteEx(m_nCodePage, static_cast<BYTE>(ch)) &&
                m_nPlace < m_nEnd)
                Plain(m_script.At(m_nPlace++));
        }
        return true;
    }

    void ReadEscape()
    {
        const WCHAR ch = m_script.At(m_nPlace++);
        switch (ch) {
        // Resource compilers take the bell for a backspace.
        case 'a':
        case 'b': return Plain('\b');
        case 'f': return Plain('\f');
        case 'n': return Plain('\n');
        case 'r': return Plain('\r');
        case 't': return Plain('\t');
        case 'v': return Plain('\v');
        case '\\':
        case '"': return Plain(ch);
        case 'x':
        case 'X': return Number(16, m_bWide ? 4 : 2);
        case '\r':
            if (m_script.At(m_nPlace) == '\n')
                ++m_nPlace;
            return;
        case '\n': return;
        default: break;
        }
        if (ch >= '0' && ch <= '7') {
            --m_nPlace;
            return Number(8, 3);
        }
        Plain('\\');
        Plain(ch);
    }

    void Number(int nBase, int nDigits)
    {
        int nValue = 0;
        for (; nDigits > 0 && m_nPlace < m_nEnd; --nDigits) {
            const int nDigit = HexDigit(m_script.At(m_nPlace));
            if (nDigit < 0 || nDigit >= nBase)
                break;
            nValue = nValue * nBase + nDigit;
            ++m_nPlace;
        }
        if (m_bWide || m_script.IsWide()) {
            Flush();
            m_sText.Append(static_cast<WCHAR>(nValue));
        } else {
            m_bytes.push_back(static_cast<char>(nValue));
        }
    }

    void Plain(WCHAR ch)
    {
        if (m_script.IsWide())
            m_sText.Append(ch);
        else
            m_bytes.push_back(static_cast<char>(ch));
    }

    void Flush()
    {
        const int nBytes = static_cast<int>(m_bytes.size());
        const CWideText sText(CCUString(m_bytes.data(), nBytes), m_nCodePage);
        for (size_t i = 0; i < sText.Length(); ++i)
            m_sText.Append(sText.Data()[i]);
        m_bytes.clear();
    }

    const CScriptText &m_script;
    size_t m_nPlace;
    size_t m_nEnd;
    UINT m_nCodePage;
    bool m_bWide;
    std::vector<char> m_bytes;
};

void AppendNumber(CScriptChars &chars, const char *pszFormat, UINT nValue)
{
    char number[16] = "";
    _snprintf(number, sizeof number - 1, pszFormat, nValue);
    AppendAscii(chars, number);
}

void AppendEscaped(CScriptChars &chars, WCHAR ch)
{
    switch (ch) {
    case '"': return AppendAscii(chars, "\"\"");
    case '\\': return AppendAscii(chars, "\\\\");
    case '\n': return AppendAscii(chars, "\\n");
    case '\r': return AppendAscii(chars, "\\r");
    case '\t': return AppendAscii(chars, "\\t");
    default: break;
    }
    if (ch < ' ' || ch == LAST_ASCII)
        AppendNumber(chars, "\\%03o", ch);
    else
        chars.push_back(ch);
}

}  // namespace

bool IsUtf8(const CByteView &bytes, bool *pMany)
{
    bool bMany = false;
    const BYTE *p = bytes.Data();
    for (const BYTE *const pEnd = p + bytes.Size(); p < pEnd;) {
        const unsigned int nChar = CUTakeUtf8(p, pEnd);
        if (nChar >= CU_END_OF_CHARACTERS)
            return false;
        bMany = bMany || nChar > LAST_ASCII;
    }
    if (pMany)
        *pMany = bMany;
    return true;
}

CWideText DecodeLiteral(const CScriptText &script, size_t nStart, size_t nEnd, UINT nCodePage)
{
    return CLiteralReader(script, nStart, nEnd, nCodePage).m_sText;
}

CScriptChars EncodeLiteral(const CWideText &sText, bool bWideScript, UINT nCodePage)
{
    bool bLost = false;
    const CCUString sBytes = bWideScript ? CCUString() : sText.ToCodePage(nCodePage, &bLost);
    CScriptChars chars;
    AppendAscii(chars, bLost ? "L\"" : "\"");
    if (bWideScript || bLost) {
        for (size_t i = 0; i < sText.Length(); ++i) {
            const WCHAR ch = sText.Data()[i];
            // Some compilers take other characters of such a text for numbers of their bytes.
            if (bLost && ch > LAST_ASCII)
                AppendNumber(chars, "\\x%04X", ch);
            else
                AppendEscaped(chars, ch);
        }
    } else {
        for (int i = 0; i < sBytes.GetLength(); ++i) {
            const BYTE ch = static_cast<BYTE>(sBytes[i]);
            AppendEscaped(chars, ch);
            if (IsDBCSLeadByteEx(nCodePage, ch) && i + 1 < sBytes.GetLength())
                chars.push_back(static_cast<BYTE>(sBytes[++i]));
        }
    }
    chars.push_back('"');
    return chars;
}
