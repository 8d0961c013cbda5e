#include "Window/TextField.h"

#include "Support/BoxAnswer.h"
#include "Support/ImportHook.h"
#include "Support/TestWindow.h"

namespace {

struct CFieldTest : testing::Test
{
    CFieldTest()
    {
        const RECT rect = {0, 0, 100, 20};
        m_field.CreateControl(m_window, 1, "", ES_AUTOHSCROLL, &rect);
    }
    // What the system queues for a key, alone or behind a dead one.
    void Press(std::initializer_list<WCHAR> characters, bool bBehindDeadKey)
    {
        const WPARAM nNoKey = 0xFF;
        if (bBehindDeadKey)
            PostMessageW(m_field, WM_DEADCHAR, L'^', 1);
        PostMessageW(m_field, WM_KEYDOWN, nNoKey, 1);
        for (const WCHAR ch : characters)
            PostMessageW(m_field, WM_CHAR, ch, 1);
        PumpWaiting();
    }
    CTestWindow m_window{nullptr, WS_OVERLAPPEDWINDOW | WS_VISIBLE};
    CTextField m_field;
};

}  // namespace

TEST_F(CFieldTest, TakesWhatDeadKeysMakeAndSaysWhatItCannotHold)
{
    const CBoxAnswer box("Typing", IDCANCEL);
    Press({0xEA}, true);
    Press({L'^', L'^'}, true);
    Press({L'?'}, false);
    EXPECT_EQ("\xEA^^?", TextOf(m_field));
    EXPECT_EQ(0, box.Asked());
    Press({0x3AC}, true);  // one that resembles an "a"
    Press({L'^', 0x434}, true);
    Press({0x434}, false);
    Press({0xD83D, 0xDE00}, false);
    Press({L'x'}, false);
    EXPECT_EQ("\xEA^^?^x", TextOf(m_field));
    EXPECT_EQ(4, box.Asked());
}

TEST_F(CFieldTest, AsksBeforeWhatIsPastedLosesCharacters)
{
    static HGLOBAL s_hText = GlobalAlloc(GMEM_MOVEABLE, 8);
    const CFakeCall<BOOL(UINT)> available("IsClipboardFormatAvailable", [](UINT) { return TRUE; });
    const CFakeCall<BOOL(HWND)> open("OpenClipboard", [](HWND) { return TRUE; });
    const CFakeCall<BOOL()> close("CloseClipboard", [] { return TRUE; });
    const CFakeCall<HANDLE(UINT)> get("GetClipboardData", [](UINT) { return s_hText; });
    memcpy(GlobalLock(s_hText), L"x\x434", 6);
    m_field.SetText("before");
    m_field.SetSelection(0, -1);
    const CBoxAnswer box("Paste", IDCANCEL);
    SendMessageA(m_field, WM_PASTE, 0, 0);
    EXPECT_EQ(1, box.Asked());
    EXPECT_EQ("before", TextOf(m_field));
    m_field.SetReadOnly(true);
    SendMessageA(m_field, WM_PASTE, 0, 0);
    EXPECT_EQ(1, box.Asked());
}
