#include "Picture/DibWriter.h"

#include <algorithm>

namespace {

const size_t MAX_COLORS = 256;

void Append(std::vector<BYTE> &bytes, const void *p, size_t nSize)
{
    const BYTE *const pBytes = static_cast<const BYTE *>(p);
    bytes.insert(bytes.end(), pBytes, pBytes + nSize);
}

// From colours to places in a table.
class CColorIndex
{
public:
    explicit CColorIndex(const std::vector<RGBQUAD> &colors)
    {
        for (size_t i = 0; i < std::min(colors.size(), MAX_COLORS); ++i) {
            const RGBQUAD &color = colors[i];
            m_indexes.insert(
                {MakePixel(color.rgbRed, color.rgbGreen, color.rgbBlue), static_cast<BYTE>(i)});
        }
    }
    // Null: not in the table.
    const BYTE *Find(DWORD nPixel) const
    {
        const auto at = m_indexes.find(nPixel | OPAQUE_PIXEL);
        return at == m_indexes.end() ? nullptr : &at->second;
    }

private:
    std::map<DWORD, BYTE> m_indexes;
};

BITMAPINFOHEADER MakeHeader(const CPixels &pixels, WORD nDepth, size_t nColors)
{
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = pixels.m_cx;
    header.biHeight = pixels.m_cy;
    header.biPlanes = 1;
    header.biBitCount = nDepth;
    const DWORD nRow = (static_cast<DWORD>(pixels.m_cx) * nDepth + 31) / 32 * 4;
    header.biSizeImage = nRow * static_cast<DWORD>(pixels.m_cy);
    header.biClrUsed = static_cast<DWORD>(nColors);
    return header;
}

void AppendPadding(std::vector<BYTE> &bytes, size_t nRow)
{
    bytes.insert(bytes.end(), (4 - nRow % 4) % 4, 0);
}

// False when a pixel is not in the table.
bool AppendIndexes(std::vector<BYTE> &bytes, const CPixels &pixels)
{
    const CColorIndex colors(pixels.m_colors);
    DWORD nLast = 0;
    const BYTE *pLast = nullptr;
    for (int y = pixels.m_cy - 1; y >= 0; --y) {
        for (int x = 0; x < pixels.m_cx; ++x) {
            const DWORD nPixel = pixels.Row(y)[x];
            if (!pLast || nPixel != nLast)
                pLast = colors.Find(nPixel);
            if (!pLast)
                return false;
            nLast = nPixel;
            bytes.push_back(*pLast);
        }
        AppendPadding(bytes, static_cast<size_t>(pixels.m_cx));
    }
    return true;
}

CBlob WriteIndexed(const CPixels &pixels)
{
    const size_t nColors = std::min(pixels.m_colors.size(), MAX_COLORS);
    const BITMAPINFOHEADER header = MakeHeader(pixels, 8, nColors);
    std::vector<BYTE> bytes;
    bytes.reserve(sizeof header + nColors * sizeof(RGBQUAD) + header.biSizeImage);
    Append(bytes, &header, sizeof header);
    Append(bytes, pixels.m_colors.data(), nColors * sizeof(RGBQUAD));
    if (!AppendIndexes(bytes, pixels))
        return nullptr;
    return MakeBlob(std::move(bytes));
}

CBlob WriteTrueColor(const CPixels &pixels)
{
    const BITMAPINFOHEADER header = MakeHeader(pixels, 24, 0);
    std::vector<BYTE> bytes;
    bytes.reserve(sizeof header + header.biSizeImage);
    Append(bytes, &header, sizeof header);
    for (int y = pixels.m_cy - 1; y >= 0; --y) {
        for (int x = 0; x < pixels.m_cx; ++x)
            Append(bytes, &pixels.Row(y)[x], 3);
        AppendPadding(bytes, 3 * static_cast<size_t>(pixels.m_cx));
    }
    return MakeBlob(std::move(bytes));
}

}  // namespace

CBlob WriteDib(const CPixels &pixels)
{
    const CBlob indexed = pixels.m_colors.empty() ? nullptr : WriteIndexed(pixels);
    return indexed ? indexed : WriteTrueColor(pixels);
}
