#pragma once

#include "Layout/LayoutItems.h"
#include "Window/MoveBatch.h"

// Where the children and splitters of a layout stand, and where they are to be.
class CCUILayoutMover : public CCUIMoveBatch
{
public:
    CCUILayoutMover(HWND hLayout, CCUILayoutItems &items, bool bRow, const RECT &rcMargins,
                    int nScrollPos);

private:
    struct CRange
    {
        int nFrom, nSize;
    };

    void PlaceChild(const CCUILayoutItem &item);
    void PlaceSplitter(const CCUILayoutItem &item);
    CRange Across(const CCUILayoutItem &item, const RECT &rcNow) const;
    RECT Place(int nPos, int nSize, const CRange &across) const;

    CCUILayoutItems &m_items;
    const bool m_bRow;
    const int m_nScrollPos;
    int m_nClient;  // along the layout
    CRange m_across;
};
