#pragma once

#include <limits.h>

#include <vector>

#include "CUI/ControlWindow.h"
#include "Canvas/Arrange.h"
#include "Canvas/FaceItem.h"
#include "Canvas/FacePicture.h"
#include "Canvas/SkinFace.h"

class CCanvas;

// The window around a canvas.
class CCanvasHost
{
public:
    // Other items are selected, or the first of them is another one.
    virtual void OnCanvasSelection() = 0;
    // An item was clicked twice: its text is to be edited.
    virtual void OnCanvasActivate(FaceItem item) = 0;
    // The zoom is another one, by the wheel.
    virtual void OnCanvasZoom() = 0;

protected:
    ~CCanvasHost() = default;
};

// The launcher's face, to be arranged with mouse and keyboard.
//
//     click               selects an item, with Ctrl one more; beside all items: a frame selects
//     drag                moves what is selected; Alt: without snapping; Escape: back. A line takes
//                         its bullet along, a bullet goes alone
//     grips               size the description
//     arrow keys          nudge by a pixel, with Shift by ten
//     Tab, Shift+Tab      the next item; from the last on to the next control
//     Ctrl+wheel          zooms
class CCanvas : public CCUIControlWindow
{
public:
    // Both must outlive it.
    CCanvas(CDocument &document, CCanvasHost &host);
    ~CCanvas() override;

    int CreateCanvas(HWND hParent, UINT nID);

    // Shows what the document has now: of a part of it, or all (null).
    void Read(const SkinPart *pPart);

    // Percent.
    int GetZoom() const { return m_nZoom; }
    void SetZoom(int nPercent);
    // The next larger (1) or smaller (-1) of the usual ones; where there is none, CanZoom is false.
    void ZoomBy(int nSteps);
    bool CanZoom(int nSteps) const { return NextZoom(nSteps) != m_nZoom; }

    // Whether sizes and what reacts to the mouse are shown; whether dragged items snap.
    void ShowZones(bool bShow);
    bool ZonesShown() const { return m_bZones; }
    void SetSnapping(bool bSnap) { m_bSnap = bSnap; }
    bool IsSnapping() const { return m_bSnap; }

    // The first one is what others are aligned to.
    const std::vector<FaceItem> &Selection() const { return m_selection; }
    // ItemNone: nothing.
    void Select(FaceItem item);
    void SelectAll();
    bool IsSelected(FaceItem item) const;

    bool CanArrange(Arrangement arrangement) const;
    void ArrangeSelection(Arrangement arrangement);
    // Moves what is selected by pixels of the face.
    void Nudge(int x, int y);

    // Pixels of the face.
    const RECT &ItemRect(FaceItem item) const { return m_rects[item]; }
    const SIZE &FaceSize() const { return m_picture.Size(); }
    const CLauncherFace &Face() const { return m_face.Face(); }
    // From and to client pixels.
    POINT ToFace(const POINT &client) const;
    // The item on top at a client pixel, or ItemNone.
    FaceItem ItemAt(const POINT &client) const;
    RECT ToClient(const RECT &face) const;

    int PreTranslateMessage(MSG *pMsg) override;

protected:
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnSize(UINT nType, int cx, int cy) override;
    void OnPaint(HDC hDC) override;
    int OnEraseBkgnd(HDC hDC) override;
    void OnLButtonDown(UINT nFlags, POINT &point) override;
    void OnLButtonUp(UINT nFlags, POINT &point) override;
    void OnLButtonDblClk(UINT nFlags, POINT &point) override;
    void OnRButtonDown(UINT nFlags, POINT &point) override;
    void OnMouseMove(UINT nFlags, POINT &point) override;
    void OnMouseLeave() override;
    int OnSetCursor(HWND hWnd, UINT nHitTest, UINT nMessage) override;
    void OnMouseWheel(UINT nFlags, int nDelta, POINT &point) override;
    void OnHScroll(UINT nCode, UINT nPos, HWND hScrollBar) override;
    void OnVScroll(UINT nCode, UINT nPos, HWND hScrollBar) override;
    void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags) override;
    UINT OnGetDlgCode(const MSG *pMsg) override;
    void OnSetFocus(HWND hOld) override;
    void OnKillFocus(HWND hNew) override;
    void OnCancelMode() override;
    void OnCaptureChanged(HWND hNew) override;

private:
    enum DragMode
    {
        DragNone,
        DragMove,
        DragSize,
        DragFrame
    };

    int NextZoom(int nSteps) const;
    int ToClientX(LONG x) const;
    int ToClientY(LONG y) const;
    SIZE ZoomedSize() const;
    void Rearrange();
    void UpdateScrollBar(int nBar, int nLength, int nPage, int &nPos);
    void ScrollTo(int x, int y);
    void Scroll(int nBar, UINT nCode);
    void ScrollIntoView(const RECT &face);

    bool Shows(const SkinPart &part) const;
    void DrawAll();
    void ReadRects();
    void MarkItem(FaceItem item, const RECT &rect);
    void MarkFace(RECT rect);
    void Invalidate(const RECT &face);
    void InvalidateItem(FaceItem item);

    void PaintAll(HDC hDC, const RECT &part);
    void PaintFace(HDC hDC, const RECT &part) const;
    void PaintMarks(HDC hDC);
    void PaintZones(HDC hDC) const;

    void SetSelection(const std::vector<FaceItem> &items);
    void Toggle(FaceItem item);
    void SelectFrame();
    void StepSelection(bool bBack, bool &bLeft);
    void SetHot(int nHotSpot);

    bool HasGrips() const;
    int GripAt(const POINT &client) const;
    RECT GripRect(int nGrip) const;
    void BeginDrag(DragMode mode, const POINT &client);
    void DragTo(const POINT &client);
    void EndDrag(bool bKeep);
    void MoveTo(POINT by);
    void SizeTo(const POINT &by);
    std::vector<LONG> SnapLines(bool bAcross) const;
    bool Follows(FaceItem item) const;
    void PutItem(FaceItem item, const RECT &rect);

    CDocument &m_document;
    CCanvasHost &m_host;
    CSkinFace m_face;
    CFacePicture m_picture;
    SIZE m_title = {};
    RECT m_rects[FaceItemCount] = {};  // where the items were when they were drawn
    RECT m_dirty = {};                 // of the face, to be drawn before it is shown

    int m_nZoom = 100;
    POINT m_scroll = {};
    POINT m_origin = {};  // of the face, in client pixels
    int m_nWheel = 0;
    bool m_bZones = false;
    bool m_bSnap = true;
    bool m_bFocus = false;

    std::vector<FaceItem> m_selection;
    int m_nHotSpot = HotSpotNone;

    DragMode m_drag = DragNone;
    bool m_bDragged = false;  // far enough to be no click
    int m_nGrip = -1;
    POINT m_dragStart = {};         // client pixels
    POINT m_dragEnd = {};           // of a frame
    std::vector<RECT> m_dragRects;  // of the selection, where it was
    LONG m_nGuideX = NO_GUIDE;      // what the drag has snapped to
    LONG m_nGuideY = NO_GUIDE;

    static const LONG NO_GUIDE = LONG_MIN;
};
