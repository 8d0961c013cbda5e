// Paints what a launcher must show, by plain Win32 calls from the resources of its file.
// Usage: Reference LAUNCHER.exe PIXELS
// PIXELS gets the pictures with line 0, 1, 2, 3 and none lit, four bytes a pixel. Prints the size
// of the pictures and the rectangle of each line's text.
#include <windows.h>

#include <stdio.h>

#include <string>
#include <vector>

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
    const HDC hSource = CreateCompatibleDC(hDC);
    SelectObject(hSource, hBitmap);
    BitBlt(hDC, at.x, at.y, bitmap.bmWidth, bitmap.bmHeight, hSource, 0, 0, SRCCOPY);
    return {bitmap.bmWidth, bitmap.bmHeight};
}

void Line(HDC hDC, POINT at, int nOffset, COLORREF cr, const std::string &text)
{
    SetTextColor(hDC, cr);
    TextOutA(hDC, at.x - nOffset, at.y - nOffset, text.c_str(), static_cast<int>(text.size()));
}

const struct
{
    UINT nText, nPosition, nBullet;
} g_lines[] = {{1, 6, 38}, {2, 5, 39}, {20, 24, 37}, {21, 25, 36}};

void Draw(HDC hDC, int nLit)
{
    const HFONT hTitle = Font(32), hItem = Font(13), hAbout = Font(14);
    Picture(hDC, 200, {0, 0});
    Picture(hDC, 309, Position(33));
    for (const auto &line : g_lines)
        Picture(hDC, 311, Position(line.nBullet));
    SetBkMode(hDC, TRANSPARENT);
    SelectObject(hDC, hTitle);
    Line(hDC, Position(30), 0, 0, Text(28));

    RECT about = {};
    sscanf(Text(7).c_str(), "%ld,%ld,%ld,%ld", &about.left, &about.top, &about.right,
           &about.bottom);
    SelectObject(hDC, hAbout);
    DrawTextA(hDC, Text(35).c_str(), -1, &about, 0);

    int r = 0, g = 0, b = 0;
    sscanf(Text(11).c_str(), "%d,%d,%d", &r, &g, &b);
    SelectObject(hDC, hItem);
    for (const auto &line : g_lines) {
        const POINT at = Position(line.nPosition);
        Line(hDC, at, 0, 0, Text(line.nText));
        if (&line != g_lines + nLit)
            continue;
        Line(hDC, at, 2, RGB(255, 255, 255), Text(line.nText));
        Line(hDC, at, 1, RGB(r, g, b), Text(line.nText));
    }
}

}  // namespace

int main(int, char **argv)
{
    g_module = LoadLibraryExA(argv[1], nullptr, LOAD_LIBRARY_AS_DATAFILE);
    FILE *file = fopen(argv[2], "wb");
    const HDC hScreen = GetDC(nullptr), hDC = CreateCompatibleDC(hScreen);
    const SIZE size = Picture(hDC, 200, {0, 0});
    SelectObject(hDC, CreateCompatibleBitmap(hScreen, size.cx, size.cy));
    BITMAPINFO info = {{sizeof info.bmiHeader, size.cx, -size.cy, 1, 32, 0, 0, 0, 0, 0, 0}, {}};
    std::vector<DWORD> pixels(static_cast<size_t>(size.cx * size.cy));
    for (int nLit = 0; nLit < 5; ++nLit) {
        Draw(hDC, nLit);
        GetDIBits(hDC, static_cast<HBITMAP>(GetCurrentObject(hDC, OBJ_BITMAP)), 0,
                  static_cast<UINT>(size.cy), pixels.data(), &info, DIB_RGB_COLORS);
        fwrite(pixels.data(), 4, pixels.size(), file);
    }
    printf("%ld %ld\n", size.cx, size.cy);
    for (const auto &line : g_lines) {
        const POINT at = Position(line.nPosition);
        SIZE text = {};
        GetTextExtentPoint32A(hDC, Text(line.nText).c_str(),
                              static_cast<int>(Text(line.nText).size()), &text);
        printf("%ld %ld %ld %ld\n", at.x, at.y, text.cx, text.cy);
    }
    return fclose(file);
}
