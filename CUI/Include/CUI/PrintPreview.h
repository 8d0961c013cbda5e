#pragma once

/// @file
/// Pages on the screen, as they are printed.

#include "CUI/Control.h"
#include "CUI/Printer.h"

/// Shows one of several pages: whole, or larger with scroll bars. Arrow keys and the wheel scroll,
/// and at the end of a page go on to the next one, as Page Up and Page Down do; Home and End show
/// the first and the last page, the wheel with Ctrl changes the size. For the user-interface
/// thread only.
///
///     m_preview.SetPages(&m_pages, printer.GetPaper());
///     m_preview.CreateControl(frame, 1, "");
///     frame.SetClient(&m_preview);
class CCUIPrintPreview : public CCUIControl
{
public:
    /// Without pages, to be shown whole.
    CUI_API CCUIPrintPreview();
    CUI_API ~CCUIPrintPreview() override;

    /// Shows other pages, or the same after a change; null: none. They are not owned, and stay as
    /// long as they are shown.
    CUI_API void SetPages(CCUIPages *pPages, const CUIPaper &paper);
    /// The page, from 0; one that there is not is taken as the nearest.
    /// @{
    CUI_API void SetPage(int nPage);
    int GetPage() const { return m_nPage; }
    /// @}
    int GetPageCount() const { return m_nPages; }  ///< as SetPages found them

    /// How large the page is, in per cent of the paper, from 10 to 400; 0: as large as there is
    /// room. What is in the middle stays there.
    /// @{
    CUI_API void SetZoom(int nPercent);
    CUI_API int GetZoom() const;
    /// @}
    bool IsWhole() const { return m_nPercent == 0; }  ///< as large as there is room
    /// Goes to the next of the usual sizes, larger or smaller, if there is one.
    CUI_API void StepZoom(bool bLarger);

    CUI_API int PreCreate(CREATESTRUCTA *pCreate) override;

protected:
    /// What is said above.
    /// @{
    CUI_API void Paint(HDC hDC, const RECT &rect) override;
    CUI_API void OnSize(UINT nType, int cx, int cy) override;
    CUI_API void OnHScroll(UINT nCode, UINT nPos, HWND hScrollBar) override;
    CUI_API void OnVScroll(UINT nCode, UINT nPos, HWND hScrollBar) override;
    CUI_API void OnMouseWheel(UINT nFlags, int nDelta, POINT &point) override;
    CUI_API void OnKeyDown(UINT nKey, UINT nRepeat, UINT nFlags) override;
    CUI_API UINT OnGetDlgCode(const MSG *pMsg) override;
    /// @}

private:
    SIZE PaperSize() const;
    POINT PagePlace() const;
    void Measure();
    bool SetBar(int nBar, int nAll, int nView, LONG &nAt);
    void Arrange();
    void ScrollOrTurn(int nBy);

    CCUIPages *m_pPages;
    CUIPaper m_paper;
    int m_nPages;
    int m_nPage;
    int m_nPercent;  // 0: whole
    int m_nWheel;    // turned, but too little for a step
    SIZE m_view;     // client area
    SIZE m_page;     // on the screen
    POINT m_at;      // what of the page, with the room around it, is at the corner of the view
    bool m_bArranging;
};
