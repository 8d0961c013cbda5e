#include "Problems/SkinLook.h"

#include <limits.h>
#include <stdlib.h>

#include <algorithm>

#include "Base/GdiGuards.h"
#include "Picture/DibReader.h"
#include "Resource.h"

namespace {

const int PIXELS_PER_INCH = 96;
const int POINTS_PER_INCH = 72;

const UINT BULLET_PLACES[] = {IDS_SETUP_ICON_POS, IDS_EXIT_ICON_POS, IDS_RUN_ICON_POS,
                              IDS_HELP_ICON_POS};

// Numbers in a skin can be any; sums with sizes of pictures and texts must not wrap.
LONG Sum(LONG n, LONG nLength)
{
    const LONGLONG nSum = static_cast<LONGLONG>(n) + nLength;
    return static_cast<LONG>(std::min<LONGLONG>(std::max<LONGLONG>(nSum, LONG_MIN), LONG_MAX));
}

RECT RectAt(const POINT &at, LONG cx, LONG cy)
{
    return {at.x, at.y, Sum(at.x, cx), Sum(at.y, cy)};
}

// Of one line, by its characters: this system's own code page may be another than the disc's.
SIZE LineSize(HDC hDC, const WCHAR *pText, size_t nLength)
{
    SIZE size = {};
    GetTextExtentPoint32W(hDC, pText, static_cast<int>(nLength), &size);
    return size;
}

// As DrawText shows it: "&" is left out and marks the next character, "&&" is one "&".
std::vector<WCHAR> WithoutMnemonics(const CWideText &text)
{
    std::vector<WCHAR> shown;
    for (size_t i = 0; i < text.Length(); ++i) {
        if (text.Data()[i] == L'&' && ++i >= text.Length())
            break;
        shown.push_back(text.Data()[i]);
    }
    return shown;
}

// Of the text's lines without word break, as DrawText places them.
SIZE TextSize(HDC hDC, const std::vector<WCHAR> &text)
{
    TEXTMETRICA metrics = {};
    GetTextMetricsA(hDC, &metrics);
    SIZE size = {};
    auto from = text.begin();
    while (from != text.end()) {
        const auto end = std::find(from, text.end(), L'\n');
        const size_t nLength = static_cast<size_t>(end - from);
        const SIZE line = nLength > 0 ? LineSize(hDC, &*from, nLength) : SIZE();
        size.cx = std::max(size.cx, line.cx);
        size.cy += metrics.tmHeight;
        from = end == text.end() ? end : end + 1;
    }
    return size;
}

// More than what few colours and dithering make of the same one.
bool IsOther(DWORD nOne, DWORD nOther)
{
    const int nMost = 16;
    return abs(static_cast<int>(RedOf(nOne)) - static_cast<int>(RedOf(nOther))) > nMost ||
           abs(static_cast<int>(GreenOf(nOne)) - static_cast<int>(GreenOf(nOther))) > nMost ||
           abs(static_cast<int>(BlueOf(nOne)) - static_cast<int>(BlueOf(nOther))) > nMost;
}

// Opaque, as launchers draw pictures. Returns the part that looks different from then on: a picture
// that is to look cut out has the background's own pixels in it.
RECT Draw(CPixels &onto, const CPixels &picture, const POINT &at)
{
    const RECT whole = RectAt(at, picture.m_cx, picture.m_cy);
    const RECT window = {0, 0, onto.m_cx, onto.m_cy};
    RECT part;
    RECT seen = {};
    IntersectRect(&part, &whole, &window);
    for (LONG y = part.top; y < part.bottom; ++y) {
        DWORD *const pOnto = onto.Row(y);
        const DWORD *const pPicture = picture.Row(y - at.y);
        RECT row = {part.right, y, part.left, y + 1};
        for (LONG x = part.left; x < part.right; ++x) {
            if (IsOther(pOnto[x], pPicture[x - at.x])) {
                row.left = std::min(row.left, x);
                row.right = x + 1;
            }
            pOnto[x] = pPicture[x - at.x];
        }
        if (row.left < row.right)
            UnionRect(&seen, &seen, &row);
    }
    return seen;
}

bool ReadPicture(const CSkin &skin, SkinPicture picture, CPixels &pixels)
{
    const CBlob &dib = skin.m_pictures[picture];
    return dib && ReadDib(dib->data(), dib->size(), 0, pixels) == nullptr;
}

}  // namespace

CSkinLook::CSkinLook(const CSkin &skin, const CSkinStrings &strings)
    : m_strings(strings), m_font(), m_rectDescription(), m_sizeDescription(), m_highlight(0)
{
    if (!ReadPicture(skin, PictureBackground, m_picture))
        m_picture = CPixels();
    AddPicture(skin, PictureProduct, DrawnProduct, IDS_PRODUCT_POS);
    for (const UINT nPlace : BULLET_PLACES)
        AddPicture(skin, PictureBullet, DrawnBullet, nPlace);

    const CCUIMemoryDC hDC(nullptr);
    // In the order in which the launcher reads them: what a font does not say is as in the one
    // before.
    const CCUIOwned<HFONT> title(MakeFont(IDS_TITLE_FONT));
    const CCUIOwned<HFONT> item(MakeFont(IDS_ITEM_FONT));
    const CCUIOwned<HFONT> about(MakeFont(IDS_ABOUT_FONT));
    const CCUISelect select(hDC, title);
    AddText(hDC, DrawnTitle, IDS_TITLE, IDS_TITLE_POS);
    SelectObject(hDC, about);
    AddDescription(hDC);
    SelectObject(hDC, item);
    AddText(hDC, DrawnLine, IDS_SETUP, IDS_SETUP_POS);
    AddText(hDC, DrawnLine, IDS_EXIT, IDS_EXIT_POS);
    AddText(hDC, DrawnLine, IDS_RUN, IDS_RUN_POS);
    AddText(hDC, DrawnLine, IDS_HELP, IDS_HELP_POS);
    ReadHighlight();
}

bool CSkinLook::ReadPlace(UINT nPlace, POINT &at) const
{
    return ParsePoint(m_strings.Read(nPlace), at);
}

void CSkinLook::AddPicture(const CSkin &skin, SkinPicture picture, SkinItemKind kind, UINT nPlace)
{
    CPixels pixels;
    if (!ReadPicture(skin, picture, pixels))
        pixels = CPixels();
    POINT at = {};
    const bool bPlaced = ReadPlace(nPlace, at);
    const RECT rect = RectAt(at, pixels.m_cx, pixels.m_cy);
    const RECT seen = Draw(m_picture, pixels, at);
    m_items.push_back({kind, 0, nPlace, rect, kind == DrawnProduct ? seen : rect, bPlaced});
}

HFONT CSkinLook::MakeFont(UINT nEntry)
{
    ParseFont(m_strings.Read(nEntry), m_font);
    LOGFONTA font = {};
    font.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    font.lfHeight = -MulDiv(m_font.m_nPoints, PIXELS_PER_INCH, POINTS_PER_INCH);
    font.lfWeight = m_font.m_nBold > 0 ? FW_BOLD : FW_NORMAL;
    font.lfItalic = m_font.m_nItalic != 0;
    lstrcpynA(font.lfFaceName, m_font.m_sFace, LF_FACESIZE);
    return CreateFontIndirectA(&font);
}

void CSkinLook::AddText(HDC hDC, SkinItemKind kind, UINT nText, UINT nPlace)
{
    POINT at = {};
    const bool bPlaced = ReadPlace(nPlace, at);
    const CWideText *const pText = m_strings.Find(nText);
    const SIZE size = pText ? LineSize(hDC, pText->Data(), pText->Length()) : SIZE();
    const RECT rect = RectAt(at, size.cx, size.cy);
    m_items.push_back({kind, nText, nPlace, rect, rect, bPlaced});
}

void CSkinLook::AddDescription(HDC hDC)
{
    const bool bPlaced = ParseRect(m_strings.Read(IDS_ABOUT_RECT), m_rectDescription);
    const CWideText *const pText = m_strings.Find(IDS_ABOUT);
    if (pText)
        m_sizeDescription = TextSize(hDC, WithoutMnemonics(*pText));
    RECT shown = RectAt({m_rectDescription.left, m_rectDescription.top}, m_sizeDescription.cx,
                        m_sizeDescription.cy);
    IntersectRect(&shown, &shown, &m_rectDescription);
    m_items.push_back({DrawnDescription, IDS_ABOUT, IDS_ABOUT_RECT, shown, shown, bPlaced});
}

void CSkinLook::ReadHighlight()
{
    int components[3] = {};
    ParseColor(m_strings.Read(IDS_HIGHLIGHT_COLOR), components);
    m_highlight = RGB(components[0], components[1], components[2]);
}
