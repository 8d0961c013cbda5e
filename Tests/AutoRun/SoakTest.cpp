// The launcher's dialog over and over: nothing stays behind.
#include <gtest/gtest.h>

#include "AutoRunDlg.h"
#include "Support/GdiCount.h"
#include "Support/TestWindow.h"

namespace {

class CSoakedDlg : public CAutoRunDlg
{
public:
    CSoakedDlg() : CAutoRunDlg(GetModuleHandleA(nullptr)) {}
    int m_nRepaints = 0;

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override
    {
        PostMessageA(m_hWnd, WM_APP, 0, 0);
        const int nResult = CAutoRunDlg::OnInitDialog(hFocus, lParam);
        // Seen from this process only: elsewhere the handle says nothing.
        const LRESULT hBig = SendMessageA(m_hWnd, WM_GETICON, ICON_BIG, 0);
        EXPECT_NE(0, hBig);
        EXPECT_EQ(hBig, SendMessageA(m_hWnd, WM_GETICON, ICON_SMALL, 0));
        EXPECT_EQ(1, nResult);
        return nResult;
    }
    long OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message != WM_APP)
            return CAutoRunDlg::OnMessage(message, wParam, lParam);
        for (int i = 0; i < m_nRepaints / 2; ++i) {
            // Every line lit in turn, and none: each change is a repaint.
            const int y = i % 5 == 4 ? 0 : 145 + i % 5 * 32;
            SendMessageA(m_hWnd, WM_MOUSEMOVE, 0, MAKELPARAM(50, y));
            RedrawWindow(m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        }
        EndDialog(2);
        return 0;
    }
};

int RunDialog(int nRepaints)
{
    CSoakedDlg dialog;
    dialog.m_nRepaints = nRepaints;
    return dialog.DoModal(nullptr);
}

DWORD HandleCount()
{
    typedef BOOL(WINAPI * GetCount)(HANDLE, PDWORD);
    const auto pGetCount = reinterpret_cast<GetCount>(
        GetProcAddress(GetModuleHandleA("kernel32"), "GetProcessHandleCount"));
    DWORD nCount = 0;
    EXPECT_TRUE(pGetCount && pGetCount(GetCurrentProcess(), &nCount));
    return nCount;
}

struct CCounts
{
    int nGdi = GdiCount();
    int nWindows = WindowCount();
    DWORD nHandles = HandleCount();
};

void ExpectSame(const CCounts &before, const CCounts &after)
{
    EXPECT_NEAR(before.nGdi, after.nGdi, 1);
    EXPECT_EQ(before.nWindows, after.nWindows);
    EXPECT_NEAR(static_cast<double>(before.nHandles), static_cast<double>(after.nHandles), 2);
}

}  // namespace

TEST(Soak, RepaintsLeaveNothingBehind)
{
    EXPECT_EQ(2, RunDialog(100));
    const CCounts before;
    EXPECT_EQ(2, RunDialog(20000));
    ExpectSame(before, CCounts());
}

TEST(Soak, OpeningAndClosingLeavesNothingBehind)
{
    for (int i = 0; i < 5; ++i)
        RunDialog(5);
    const CCounts before;
    for (int i = 0; i < 300; ++i)
        ASSERT_EQ(2, RunDialog(2));
    ExpectSame(before, CCounts());
}
