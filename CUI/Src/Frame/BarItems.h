#pragma once

#include "Base/Array.h"
#include "CUI/Bitmap.h"
#include "CUI/CommandView.h"

class CCUIMenu;

// One item of a control bar: a button, where it has a command, a window, or else a separator. The
// bar's own class of items hears of changes of the command.
class CCUIBarItem : public CCUICommandView
{
public:
    virtual ~CCUIBarItem() = default;

    int nPicture = -1;          // its place in the strip; -1: none
    unsigned short nState = 0;  // of CCUICommandState what can be seen
    bool bArrow = false;        // the menu's arrow alone is pressed
    CCUString sText;
    CCUIMenu *pMenu = nullptr;  // opened by the arrow
    HWND hControl = nullptr;
    SIZE size = {0, 0};            // that it wants
    RECT rc = {0, 0, 0, 0};        // empty: there is no room
    RECT rcBefore = {0, 0, 0, 0};  // before the last layout

    bool IsSeparator() const { return !GetCommand() && !hControl; }
    bool IsButton() const { return GetCommand() && !hControl; }
};

// What makes an item look otherwise for the moment.
enum CCUIBarLook
{
    CUI_LOOK_PLAIN,
    CUI_LOOK_HOT,
    CUI_LOOK_PRESSED
};

// The items of a control bar: how large they are, where they stand, how they look.
class CCUIBarItems
{
public:
    ~CCUIBarItems();
    int Count() const { return m_items.Count(); }
    CCUIBarItem &operator[](int nItem) const { return *m_items[nItem]; }
    // Null for a number that is none, such as that of the button of what has no room.
    CCUIBarItem *At(int nItem) const
    {
        return nItem >= 0 && nItem < Count() ? m_items[nItem] : nullptr;
    }
    // Whether it is still there, for the same command.
    bool Has(const CCUIBarItem *pItem, unsigned int nID) const;
    // Takes ownership.
    void Add(CCUIBarItem *pItem) { m_items.Add(pItem); }
    void Remove(int nItem);
    // The thickness of a bar with them.
    int Thickness(bool bVertical);
    // Buttons are measured anew: the font, the pictures or the texts are others.
    void ForgetSizes();
    // The length that all of them need, for a bar of that thickness.
    int Length(bool bVertical) const;
    // Gives each its place in a bar of that size. The first that does not fit has none, nor have
    // those after it, nor windows that are too wide for a vertical bar: they are hidden.
    void Layout(bool bVertical, int cx, int cy);
    // In the colours of its state. The button of what has no room is number Count().
    void Draw(HDC hDC, int nItem, CCUIBarLook look, bool bEnabled) const;
    void DrawGrip(HDC hDC, bool bVertical, int cx, int cy) const;

    const RECT &Place(int nItem) const
    {
        return nItem < Count() ? (*this)[nItem].rc : m_rcOverflow;
    }
    // The same before the last layout, and whether it is another.
    const RECT &PlaceBefore(int nItem) const
    {
        return nItem < Count() ? (*this)[nItem].rcBefore : m_rcOverflowBefore;
    }
    bool HasMoved(int nItem) const;
    // The arrow of a button that has one.
    static RECT Arrow(const CCUIBarItem &item);
    bool HasText(const CCUIBarItem &item) const;
    // Length of the grip along the bar.
    int Grip() const;

    // The pictures, each cx pixels wide and made for nDpi dots an inch.
    void SetPictures(const CCUIBitmap &strip, int cx, int nDpi);
    // The system's colours, or the dots an inch, are others.
    void RefreshPictures();

    bool m_bTexts = false;
    bool m_bGrip = true;

private:
    bool HasPicture(const CCUIBarItem &item) const;
    bool IsTooWide(const CCUIBarItem &item, bool bVertical) const;
    void MeasureAll();
    void Measure(CCUIBarItem &item, HDC hDC) const;
    void DrawButton(HDC hDC, const CCUIBarItem &item, CCUIBarLook look, bool bEnabled) const;
    void DrawPicture(HDC hDC, const RECT &rc, const CCUIBarItem &item, int x, bool bEnabled) const;
    void DrawOverflow(HDC hDC, CCUIBarLook look) const;

    CCUArray<CCUIBarItem *> m_items;
    CCUIBitmap m_given;  // the pictures as they came
    int m_cxGiven = 16;
    int m_nDpi = 96;     // of what came
    CCUIBitmap m_strip;  // as they are shown
    int m_cxPicture = 16;
    RECT m_rcOverflow = {0, 0, 0, 0};
    RECT m_rcOverflowBefore = {0, 0, 0, 0};
    int m_cyText = 0;   // 0: not measured yet
    int m_nAcross = 0;  // that the items have
    bool m_bVertical = false;
};
