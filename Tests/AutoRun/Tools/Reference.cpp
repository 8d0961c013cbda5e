// What the launcher must show, drawn by plain Win32 calls from the resources of a launcher's file.
// Usage: Reference LAUNCHER PICTURE.bmp [HOTSPOT]
// HOTSPOT 0 to 3 is the line that is lit. Prints the rectangle of each line's text.
#include "SaveBitmap.h"

#include <stdio.h>
#include <stdlib.h>

#include <string>

namespace {

HMODULE g_module;

std::string Text(UINT nID)
{
    char buffer[4096] = "";
    LoadStringA(g_module, nID, buffer, sizeof buffer);
    return buffer;
}

POINT Position(UINT nID)
{
    int x = 0, y = 0;
    sscanf(Text(nID).c_str(), "%d,%d", &x, &y);
    return {x, y};
}

// What does not parse stays as the font before has it.
HFONT Font(UINT nID)
{
    static int s_nPoints, s_nBold, s_nItalic;
    static char s_face[256];
    sscanf(Text(nID).c_str(), "%d,%d,%d,%255s", &s_nPoints, &s_nBold, &s_nItalic, s_face);
    return CreateFontA(-MulDiv(s_nPoints, 96, 72), 0, 0, 0, s_nBold > 0 ? 700 : 400, s_nItalic != 0,
                       0, 0, 0, 0, 0, 0, VARIABLE_PITCH | FF_SWISS, s_face);
}

SIZE Picture(HDC hDC, UINT nID, POINT at)
{
    const HANDLE hBitmap =
        LoadImageA(g_module, MAKEINTRESOURCEA(nID), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION);
    BITMAP bitmap = {};
    GetObjectA(hBitmap, sizeof bitmap, &bitmap);
    if (hDC) {
        const HDC hSource = CreateCompatibleDC(hDC);
        SelectObject(hSource, hBitmap);
        BitBlt(hDC, at.x, at.y, bitmap.bmWidth, bitmap.bmHeight, hSource, 0, 0, SRCCOPY);
        DeleteDC(hSource);
    }
    DeleteObject(hBitmap);
    return {bitmap.bmWidth, bitmap.bmHeight};
}

void Line(HDC hDC, POINT at, int nOffset, COLORREF cr, const std::string &text)
{
    SetTextColor(hDC, cr);
    TextOutA(hDC, at.x - nOffset, at.y - nOffset, text.c_str(), static_cast<int>(text.size()));
}

struct CLine
{
    UINT nText, nPosition, nBullet;
};
const CLine g_lines[] = {{1, 6, 38}, {2, 5, 39}, {20, 24, 37}, {21, 25, 36}};

void Draw(HDC hDC, int nLit)
{
    const HFONT hTitle = Font(32), hItem = Font(13), hAbout = Font(14);
    Picture(hDC, 200, {0, 0});
    Picture(hDC, 309, Position(33));
    for (const CLine &line : g_lines)
        Picture(hDC, 311, Position(line.nBullet));
    SetBkMode(hDC, TRANSPARENT);
    SelectObject(hDC, hTitle);
    Line(hDC, Position(30), 0, 0, Text(28));

    int left = 0, top = 0, right = 0, bottom = 0;
    sscanf(Text(7).c_str(), "%d,%d,%d,%d", &left, &top, &right, &bottom);
    RECT about = {left, top, right, bottom};
    SelectObject(hDC, hAbout);
    DrawTextA(hDC, Text(35).c_str(), -1, &about, 0);

    int r = 0, g = 0, b = 0;
    sscanf(Text(11).c_str(), "%d,%d,%d", &r, &g, &b);
    SelectObject(hDC, hItem);
    for (int i = 0; i < 4; ++i) {
        const POINT at = Position(g_lines[i].nPosition);
        const std::string text = Text(g_lines[i].nText);
        Line(hDC, at, 0, 0, text);
        if (i == nLit) {
            Line(hDC, at, 2, RGB(255, 255, 255), text);
            Line(hDC, at, 1, RGB(r, g, b), text);
        }
        SIZE size = {};
        GetTextExtentPoint32A(hDC, text.c_str(), static_cast<int>(text.size()), &size);
        printf("%ld %ld %ld %ld\n", at.x, at.y, size.cx, size.cy);
    }
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc < 3)
        return 2;
    g_module = LoadLibraryExA(argv[1], nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (!g_module)
        return 3;
    const HDC hScreen = GetDC(nullptr);
    const HDC hDC = CreateCompatibleDC(hScreen);
    const SIZE size = Picture(nullptr, 200, {0, 0});
    const HBITMAP hBitmap = CreateCompatibleBitmap(hScreen, size.cx, size.cy);
    SelectObject(hDC, hBitmap);
    Draw(hDC, argc > 3 ? atoi(argv[3]) : -1);
    GdiFlush();
    return SaveBitmap(argv[2], hDC, hBitmap, size) ? 0 : 4;
}
