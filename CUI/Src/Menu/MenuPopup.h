#pragma once

#include "CU/Platform.h"
#include "Menu/MenuMetrics.h"
#include "Menu/MenuRecord.h"

class CUIMenuItem;

// One popup of a CCUIMenu: the records of its items, and their sizes.
class CCUIMenuPopup
{
public:
    explicit CCUIMenuPopup(HMENU hMenu) : m_hMenu(hMenu) {}
    ~CCUIMenuPopup() { delete[] m_pRecords; }
    CCUIMenuPopup(const CCUIMenuPopup &) = delete;
    CCUIMenuPopup &operator=(const CCUIMenuPopup &) = delete;

    HMENU GetMenu() const { return m_hMenu; }
    // The record at that address; null when it is none of the popup's.
    CCUIMenuRecord *Record(ULONG_PTR dwItemData) const;

    // Takes the items over as they are now, and measures what has changed.
    void Prepare(const CCUIMenuPictures *pPictures, const CCUIAccelerators &keys);
    // Gives the items back to the system to draw.
    void GiveBack() const;

    void Measure(const CCUIMenuRecord &record, MEASUREITEMSTRUCT &measure) const;
    void Draw(const CCUIMenuRecord &record, const DRAWITEMSTRUCT &draw) const;
    // The answer to WM_MENUCHAR.
    long Character(UINT nChar) const;

    CCUIMenuPopup *m_pNext = nullptr;

private:
    class CDrawing;

    bool Take(CCUIMenuRecord &record, const CUIMenuItem &item, const CCUIMenuPictures *pPictures,
              const CCUIAccelerators &keys);
    bool TakeSettings();
    void Give(CCUIMenuRecord &record, CUIMenuItem &item, UINT nItem) const;
    void MeasureTexts();
    void MeasureColumns();
    int MarkWidth() const;
    int TextLeft() const;

    HMENU m_hMenu;
    CCUIMenuRecord *m_pRecords = nullptr;  // one for each item, in their order, and some to spare
    int m_nRecords = 0;
    int m_nItems = 0;
    HKL m_hLayout = nullptr;  // the keyboard's, of which the shortcuts' names are
    CCUIMenuMetrics m_metrics;
    int m_cxPicture = 0;
    int m_cyPicture = 0;
};
