#pragma once

/// @file
/// Files of text.

#include "CU/Platform.h"
#include "CU/String.h"

/// A text, and how the file has it that it was read from: encoding and the ends of its lines. It is
/// written so again, so that a text that nobody has changed gives the same bytes, unless its lines
/// end in different ways. In memory it is as the system's edit controls have it, in the ANSI code
/// page, with "\r\n" between lines.
class CCUTextFile
{
public:
    /// How characters are written.
    enum Encoding
    {
        Ansi,      ///< in the ANSI code page; of a file also: nothing but ASCII
        Utf8,      ///< UTF-8
        Utf8Mark,  ///< UTF-8 behind the mark EF BB BF
        Utf16,     ///< two bytes each, the lower one first, behind the mark FF FE
        Utf16Big   ///< the same with the higher one first, behind the mark FE FF
    };
    /// What stands between lines.
    enum LineEnd
    {
        CrLf,   ///< "\r\n"; of a file also: there is one line alone
        Lf,     ///< "\n"
        Cr,     ///< "\r"
        Differ  ///< not always the same; written as CrLf
    };

    /// No text, ANSI, CrLf.
    CU_API CCUTextFile();

    /// Reads a file, of up to 128 MB. 1; or 0, with the system's error and everything as it was. A
    /// file without a mark is UTF-8 where all of it can be that, else ANSI.
    CU_API int Load(const char *pszPath);
    /// Writes the text beside the file, and puts it in the place of that when all is on the disk,
    /// with its attributes. 1; or 0, with the system's error, and what was there is as it was. A
    /// file that is marked as read-only, or that another program holds open, is not replaced.
    CU_API int Save(const char *pszPath) const;

    const CCUString &GetText() const { return m_sText; }  ///< "\r\n" between lines
    /// Of up to 256 MB; lines end in "\r\n".
    void SetText(const CCUString &sText) { m_sText = sText; }
    /// How the file had it that was read, and how the next one gets it.
    /// @{
    Encoding GetEncoding() const { return m_encoding; }
    void SetEncoding(Encoding encoding) { m_encoding = encoding; }
    LineEnd GetLineEnd() const { return m_lineEnd; }
    void SetLineEnd(LineEnd lineEnd) { m_lineEnd = lineEnd; }
    /// @}
    /// How many characters of the file the ANSI code page does not have: others, such as '?', stand
    /// for them in the text, and would take their place when it is saved.
    int GetLostCount() const { return m_nLost; }

private:
    void Decode(const CCUString &sBytes);
    CCUString Encode() const;

    CCUString m_sText;
    Encoding m_encoding;
    LineEnd m_lineEnd;
    int m_nLost;
};
