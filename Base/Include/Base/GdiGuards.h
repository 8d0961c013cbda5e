#pragma once

#include "Base/KeepLastError.h"
#include "CU/Platform.h"

// What GDI wants back, given back at the end of a block. Declare an object before the guard that
// selects it: the guard lets go of it first.

class CCUIGdiGuard
{
public:
    CCUIGdiGuard() = default;
    CCUIGdiGuard(const CCUIGdiGuard &) = delete;
    CCUIGdiGuard &operator=(const CCUIGdiGuard &) = delete;
};

// Selects an object and, at the end, what was selected before. False when selecting failed.
class CCUISelect : private CCUIGdiGuard
{
public:
    CCUISelect(HDC hDC, HGDIOBJ hObject) : m_hDC(hDC), m_hOld(SelectObject(hDC, hObject)) {}
    ~CCUISelect()
    {
        if (m_hOld)
            SelectObject(m_hDC, m_hOld);
    }
    explicit operator bool() const { return m_hOld != nullptr; }

private:
    HDC m_hDC;
    HGDIOBJ m_hOld;
};

// Sets the background colour and, at the end, the one before.
class CCUIBkColor : private CCUIGdiGuard
{
public:
    CCUIBkColor(HDC hDC, DWORD cr) : m_hDC(hDC), m_crOld(SetBkColor(hDC, cr)) {}
    ~CCUIBkColor() { SetBkColor(m_hDC, m_crOld); }

private:
    HDC m_hDC;
    DWORD m_crOld;
};

// The same for the text colour.
class CCUITextColor : private CCUIGdiGuard
{
public:
    CCUITextColor(HDC hDC, DWORD cr) : m_hDC(hDC), m_crOld(SetTextColor(hDC, cr)) {}
    ~CCUITextColor() { SetTextColor(m_hDC, m_crOld); }

private:
    HDC m_hDC;
    DWORD m_crOld;
};

// Selects a palette, unless it is null, and realises it; then selects and realises the old one.
class CCUISelectPalette : private CCUIGdiGuard
{
public:
    CCUISelectPalette(HDC hDC, HPALETTE hPal, int bForceBkgd) : m_hDC(hDC), m_bBkgd(bForceBkgd)
    {
        m_hOld = hPal ? Realize(hPal) : nullptr;
    }
    ~CCUISelectPalette()
    {
        if (m_hOld)
            Realize(m_hOld);
    }

private:
    HPALETTE Realize(HPALETTE hPal)
    {
        const HPALETTE hOld = SelectPalette(m_hDC, hPal, m_bBkgd);
        RealizePalette(m_hDC);
        return hOld;
    }
    HDC m_hDC;
    int m_bBkgd;
    HPALETTE m_hOld;
};

// The DC of a window's client area; null: of the screen. Keeps the last error at its end, of which
// Wine 8 makes another when the screen's is given back.
class CCUIWindowDC : private CCUIGdiGuard
{
public:
    explicit CCUIWindowDC(HWND hWnd) : m_hWnd(hWnd), m_hDC(GetDC(hWnd)) {}
    ~CCUIWindowDC()
    {
        const CCUKeepLastError keepLastError;
        ReleaseDC(m_hWnd, m_hDC);
    }
    operator HDC() const { return m_hDC; }

private:
    HWND m_hWnd;
    HDC m_hDC;
};

// A memory DC compatible with another DC; null: with the screen.
class CCUIMemoryDC : private CCUIGdiGuard
{
public:
    explicit CCUIMemoryDC(HDC hDC) : m_hDC(CreateCompatibleDC(hDC)) {}
    ~CCUIMemoryDC() { DeleteDC(m_hDC); }
    operator HDC() const { return m_hDC; }

private:
    HDC m_hDC;
};

// A bitmap that stays selected into a memory DC of its own: null until there is one.
class CCUIBitmapDC : private CCUIGdiGuard
{
public:
    CCUIBitmapDC() = default;
    ~CCUIBitmapDC() { Release(); }
    // Takes the bitmap over, into a DC compatible with another one; null: with the screen. False,
    // and nothing is there any more, when the bitmap is null or there is no memory.
    bool Take(HDC hDC, HBITMAP hBitmap)
    {
        Release();
        m_hBitmap = hBitmap;
        m_hDC = hBitmap ? CreateCompatibleDC(hDC) : nullptr;
        m_hOld = m_hDC ? SelectObject(m_hDC, hBitmap) : nullptr;
        if (!m_hOld)
            Release();
        return m_hOld != nullptr;
    }
    void Release()
    {
        if (m_hOld)
            SelectObject(m_hDC, m_hOld);
        if (m_hDC)
            DeleteDC(m_hDC);
        if (m_hBitmap)
            DeleteObject(m_hBitmap);
        m_hDC = nullptr;
        m_hBitmap = nullptr;
        m_hOld = nullptr;
    }
    operator HDC() const { return m_hDC; }

private:
    HDC m_hDC = nullptr;
    HBITMAP m_hBitmap = nullptr;
    HGDIOBJ m_hOld = nullptr;
};

// Everything that is set on a DC.
class CCUISavedDC : private CCUIGdiGuard
{
public:
    explicit CCUISavedDC(HDC hDC) : m_hDC(hDC), m_nSaved(SaveDC(hDC)) {}
    ~CCUISavedDC() { RestoreDC(m_hDC, m_nSaved); }

private:
    HDC m_hDC;
    int m_nSaved;
};

// A bitmap, brush, pen, font or palette that dies with the guard.
template <typename Handle>
class CCUIOwned : private CCUIGdiGuard
{
public:
    explicit CCUIOwned(Handle hObject) : m_hObject(hObject) {}
    ~CCUIOwned() { Delete(); }
    // Before its time.
    void Delete()
    {
        DeleteObject(m_hObject);
        m_hObject = nullptr;
    }
    // Another one, in its place.
    void Take(Handle hObject)
    {
        Delete();
        m_hObject = hObject;
    }
    operator Handle() const { return m_hObject; }

private:
    Handle m_hObject;
};
