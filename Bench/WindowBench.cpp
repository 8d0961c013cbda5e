#include <memory>

#include "Bench.h"
#include "CUI/Dialog.h"
#include "CUI/WindowClass.h"

namespace {

const UINT MESSAGE = WM_LBUTTONDOWN;
const LPARAM POSITION = MAKELONG(3, 5);
const char DIALOG[] = "BenchDialog";  // with 20 controls

LONG s_nSum;

class CBenchWindow : public CCUIWindow
{
public:
    explicit CBenchWindow(HWND hParent = nullptr)
    {
        const RECT rect = {0, 0, 100, 100};
        Create(nullptr, "bench", hParent ? WS_CHILD : WS_POPUP, rect, hParent, 1);
    }

protected:
    void OnLButtonDown(UINT nFlags, POINT &point) override
    {
        s_nSum += static_cast<LONG>(nFlags) + point.x + point.y;
    }
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        return message == WM_APP ? 0 : CCUIWindow::OnMessage(message, wParam, lParam);
    }
};

// --- What one writes without a framework ---

HWND MakeWindow()
{
    return CreateWindowExA(0, CUIWindowClassName(CUI_CLASS_WINDOW), "", WS_POPUP, 0, 0, 100, 100,
                           nullptr, nullptr, nullptr, nullptr);
}

void OnButtonDown(WPARAM wParam, LPARAM lParam)
{
    s_nSum += static_cast<LONG>(wParam) + static_cast<short>(LOWORD(lParam)) +
              static_cast<short>(HIWORD(lParam));
}

WNDPROC s_pOldProc;
LRESULT CALLBACK SwitchProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_CREATE:
    case WM_DESTROY:
    case WM_SIZE:
    case WM_PAINT:
    case WM_CLOSE:
    case WM_ERASEBKGND:
    case WM_COMMAND: break;
    case WM_MOUSEMOVE: s_nSum = 0; return 0;
    case WM_LBUTTONDOWN: OnButtonDown(wParam, lParam); return 0;
    case WM_LBUTTONUP: ++s_nSum; return 0;
    case WM_RBUTTONDOWN: --s_nSum; return 0;
    default: break;
    }
    return CallWindowProcA(s_pOldProc, hWnd, message, wParam, lParam);
}

// --- Rows that one pair of calls cannot measure ---

void CompareAmong(const char *name, const std::vector<HWND> &windows, CBenchWindow &window)
{
    const auto send = [&] { SendMessageA(window, MESSAGE, 1, POSITION); };
    std::vector<CCUIWindow> others(windows.size());
    const auto sample = [&] { return BenchSample(send, 20000); };
    BenchPairs(
        name, 15,
        [&] {
            for (size_t i = 0; i < windows.size(); ++i)
                others[i].Attach(windows[i]);
            const double time = sample();
            for (CCUIWindow &other : others)
                other.Detach();
            return time;
        },
        "the same with 1", sample, 1.1);
}

void CompareAmongThousands(CBenchWindow &window)
{
    std::vector<HWND> windows;
    while (windows.size() < 99)
        windows.push_back(MakeWindow());
    CompareAmong("SendMessage among 100 framework windows", windows, window);
    while (windows.size() < 4999)
        windows.push_back(MakeWindow());
    CompareAmong("SendMessage among 5,000 framework windows", windows, window);
    for (const HWND hWnd : windows)
        DestroyWindow(hWnd);
}

// Seconds for one of many messages that wait for the window.
template <typename Pump>
double SamplePump(HWND hWnd, Pump pump)
{
    const int nMessages = 500;
    for (int i = 0; i < nMessages; ++i)
        PostMessageA(hWnd, WM_APP, 0, 0);
    return BenchSample(pump, nMessages);
}

void ComparePump(CBenchWindow &top)
{
    CBenchWindow child(top.GetHandle()), grandchild(child.GetHandle());
    CBenchWindow deepest(grandchild.GetHandle());
    MSG msg;
    while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&msg);
    BenchPairs(
        "PumpMessage, four windows deep", 31,
        [&] { return SamplePump(deepest, [&] { CCUIWindow::PumpMessage(&msg); }); },
        "GetMessage, TranslateMessage, DispatchMessage",
        [&] {
            return SamplePump(deepest, [&] {
                GetMessageA(&msg, nullptr, 0, 0);
                TranslateMessage(&msg);
                DispatchMessageA(&msg);
            });
        },
        1.2);
}

// --- A modal dialog that closes as soon as its loop runs ---

class CBenchDialog : public CCUIDialog
{
public:
    CBenchDialog() : CCUIDialog(GetModuleHandleA(nullptr), DIALOG) {}

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        PostMessageA(m_hWnd, WM_COMMAND, IDCANCEL, 0);
        return CCUIDialog::OnInitDialog(hFocus, lParam);
    }
};

bool s_bOpen;
INT_PTR CALLBACK DialogProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM)
{
    if (message == WM_INITDIALOG)
        PostMessageA(hWnd, WM_COMMAND, IDCANCEL, 0);
    else if (message == WM_COMMAND && LOWORD(wParam) == IDCANCEL)
        s_bOpen = false;
    return message == WM_INITDIALOG;
}

void RunPlainDialog()
{
    const HWND hWnd = CreateDialogParamA(GetModuleHandleA(nullptr), DIALOG, nullptr, DialogProc, 0);
    ShowWindow(hWnd, SW_SHOW);
    SetForegroundWindow(hWnd);
    MSG msg;
    for (s_bOpen = true; s_bOpen && GetMessageA(&msg, nullptr, 0, 0) > 0;) {
        if (IsDialogMessageA(hWnd, &msg))
            continue;
        TranslateMessage(&msg);
        DispatchMessageA(&msg);
    }
    DestroyWindow(hWnd);
}

}  // namespace

BENCH_GROUP(Window)
{
    CBenchWindow window;
    const HWND hPlain = MakeWindow();
    s_pOldProc = reinterpret_cast<WNDPROC>(
        SetWindowLongA(hPlain, GWL_WNDPROC, reinterpret_cast<LONG>(SwitchProc)));
    BenchCompare(
        "SendMessage to a virtual handler", [&] { SendMessageA(window, MESSAGE, 1, POSITION); },
        "subclassed window with a switch", [&] { SendMessageA(hPlain, MESSAGE, 1, POSITION); },
        1.2);
    BenchCompare(
        "FromHandle", [&] { BenchKeep(CCUIWindow::FromHandle(window)); },
        "GetWindowLong(GWL_USERDATA)", [&] { BenchKeep(GetWindowLongA(window, GWL_USERDATA)); },
        0.5);
    CompareAmongThousands(window);
    ComparePump(window);
    DestroyWindow(hPlain);
    CBenchDialog dialog;
    BenchCompare(
        "open and close a modal dialog, 20 controls", [&] { dialog.DoModal(nullptr); },
        "CreateDialogParam, own loop, DestroyWindow", RunPlainDialog, 1.15, 31, 0.1);
}
