#pragma once

#include "Base/Array.h"
#include "CUI/LayoutWindow.h"

class CCUISplitter;

// --- Along the layout and across it ---

inline int CUIAlong(bool bRow, const SIZE &size)
{
    return bRow ? size.cx : size.cy;
}

inline int CUIAcross(bool bRow, const SIZE &size)
{
    return bRow ? size.cy : size.cx;
}

inline SIZE CUIMakeSize(bool bRow, int nAlong, int nAcross)
{
    return bRow ? SIZE{nAlong, nAcross} : SIZE{nAcross, nAlong};
}

// The system has 16 bits for a coordinate in many places; sums of such sizes stay in range too.
inline int CUIInRange(int nSize)
{
    return nSize < 0 ? 0 : nSize > 0x7FFF ? 0x7FFF : nSize;
}

inline SIZE CUISizeOf(const RECT &rect)
{
    return {rect.right - rect.left, rect.bottom - rect.top};
}

// One child of a layout.
struct CCUILayoutItem
{
    HWND hWnd;
    int nFixedSize;
    unsigned long nFlags;
    SIZE natural;             // what it said, if it was asked
    unsigned nShare;          // its weight in 65536ths, until a splitter changes it
    CCUISplitter *pSplitter;  // behind it; owned by the list
    bool bAsk;                // it is to be asked once more

    // As it is to be laid out, along the layout.
    bool bShown;   // it has a place
    bool bPlaced;  // it had one when the layout was made
    int nGap;      // in front of it
    int nMin;
    int nPos;  // in the content, which scrolls
    int nSize;

    bool Has(unsigned long nFlag) const { return (nFlags & nFlag) != 0; }
    bool IsElastic() const { return nShare != 0; }
};

// A splitter's move under way: what stood there before.
struct CCUISplit
{
    CCUILayoutItem first, second;  // first.hWnd: null when there is none
    int nSize;                     // of the first, now
    bool bAsking;                  // OnSplitting is under way
};

// The children of a layout that have the property of control windows, in their z-order. No function
// here sends a message, so that nobody changes the list meanwhile.
class CCUILayoutItems
{
public:
    CCUILayoutItems() : m_pOrphan(nullptr), m_split(), m_size() {}

    int Count() const { return m_items.Count(); }
    CCUILayoutItem &operator[](int nIndex) { return m_items[nIndex]; }
    // Null when the window is none of them.
    CCUILayoutItem *Find(HWND hWnd);
    // The next one that has a place; null: it is the last.
    CCUILayoutItem *NextShown(const CCUILayoutItem &item);

    // Reads all children anew.
    void Load(HWND hParent);
    // Reads one anew; answers whether it changed.
    static bool Reload(CCUILayoutItem &item);
    // For a child that a splitter has given another size.
    static void SetFixedSize(CCUILayoutItem &item, int nSize);
    void Clear();

    // Finds out who has a place, and what all of them need at least: m_size.
    void Measure(HWND hParent, bool bRow, int nGap, int nSplitter);
    // Gives each its place along the layout, from nPos on; nRoom pixels are there.
    void Distribute(int nPos, int nRoom);

    // Takes the splitter from a child that needs none any more.
    void Abandon(CCUISplitter *&pSplitter);

    // Abandoned ones, in a chain, for the layout to delete: they have windows.
    CCUISplitter *m_pOrphan;
    CCUISplit m_split;
    SIZE m_size;  // along and across as cx and cy

private:
    unsigned long long Freeze(int &nRoom);

    CCUArray<CCUILayoutItem> m_items;
};
