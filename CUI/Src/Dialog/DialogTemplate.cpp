#include "CUI/DialogTemplate.h"

#include <stdlib.h>

#include "Base/GdiGuards.h"

namespace {

// Takes a template apart word by word. Once the end is reached every further value is 0 or null
// and IsGood says so.
class CTemplateReader
{
public:
    CTemplateReader(const void *pTemplate, unsigned long nSize)
        : m_pWords(static_cast<const WORD *>(pTemplate)),
          m_nWords(nSize / sizeof(WORD)),
          m_nNext(0),
          m_bGood(true)
    {
    }

    bool IsGood() const { return m_bGood; }

    WORD Word()
    {
        const unsigned long nAt = m_nNext;
        return Skip(1) ? m_pWords[nAt] : static_cast<WORD>(0);
    }

    DWORD Dword()
    {
        const DWORD nLow = Word();
        return nLow | static_cast<DWORD>(Word()) << 16;
    }

    bool Skip(unsigned long nWords)
    {
        m_bGood = m_bGood && nWords <= m_nWords - m_nNext;
        if (m_bGood)
            m_nNext += nWords;
        return m_bGood;
    }

    void AlignToDword()
    {
        if (m_nNext % 2 != 0)
            Skip(1);
    }

    // A text with its NUL.
    const WORD *Text()
    {
        const WORD *pText = m_pWords + m_nNext;
        while (Word() != 0)
            continue;
        return m_bGood ? pText : nullptr;
    }

    // A menu, class or title: 0xFFFF and an ordinal, or a text.
    void SkipNameOrOrdinal()
    {
        if (m_nNext < m_nWords && m_pWords[m_nNext] == 0xFFFF)
            Skip(2);
        else
            Text();
    }

private:
    const WORD *m_pWords;
    unsigned long m_nWords;
    unsigned long m_nNext;
    bool m_bGood;
};

struct CTemplateHeader
{
    bool bExtended;
    DWORD nStyle;
    DWORD nExStyle;
    WORD nItems;
    short cx;
    short cy;
};

struct CTemplateFont
{
    WORD nPoints;
    WORD nWeight;
    BYTE bItalic;
    BYTE nCharSet;
    const WORD *pszFace;
};

// The size that stands for the system's message font; nothing else of a font follows it.
const WORD MESSAGE_FONT = 0x7FFF;

bool ReadHeader(CTemplateReader &reader, CTemplateHeader &header)
{
    const WORD nFirst = reader.Word();
    const WORD nSecond = reader.Word();
    header.bExtended = nSecond == 0xFFFF;
    if (header.bExtended) {
        const WORD nVersion = nFirst;
        if (nVersion != 1)
            return false;
        reader.Dword();  // help identifier
        header.nExStyle = reader.Dword();
        header.nStyle = reader.Dword();
    } else {
        header.nStyle = nFirst | static_cast<DWORD>(nSecond) << 16;
        header.nExStyle = reader.Dword();
    }
    header.nItems = reader.Word();
    reader.Skip(2);  // position
    header.cx = static_cast<short>(reader.Word());
    header.cy = static_cast<short>(reader.Word());
    return reader.IsGood();
}

const WORD *ReadCaption(CTemplateReader &reader)
{
    reader.SkipNameOrOrdinal();  // menu
    reader.SkipNameOrOrdinal();  // class
    return reader.Text();
}

// Reads the font of a template that has one.
bool ReadFont(CTemplateReader &reader, const CTemplateHeader &header, CTemplateFont &font)
{
    font = {reader.Word(), FW_DONTCARE, FALSE, DEFAULT_CHARSET, nullptr};
    if (font.nPoints == MESSAGE_FONT)
        return reader.IsGood();
    if (header.bExtended) {
        font.nWeight = reader.Word();
        const WORD nItalicAndCharSet = reader.Word();
        font.bItalic = LOBYTE(nItalicAndCharSet);
        font.nCharSet = HIBYTE(nItalicAndCharSet);
    }
    font.pszFace = reader.Text();
    return reader.IsGood();
}

bool SkipItem(CTemplateReader &reader, const CTemplateHeader &header)
{
    reader.AlignToDword();
    // Styles, place and identifier; an extended control adds its help identifier and has a longer
    // identifier.
    reader.Skip(header.bExtended ? 12 : 9);
    reader.SkipNameOrOrdinal();  // class
    reader.SkipNameOrOrdinal();  // title
    // Behind an odd count systems disagree where the next control begins, and Wine 8, for one, then
    // reads on behind the end.
    const WORD nCreationBytes = reader.Word();
    return nCreationBytes % 2 == 0 && reader.Skip(nCreationBytes / 2u);
}

bool IsWhole(CTemplateReader reader)
{
    CTemplateHeader header;
    if (!ReadHeader(reader, header) || !ReadCaption(reader))
        return false;
    CTemplateFont font;
    if ((header.nStyle & DS_SETFONT) && !ReadFont(reader, header, font))
        return false;
    for (WORD nItem = 0; nItem < header.nItems; ++nItem) {
        if (!SkipItem(reader, header))
            return false;
    }
    return true;
}

// Header and font of the template, false when it has no font that can be read.
bool FindFont(CTemplateReader reader, CTemplateFont &font)
{
    CTemplateHeader header;
    return ReadHeader(reader, header) && (header.nStyle & DS_SETFONT) && ReadCaption(reader) &&
           ReadFont(reader, header, font);
}

void GetMessageFont(LOGFONTA &logFont)
{
    NONCLIENTMETRICSA metrics;
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0))
        logFont = metrics.lfMessageFont;
}

// The font as the system makes it for the dialog.
LOGFONTA GetLogFont(const CTemplateFont &font, int nPixelsPerInch)
{
    LOGFONTA logFont = {};
    if (font.nPoints == MESSAGE_FONT) {
        GetMessageFont(logFont);
        return logFont;
    }
    logFont.lfHeight = -MulDiv(font.nPoints, nPixelsPerInch, 72);
    logFont.lfWeight = font.nWeight;
    logFont.lfItalic = font.bItalic;
    logFont.lfCharSet = font.nCharSet;
    logFont.lfQuality = PROOF_QUALITY;
    lstrcpynA(logFont.lfFaceName, CCUString(font.pszFace), LF_FACESIZE);
    return logFont;
}

// The average width and the height of the selected font's characters, by the system's own rule for
// dialogs: the average is over the letters, not over all of the font.
bool MeasureFont(HDC hDC, SIZE &size)
{
    static const char LETTERS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    TEXTMETRICA metrics;
    if (!GetTextMetricsA(hDC, &metrics) || !GetTextExtentPoint32A(hDC, LETTERS, 52, &size))
        return false;
    size.cx = (size.cx / 26 + 1) / 2;
    size.cy = metrics.tmHeight;
    return true;
}

// The pixels that 4 horizontal and 8 vertical dialog units take; null: in the system font.
SIZE GetBaseUnits(const CTemplateFont *pFont)
{
    SIZE size = {LOWORD(GetDialogBaseUnits()), HIWORD(GetDialogBaseUnits())};
    if (!pFont)
        return size;
    const CCUIWindowDC screenDC(nullptr);
    const LOGFONTA logFont = GetLogFont(*pFont, GetDeviceCaps(screenDC, LOGPIXELSY));
    const CCUIOwned<HFONT> font(CreateFontIndirectA(&logFont));
    const CCUISelect select(screenDC, font);
    SIZE measured;
    if (select && MeasureFont(screenDC, measured))
        size = measured;
    return size;
}

}  // namespace

CCUIDialogTemplate::CCUIDialogTemplate(HINSTANCE hInstance, const char *pszName)
    : m_pTemplate(nullptr), m_nSize(0)
{
    HRSRC hResource = FindResourceA(hInstance, pszName, reinterpret_cast<LPCSTR>(RT_DIALOG));
    if (!hResource)
        return;
    m_pTemplate =
        static_cast<const DLGTEMPLATE *>(LockResource(LoadResource(hInstance, hResource)));
    if (m_pTemplate)
        m_nSize = SizeofResource(hInstance, hResource);
}

const DLGTEMPLATE *CCUIDialogTemplate::GetTemplate() const
{
    return IsWhole(CTemplateReader(m_pTemplate, m_nSize)) ? m_pTemplate : nullptr;
}

unsigned long CCUIDialogTemplate::GetStyle() const
{
    CTemplateReader reader(m_pTemplate, m_nSize);
    CTemplateHeader header;
    return ReadHeader(reader, header) ? header.nStyle : 0;
}

unsigned long CCUIDialogTemplate::GetExStyle() const
{
    CTemplateReader reader(m_pTemplate, m_nSize);
    CTemplateHeader header;
    return ReadHeader(reader, header) ? header.nExStyle : 0;
}

int CCUIDialogTemplate::HasFontStyle() const
{
    return (GetStyle() & DS_SETFONT) ? 1 : 0;
}

int CCUIDialogTemplate::GetFont(CCUString &sFace, unsigned short &nPoints) const
{
    sFace.Empty();
    nPoints = 0;
    CTemplateFont font;
    if (!FindFont(CTemplateReader(m_pTemplate, m_nSize), font))
        return 0;
    if (font.nPoints != MESSAGE_FONT) {
        sFace = font.pszFace;
        nPoints = font.nPoints;
        return 1;
    }
    const int nPixelsPerInch = GetDeviceCaps(CCUIWindowDC(nullptr), LOGPIXELSY);
    const LOGFONTA logFont = GetLogFont(font, nPixelsPerInch);
    sFace = logFont.lfFaceName;
    nPoints = static_cast<unsigned short>(MulDiv(abs(logFont.lfHeight), 72, nPixelsPerInch));
    return 1;
}

int CCUIDialogTemplate::GetSizeInDialogUnits(SIZE &size) const
{
    CTemplateReader reader(m_pTemplate, m_nSize);
    CTemplateHeader header;
    const bool bGood = ReadHeader(reader, header);
    size.cx = bGood ? header.cx : 0;
    size.cy = bGood ? header.cy : 0;
    return bGood ? 1 : 0;
}

int CCUIDialogTemplate::GetSizeInPixels(SIZE &size) const
{
    if (!GetSizeInDialogUnits(size))
        return 0;
    CTemplateFont font;
    const bool bFont = FindFont(CTemplateReader(m_pTemplate, m_nSize), font);
    const SIZE base = GetBaseUnits(bFont ? &font : nullptr);
    size.cx = MulDiv(size.cx, base.cx, 4);
    size.cy = MulDiv(size.cy, base.cy, 8);
    return 1;
}

int CCUIDialogTemplate::GetCaption(CCUString &sCaption) const
{
    sCaption.Empty();
    CTemplateReader reader(m_pTemplate, m_nSize);
    CTemplateHeader header;
    const WORD *pszCaption = ReadHeader(reader, header) ? ReadCaption(reader) : nullptr;
    if (!pszCaption)
        return 0;
    sCaption = pszCaption;
    return 1;
}
