#pragma once

#include "Layout/LayoutItems.h"

// Where the children and splitters of a layout stand, and where they are to be.
class CCUILayoutMover
{
public:
    CCUILayoutMover(HWND hLayout, CCUILayoutItems &items, bool bRow, const RECT &rcMargins,
                    int nScrollPos);

    // False: all stand right.
    bool Begin();
    // Moves all at once. False: the system gave up, since it has no memory or one of the windows
    // went on the way.
    bool MoveAll() const;
    // For what is left then.
    int Count() const { return m_items.Count() * 2; }
    void Move(int nIndex) const;

private:
    struct CMove
    {
        HWND hWnd;
        RECT rcNow, rect;
        UINT nFlags;
    };
    struct CRange
    {
        int nFrom, nSize;
    };

    bool Get(int nIndex, CMove &move) const;
    CRange Across(const CCUILayoutItem &item, const RECT &rcNow) const;
    RECT Place(int nPos, int nSize, const CRange &across) const;

    CCUILayoutItems &m_items;
    const bool m_bRow;
    bool m_bBackwards;
    const int m_nScrollPos;
    int m_nClient;  // along the layout
    CRange m_across;
    POINT m_origin;
};
