#include "Window/ProblemList.h"

#include <gtest/gtest.h>

#include "Support/ImportHook.h"
#include "Support/TestWindow.h"

// The list fills its width, and sets no width that a column has.
TEST(ProblemList, FitsItsColumnsAndTouchesNoOthers)
{
    struct CHost : CProblemHost
    {
        void OnProblem(const CProblem &) override {}
    } host;
    CTestWindow parent;
    CProblemList list(host);
    ASSERT_TRUE(list.CreateList(parent, 1));
    int nSet = 0;
    const CFakeCall<LRESULT(HWND, UINT, WPARAM, LPARAM)> send(
        "SendMessageA", [&](HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
            nSet += message == LVM_SETCOLUMNWIDTH;
            return send.Original(hWnd, message, wParam, lParam);
        });
    const struct
    {
        int m_cx, m_cy, m_nSet;
    } sizes[] = {{900, 90, 2}, {900, 120, 2}, {700, 120, 4}, {100, 90, 6}, {50, 90, 6}};
    for (const auto &size : sizes) {
        SetWindowPos(list, nullptr, 0, 0, size.m_cx, size.m_cy, SWP_NOZORDER);
        EXPECT_EQ(size.m_nSet, nSet) << size.m_cx;
        RECT client;
        GetClientRect(list, &client);
        int cxAll = 0;
        for (int i = 0; i < 4; ++i)
            cxAll += list.GetColumnWidth(i);
        EXPECT_EQ(size.m_cx < 500 ? 35 * 16 : client.right, cxAll) << size.m_cx;
    }
}
