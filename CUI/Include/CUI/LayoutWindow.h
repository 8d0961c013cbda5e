#pragma once

/// @file
/// Windows that arrange their children in a row or a column.

#include "CUI/ControlWindow.h"

/// How a layout window places a child, in the child's layout flags (CCUIControlWindow).
///
///      31       24 23      16 15    11 10  9   8  7     3  2  1  0
///     +-----------+----------+--------+---+---+---+-------+--+--+--+
///     |     0     |  weight  |   0    |fit|kee|spl|   0   | align  |
///     +-----------+----------+--------+---+---+---+-------+--+--+--+
///
/// A row, with margins and a gap, and how its children lie across it:
///
///     +-----------------------------------------------------------+
///     | +------+  +------+   .          ||                        |
///     | | NEAR |  | FILL | +--------+   || +---------+            |
///     | +------+  |      | | CENTER |   || | FILL    | +--------+ |
///     |           |      | +--------+   || |         | |  FAR   | |
///     |           +------+   .          || +---------+ +--------+ |
///     +-----------------------------------------------------------+
///      margin    gap        weight 2  splitter weight 1     margin
///
/// Along the layout a child gets its fixed size. One that has a weight gets its part of the room
/// that is left instead, but at least its fixed size. Where even that is too much, the last ones
/// are cut off, or the layout scrolls. A control window that is told nothing has the flags 4 and
/// the size 20: it fills a line of 20 pixels.
enum : unsigned long
{
    /// @name Across the layout; one of them
    /// @{
    CUI_PLACE_NEAR = 0,    ///< at the top or the left, as large across as its window is
    CUI_PLACE_CENTER = 1,  ///< the same, in the middle
    CUI_PLACE_FAR = 2,     ///< the same, at the bottom or the right
    CUI_PLACE_FILL = 4,    ///< all of it; whatever the two bits below say
                           /// @}

    /// @name Of concern to the siblings too
    /// @{
    /// The gap between the child and the next one is a splitter, which the user drags to give from
    /// the one to the other: with the mouse, or with the arrow keys, Home and End when it has the
    /// focus. Escape puts back, and so does losing the mouse.
    CUI_PLACE_SPLITTER = 0x100,
    /// Hidden, the child keeps its place; otherwise it gives it back.
    CUI_PLACE_KEEP = 0x200,
    /// The child is asked with CUI_WM_NATURALSIZE. Its fixed size becomes what it answers, if that
    /// is more, and its size across too, unless it fills.
    CUI_PLACE_FIT = 0x400
    /// @}
};

/// The flag bits of a weight, 0 (the child has its fixed size) to 255; a greater one counts as 255.
constexpr unsigned long CUIPlaceWeight(unsigned nWeight)
{
    return (nWeight < 255 ? nWeight : 255UL) << 16;
}

/// A layout asks a child with CUI_PLACE_FIT for the size in which all of it can be seen, its
/// borders included. lParam is a SIZE*, in pixels, which is 0 by 0 before; the answer is nonzero,
/// or the child keeps the size that it has. Layout windows answer GetMinimumSize, controls
/// GetNaturalSize. A child whose answer would be another one now sends CUI_LAYOUT_CHANGED.
const UINT CUI_WM_NATURALSIZE = WM_USER + 0x3300;

class CCUILayoutItems;

/// Arranges its children in a row or a column, in their z-order, which is that of their creation.
/// The windows that count are children, of whatever class, whose property g_sControlWindowProp
/// leads to a PropData in this process; all others are left where they are. A layout window is a
/// control window itself, so layouts nest.
///
/// It lays out anew when its size changes, when children come, go, are shown or hidden, and when
/// they tell it that they have changed (CUI_WM_LAYOUT): in one batch, moving only what does not
/// stand right. What nobody tells it, such as another z-order or a child that came by SetParent, it
/// learns with the next CUI_LAYOUT_ALL. It may be asked to lay out at any time, also while it does.
///
/// Tab goes from control to control, with Shift back: to children with WS_TABSTOP, also to ones
/// without the property, that are enabled and visible, and into windows with WS_EX_CONTROLPARENT,
/// which a layout has by itself. At its end Tab goes on in the layout around it, begins anew in the
/// outermost, and in a dialog is left to that. A control that answers WM_GETDLGCODE with
/// DLGC_WANTTAB keeps it. A layout that gets the focus gives it to the child that had it last, or
/// to the first. What CUI_WM_CHILDFOCUS tells it, it tells its parent too, with the same window.
///
/// It paints its background, in its window colour or else the button face's, and clips its
/// children. In a mirrored window (WS_EX_LAYOUTRTL, on Windows 98 and 2000) left is right and right
/// is left, for rows, places across, margins and splitters alike.
class CCUILayoutWindow : public CCUIControlWindow
{
public:
    /// What the layout is made of.
    enum Direction
    {
        Column,  ///< one below the other
        Row      ///< side by side
    };

    /// Bound to no window.
    CUI_API explicit CCUILayoutWindow(Direction direction = Column);
    CUI_API ~CCUILayoutWindow() override;

    /// Adds WS_CLIPCHILDREN and WS_EX_CONTROLPARENT.
    CUI_API int PreCreate(CREATESTRUCTA *pCreate) override;
    /// Tab also from children that are no control windows; outside of dialogs mnemonics, too
    /// (CUITranslateMnemonic).
    CUI_API int PreTranslateMessage(MSG *pMsg) override;

    // --- Settings; each lays out anew ---

    /// Column or row; first what the constructor was told.
    /// @{
    CUI_API void SetDirection(Direction direction);
    Direction GetDirection() const { return m_direction; }
    /// @}
    /// Pixels between two children, 0 at first. A splitter is as wide, but at least 6 pixels at 96
    /// dots per inch.
    /// @{
    CUI_API void SetGap(int nGap);
    int GetGap() const { return m_nGap; }
    /// @}
    /// Pixels at the four edges; 0 at first.
    /// @{
    CUI_API void SetMargins(const RECT &rcMargins);
    const RECT &GetMargins() const { return m_rcMargins; }
    /// @}
    /// Whether the layout has a scroll bar along its direction when there is no room; false at
    /// first. The wheel turns it, and a control that gets the focus is scrolled into view.
    /// @{
    CUI_API void SetScrolling(bool bScrolls);
    bool GetScrolling() const { return m_bScrolls; }
    /// @}

    // --- Laying out ---

    /// Lays out now. Not necessary after what is named above.
    CUI_API void Layout();
    /// While it is suspended a layout does nothing; at the end it makes up for that. Calls nest.
    /// @{
    CUI_API void Suspend();
    CUI_API void Resume();
    /// @}
    /// The size of the whole window in which all children that are shown have their fixed sizes.
    /// One that has a weight or fills counts with the least. A derived class may answer more, and
    /// tells that it changed by Layout. The parent hears CUI_LAYOUT_CHANGED of a change.
    CUI_API virtual SIZE GetMinimumSize();

    // --- Scrolling ---

    /// How many pixels the children are shifted. What is out of range is put into it.
    /// @{
    CUI_API void ScrollTo(int nPos);
    int GetScrollPos() const { return m_nScrollPos; }
    /// @}
    /// Scrolls as little as needed to show a child, or a window inside of one.
    CUI_API void ScrollIntoView(HWND hWnd);

    // --- Splitters ---

    /// The size along the layout of the child in front of a splitter. Setting it does what dragging
    /// does: the next child gets or gives what the first one gives or gets; fixed sizes become
    /// others, and of two children with weights the parts that they have. While the user moves this
    /// splitter it becomes part of that, which Escape takes back; a move of another one ends, and
    /// stays. False: there is no splitter, since one of the two is hidden, or the window was not
    /// laid out yet. GetSplit answers -1 then.
    /// @{
    CUI_API int GetSplit(HWND hChild) const;
    CUI_API bool SetSplit(HWND hChild, int nSize);
    /// @}

protected:
    /// A splitter is about to give that size to the child in front of it; may be changed. It counts
    /// in the end, whatever SetSplit does meanwhile. A child with a weight keeps its fixed size at
    /// the least, one with CUI_PLACE_FIT what it answered.
    CUI_API virtual void OnSplitting(HWND hChild, int &nSize);
    /// A splitter that was moved stays: the mouse has let go of it, or it has lost the focus.
    CUI_API virtual void OnSplit(HWND hChild, int nSize);

    /// What is said above.
    /// @{
    CUI_API long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    CUI_API void OnDestroy() override;
    CUI_API void OnSize(UINT nType, int cx, int cy) override;
    CUI_API int OnEraseBkgnd(HDC hDC) override;
    CUI_API void OnSetFocus(HWND hOld) override;
    CUI_API void OnParentNotify(UINT nEvent, UINT nID, LPARAM lParam) override;
    CUI_API void OnMouseWheel(UINT nFlags, int nDelta, POINT &point) override;
    CUI_API void OnMouseHWheel(UINT nFlags, int nDelta, POINT &point) override;
    CUI_API void OnHScroll(UINT nCode, UINT nPos, HWND hScrollBar) override;
    CUI_API void OnVScroll(UINT nCode, UINT nPos, HWND hScrollBar) override;
    /// @}

private:
    friend class CCUISplitter;

    bool IsRow() const { return m_direction == Row; }
    void Put(int &nSetting, int nValue);
    void HearLayout(HWND hChild, LPARAM nCode);
    void LayoutSoon();
    bool LayoutOnce();
    bool Refresh();
    void Measure();
    bool DropOrphans();
    bool Ask();
    bool TellParent();
    bool MakeSplitters();
    bool MakeSplitter(HWND hChild);
    bool UpdateScrollBar();
    bool MoveChildren();

    HWND ChildAround(HWND hWnd) const;
    bool MoveFocus(HWND hFrom);
    void GiveFocus(HWND hWnd);
    void HearFocus(HWND hWnd);
    long HandOnFocus(WPARAM wParam, LPARAM lParam);

    void HideScrollBars();
    void Scroll(UINT nCode);
    bool Wheel(int nDelta);

    bool BeginSplit(HWND hChild);
    void MoveSplit(int nBy);
    void DragSplit(int nBy);
    void PlaceSplit(int nSize);
    void EndSplit(bool bKeep);

    CCUILayoutItems *m_pItems;
    RECT m_rcMargins;
    SIZE m_sizeTold;    // to the parent
    HWND m_hLastFocus;  // the child, or the window inside of one
    Direction m_direction;
    int m_nGap;
    int m_nScrollPos;
    int m_nScrollLength;  // what the scroll bar was told
    int m_nScrollPage;
    int m_nScrollBarPos;
    int m_nWheel;      // turned, but not yet scrolled: parts of a pixel, WHEEL_DELTA of them
    int m_nSuspended;  // calls
    bool m_bScrolls;
    bool m_bStale;   // children have come or gone
    bool m_bPosted;  // a message that lays out is on its way
    bool m_bLayingOut;
    bool m_bAgain;  // asked for while laying out, or suspended
};
