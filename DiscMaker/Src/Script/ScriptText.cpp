#include "Script/ScriptText.h"

namespace {

const WCHAR WIDE_MARK = 0xFEFF;
const WCHAR SWAPPED_MARK = 0xFFFE;
const size_t UTF8_MARK_SIZE = 3;

}  // namespace

bool CScriptText::Read(const CByteView &file)
{
    m_bWide = file.Word(0) == WIDE_MARK;
    const size_t nLength = m_bWide ? file.Size() / 2 : file.Size();
    m_chars.resize(nLength);
    for (size_t i = 0; i < nLength; ++i)
        m_chars[i] = m_bWide ? file.Word(i * 2) : file.Byte(i);
    m_tail = m_bWide ? file.From(nLength * 2).Copy() : std::vector<BYTE>();
    return file.Word(0) != SWAPPED_MARK;
}

std::vector<BYTE> CScriptText::Write() const
{
    std::vector<BYTE> bytes;
    bytes.reserve(m_chars.size() * (m_bWide ? 2 : 1) + m_tail.size());
    for (const WCHAR ch : m_chars) {
        bytes.push_back(static_cast<BYTE>(ch));
        if (m_bWide)
            bytes.push_back(static_cast<BYTE>(ch >> 8));
    }
    Append(bytes, CByteView(m_tail));
    return bytes;
}

bool CScriptText::HasUtf8Mark() const
{
    return !m_bWide && At(0) == 0xEF && At(1) == 0xBB && At(2) == 0xBF;
}

size_t CScriptText::Start() const
{
    if (m_bWide)
        return 1;
    return HasUtf8Mark() ? UTF8_MARK_SIZE : 0;
}

bool CScriptText::IsSpace(size_t nPlace) const
{
    const WCHAR ch = At(nPlace);
    return ch == ' ' || ch == '\t' || ch == '\f' || ch == '\v' || IsNewLine(nPlace) || ch == 0x1A;
}

void CScriptText::Replace(size_t nStart, size_t nEnd, const CScriptChars &chars)
{
    const auto start = m_chars.begin() + static_cast<ptrdiff_t>(nStart);
    m_chars.erase(start, m_chars.begin() + static_cast<ptrdiff_t>(nEnd));
    m_chars.insert(m_chars.begin() + static_cast<ptrdiff_t>(nStart), chars.begin(), chars.end());
}

const char *CScriptText::NewLine() const
{
    for (size_t i = 0; i < m_chars.size(); ++i) {
        if (IsNewLine(i))
            return m_chars[i] == '\r' ? "\r\n" : "\n";
    }
    return "\r\n";
}

void AppendAscii(CScriptChars &chars, const char *psz)
{
    for (; *psz; ++psz)
        chars.push_back(static_cast<BYTE>(*psz));
}
