#pragma once

#include "CUI/Bitmap.h"

// What the framework's own windows have in common in their looks.

// Pixels at 96 dots an inch, on the screen as it is.
int CUIScale(int n);
// The system's colour, as it is now, for GDI.
COLORREF CUISystemColor(int nIndex);
// Whether the user has chosen colours of high contrast.
bool CUIIsHighContrast();
// A picture that has taken on the system's colours takes on those of now. It stays as it is where
// it cannot be loaded any more.
void CUIReloadSystemColors(CCUIBitmap &bitmap);
// Pictures side by side, each cx pixels wide and drawn for nDpi dots an inch, in the size that the
// screen wants, which cx becomes: stretched, but never shrunk. No colour is new, so that key
// colours stay what they are.
CCUIBitmap CUIScaledPictures(const CCUIBitmap &strip, int &cx, int nDpi);

// The size of a text by DrawText, in the font of a window or, null, the system's.
SIZE CUIMeasureText(HWND hWnd, HFONT hFont, const char *pszText, UINT nFormat);
// A triangle of nSize rows or columns from the point on, which points down or to the right; it is
// twice as broad as high less one.
void CUIDrawTriangle(HDC hDC, int x, int y, int nSize, bool bDown, COLORREF cr);
// A text by DrawText in a colour; disabled, engraved in the colours of buttons.
void CUIDrawStateText(HDC hDC, const char *pszText, RECT rc, UINT nFormat, COLORREF cr,
                      bool bDisabled);
// In one line, in the middle of its height, what has no room in dots.
const UINT CUI_TEXT_LINE = DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS;
// A picture out of a strip, pixels of the key colour left out: these keep the DC's background
// colour, or what is there in the disabled look, which is engraved.
void CUIDrawStatePicture(HDC hDC, int x, int y, const CCUIBitmap &strip, const RECT &rcSource,
                         COLORREF crKey, bool bDisabled);
