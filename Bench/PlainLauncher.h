#pragma once

#include <windows.h>

#include <stdio.h>
#include <string.h>

// The launcher by plain Win32, as a program without a framework would have it: the same dialog,
// table, pictures and calls, everything loaded once.
class CPlainLauncher
{
public:
    explicit CPlainLauncher(HINSTANCE hInstance) : m_hInstance(hInstance)
    {
        for (int i = 0; i < 3; ++i)
            LoadPicture(i);
    }

    HWND Create()
    {
        s_pThis = this;
        const HWND hWnd =
            CreateDialogParamA(m_hInstance, MAKEINTRESOURCEA(100), nullptr, DialogProc, 0);
        ShowWindow(hWnd, SW_SHOW);
        SetForegroundWindow(hWnd);
        return hWnd;
    }

private:
    static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM)
    {
        switch (message) {
        case WM_INITDIALOG: s_pThis->Init(hWnd); return TRUE;
        case WM_ERASEBKGND: s_pThis->Paint(reinterpret_cast<HDC>(wParam)); return TRUE;
        case WM_COMMAND: DestroyWindow(hWnd); return TRUE;
        case WM_DESTROY: PostQuitMessage(0); return TRUE;
        default: return FALSE;
        }
    }

    void LoadPicture(int nIndex)
    {
        static const int s_nIDs[] = {200, 309, 311};
        // A picture in the screen's format, made with the palette that the file's colours need.
        const auto hDIB =
            static_cast<HBITMAP>(LoadImageA(m_hInstance, MAKEINTRESOURCEA(s_nIDs[nIndex]),
                                            IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
        DIBSECTION section = {};
        GetObjectA(hDIB, sizeof section, &section);
        struct
        {
            BITMAPINFOHEADER head;
            RGBQUAD colors[256];
        } info = {};
        info.head = section.dsBmih;
        const HDC hScreen = GetDC(nullptr);
        const HDC hMemory = CreateCompatibleDC(hScreen);
        const HGDIOBJ hOld = SelectObject(hMemory, hDIB);
        GetDIBColorTable(hMemory, 0, 256, info.colors);
        SelectObject(hMemory, hOld);
        DeleteDC(hMemory);
        m_palettes[nIndex] = MakePalette(info.colors);
        SelectPalette(hScreen, m_palettes[nIndex], FALSE);
        RealizePalette(hScreen);
        m_bitmaps[nIndex] = CreateDIBitmap(hScreen, &info.head, CBM_INIT, section.dsBm.bmBits,
                                           reinterpret_cast<BITMAPINFO *>(&info), DIB_RGB_COLORS);
        m_sizes[nIndex] = {section.dsBm.bmWidth, section.dsBm.bmHeight};
        ReleaseDC(nullptr, hScreen);
        DeleteObject(hDIB);
    }

    static HPALETTE MakePalette(const RGBQUAD *pColors)
    {
        struct
        {
            LOGPALETTE head;
            PALETTEENTRY more[255];
        } palette = {};
        palette.head.palVersion = 0x300;
        palette.head.palNumEntries = 256;
        PALETTEENTRY *pEntries = palette.head.palPalEntry;
        for (int i = 0; i < 256; ++i)
            pEntries[i] = {pColors[i].rgbRed, pColors[i].rgbGreen, pColors[i].rgbBlue, 0};
        return CreatePalette(&palette.head);
    }

    void Init(HWND hWnd)
    {
        m_hTitle = ReadFont(32);
        m_hItem = ReadFont(13);
        m_hAbout = ReadFont(14);
        char szText[256];
        SetWindowTextA(hWnd, Read(9, szText));
        SetWindowPos(hWnd, nullptr, (GetSystemMetrics(SM_CXSCREEN) - m_sizes[0].cx) / 2,
                     (GetSystemMetrics(SM_CYSCREEN) - m_sizes[0].cy) / 2, m_sizes[0].cx,
                     m_sizes[0].cy, SWP_NOZORDER);
        const HICON hIcon = LoadIconA(m_hInstance, MAKEINTRESOURCEA(2));
        SendMessageA(hWnd, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(hIcon));
        SendMessageA(hWnd, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(hIcon));
        static const UINT s_nTexts[] = {28, 1, 2, 20, 21, 35};
        for (int i = 0; i < 6; ++i)
            Read(s_nTexts[i], m_szTexts[i]);
        static const UINT s_nPoints[] = {33, 34, 38, 39, 37, 36, 30, 6, 5, 24, 25};
        for (int i = 0; i < 11; ++i)
            sscanf(Read(s_nPoints[i], szText), "%ld,%ld", &m_points[i].x, &m_points[i].y);
        sscanf(Read(7, szText), "%ld,%ld,%ld,%ld", &m_about.left, &m_about.top, &m_about.right,
               &m_about.bottom);
        Read(11, szText);
        Read(12, szText);
    }

    char *Read(UINT nID, char (&szText)[256])
    {
        LoadStringA(m_hInstance, nID, szText, sizeof szText);
        return szText;
    }

    HFONT ReadFont(UINT nID)
    {
        LOGFONTA font = {};
        char szText[256];
        int nHeight = 0, nBold = 0, nItalic = 0;
        sscanf(Read(nID, szText), "%d,%d,%d,%31s", &nHeight, &nBold, &nItalic, font.lfFaceName);
        font.lfHeight = -MulDiv(nHeight, 96, 72);
        font.lfWeight = nBold > 0 ? FW_BOLD : FW_NORMAL;
        font.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
        return CreateFontIndirectA(&font);
    }

    void Paint(HDC hDC)
    {
        const int nSaved = SaveDC(hDC);
        const SIZE size = m_sizes[0];
        if (!m_hMemory) {
            m_hMemory = CreateCompatibleDC(hDC);
            SelectObject(m_hMemory, CreateCompatibleBitmap(hDC, size.cx, size.cy));
            m_hSource = CreateCompatibleDC(hDC);
        }
        Blit(0, {0, 0});
        Blit(1, m_points[0]);
        for (int i = 2; i < 6; ++i)
            Blit(2, m_points[i]);
        SetBkMode(m_hMemory, TRANSPARENT);
        SetTextColor(m_hMemory, 0);
        const HGDIOBJ hOld = SelectObject(m_hMemory, m_hTitle);
        Line(m_points[6], m_szTexts[0]);
        SelectObject(m_hMemory, m_hAbout);
        DrawTextA(m_hMemory, m_szTexts[5], -1, &m_about, 0);
        SelectObject(m_hMemory, m_hItem);
        if (!m_bMeasured) {
            m_bMeasured = true;
            for (int i = 1; i < 5; ++i) {
                RECT rect = {};
                DrawTextA(m_hMemory, m_szTexts[i], -1, &rect, DT_CALCRECT | DT_SINGLELINE);
            }
        }
        for (int i = 1; i < 5; ++i)
            Line(m_points[6 + i], m_szTexts[i]);
        SelectObject(m_hMemory, hOld);
        SelectPalette(hDC, m_palettes[0], FALSE);
        RealizePalette(hDC);
        BitBlt(hDC, 0, 0, size.cx, size.cy, m_hMemory, 0, 0, SRCCOPY);
        RestoreDC(hDC, nSaved);
    }

    void Blit(int nIndex, POINT at)
    {
        const HPALETTE hOldPalette = SelectPalette(m_hSource, m_palettes[nIndex], FALSE);
        RealizePalette(m_hSource);
        const HGDIOBJ hOld = SelectObject(m_hSource, m_bitmaps[nIndex]);
        BitBlt(m_hMemory, at.x, at.y, m_sizes[nIndex].cx, m_sizes[nIndex].cy, m_hSource, 0, 0,
               SRCCOPY);
        SelectObject(m_hSource, hOld);
        SelectPalette(m_hSource, hOldPalette, FALSE);
        RealizePalette(m_hSource);
    }

    void Line(POINT at, const char *text)
    {
        TextOutA(m_hMemory, at.x, at.y, text, static_cast<int>(strlen(text)));
    }

    static inline CPlainLauncher *s_pThis = nullptr;
    HINSTANCE m_hInstance;
    HBITMAP m_bitmaps[3];
    HPALETTE m_palettes[3];
    SIZE m_sizes[3];
    HFONT m_hTitle = nullptr;
    HFONT m_hItem = nullptr;
    HFONT m_hAbout = nullptr;
    char m_szTexts[6][256];
    POINT m_points[11] = {};
    RECT m_about = {};
    HDC m_hMemory = nullptr;
    HDC m_hSource = nullptr;
    bool m_bMeasured = false;
};
