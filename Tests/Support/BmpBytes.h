#pragma once

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <vector>

#include "CU/Platform.h"

// A BMP file in memory, every field open, so that a test can lie in any of them. The picture is one
// of many colours, the same for each size and depth; a test knows it by ColorAt.
struct CBmpBytes
{
    BITMAPFILEHEADER m_file;
    BITMAPINFOHEADER m_info;
    std::vector<RGBQUAD> m_table;
    std::vector<BYTE> m_pixels;

    CBmpBytes(int nWidth, int nHeight, int nBits, DWORD nRowAlign = 4) : m_file(), m_info()
    {
        m_info.biSize = sizeof m_info;
        m_info.biWidth = nWidth;
        m_info.biHeight = nHeight;
        m_info.biPlanes = 1;
        m_info.biBitCount = static_cast<WORD>(nBits);
        for (int i = 0; nBits <= 8 && i < 1 << nBits; ++i)
            m_table.push_back(
                {Byte(255 - i * 255 / ((1 << nBits) - 1)), Byte(i * 37 + 5), Byte(i * 91 + 1), 0});
        const DWORD nRow =
            (static_cast<DWORD>(nWidth * nBits + 7) / 8 + nRowAlign - 1) / nRowAlign * nRowAlign;
        const int nRows = abs(nHeight);
        m_pixels.resize(nRow * static_cast<DWORD>(nRows));
        for (int y = 0; y < nRows; ++y) {
            BYTE *pRow =
                m_pixels.data() + nRow * static_cast<DWORD>(nHeight < 0 ? y : nRows - 1 - y);
            for (int x = 0; x < nWidth; ++x)
                Store(pRow, x, ValueAt(x, y));
        }
        m_file.bfType = 0x4D42;
        m_file.bfOffBits = 54 + static_cast<DWORD>(m_table.size()) * 4;
    }

    // 0xRRGGBB, y from the top.
    DWORD ColorAt(int x, int y) const
    {
        const DWORD nValue = ValueAt(x, y);
        if (m_info.biBitCount > 16)
            return nValue & 0xFFFFFF;
        if (m_info.biBitCount == 16)  // five bits a colour, widened as GDI does
            return Wide(nValue >> 10) << 16 | Wide(nValue >> 5) << 8 | Wide(nValue);
        const RGBQUAD &color = m_table[nValue];
        return static_cast<DWORD>(color.rgbRed << 16 | color.rgbGreen << 8 | color.rgbBlue);
    }
    std::vector<DWORD> Picture() const
    {
        std::vector<DWORD> picture;
        for (int y = 0; y < abs(m_info.biHeight); ++y)
            for (int x = 0; x < m_info.biWidth; ++x)
                picture.push_back(ColorAt(x, y));
        return picture;
    }

    // Header, a table with room for that many entries, pixels.
    std::vector<BYTE> Packed(size_t nTableRoom) const
    {
        std::vector<BYTE> bytes(sizeof m_info + nTableRoom * sizeof(RGBQUAD));
        memcpy(bytes.data(), &m_info, sizeof m_info);
        memcpy(bytes.data() + sizeof m_info, m_table.data(), m_table.size() * sizeof(RGBQUAD));
        bytes.insert(bytes.end(), m_pixels.begin(), m_pixels.end());
        return bytes;
    }
    std::vector<BYTE> File() const
    {
        const BYTE *pHeader = reinterpret_cast<const BYTE *>(&m_file);
        std::vector<BYTE> bytes(pHeader, pHeader + sizeof m_file);
        const std::vector<BYTE> packed = Packed(m_table.size());
        bytes.insert(bytes.end(), packed.begin(), packed.end());
        return bytes;
    }

private:
    static BYTE Byte(int n) { return static_cast<BYTE>(n); }
    static DWORD Wide(DWORD n) { return (n & 31) << 3 | (n & 31) >> 2; }
    DWORD ValueAt(int x, int y) const
    {
        const DWORD n = static_cast<DWORD>(x * 2 + y * 7) * 0x010305 + 0x123456;
        return n & (m_info.biBitCount >= 24 ? 0xFFFFFF : (1U << m_info.biBitCount) - 1);
    }
    void Store(BYTE *pRow, int x, DWORD nValue) const
    {
        const int nBits = m_info.biBitCount;
        if (nBits < 8) {
            const int nShift = 8 - nBits - x * nBits % 8;
            pRow[x * nBits / 8] = Byte(pRow[x * nBits / 8] | static_cast<int>(nValue) << nShift);
        } else {
            memcpy(pRow + x * nBits / 8, &nValue, static_cast<size_t>(nBits) / 8);
        }
    }
};

inline bool WriteBytes(const std::string &path, const std::vector<BYTE> &bytes)
{
    FILE *file = fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const bool bWritten = fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return fclose(file) == 0 && bWritten;
}

// The pixels of a bitmap as 0xRRGGBB, from the top; none for what is no bitmap.
inline std::vector<DWORD> PixelsOf(HBITMAP hBitmap)
{
    BITMAP bm = {};
    GetObjectA(hBitmap, sizeof bm, &bm);
    BITMAPINFO info = {};
    info.bmiHeader = {
        sizeof info.bmiHeader, bm.bmWidth, -bm.bmHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    std::vector<DWORD> pixels(static_cast<size_t>(bm.bmWidth * bm.bmHeight));
    const HDC hScreen = GetDC(nullptr);
    if (!pixels.empty())
        GetDIBits(hScreen, hBitmap, 0, static_cast<UINT>(bm.bmHeight), pixels.data(), &info,
                  DIB_RGB_COLORS);
    ReleaseDC(nullptr, hScreen);
    for (DWORD &pixel : pixels)
        pixel &= 0xFFFFFF;
    return pixels;
}
