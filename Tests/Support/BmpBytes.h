#pragma once

#include <fstream>
#include <random>
#include <string>

#include "Support/PixelMap.h"

// A BMP file in memory with random pixels.
struct CBmpBytes
{
    BITMAPFILEHEADER m_file = {0x4D42, 0, 0, 0, 0};
    BITMAPINFOHEADER m_info;
    std::vector<DWORD> m_rest;  // what follows the first 40 bytes of a longer header, or masks
    std::vector<RGBQUAD> m_table;
    std::vector<BYTE> m_pixels;

    CBmpBytes(int cx, int cy, int nBits, DWORD nHeader = 40, DWORD nCompression = BI_RGB,
              DWORD nUsed = 0)
        : m_info{nHeader, cx, cy, 1, WORD(nBits), nCompression, 0, 0, 0, nUsed, 0},
          m_rest((nHeader > 40                   ? nHeader - 40
                  : nCompression == BI_BITFIELDS ? 12
                                                 : 0) /
                 4),
          m_table(nUsed        ? nUsed
                  : nBits <= 8 ? 1U << nBits
                               : 0)
    {
        std::mt19937 random(static_cast<unsigned>(cx * 1000 + nBits));
        for (RGBQUAD &color : m_table)
            color = {BYTE(random()), BYTE(random()), BYTE(random()), 0};
        const DWORD masks[] = {0xF800, 0x07E0, 0x001F, 0xFF, 0xFF00, 0xFF0000};
        if (nCompression == BI_BITFIELDS)
            std::copy_n(nBits == 16 ? masks : masks + 3, 3, m_rest.begin());
        const bool bRuns = nCompression == BI_RLE8;
        const int nRow = bRuns ? 2 * cx + 2 : (cx * nBits + 31) / 32 * 4;
        for (int i = 0; i < nRow * abs(cy); ++i)
            m_pixels.push_back(static_cast<BYTE>(random() % (nUsed ? nUsed : 256)));
        for (size_t i = 0; bRuns && i < m_pixels.size(); i += 2)
        {  // counts of 1, and 0 0 at the end
            m_pixels[i] = int(i) % nRow < 2 * cx;
            m_pixels[i + 1] = m_pixels[i] ? m_pixels[i + 1] : BYTE(0);
        }
        m_info.biSizeImage = bRuns ? m_pixels.size() : 0;
        m_file.bfOffBits = sizeof m_file + Packed(0).size() - m_pixels.size();
    }

    // What the system itself shows of it.
    CPixelMap Picture() const
    {
        const std::vector<BYTE> dib = Packed(0);
        const int cx = m_info.biWidth, cy = abs(m_info.biHeight);
        CTestSurface surface(CPixelMap(cx, cy));
        StretchDIBits(surface, 0, 0, cx, cy, 0, 0, cx, cy, &dib[dib.size() - m_pixels.size()],
                      reinterpret_cast<const BITMAPINFO *>(dib.data()), DIB_RGB_COLORS, SRCCOPY);
        return surface.Read();
    }
    // Header, colours, with room for that many if not 0, pixels.
    std::vector<BYTE> Packed(size_t nRoom) const
    {
        std::vector<BYTE> bytes;
        Append(bytes, &m_info, sizeof m_info);
        Append(bytes, m_rest.data(), m_rest.size() * 4);
        Append(bytes, m_table.data(), m_table.size() * 4);
        bytes.resize(nRoom ? m_info.biSize + nRoom * 4 : bytes.size());
        Append(bytes, m_pixels.data(), m_pixels.size());
        return bytes;
    }
    std::vector<BYTE> File() const
    {
        std::vector<BYTE> bytes;
        Append(bytes, &m_file, sizeof m_file);
        Append(bytes, Packed(0).data(), Packed(0).size());
        return bytes;
    }

private:
    static void Append(std::vector<BYTE> &bytes, const void *p, size_t nSize)
    {
        const BYTE *const pBytes = static_cast<const BYTE *>(p);
        bytes.insert(bytes.end(), pBytes, pBytes + nSize);
    }
};

inline void WriteBytes(const std::string &path, const std::vector<BYTE> &bytes)
{
    std::ofstream(path, std::ios::binary) << std::string(bytes.begin(), bytes.end());
}
