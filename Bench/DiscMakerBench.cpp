#include "AutoRunDlg.h"
#include "Bench.h"
#include "Canvas/Canvas.h"
#include "File/OpenSkin.h"

namespace {

struct CCanvasFrame : CCUIWindow, CDocumentWatcher, CCanvasHost
{
    CCanvasFrame() : m_document(this), m_canvas(m_document, *this)
    {
        Create(nullptr, "canvas", WS_POPUP | WS_VISIBLE, {0, 0, 540, 370}, nullptr, 0);
        m_canvas.CreateCanvas(*this, 1);
        SetWindowPos(m_canvas, nullptr, 0, 0, 540, 370, SWP_NOZORDER);
        CProblems problems;
        m_document.Start(OpenSkin(BENCH_LAUNCHER, problems)->Skin());
        UpdateWindow(m_canvas);
    }
    ~CCanvasFrame() override { Destroy(); }
    void OnSkinChanged(const SkinPart *pPart) override { m_canvas.Read(pPart); }
    void OnCanvasSelection() override {}
    void OnCanvasActivate(FaceItem) override {}
    void OnCanvasZoom() override {}

    // To another place with each call.
    void MoveMouse()
    {
        m_nStep = (m_nStep + 1) % 40;
        Send(WM_MOUSEMOVE, 70 + m_nStep, 185 + m_nStep / 2);
    }
    void Send(UINT message, LONG x, LONG y)
    {
        const RECT at = m_canvas.ToClient({x, y, x, y});
        SendMessageA(m_canvas, message, MK_LBUTTON, MAKELPARAM(at.left, at.top));
    }

    CDocument m_document;
    CCanvas m_canvas;
    int m_nStep = 0;
};

}  // namespace

BENCH_GROUP(DiscMaker)
{
    CCanvasFrame frame;
    CAutoRunDlg dialog(GetModuleHandleA(nullptr));
    const HWND hLauncher = dialog.DoModeless(nullptr);
    SetWindowPos(hLauncher, nullptr, GetSystemMetrics(SM_CXSCREEN) - 514,
                 GetSystemMetrics(SM_CYSCREEN) - 345, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    frame.Send(WM_LBUTTONDOWN, 60, 180);
    BenchCompare(
        "Disc Maker: a drag on the canvas, one mouse move", [&] { frame.MoveMouse(); },
        "full repaint of the launcher",
        [=] {
            RedrawWindow(hLauncher, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        },
        1.5);
}
