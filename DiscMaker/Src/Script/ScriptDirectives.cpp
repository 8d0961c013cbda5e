// The lines of a script that begin with #.

#include "File/FileBytes.h"
#include "Script/SkinScriptReader.h"

namespace {

// Takes the first word off.
CCUString TakeWord(CCUString &sText)
{
    sText.TrimLeft();
    int nLength = 0;
    while (IsWordStart(static_cast<BYTE>(sText[nLength])) ||
           IsDigit(static_cast<BYTE>(sText[nLength])))
        ++nLength;
    const CCUString sWord = sText.Left(nLength);
    sText = sText.Mid(nLength);
    return sWord;
}

// The line as one: comments and what joins lines are taken out.
CCUString PlainLine(const CCUString &sLine)
{
    std::vector<char> plain;
    bool bText = false;
    for (int i = 0; i < sLine.GetLength(); ++i) {
        const char ch = sLine[i];
        bText = bText != (ch == '"');
        if (!bText && ch == '/' && sLine[i + 1] == '/')
            break;
        if (!bText && ch == '/' && sLine[i + 1] == '*') {
            const int nEnd = sLine.Mid(i + 2).Find("*/");
            i = nEnd < 0 ? sLine.GetLength() : i + 2 + nEnd + 1;
            plain.push_back(' ');
        } else if (ch != '\r' && ch != '\n' && !(ch == '\\' && strchr("\r\n", sLine[i + 1]))) {
            plain.push_back(ch);
        }
    }
    CCUString sPlain(plain.data(), static_cast<int>(plain.size()));
    sPlain.TrimRight();
    return sPlain;
}

}  // namespace

void CSkinScriptReader::Directive(const CScriptToken &token)
{
    CCUString sRest = PlainLine(Chars(token.m_nStart + 1, token.m_nEnd));
    const CCUString sWord = TakeWord(sRest);
    sRest.TrimLeft();
    if (sWord == "define")
        Define(sRest);
    else if (sWord == "undef")
        m_script.m_symbols.Undefine(sRest);
    else if (sWord == "include")
        Include(sRest, token.m_nLine);
    else if (sWord == "pragma")
        Pragma(sRest, token.m_nLine);
    else if (sWord == "error")
        Error(token.m_nLine, "#error: " + sRest);
    else if (!sWord.IsEmpty())
        Condition(sWord, sRest, token.m_nLine);
}

void CSkinScriptReader::Define(const CCUString &sRest)
{
    CCUString sMeaning = sRest;
    const CCUString sName = TakeWord(sMeaning);
    m_script.m_symbols.Define(sName, sMeaning);
}

void CSkinScriptReader::Condition(const CCUString &sWord, const CCUString &sRest, UINT nLine)
{
    const bool bDefined = m_script.m_symbols.IsDefined(sRest);
    long nValue = 0;
    if (sWord == "if" || sWord == "ifdef" || sWord == "ifndef") {
        if (sWord == "ifdef")
            nValue = bDefined;
        else if (sWord == "ifndef")
            nValue = !bDefined;
        else if (!m_script.m_symbols.Evaluate(sRest, true, nValue))
            Add(ProblemNote, nLine, "This #if is not understood here.",
                "what it holds is not read");
        m_conditions.push_back(nValue != 0);
        if (!nValue)
            SkipGroup();
    } else if (m_conditions.empty()) {
        Error(nLine, "#" + sWord + " is not expected here.");
    } else if (sWord == "else" || sWord == "elif") {
        // Here the group before it was read.
        SkipGroup();
    } else if (sWord == "endif") {
        m_conditions.pop_back();
    }
}

// Goes on behind the #else or #elif of the same #if whose group is to be read, or its #endif.
void CSkinScriptReader::SkipGroup()
{
    for (int nDepth = 0;;) {
        const CScriptToken token = m_lexer.NextDirective();
        m_lexer.TakeFault();
        if (token.m_kind == TokenEnd)
            return;
        CCUString sRest = PlainLine(Chars(token.m_nStart + 1, token.m_nEnd));
        const CCUString sWord = TakeWord(sRest);
        if (sWord == "if" || sWord == "ifdef" || sWord == "ifndef")
            ++nDepth;
        if (nDepth > 0) {
            nDepth -= sWord == "endif" ? 1 : 0;
            continue;
        }
        if (sWord == "endif")
            return m_conditions.pop_back();
        long nValue = 0;
        const bool bRead =
            sWord == "else" ||
            (sWord == "elif" && m_script.m_symbols.Evaluate(sRest, true, nValue) && nValue != 0);
        if (bRead && !m_conditions.back()) {
            m_conditions.back() = true;
            return;
        }
    }
}

// Of a header only the numbers count that it gives names to.
void CSkinScriptReader::Include(const CCUString &sRest, UINT nLine)
{
    const int nEnd = sRest.Mid(1).Find('"');
    const CCUString sName = sRest.Mid(1, nEnd < 0 ? 0 : nEnd);
    if (sRest[0] != '"' || sName.IsEmpty() || m_sFolder.IsEmpty())
        return;
    const CBlob bytes = ReadFileBytes(JoinPath(m_sFolder, sName));
    if (!bytes) {
        if (sName.CompareNoCase("Resource.h") != 0)
            Add(ProblemNote, nLine, "\"" + sName + "\" is not beside the script.",
                "the names in it are not known");
        return;
    }
    m_script.m_headers.push_back(sName);
    if (sName.Right(2).CompareNoCase(".h") != 0)
        Add(ProblemNote, nLine, "Of \"" + sName + "\" only #define lines are read.",
            "its pictures and texts are not shown here");
    CScriptText header;
    if (!header.Read(CByteView(*bytes)))
        return;
    CScriptLexer lexer(header);
    for (CScriptToken token = lexer.NextDirective(); token.m_kind != TokenEnd;
         token = lexer.NextDirective())
    {
        std::vector<char> chars;
        for (size_t i = token.m_nStart + 1; i < token.m_nEnd; ++i)
            chars.push_back(static_cast<char>(header.At(i)));
        CCUString sLine = PlainLine(CCUString(chars.data(), static_cast<int>(chars.size())));
        if (TakeWord(sLine) == "define")
            Define(sLine);
    }
}

void CSkinScriptReader::Pragma(const CCUString &sRest, UINT nLine)
{
    CCUString sText = sRest;
    if (TakeWord(sText) != "code_page")
        return;
    sText.TrimLeft();
    long nCodePage = 0;
    if (sText[0] != '(' || !m_script.m_symbols.Evaluate(sText, false, nCodePage))
        return Error(nLine, "The code page is not understood: #pragma code_page(65001), say.");
    if (!IsValidCodePage(static_cast<UINT>(nCodePage)))
        return Error(nLine, "This system does not have the code page of the script.");
    SetCodePage(static_cast<UINT>(nCodePage));
    m_bCodePageSaid = m_bPragma = true;
}
