#pragma once

#include <windows.h>

#include <stdio.h>

#include <vector>

// Writes a bitmap that is compatible with hDC as a 24-bit file.
inline bool SaveBitmap(const char *path, HDC hDC, HBITMAP hBitmap, SIZE size)
{
    BITMAPINFOHEADER info = {};
    info.biSize = sizeof info;
    info.biWidth = size.cx;
    info.biHeight = size.cy;
    info.biPlanes = 1;
    info.biBitCount = 24;
    const DWORD nBytes = static_cast<DWORD>((size.cx * 3 + 3) / 4 * 4 * size.cy);
    std::vector<char> bits(nBytes);
    GetDIBits(hDC, hBitmap, 0, static_cast<UINT>(size.cy), bits.data(),
              reinterpret_cast<BITMAPINFO *>(&info), DIB_RGB_COLORS);
    BITMAPFILEHEADER header = {};
    header.bfType = 0x4D42;
    header.bfOffBits = sizeof header + sizeof info;
    header.bfSize = header.bfOffBits + nBytes;
    FILE *file = fopen(path, "wb");
    if (!file)
        return false;
    fwrite(&header, sizeof header, 1, file);
    fwrite(&info, sizeof info, 1, file);
    fwrite(bits.data(), nBytes, 1, file);
    return fclose(file) == 0;
}
