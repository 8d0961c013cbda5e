#pragma once

#include "Base/Array.h"
#include "CUI/FrameWindow.h"
#include "Window/MoveBatch.h"

// The children of a frame: who they are and where they stand. Their objects may go at any time, so
// each is asked for by its window before it is touched.
class CCUIFrameDocks
{
public:
    CCUIFrameDocks() = default;
    CCUIFrameDocks(const CCUIFrameDocks &) = delete;
    CCUIFrameDocks &operator=(const CCUIFrameDocks &) = delete;

    // Whether the window is a child of the frame.
    static bool IsIn(HWND hFrame, HWND hWnd);

    // With a null pSideOf, which else tells the side.
    void AddBar(CCUIControlWindow *pBar, CUIBarSide side, CCUIFrameWindow::SideOf *pSideOf);
    void SetStatusBar(CCUIControlWindow *pBar, CCUIHelpText *pHelp);
    void SetClient(CCUIWindow *pClient);
    // Forgets a child; false where it is none of these.
    bool Remove(HWND hChild);

    // Null: none, or it has gone.
    HWND GetClient() const;
    CCUIHelpText *GetHelp() const;

    // Enters what must move.
    void Plan(HWND hFrame, CCUIMoveBatch &moves);
    // Hides the bars that are shown, and shows those again. The object may be gone afterwards.
    void ShowBars(bool bShow);

private:
    struct CBar
    {
        HWND hWnd;
        CCUIControlWindow *pBar;
        CUIBarSide side;
        CCUIFrameWindow::SideOf *pSideOf;
        bool bHidden;  // by ShowBars
    };

    static bool TakesRoom(HWND hFrame, const CBar &bar);
    static void Place(HWND hFrame, CBar bar, RECT &room, CCUIMoveBatch &moves);
    int FindBar(HWND hWnd) const;

    CCUArray<CBar> m_bars;
    CBar m_statusBar = {nullptr, nullptr, CUI_BAR_BOTTOM, nullptr, false};
    CCUIHelpText *m_pHelp = nullptr;
    HWND m_hClient = nullptr;
    CCUIWindow *m_pClient = nullptr;
};
