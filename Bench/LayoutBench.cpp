#include <memory>

#include "Bench.h"
#include "CUI/LayoutWindow.h"

namespace {

const int CHILDREN = 1000;
// All of them within the reach in which children are moved.
const int LINE = 10;

// A layout of a thousand lines. The window is hidden: where it is seen, the system takes most of
// the time to find out what of it.
struct CLines
{
    CLines()
    {
        const RECT rect = {0, 0, 300, 600};
        m_top.Create(nullptr, "bench", WS_POPUP, rect, nullptr, 0);
        m_layout.Create(nullptr, "", WS_CHILD | WS_VISIBLE, rect, m_top, 0);
        for (int i = 0; i < CHILDREN; ++i) {
            m_children.push_back(std::make_unique<CCUIControlWindow>());
            m_children.back()->SetFixedSize(LINE);
            m_children.back()->Create(nullptr, "", WS_CHILD | WS_VISIBLE, rect, m_layout, 0);
        }
        Pump();
    }
    static void Pump()
    {
        MSG msg;
        while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&msg);
    }
    // The first line moves all others.
    void MoveAll()
    {
        m_nShift ^= 1;
        m_layout.SetMargins({0, m_nShift, 0, 0});
    }
    // What one writes without a framework, who knows all places beforehand.
    void MoveAllRaw()
    {
        m_nShift ^= 1;
        HDWP hBatch = BeginDeferWindowPos(CHILDREN);
        for (int i = 0; i < CHILDREN; ++i)
            hBatch = DeferWindowPos(hBatch, *m_children[static_cast<size_t>(i)], nullptr, 0,
                                    m_nShift + i * LINE, 300, LINE,
                                    SWP_NOZORDER | SWP_NOOWNERZORDER | SWP_NOACTIVATE | SWP_NOSIZE);
        EndDeferWindowPos(hBatch);
    }

    CCUIWindow m_top;
    CCUILayoutWindow m_layout;
    std::vector<std::unique_ptr<CCUIControlWindow>> m_children;
    int m_nShift = 0;
};

}  // namespace

BENCH_GROUP(Layout)
{
    CLines ours, raw;
    const auto moveAll = [&] { ours.MoveAll(); };
    BenchCompare(
        "layout of 1,000 children, all moved", moveAll, "one raw DeferWindowPos batch",
        [&] { raw.MoveAllRaw(); }, 1.1, 15, 0.1);
    BenchCompare(
        "layout of 1,000 children, nothing to move", [&] { ours.m_layout.Layout(); },
        "the same, all moved", moveAll, 0.05, 15, 0.1);
    ours.m_top.Destroy();
    raw.m_top.Destroy();
}
