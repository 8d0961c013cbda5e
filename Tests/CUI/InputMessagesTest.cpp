// The further messages, sent to a real window, against what their handlers got.
#include <gtest/gtest.h>

#include "Support/TestWindow.h"

namespace {

// As "%p" takes it.
const void *Raw(const void *p)
{
    return p;
}

constexpr long OTHER = 0x1234;

// Writes down which handler was called with what, and calls the base where the test wants that.
class CRecorder : public CCUIWindow
{
public:
    std::string m_record;
    bool m_bBase = false;

protected:
    long OnMessage(UINT message, WPARAM w, LPARAM l) override
    {
        if (!m_bBase)
            return CCUIWindow::OnMessage(message, w, l);
        m_record += Text(", %x %x %lx", message, w, l);
        return OTHER;
    }
#define ON(type, Name, parameters, arguments, ...)                \
    type On##Name parameters override                             \
    {                                                             \
        m_record += Text(#Name __VA_ARGS__);                      \
        return m_bBase ? CCUIWindow::On##Name arguments : type(); \
    }
#define KEY(Name) ON(void, Name, (UINT a, UINT b, UINT c), (a, b, c), " %x %x %x", a, b, c)
#define BUTTON(Name) ON(void, Name, (UINT a, POINT & p), (a, p), " %x %ld,%ld", a, p.x, p.y)
#define X(Name) \
    ON(void, Name, (UINT a, UINT b, POINT & p), (a, b, p), " %x %x %ld,%ld", a, b, p.x, p.y)
#define WHEEL(Name) \
    ON(void, Name, (UINT a, int b, POINT &p), (a, b, p), " %x %d %ld,%ld", a, b, p.x, p.y)
#define SCROLL(Name) ON(void, Name, (UINT a, UINT b, HWND h), (a, b, h), " %x %x %p", a, b, Raw(h))
    // clang-format off
    KEY(KeyDown) KEY(KeyUp) KEY(Char) KEY(SysKeyDown) KEY(SysKeyUp) KEY(SysChar)
    BUTTON(MButtonDown) BUTTON(MButtonUp) BUTTON(MButtonDblClk)
    X(XButtonDown) X(XButtonUp) X(XButtonDblClk)
    WHEEL(MouseWheel) WHEEL(MouseHWheel) SCROLL(HScroll) SCROLL(VScroll)
    ON(void, MouseLeave, (), (), )
    ON(void, DropFiles, (HDROP h), (h), " %p", Raw(h))
    ON(void, GetMinMaxInfo, (MINMAXINFO *p), (p), " %p", Raw(p))
    ON(int, QueryEndSession, (UINT a), (a), " %x", a)
    ON(void, EndSession, (int a, UINT b), (a, b), " %x %x", a, b)
    ON(void, SysCommand, (UINT a, LPARAM l), (a, l), " %x %lx", a, l)
    ON(void, DisplayChange, (UINT a, int b, int c), (a, b, c), " %x %x %x", a, b, c)
    ON(void, DpiChanged, (UINT a, const RECT *p), (a, p), " %x %p", a, Raw(p))
    ON(void, Enable, (int a), (a), " %x", a)
    ON(UINT, GetDlgCode, (const MSG *p), (p), " %p", Raw(p))
    ON(void, Move, (int a, int b), (a, b), " %d %d", a, b)
    ON(int, CopyData, (HWND h, const COPYDATASTRUCT *p), (h, p), " %p %p", Raw(h), Raw(p))
    // clang-format on
};

const struct
{
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    const char *record;
    long result;
} ROWS[] = {
    {0x0011, 0, static_cast<LPARAM>(0x80000000), "QueryEndSession 80000000", 0},
    {0x0016, 1, 3, "EndSession 1 3", 0},
    {0x0003, 0, MAKELONG(-3, 5), "Move -3 5", 0},
    {0x000A, 1, 0, "Enable 1", 0},
    {0x0024, 0, 0x10, "GetMinMaxInfo 00000010", 0},
    {0x004A, 0x11, 0x12, "CopyData 00000011 00000012", 0},
    {0x007E, 24, MAKELONG(1024, 768), "DisplayChange 18 400 300", 0},
    {0x0087, 9, 0x13, "GetDlgCode 00000013", 0},
    {0x0100, 0x41, MAKELONG(2, 0x4123), "KeyDown 41 2 4123", 0},
    {0x0101, 0x42, MAKELONG(1, 0xC001), "KeyUp 42 1 c001", 0},
    {0x0102, 0xE4, MAKELONG(3, 4), "Char e4 3 4", 0},
    {0x0104, 0x43, MAKELONG(1, 0x2000), "SysKeyDown 43 1 2000", 0},
    {0x0105, 0x44, MAKELONG(1, 0xE000), "SysKeyUp 44 1 e000", 0},
    {0x0106, 0x45, MAKELONG(1, 0x2001), "SysChar 45 1 2001", 0},
    {0x0112, 0xF012, 0x50007, "SysCommand f010 50007", 0},
    {0x0114, MAKEWPARAM(5, 0xFFFE), 0x46, "HScroll 5 fffe 00000046", 0},
    {0x0115, MAKEWPARAM(4, 7), 0, "VScroll 4 7 00000000", 0},
    {0x0207, 0x10, MAKELONG(-3, 5), "MButtonDown 10 -3,5", 0},
    {0x0208, 1, MAKELONG(5, -3), "MButtonUp 1 5,-3", 0},
    {0x0209, 2, MAKELONG(1, 2), "MButtonDblClk 2 1,2", 0},
    {0x020A, MAKEWPARAM(8, -120), MAKELONG(-7, 9), "MouseWheel 8 -120 -7,9", 0},
    {0x020B, MAKEWPARAM(0x20, 1), MAKELONG(-1, 2), "XButtonDown 20 1 -1,2", 1},
    {0x020C, MAKEWPARAM(4, 2), MAKELONG(1, 2), "XButtonUp 4 2 1,2", 1},
    {0x020D, MAKEWPARAM(0x40, 2), MAKELONG(1, 2), "XButtonDblClk 40 2 1,2", 1},
    {0x020E, MAKEWPARAM(4, 240), MAKELONG(1, -2), "MouseHWheel 4 240 1,-2", 0},
    {0x0233, 0x48, 0, "DropFiles 00000048", 0},
    {0x02A3, 0, 0, "MouseLeave", 0},
    {0x02E0, MAKEWPARAM(144, 144), 0x49, "DpiChanged 90 00000049", 0},
    {0, static_cast<WPARAM>(-240), MAKELONG(3, -4), "MouseWheel 4 -240 3,-4", 0},
};

}  // namespace

TEST(InputMessages, ReachTheirHandlersAndFromTheBaseOnMessage)
{
    BYTE keys[256] = {};
    keys[VK_SHIFT] = 0x80;
    SetKeyboardState(keys);
    CRecorder window;
    ASSERT_TRUE(CreateTestWindow(window));
    EXPECT_EQ(0u, window.m_record.find("GetMinMaxInfo")) << "the creation asks";
    const UINT nOldWheel = RegisterWindowMessageA("MSWHEEL_ROLLMSG");
    for (const auto &row : ROWS) {
        const UINT message = row.message ? row.message : nOldWheel;
        for (const bool bBase : {false, true}) {
            window.m_bBase = bBase;
            window.m_record.clear();
            EXPECT_EQ(bBase ? OTHER : row.result,
                      SendMessageA(window, message, row.wParam, row.lParam));
            const std::string other = Text(", %x %x %lx", message, row.wParam, row.lParam);
            EXPECT_EQ(row.record + (bBase ? other : ""), window.m_record);
        }
    }
    keys[VK_SHIFT] = 0;
    SetKeyboardState(keys);
}

TEST(InputMessages, MouseThatLeavesIsHeardOfOnce)
{
    CRecorder window;
    EXPECT_EQ(0, window.TrackMouseLeave());
    ASSERT_TRUE(CreateTestWindow(window));
    ShowWindow(window, SW_SHOWNORMAL);
    SetCursorPos(110, 120);
    EXPECT_EQ(1, window.TrackMouseLeave());
    CCUIWindow::IdleLoop(-200, 0);
    EXPECT_EQ(std::string::npos, window.m_record.find("MouseLeave"));
    SetCursorPos(0, 0);
    CCUIWindow::IdleLoop(-1000, 0);
    const size_t nLeave = window.m_record.find("MouseLeave");
    ASSERT_NE(std::string::npos, nLeave);
    EXPECT_EQ(std::string::npos, window.m_record.find("MouseLeave", nLeave + 1));
}
