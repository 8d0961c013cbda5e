#pragma once

#include "File/ByteView.h"

typedef std::vector<WCHAR> CScriptChars;

// The characters of a resource script as its file has them: UTF-16, or bytes of a code page, which
// are not converted, so that whatever nobody edits is written as it was.
class CScriptText
{
public:
    // False for a form that resource compilers do not read either.
    bool Read(const CByteView &file);
    std::vector<BYTE> Write() const;

    bool IsWide() const { return m_bWide; }
    // It begins with the mark of UTF-8.
    bool HasUtf8Mark() const;
    size_t Length() const { return m_chars.size(); }
    // Where the first line begins, behind the mark of the form.
    size_t Start() const;
    // 0 behind the end.
    WCHAR At(size_t nPlace) const { return nPlace < m_chars.size() ? m_chars[nPlace] : WCHAR(0); }
    bool IsNewLine(size_t nPlace) const { return At(nPlace) == '\n' || At(nPlace) == '\r'; }
    bool IsSpace(size_t nPlace) const;
    // Takes out and puts in.
    void Replace(size_t nStart, size_t nEnd, const CScriptChars &chars);
    // "\r\n" or "\n", as the first line ends.
    const char *NewLine() const;

private:
    bool m_bWide = false;
    CScriptChars m_chars;
    std::vector<BYTE> m_tail;  // half a character at the end of the file
};

// Appends plain ASCII.
void AppendAscii(CScriptChars &chars, const char *psz);
