#pragma once

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <vector>

#include "Support/PixelMap.h"

// A BMP file in memory, every field open, so that a test can lie in any of them. The picture is
// made of the size and depth.
struct CBmpBytes
{
    BITMAPFILEHEADER m_file = {0x4D42, 0, 0, 0, 0};
    BITMAPINFOHEADER m_info;
    std::vector<BYTE> m_rest;  // what follows the first 40 bytes of a longer header, or masks
    std::vector<RGBQUAD> m_table;
    std::vector<BYTE> m_pixels;

    CBmpBytes(int nWidth, int nHeight, int nBits, int nRowAlign = 4)
        : m_info{sizeof m_info, nWidth, nHeight, 1, static_cast<WORD>(nBits), 0, 0, 0, 0, 0, 0}
    {
        const int nColors = nBits <= 8 ? 1 << nBits : 0;
        for (int i = 0; i < nColors; ++i)
            m_table.push_back({static_cast<BYTE>(255 - i * 255 / (nColors - 1)),
                               static_cast<BYTE>(i * 37 + 5), static_cast<BYTE>(i * 91 + 1), 0});
        m_file.bfOffBits = 54 + static_cast<DWORD>(nColors) * 4;
        const int nRow = ((nWidth * nBits + 7) / 8 + nRowAlign - 1) / nRowAlign * nRowAlign;
        const int nRows = abs(nHeight);
        // Values may be stored whole at the end of the last row.
        m_pixels.resize(static_cast<size_t>(nRow * nRows + 4));
        for (int y = 0; y < nRows; ++y)
            for (int x = 0; x < nWidth; ++x)
                Store(&m_pixels[static_cast<size_t>(nRow * (nHeight < 0 ? y : nRows - 1 - y))], x,
                      ValueAt(x, y));
        m_pixels.resize(m_pixels.size() - 4);
    }

    // A header of that size. The masks of BI_BITFIELDS are in a longer one and follow one of 40.
    void SetHeader(DWORD nSize, DWORD nCompression)
    {
        const DWORD masks16[] = {0xF800, 0x07E0, 0x001F}, masks32[] = {0xFF0000, 0xFF00, 0xFF};
        m_info.biSize = nSize;
        m_info.biCompression = nCompression;
        m_rest.resize(nSize > 40 ? nSize - 40 : nCompression == BI_BITFIELDS ? 12 : 0);
        if (nCompression == BI_BITFIELDS)
            memcpy(m_rest.data(), m_info.biBitCount == 16 ? masks16 : masks32, 12);
        m_file.bfOffBits += static_cast<DWORD>(m_rest.size());
    }

    COLORREF TableColor(size_t i) const
    {
        return RGB(m_table[i].rgbRed, m_table[i].rgbGreen, m_table[i].rgbBlue);
    }
    // What it shows, on a screen of any depth.
    CPixelMap Picture() const
    {
        CPixelMap picture(m_info.biWidth, abs(m_info.biHeight));
        for (int i = 0; i < picture.cx * picture.cy; ++i) {
            const DWORD n = ValueAt(i % picture.cx, i / picture.cx);
            picture.pixels[static_cast<size_t>(i)] =
                m_info.biBitCount <= 8 ? TableColor(n) : RGB(n >> 16, n >> 8 & 0xFF, n & 0xFF);
        }
        return picture;
    }
    // Header, a table with room for that many entries, pixels.
    std::vector<BYTE> Packed(size_t nRoom) const
    {
        std::vector<BYTE> bytes(sizeof m_info + nRoom * sizeof(RGBQUAD));
        memcpy(bytes.data(), &m_info, sizeof m_info);
        if (!m_table.empty())
            memcpy(&bytes[sizeof m_info], m_table.data(), m_table.size() * sizeof(RGBQUAD));
        bytes.insert(bytes.begin() + sizeof m_info, m_rest.begin(), m_rest.end());
        bytes.insert(bytes.end(), m_pixels.begin(), m_pixels.end());
        return bytes;
    }
    std::vector<BYTE> File() const
    {
        std::vector<BYTE> bytes = Packed(m_table.size());
        const BYTE *pHeader = reinterpret_cast<const BYTE *>(&m_file);
        bytes.insert(bytes.begin(), pHeader, pHeader + sizeof m_file);
        return bytes;
    }

private:
    DWORD ValueAt(int x, int y) const
    {
        const DWORD n = static_cast<DWORD>(x * 2 + y * 7) * 0x010305 + 0x123456;
        return n & ((1U << (m_info.biBitCount < 24 ? m_info.biBitCount : 24)) - 1);
    }
    void Store(BYTE *pRow, int x, DWORD nValue) const
    {
        const int nBits = m_info.biBitCount;
        BYTE *pAt = pRow + x * nBits / 8;
        if (nBits < 8)
            *pAt = static_cast<BYTE>(*pAt | nValue << (8 - nBits - x * nBits % 8));
        else
            memcpy(pAt, &nValue, static_cast<size_t>(nBits) / 8);
    }
};

inline bool WriteBytes(const std::string &path, const std::vector<BYTE> &bytes)
{
    FILE *file = fopen(path.c_str(), "wb");
    const bool bWritten = file && fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return file && fclose(file) == 0 && bWritten;
}

// The colours of a palette that nobody needs any more.
inline std::vector<COLORREF> TakeEntries(HPALETTE hPal)
{
    std::vector<COLORREF> colors(GetPaletteEntries(hPal, 0, 0, nullptr));
    GetPaletteEntries(hPal, 0, static_cast<UINT>(colors.size()),
                      reinterpret_cast<PALETTEENTRY *>(colors.data()));
    DeleteObject(hPal);
    return colors;
}
