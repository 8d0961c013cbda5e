#include "Script/SkinScriptReader.h"

#include "Model/IsAmong.h"
#include "Script/ScriptLiteral.h"

namespace {

const UINT DEFAULT_CODE_PAGE = 1252;
const int MOST_ERRORS = 20;
const int DEEPEST_BLOCK = 8;

const char *const MEMORY_FLAGS[] = {"PRELOAD", "LOADONCALL", "FIXED",  "MOVEABLE", "DISCARDABLE",
                                    "PURE",    "IMPURE",     "SHARED", "NONSHARED"};
// These have their lines and a block; all others a file's name or a block.
const char *const BLOCK_TYPES[] = {"DIALOG", "DIALOGEX",     "MENU",
                                   "MENUEX", "ACCELERATORS", "TOOLBAR"};
// After a number these begin another statement, so that an END is missing.
const char *const FILE_TYPES[] = {"BITMAP", "ICON", "CURSOR", "FONT", "RCDATA", "VERSIONINFO"};

// Some scripts write the NUL at a text's end too.
CWideText UpToNul(const CWideText &sText)
{
    size_t nLength = 0;
    while (nLength < sText.Length() && sText.Data()[nLength] != 0)
        ++nLength;
    return CWideText(sText.Data(), nLength);
}

CCUString Quoted(const CCUString &sText)
{
    return CCUString("\"") + sText.Left(40) + "\"";
}

}  // namespace

CSkinScriptReader::CSkinScriptReader(CSkinScript &script, const CCUString &sWhere,
                                     const CCUString &sFolder, CProblems &problems)
    : m_script(script),
      m_sWhere(sWhere),
      m_sFolder(sFolder),
      m_problems(problems),
      m_lexer(script.m_text),
      m_nCodePage(DEFAULT_CODE_PAGE),
      m_nLanguage(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US)),
      m_bCodePageSaid(false),
      m_bEncodingTold(false),
      m_nErrors(0)
{
    SetCodePage(script.m_text.HasUtf8Mark() ? CP_UTF8 : DEFAULT_CODE_PAGE);
}

bool CSkinScriptReader::Read()
{
    if (m_script.m_text.HasUtf8Mark() || m_script.m_text.IsWide())
        m_bCodePageSaid = true;
    for (Advance(); !AtEnd() && m_nErrors < MOST_ERRORS;)
        Statement();
    if (!m_conditions.empty())
        Error(m_token.m_nLine, "An #if is not ended by #endif.");
    if (m_script.m_text.HasUtf8Mark() && !m_bPragma)
        m_problems.push_back(
            {ProblemWarning, 0, m_sWhere,
             "The file says by its first three bytes that it is UTF-8, which not every "
             "resource compiler knows. Add #pragma code_page(65001).",
             "a compiler may take umlauts and the like for other characters"});
    m_script.m_nCodePage = m_nCodePage;
    m_script.m_nLanguage = m_nLanguage;
    return m_nErrors == 0;
}

// The next word; lines that begin with # are obeyed on the way.
void CSkinScriptReader::Advance()
{
    m_last = m_token;
    for (m_token = m_lexer.Next(); m_token.m_kind == TokenDirective; m_token = m_lexer.Next())
        Directive(CScriptToken(m_token));
    if (const char *const pszFault = m_lexer.TakeFault())
        Error(m_token.m_nLine, pszFault);
    if (m_nErrors >= MOST_ERRORS)
        m_token.m_kind = TokenEnd;
}

bool CSkinScriptReader::Is(const char *pszWord) const
{
    return m_token.m_kind == TokenWord && Word().CompareNoCase(pszWord) == 0;
}

bool CSkinScriptReader::IsCharacter(char ch) const
{
    return m_token.m_kind == TokenOther &&
           m_script.m_text.At(m_token.m_nStart) == static_cast<BYTE>(ch);
}

CCUString CSkinScriptReader::Chars(size_t nStart, size_t nEnd) const
{
    CCUString sChars;
    const int nLength = static_cast<int>(nEnd - nStart);
    char *const pszChars = sChars.GetBufferSetLength(nLength);
    for (int i = 0; i < nLength; ++i) {
        const WCHAR ch = m_script.m_text.At(nStart + static_cast<size_t>(i));
        pszChars[i] = ch != 0 && ch <= 0xFF ? static_cast<char>(ch) : '?';
    }
    return sChars;
}

void CSkinScriptReader::Add(ProblemWeight weight, UINT nLine, const CCUString &sWhat,
                            const CCUString &sEffect)
{
    CCUString sWhere;
    sWhere.Format("%s:%u", m_sWhere.GetString(), nLine);
    m_problems.push_back(CProblem{weight, 0, sWhere, sWhat, sEffect});
}

void CSkinScriptReader::Error(UINT nLine, const CCUString &sWhat)
{
    ++m_nErrors;
    Add(ProblemError, nLine, sWhat, "the skin cannot be opened");
}

void CSkinScriptReader::SetCodePage(UINT nCodePage)
{
    m_nCodePage = nCodePage;
    m_lexer.SetCodePage(nCodePage);
}

void CSkinScriptReader::Statement()
{
    if (Is("LANGUAGE")) {
        Advance();
        Language(m_nLanguage);
    } else if (Is("STRINGTABLE")) {
        StringTable();
    } else if (m_token.m_kind == TokenWord || m_token.m_kind == TokenNumber ||
               m_token.m_kind == TokenText || IsCharacter('('))
    {
        Resource();
    } else {
        Error(m_token.m_nLine, Quoted(Word()) + " is not expected here.");
        SkipLine();
    }
}

void CSkinScriptReader::SkipLine()
{
    for (const UINT nLine = m_token.m_nLine; !AtEnd() && m_token.m_nLine == nLine;)
        Advance();
}

// "LANG_GERMAN, SUBLANG_GERMAN", behind the word LANGUAGE.
void CSkinScriptReader::Language(LANGID &nLanguage)
{
    const UINT nLine = m_token.m_nLine;
    long nMain = 0;
    long nSub = 0;
    if (!Number(nMain))
        return;
    if (!IsCharacter(',')) {
        Error(nLine, "The comma is missing behind the language.");
        return SkipLine();
    }
    Advance();
    if (Number(nSub))
        nLanguage = static_cast<LANGID>(MAKELANGID(nMain & 0x3FF, nSub & 0x3F));
}

// An expression of numbers and names: up to whatever cannot be a part of one.
bool CSkinScriptReader::Number(long &nValue)
{
    const UINT nLine = m_token.m_nLine;
    CCUString sExpression;
    int nBrackets = 0;
    bool bOperand = true;  // whether an operand has to come next
    for (; !AtEnd(); Advance()) {
        const bool bWord = m_token.m_kind == TokenNumber || m_token.m_kind == TokenWord;
        const char ch = m_token.m_kind == TokenOther ? Word()[0] : '\0';
        if (bWord ? !bOperand : ch == '(' ? !bOperand : ch == ')' ? nBrackets == 0 : !ch)
            break;
        if (!bWord && !strchr(bOperand ? "(~-" : ")+-*|&", ch))
            break;
        nBrackets += ch == '(' ? 1 : ch == ')' ? -1 : 0;
        bOperand = !bWord && ch != ')';
        sExpression += Word() + " ";
    }
    sExpression.TrimRight();
    if (m_script.m_symbols.Evaluate(sExpression, false, nValue))
        return true;
    Error(nLine, sExpression.IsEmpty() ? CCUString("A number or a name is missing here.")
                                       : Quoted(sExpression) + " is no known number.");
    return false;
}

bool CSkinScriptReader::IsMemoryFlag() const
{
    return m_token.m_kind == TokenWord && IsAmong(Word(), MEMORY_FLAGS);
}

// Up to behind BEGIN.
bool CSkinScriptReader::TableOptions(CScriptTable &table)
{
    const UINT nLine = m_token.m_nLine;
    while (!AtEnd() && !IsBegin()) {
        long nUnused = 0;
        const bool bNumber = Is("CHARACTERISTICS") || Is("VERSION");
        const bool bLanguage = Is("LANGUAGE");
        if (!bNumber && !bLanguage && !IsMemoryFlag()) {
            Error(nLine, "BEGIN is missing behind STRINGTABLE.");
            return false;
        }
        Advance();
        if (bLanguage)
            Language(table.m_nLanguage);
        else if (bNumber)
            Number(nUnused);
    }
    table.m_body.m_nStart = m_token.m_nEnd;
    Advance();
    return true;
}

void CSkinScriptReader::StringTable()
{
    const UINT nLine = m_token.m_nLine;
    CScriptTable table = {};
    table.m_nLanguage = m_nLanguage;
    Advance();
    if (!TableOptions(table))
        return;
    while (!AtEnd() && !IsEnd()) {
        if (Is("STRINGTABLE") || Is("LANGUAGE") || !StringEntry(table))
            break;
    }
    table.m_body.m_nEnd = m_token.m_nStart;
    table.m_nCodePage = m_nCodePage;
    m_script.m_tables.push_back(table);
    EndBlock(nLine);
}

// False when this is no entry, but what follows a table.
bool CSkinScriptReader::StringEntry(CScriptTable &table)
{
    CScriptEntry entry = {};
    entry.m_nLine = m_token.m_nLine;
    entry.m_name.m_nStart = entry.m_whole.m_nStart = m_token.m_nStart;
    long nId = 0;
    const bool bNumber = Number(nId);
    entry.m_name.m_nEnd = m_last.m_nEnd;
    if (m_token.m_kind == TokenWord && IsAmong(Word(), FILE_TYPES))
        return false;
    if (!bNumber)
        return SkipLine(), true;
    entry.m_nID = static_cast<UINT>(nId) & 0xFFFF;
    if (IsCharacter(','))
        Advance();
    if (!ReadText(entry)) {
        Error(entry.m_nLine, "A text in quotation marks is missing behind " +
                                 Quoted(Chars(entry.m_name.m_nStart, entry.m_name.m_nEnd)) + ".");
        if (m_token.m_nLine == entry.m_nLine)
            SkipLine();
        return true;
    }
    entry.m_whole.m_nEnd = entry.m_text.m_nEnd;
    table.m_entries.push_back(entry);
    return true;
}

// All literals that follow each other.
bool CSkinScriptReader::ReadText(CScriptEntry &entry)
{
    if (m_token.m_kind != TokenText)
        return false;
    entry.m_text.m_nStart = m_token.m_nStart;
    entry.m_nCodePage = m_nCodePage;
    for (; m_token.m_kind == TokenText; Advance()) {
        CheckLiteral(m_token);
        const CWideText sText =
            DecodeLiteral(m_script.m_text, m_token.m_nStart, m_token.m_nEnd, m_nCodePage);
        for (size_t i = 0; i < sText.Length(); ++i)
            entry.m_sText.Append(sText.Data()[i]);
        entry.m_text.m_nEnd = m_token.m_nEnd;
    }
    return true;
}

// Whether its bytes are what the script says that they are.
void CSkinScriptReader::CheckLiteral(const CScriptToken &token)
{
    if (m_script.m_text.IsWide() || m_bEncodingTold)
        return;
    std::vector<BYTE> bytes;
    for (size_t i = token.m_nStart; i < token.m_nEnd; ++i)
        bytes.push_back(static_cast<BYTE>(m_script.m_text.At(i)));
    bool bMany = false;
    const bool bUtf8 = IsUtf8(CByteView(bytes), &bMany);
    if (m_nCodePage == CP_UTF8 && !bUtf8)
        Add(ProblemWarning, token.m_nLine,
            "The script says that it is in UTF-8, but this text is not.",
            "characters such as umlauts come out wrong");
    else if (!m_bCodePageSaid && bUtf8 && bMany)
        Add(ProblemWarning, token.m_nLine,
            "The script is in UTF-8, but does not say so: #pragma code_page(65001) is missing.",
            "characters such as umlauts come out wrong");
    else
        return;
    m_bEncodingTold = true;
}

// Whatever has a name and a type.
void CSkinScriptReader::Resource()
{
    const CScriptToken name = m_token;
    long nId = 0;
    // A name that is none for a number is the resource's own.
    bool bNumber = m_token.m_kind != TokenText;
    if (m_token.m_kind == TokenWord)
        bNumber = m_script.m_symbols.Find(Word(), nId);
    if (!bNumber)
        Advance();
    else if (!Number(nId))
        return;
    if (m_token.m_kind != TokenWord && m_token.m_kind != TokenNumber) {
        Error(name.m_nLine, Quoted(Chars(name.m_nStart, name.m_nEnd)) + " is not expected here.");
        return SkipLine();
    }
    const CCUString sType = Word();
    const UINT nLine = m_token.m_nLine;
    const UINT nResource = bNumber ? static_cast<UINT>(nId) & 0xFFFF : 0;
    if (Is("VERSIONINFO"))
        Version();
    else if (Is("BITMAP") || Is("ICON"))
        Picture(Is("ICON"), nResource, name);
    else
        SkipResource(sType, nLine);
}

void CSkinScriptReader::Picture(bool bIcon, UINT nId, const CScriptToken &name)
{
    const UINT nLine = m_token.m_nLine;
    for (Advance(); IsMemoryFlag();)
        Advance();
    if (IsBegin())
        return SkipResource(bIcon ? "ICON" : "BITMAP", nLine);
    if (m_token.m_kind != TokenText && (AtEnd() || m_token.m_nLine != nLine)) {
        Error(nLine, "The name of the picture's file is missing.");
        return;
    }
    if (m_token.m_kind != TokenText)
        m_token = m_lexer.FileName(m_token);
    CScriptPicture picture;
    picture.m_bIcon = bIcon;
    picture.m_nID = nId;
    picture.m_nLine = nLine;
    picture.m_whole = CScriptRange{name.m_nStart, m_token.m_nEnd};
    picture.m_name = CScriptRange{m_token.m_nStart, m_token.m_nEnd};
    picture.m_sFile = FileNameOf(m_token);
    Advance();
    if (nId == 0 || m_script.FindPicture(bIcon, nId))
        Add(ProblemNote, nLine, "This picture is not one that is shown here.", "it stays as it is");
    m_script.m_pictures.push_back(picture);
}

// Scripts for Windows double the backslashes of a path, or do not; others have slashes.
CCUString CSkinScriptReader::FileNameOf(const CScriptToken &token) const
{
    size_t nStart = token.m_nStart;
    size_t nEnd = token.m_nEnd;
    if (token.m_kind == TokenText) {
        nStart += m_script.m_text.At(nStart) == 'L' ? 2 : 1;
        nEnd -= nEnd > nStart ? 1 : 0;
    }
    CScriptChars chars;
    for (size_t i = nStart; i < nEnd; ++i) {
        const WCHAR ch = m_script.m_text.At(i) == '/' ? WCHAR('\\') : m_script.m_text.At(i);
        if (ch != '\\' || chars.empty() || chars.back() != '\\')
            chars.push_back(ch);
    }
    if (m_script.m_text.IsWide())
        return CWideText(chars.data(), chars.size()).ToCodePage(CP_ACP);
    CCUString sBytes;
    char *const pszBytes = sBytes.GetBufferSetLength(static_cast<int>(chars.size()));
    for (size_t i = 0; i < chars.size(); ++i)
        pszBytes[i] = static_cast<char>(chars[i]);
    return CWideText(sBytes, m_nCodePage).ToCodePage(CP_ACP);
}

// A resource that no skin needs.
void CSkinScriptReader::SkipResource(const CCUString &sType, UINT nLine)
{
    Add(ProblemNote, nLine, Quoted(sType) + " is nothing that is shown here.", "it stays as it is");
    const bool bBlock = IsAmong(sType, BLOCK_TYPES);
    if (!IsBegin())
        Advance();
    while (IsMemoryFlag())
        Advance();
    while (bBlock && !AtEnd() && !IsBegin())
        Advance();
    if (IsBegin())
        return SkipBlock(nLine);
    if (!AtEnd() && m_token.m_nLine == nLine && m_token.m_kind != TokenText)
        m_token = m_lexer.FileName(m_token);
    while (!AtEnd() && m_token.m_nLine == nLine)
        Advance();
    if (IsBegin())
        SkipBlock(nLine);
}

void CSkinScriptReader::EndBlock(UINT nLine)
{
    if (IsEnd())
        Advance();
    else
        MissingEnd(nLine);
}

// Whatever follows would be an error too.
void CSkinScriptReader::MissingEnd(UINT nLine)
{
    CCUString sWhat;
    sWhat.Format("The END of the block that begins in line %u is missing.", nLine);
    Error(m_token.m_nLine, sWhat);
    m_nErrors = MOST_ERRORS;
    m_token.m_kind = TokenEnd;
}

void CSkinScriptReader::SkipBlock(UINT nLine)
{
    int nDepth = 0;
    do {
        nDepth += IsBegin() ? 1 : IsEnd() ? -1 : 0;
        Advance();
    } while (nDepth > 0 && !AtEnd());
    if (nDepth > 0)
        MissingEnd(nLine);
}

void CSkinScriptReader::Version()
{
    const UINT nLine = m_token.m_nLine;
    while (!AtEnd() && !IsBegin())
        Advance();
    if (AtEnd())
        return Error(nLine, "BEGIN is missing behind VERSIONINFO.");
    m_script.m_bVersion = true;
    VersionBlock(false, 0);
}

// From BEGIN to behind its END. Texts are those of the first table in "StringFileInfo".
void CSkinScriptReader::VersionBlock(bool bStrings, int nDepth)
{
    const UINT nLine = m_token.m_nLine;
    const bool bTable = bStrings && nDepth == 2 && m_script.m_version.m_body.m_nStart == 0;
    if (bTable)
        m_script.m_version.m_body.m_nStart = m_token.m_nEnd;
    Advance();
    while (!AtEnd() && !IsEnd()) {
        if (Is("BLOCK") && nDepth < DEEPEST_BLOCK) {
            Advance();
            CScriptEntry key = {};
            if (!ReadText(key))
                Error(m_token.m_nLine, "The name of the BLOCK is missing.");
            const bool bBelow =
                nDepth == 0 ? key.m_sText == CWideText("StringFileInfo", CP_ACP) : bStrings;
            if (IsBegin())
                VersionBlock(bBelow, nDepth + 1);
        } else if (Is("VALUE")) {
            VersionValue(bTable);
        } else {
            Error(m_token.m_nLine, Quoted(Word()) + " is not expected here.");
            SkipLine();
        }
    }
    if (bTable) {
        m_script.m_version.m_body.m_nEnd = m_token.m_nStart;
        m_script.m_version.m_nCodePage = m_nCodePage;
    }
    EndBlock(nLine);
}

void CSkinScriptReader::VersionValue(bool bStrings)
{
    CScriptEntry entry = {};
    entry.m_nLine = m_token.m_nLine;
    entry.m_whole.m_nStart = m_token.m_nStart;
    Advance();
    entry.m_name.m_nStart = m_token.m_nStart;
    if (!ReadText(entry) || !IsCharacter(',')) {
        Error(entry.m_nLine, "VALUE is followed by a name in quotation marks and a comma.");
        return SkipLine();
    }
    entry.m_name.m_nEnd = m_last.m_nEnd;
    entry.m_sKey = UpToNul(entry.m_sText);
    entry.m_sText = CWideText();
    Advance();
    const bool bText = ReadText(entry);
    entry.m_sText = UpToNul(entry.m_sText);
    entry.m_whole.m_nEnd = entry.m_text.m_nEnd;
    const bool bWhole = bText && (IsEnd() || Is("VALUE"));
    if (bStrings && bWhole)
        m_script.m_version.m_entries.push_back(entry);
    else if (bStrings)
        Add(ProblemNote, entry.m_nLine, "This part of the version is not shown here.",
            "it stays as it is");
    while (!AtEnd() && !IsEnd() && !Is("VALUE") && !Is("BLOCK"))
        Advance();
}
