#include "Picture/DibReader.h"

#include <string.h>

#include <algorithm>

namespace {

const char *const CUT = "its data is cut off";
const char *const UNKNOWN = "it is of a kind that is not known";
const char *const BAD_SIZE = "its size is 0 or too large";

const DWORD ALPHA_BITFIELDS = 6;  // BI_ALPHABITFIELDS, which not every header has
const size_t HEADER_SIZE = sizeof(BITMAPINFOHEADER);
const size_t MASKS_SIZE = 3 * sizeof(DWORD);

template <typename T>
T ReadAt(const BYTE *p)
{
    T value;
    memcpy(&value, p, sizeof value);
    return value;
}

// One colour of a pixel that has masks.
class CChannel
{
public:
    explicit CChannel(DWORD nMask) : m_nMask(nMask)
    {
        while (m_nMask != 0 && !(m_nMask >> m_nShift & 1))
            ++m_nShift;
        while (m_nShift + m_nBits < 32 && m_nMask >> (m_nShift + m_nBits) & 1)
            ++m_nBits;
    }
    bool IsThere() const { return m_nMask != 0; }
    // 0 to 255. Of fewer than 8 bits the upper ones are repeated below, as GDI does.
    UINT Of(DWORD nPixel) const
    {
        if (m_nBits == 0)
            return 0;
        const UINT nValue = (nPixel & m_nMask) >> m_nShift;
        if (m_nBits >= 8)
            return nValue >> (m_nBits - 8) & 0xFF;
        UINT nAll = 0;
        for (int nAt = 8 - m_nBits; nAt > -m_nBits; nAt -= m_nBits)
            nAll |= nAt >= 0 ? nValue << nAt : nValue >> -nAt;
        return nAll;
    }

private:
    DWORD m_nMask;
    int m_nShift = 0;
    int m_nBits = 0;
};

// A DIB that is being read: what its header says, and where its parts are.
class CDib
{
public:
    CDib(const BYTE *pDib, size_t nSize) : m_pDib(pDib), m_nSize(nSize), m_header() {}

    const char *Read(size_t nBits, CPixels &pixels);

private:
    const char *ReadHeader();
    const char *ReadMasks();
    const char *ReadColors(CPixels &pixels);
    bool IsKnown() const;
    const char *ReadRows(CPixels &pixels) const;
    void ReadRow(const BYTE *pRow, DWORD *pPixels, const CPixels &pixels) const;
    DWORD Pixel(const BYTE *pRow, int x, const std::vector<RGBQUAD> &colors) const;
    DWORD Masked(DWORD nPixel) const;
    void ReadRuns(CPixels &pixels) const;

    const BYTE *m_pDib;
    size_t m_nSize;
    BITMAPINFOHEADER m_header;
    DWORD m_masks[4] = {};
    size_t m_nColorSize = sizeof(RGBQUAD);
    size_t m_nEnd = 0;  // of what has been read so far; then where the pixels are
};

DWORD ToPixel(const RGBQUAD &color)
{
    return MakePixel(color.rgbRed, color.rgbGreen, color.rgbBlue);
}

const char *CDib::ReadHeader()
{
    if (m_nSize < sizeof(DWORD))
        return CUT;
    const DWORD nHeader = ReadAt<DWORD>(m_pDib);
    const bool bCore = nHeader == sizeof(BITMAPCOREHEADER);
    if (!bCore && (nHeader < 16 || nHeader > 1024))
        return UNKNOWN;
    if (nHeader > m_nSize)
        return CUT;
    m_nEnd = nHeader;
    if (!bCore) {
        // OS/2 allows a header to end after any field; those that are not there are 0.
        memcpy(&m_header, m_pDib, std::min<size_t>(nHeader, HEADER_SIZE));
        return IsKnown() ? nullptr : UNKNOWN;
    }
    const BITMAPCOREHEADER core = ReadAt<BITMAPCOREHEADER>(m_pDib);
    m_header.biWidth = core.bcWidth;
    m_header.biHeight = core.bcHeight;
    m_header.biPlanes = core.bcPlanes;
    m_header.biBitCount = core.bcBitCount;
    m_nColorSize = sizeof(RGBTRIPLE);
    return IsKnown() ? nullptr : UNKNOWN;
}

bool CDib::IsKnown() const
{
    if (m_header.biPlanes != 1)
        return false;
    const WORD nDepth = m_header.biBitCount;
    switch (m_header.biCompression) {
    case BI_RGB:
        return nDepth == 1 || nDepth == 4 || nDepth == 8 || nDepth == 16 || nDepth == 24 ||
               nDepth == 32;
    case BI_RLE8: return nDepth == 8 && m_header.biHeight > 0;
    case BI_RLE4: return nDepth == 4 && m_header.biHeight > 0;
    case BI_BITFIELDS:
    case ALPHA_BITFIELDS: return nDepth == 16 || nDepth == 32;
    default: return false;
    }
}

const char *CDib::ReadMasks()
{
    const bool bAlpha = m_header.biCompression == ALPHA_BITFIELDS;
    if (m_header.biCompression != BI_BITFIELDS && !bAlpha) {
        const DWORD masks16[] = {0x7C00, 0x03E0, 0x001F};
        const DWORD masks32[] = {0xFF0000, 0x00FF00, 0x0000FF};
        std::copy_n(m_header.biBitCount == 16 ? masks16 : masks32, 3, m_masks);
        return nullptr;
    }
    // Headers from the second version on have the masks inside, from the third on that of alpha.
    const size_t nInside = m_nEnd - HEADER_SIZE;
    const size_t nMasks = bAlpha || nInside >= sizeof m_masks ? sizeof m_masks : MASKS_SIZE;
    if (m_nSize < HEADER_SIZE + nMasks)
        return CUT;
    memcpy(m_masks, m_pDib + HEADER_SIZE, nMasks);
    m_nEnd = std::max(m_nEnd, HEADER_SIZE + nMasks);
    return nullptr;
}

const char *CDib::ReadColors(CPixels &pixels)
{
    const WORD nDepth = m_header.biBitCount;
    const DWORD nMost = nDepth <= 8 ? 1U << nDepth : 0;
    const DWORD nColors = m_header.biClrUsed != 0 ? m_header.biClrUsed : nMost;
    if (nColors > (m_nSize - m_nEnd) / m_nColorSize)
        return CUT;
    pixels.m_colors.resize(std::min(nColors, nMost));
    for (size_t i = 0; i < pixels.m_colors.size(); ++i) {
        const BYTE *const p = m_pDib + m_nEnd + i * m_nColorSize;
        pixels.m_colors[i] = {p[0], p[1], p[2], 0};
    }
    m_nEnd += nColors * m_nColorSize;
    return nullptr;
}

DWORD CDib::Masked(DWORD nPixel) const
{
    const CChannel alpha(m_masks[3]);
    const DWORD nColor = MakePixel(CChannel(m_masks[0]).Of(nPixel), CChannel(m_masks[1]).Of(nPixel),
                                   CChannel(m_masks[2]).Of(nPixel));
    return alpha.IsThere() ? (nColor & ~OPAQUE_PIXEL) | alpha.Of(nPixel) << 24 : nColor;
}

DWORD CDib::Pixel(const BYTE *pRow, int x, const std::vector<RGBQUAD> &colors) const
{
    const int nDepth = m_header.biBitCount;
    if (nDepth == 16)
        return Masked(ReadAt<WORD>(pRow + 2 * x));
    if (nDepth == 32)
        return Masked(ReadAt<DWORD>(pRow + 4 * x));
    if (nDepth == 24)
        return MakePixel(pRow[3 * x + 2], pRow[3 * x + 1], pRow[3 * x]);
    const int nBit = x * nDepth;
    const UINT nIndex = pRow[nBit / 8] >> (8 - nDepth - nBit % 8) & ((1U << nDepth) - 1);
    return nIndex < colors.size() ? ToPixel(colors[nIndex]) : OPAQUE_PIXEL;
}

void CDib::ReadRow(const BYTE *pRow, DWORD *pPixels, const CPixels &pixels) const
{
    const bool bPlain = m_header.biBitCount == 32 && m_masks[0] == 0xFF0000 &&
                        m_masks[1] == 0x00FF00 && m_masks[2] == 0x0000FF && m_masks[3] == 0;
    for (int x = 0; x < pixels.m_cx; ++x) {
        pPixels[x] =
            bPlain ? ReadAt<DWORD>(pRow + 4 * x) | OPAQUE_PIXEL : Pixel(pRow, x, pixels.m_colors);
    }
}

const char *CDib::ReadRows(CPixels &pixels) const
{
    const size_t nRow = (static_cast<size_t>(pixels.m_cx) * m_header.biBitCount + 31) / 32 * 4;
    if (static_cast<ULONGLONG>(nRow) * static_cast<ULONGLONG>(pixels.m_cy) > m_nSize - m_nEnd)
        return CUT;
    for (int y = 0; y < pixels.m_cy; ++y) {
        const int nFrom = m_header.biHeight > 0 ? pixels.m_cy - 1 - y : y;
        ReadRow(m_pDib + m_nEnd + static_cast<size_t>(nFrom) * nRow, pixels.Row(y), pixels);
    }
    return nullptr;
}

// The pixels of a compressed picture in the order in which they are written, from the bottom up.
class CRunWriter
{
public:
    explicit CRunWriter(CPixels &pixels) : m_pixels(pixels) {}

    bool IsFull() const { return m_y >= m_pixels.m_cy; }
    void Put(UINT nIndex)
    {
        if (m_x >= m_pixels.m_cx)
            return;
        if (nIndex < m_pixels.m_colors.size())
            m_pixels.Row(m_pixels.m_cy - 1 - m_y)[m_x] = ToPixel(m_pixels.m_colors[nIndex]);
        ++m_x;
    }
    void EndLine()
    {
        m_x = 0;
        ++m_y;
    }
    void Move(int cx, int cy)
    {
        // Not beyond the row's end: the jumps of a large file could add up to a place before it.
        m_x = std::min(m_x + cx, m_pixels.m_cx);
        m_y += cy;
    }

private:
    CPixels &m_pixels;
    int m_x = 0;
    int m_y = 0;
};

enum RunCode
{
    RunEndLine,
    RunEnd,
    RunMove,
    RunLiteral  // and above: that many pixels follow
};

void CDib::ReadRuns(CPixels &pixels) const
{
    const bool bNibbles = m_header.biBitCount == 4;
    const BYTE *p = m_pDib + m_nEnd;
    const BYTE *const pEnd = m_pDib + m_nSize;
    const auto indexAt = [bNibbles](const BYTE *pData, UINT i) -> UINT {
        return !bNibbles ? pData[i] : i % 2 ? pData[i / 2] & 0xF : pData[i / 2] >> 4;
    };
    CRunWriter writer(pixels);
    while (pEnd - p >= 2 && !writer.IsFull()) {
        const UINT nCount = p[0];
        const UINT nCode = p[1];
        p += 2;
        if (nCount != 0) {
            for (UINT i = 0; i < nCount; ++i)
                writer.Put(indexAt(p - 1, bNibbles ? i % 2 : 0));
        } else if (nCode == RunEndLine) {
            writer.EndLine();
        } else if (nCode == RunEnd) {
            return;
        } else if (nCode == RunMove) {
            if (pEnd - p < 2)
                return;
            writer.Move(p[0], p[1]);
            p += 2;
        } else {
            // Literal pixels fill up whole words.
            const UINT nBytes = bNibbles ? (nCode + 1) / 2 : nCode;
            if (static_cast<size_t>(pEnd - p) < nBytes)
                return;
            for (UINT i = 0; i < nCode; ++i)
                writer.Put(indexAt(p, i));
            p += std::min(static_cast<ptrdiff_t>((nBytes + 1) / 2 * 2), pEnd - p);
        }
    }
}

const char *CDib::Read(size_t nBits, CPixels &pixels)
{
    if (const char *const pszWhy = ReadHeader())
        return pszWhy;
    const LONGLONG nHeight = m_header.biHeight;
    if (!pixels.Create(m_header.biWidth, nHeight < 0 ? -nHeight : nHeight))
        return BAD_SIZE;
    if (const char *const pszWhy = ReadMasks())
        return pszWhy;
    if (const char *const pszWhy = ReadColors(pixels))
        return pszWhy;
    if (nBits != 0)
        m_nEnd = nBits;
    if (m_nEnd >= m_nSize)
        return CUT;
    if (m_header.biCompression != BI_RLE8 && m_header.biCompression != BI_RLE4)
        return ReadRows(pixels);
    ReadRuns(pixels);
    return nullptr;
}

}  // namespace

const char *ReadDib(const BYTE *pDib, size_t nSize, size_t nBits, CPixels &pixels)
{
    return CDib(pDib, nSize).Read(nBits, pixels);
}

const char *ReadBmp(const BYTE *pFile, size_t nSize, CPixels &pixels)
{
    const size_t nHead = sizeof(BITMAPFILEHEADER);
    if (nSize < nHead)
        return CUT;
    const DWORD nOffset = ReadAt<BITMAPFILEHEADER>(pFile).bfOffBits;
    if (nOffset != 0 && nOffset < nHead)
        return UNKNOWN;
    return ReadDib(pFile + nHead, nSize - nHead, nOffset != 0 ? nOffset - nHead : 0, pixels);
}
