#pragma once

#include "Model/SkinEntry.h"
#include "Picture/Pixels.h"
#include "Problems/SkinStrings.h"

enum SkinItemKind
{
    DrawnProduct,
    DrawnBullet,
    DrawnTitle,
    DrawnDescription,
    DrawnLine
};

// One thing that the launcher draws.
struct CSkinItem
{
    SkinItemKind m_kind;
    UINT m_nText;    // entry of the text; 0 for pictures
    UINT m_nPlace;   // entry of the place
    RECT m_rect;     // what it covers, in pixels of the window; empty when there is nothing to draw
    RECT m_seen;     // of the product picture the part that looks different from the background
    bool m_bPlaced;  // false: the place cannot be read, and the launcher takes (0, 0)
};

// What a launcher with these entries and pictures draws, in its order, measured with its fonts.
class CSkinLook
{
public:
    CSkinLook(const CSkin &skin, const CSkinStrings &strings);

    const std::vector<CSkinItem> &Items() const { return m_items; }
    // The window's picture before the texts; nothing when there is no background.
    const CPixels &Picture() const { return m_picture; }
    bool HasPicture() const { return m_picture.m_cx > 0; }
    // What the description's rectangle says, and the size of its text without it.
    const RECT &DescriptionRect() const { return m_rectDescription; }
    SIZE DescriptionSize() const { return m_sizeDescription; }
    COLORREF Highlight() const { return m_highlight; }

private:
    void AddPicture(const CSkin &skin, SkinPicture picture, SkinItemKind kind, UINT nPlace);
    void AddText(HDC hDC, SkinItemKind kind, UINT nText, UINT nPlace);
    void AddDescription(HDC hDC);
    bool ReadPlace(UINT nPlace, POINT &at) const;
    HFONT MakeFont(UINT nEntry);
    void ReadHighlight();

    const CSkinStrings &m_strings;
    std::vector<CSkinItem> m_items;
    CPixels m_picture;
    SkinFont m_font;
    RECT m_rectDescription;
    SIZE m_sizeDescription;
    COLORREF m_highlight;
};
