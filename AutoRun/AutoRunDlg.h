#pragma once

#include "CUI/Dialog.h"
#include "LauncherFace.h"

// The launcher's only window: a borderless picture, centred on the screen, with four hot spots.
// Everything it shows and starts comes from the string table.
class CAutoRunDlg : public CCUIDialog
{
public:
    explicit CAutoRunDlg(HINSTANCE hInstance);

protected:
    long WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnDestroy() override;
    int OnEraseBkgnd(HDC hDC) override;
    void OnLButtonDown(UINT nFlags, POINT &point) override;
    void OnLButtonUp(UINT nFlags, POINT &point) override;
    void OnMouseMove(UINT nFlags, POINT &point) override;
    void OnCancelMode() override;
    void OnCaptureChanged(HWND hNew) override;

public:
    int PreTranslateMessage(MSG *pMsg) override;

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override;

private:
    void PlaceWindow();
    void SetIcons();

    void SetHotSpot(int nHotSpot);
    void Activate(int nHotSpot);
    void Start(UINT nCommandLineID);

    void PaintIcon(HDC hDC);

    CLauncherFace m_face;
    HICON m_hIcon;
    int m_nHotSpot;  // under the mouse
    int m_nPressed;  // where the left button went down; HotSpotNone: nowhere
};
