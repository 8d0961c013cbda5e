// Every message, sent with random arguments to a real window, against what its handler got.
#include <random>
#include <type_traits>

#include "Support/TestWindow.h"

namespace {

constexpr long ANSWER = 0x1234;

template <typename T>
std::string Word(const T &value)
{
    if constexpr (std::is_same_v<T, POINT>)
        return Text(" %ld,%ld", value.x, value.y);
    else if constexpr (std::is_pointer_v<T>)
        return Text(" %x", reinterpret_cast<unsigned>(value));
    else
        return Text(" %x", static_cast<unsigned>(value));
}

// Writes down which handler was called with what; calls no base.
struct CRecorder : CCUIWindow
{
    std::string m_record;
    template <typename... Args>
    long Record(const char *name, const Args &...args)
    {
        m_record += (name + ... + Word(args));
        return ANSWER;
    }
#define ON0(R, Name)             \
    R On##Name() override        \
    {                            \
        return R(Record(#Name)); \
    }
#define ON1(R, Name, A)             \
    R On##Name(A a) override        \
    {                               \
        return R(Record(#Name, a)); \
    }
#define ON2(R, Name, A, B)             \
    R On##Name(A a, B b) override      \
    {                                  \
        return R(Record(#Name, a, b)); \
    }
#define ON3(R, Name, A, B, C)             \
    R On##Name(A a, B b, C c) override    \
    {                                     \
        return R(Record(#Name, a, b, c)); \
    }
#define MOUSE(Name) ON2(void, Name, UINT, POINT &)
#define MOUSE3(Name, B) ON3(void, Name, UINT, B, POINT &)
#define KEY(Name) ON3(void, Name, UINT, UINT, UINT)
    // clang-format off
    ON0(void, Destroy) ON0(void, Close) ON0(void, SysColorChange) ON0(void, CancelMode)
    ON0(void, MouseLeave) ON1(int, Create, CREATESTRUCTA *) ON1(void, Paint, HDC)
    ON1(int, EraseBkgnd, HDC) ON1(void, SetFocus, HWND) ON1(void, KillFocus, HWND)
    ON1(void, ShowToolTips, int) ON1(void, CaptureChanged, HWND) ON1(void, SetWindowState, UINT)
    ON1(void, DropFiles, HDROP) ON1(void, GetMinMaxInfo, MINMAXINFO *)
    ON1(int, QueryEndSession, UINT) ON1(void, Enable, int) ON1(UINT, GetDlgCode, const MSG *)
    ON2(void, Move, int, int) ON2(int, CopyData, HWND, const COPYDATASTRUCT *) ON2(long, Notify, UINT, NMHDR *)
    ON2(void, ShowWindow, int, int) ON2(void, WinIniChange, WPARAM, const char *)
    ON2(int, MeasureItem, UINT, MEASUREITEMSTRUCT *) ON2(int, DrawItem, UINT, DRAWITEMSTRUCT *)
    ON2(void, ContextMenu, HWND, POINT &) ON2(void, EndSession, int, UINT)
    ON2(void, SysCommand, UINT, LPARAM) ON2(void, DpiChanged, UINT, const RECT *)
    ON3(long, Message, UINT, WPARAM, LPARAM) ON3(void, Activate, UINT, UINT, HWND)
    ON3(void, Size, UINT, int, int) ON3(void, Command, UINT, UINT, HWND)
    ON3(int, SetCursor, HWND, UINT, UINT) ON3(void, ParentNotify, UINT, UINT, LPARAM)
    ON3(void, MenuSelect, UINT, UINT, HMENU) ON3(void, InitMenuPopup, HMENU, UINT, int)
    ON3(long, MenuChar, UINT, UINT, HMENU) ON3(void, DisplayChange, UINT, int, int)
    ON3(void, HScroll, UINT, UINT, HWND) ON3(void, VScroll, UINT, UINT, HWND)
    MOUSE(MouseMove) MOUSE(LButtonDown) MOUSE(LButtonUp) MOUSE(LButtonDblClk) MOUSE(RButtonDown)
    MOUSE(RButtonUp) MOUSE(RButtonDblClk) MOUSE(MButtonDown) MOUSE(MButtonUp) MOUSE(MButtonDblClk)
    MOUSE3(XButtonDown, UINT) MOUSE3(XButtonUp, UINT) MOUSE3(XButtonDblClk, UINT)
    MOUSE3(MouseWheel, int) MOUSE3(MouseHWheel, int)
    KEY(KeyDown) KEY(KeyUp) KEY(Char) KEY(SysKeyDown) KEY(SysKeyUp) KEY(SysChar)
    // clang-format on
};

// What a handler gets of its message: m, w and p are the message and its whole arguments, L and H
// the words of w, l and h those of p, c the point in p; b is the lowest byte of w, d its signed
// upper word, x and y the signed words of p, s what counts of a system command, f the mouse flags
// of the keys that are down.
std::string Expected(const char *rule, UINT m, WPARAM w, LPARAM p)
{
    const std::map<char, unsigned> values = {{'m', m},
                                             {'w', w},
                                             {'p', p},
                                             {'L', LOWORD(w)},
                                             {'H', HIWORD(w)},
                                             {'l', LOWORD(p)},
                                             {'h', HIWORD(p)},
                                             {'b', LOBYTE(LOWORD(w))},
                                             {'s', w & 0xFFF0},
                                             {'f', 6},
                                             {'d', int(w) >> 16},
                                             {'x', short(LOWORD(p))},
                                             {'y', short(HIWORD(p))}};
    const char *const space = strchr(rule, ' ');
    std::string record(rule, space ? space : rule + strlen(rule));
    for (const char *at = space; at && *++at;)
        record +=
            *at == 'c' ? Word(POINT{short(LOWORD(p)), short(HIWORD(p))}) : Word(values.at(*at));
    return record;
}

// The handlers whose base hands the message to OnMessage; from Create on, those whose base leaves
// it to default processing. After = the handler's value is the answer, after 0 and 1 that number.
struct CRow
{
    UINT message;
    const char *rule;
};
const CRow ROWS[] = {
    {0, "0MouseWheel fwc"},         {0x0003, "0Move xy"},          {0x000A, "0Enable w"},
    {0x004A, "=CopyData wp"},       {0x0087, "=GetDlgCode p"},     {0x0009, "=Message mwp"},
    {0x0436, "=Message mwp"},       {0xC123, "=Message mwp"},      {0x0011, "=QueryEndSession p"},
    {0x0016, "0EndSession wp"},     {0x0024, "0GetMinMaxInfo p"},  {0x007E, "0DisplayChange wlh"},
    {0x0100, "0KeyDown wlh"},       {0x0101, "0KeyUp wlh"},        {0x0102, "0Char wlh"},
    {0x0104, "0SysKeyDown wlh"},    {0x0105, "0SysKeyUp wlh"},     {0x0106, "0SysChar wlh"},
    {0x0112, "0SysCommand sp"},     {0x0114, "0HScroll LHp"},      {0x0115, "0VScroll LHp"},
    {0x0207, "0MButtonDown wc"},    {0x0208, "0MButtonUp wc"},     {0x0209, "0MButtonDblClk wc"},
    {0x020A, "0MouseWheel Ldc"},    {0x020B, "1XButtonDown LHc"},  {0x020C, "1XButtonUp LHc"},
    {0x020D, "1XButtonDblClk LHc"}, {0x020E, "0MouseHWheel Ldc"},  {0x0233, "0DropFiles w"},
    {0x02A3, "0MouseLeave"},        {0x02E0, "0DpiChanged Lp"},    {0x0001, "=Create p"},
    {0x0005, "0Size wlh"},          {0x0006, "0Activate LHp"},     {0x0007, "0SetFocus w"},
    {0x0008, "0KillFocus w"},       {0x000F, "0Paint w"},          {0x0010, "0Close"},
    {0x0014, "=EraseBkgnd w"},      {0x0015, "0SysColorChange"},   {0x0018, "0ShowWindow wp"},
    {0x001A, "0WinIniChange wp"},   {0x001F, "0CancelMode"},       {0x0020, "=SetCursor wlh"},
    {0x002B, "=DrawItem wp"},       {0x002C, "=MeasureItem wp"},   {0x004E, "=Notify wp"},
    {0x007B, "0ContextMenu wc"},    {0x0111, "0Command HLp"},      {0x0117, "0InitMenuPopup wlh"},
    {0x011F, "0MenuSelect LHp"},    {0x0120, "=MenuChar bHp"},     {0x0200, "0MouseMove wc"},
    {0x0201, "0LButtonDown wc"},    {0x0202, "0LButtonUp wc"},     {0x0203, "0LButtonDblClk wc"},
    {0x0204, "0RButtonDown wc"},    {0x0205, "0RButtonUp wc"},     {0x0206, "0RButtonDblClk wc"},
    {0x0210, "0ParentNotify LHp"},  {0x0215, "0CaptureChanged p"}, {0x0435, "0SetWindowState w"},
    {0x0438, "0ShowToolTips w"},    {0x0002, "0Destroy"}};

// What default processing was asked for, in the place of the system.
std::string s_default;
LRESULT CALLBACK DefaultProc(HWND, UINT message, WPARAM wParam, LPARAM lParam)
{
    s_default = Expected(" mwp", message, wParam, lParam);
    return ANSWER;
}

std::mt19937 s_random(1);

void ExpectHandled(HWND hWnd, const CRow &row, bool bFurther)
{
    // The one without a number is the wheel's that old systems register.
    const UINT message = row.message ? row.message : RegisterWindowMessageA("MSWHEEL_ROLLMSG");
    const bool bStructure =
        message == WM_DRAWITEM || message == WM_MEASUREITEM || message == WM_NOTIFY;
    const WPARAM wParam = s_random();
    LPARAM lParam = static_cast<LPARAM>(s_random());
    const long answer = *row.rule == '=' ? ANSWER : *row.rule - '0';
    CRecorder recorder;
    recorder.Attach(hWnd);
    EXPECT_EQ(answer, SendMessageA(hWnd, message, wParam, lParam)) << row.rule;
    EXPECT_EQ(Expected(row.rule + 1, message, wParam, lParam), recorder.m_record);
    CCUIWindow window;
    window.Attach(hWnd);
    lParam = bStructure ? 0 : lParam;
    EXPECT_EQ(bFurther ? ANSWER : answer, SendMessageA(hWnd, message, wParam, lParam)) << row.rule;
    const bool bDestroy = message == WM_DESTROY;  // whose base lets go of the window before
    EXPECT_EQ(Expected(" mwp", message, bDestroy ? 0 : wParam, bDestroy ? 0 : lParam), s_default);
    window.Detach();
}

// Answers what comes back from the parent.
struct CChild : CTestWindow
{
    using CTestWindow::CTestWindow;
    UINT m_nSeen = 0;
    int OnReflectedMessage(UINT message, WPARAM, LPARAM, long &result) override
    {
        m_nSeen = message;
        result = 0x77;
        return 1;
    }
};

}  // namespace

TEST(MessageTable, HandsEveryMessageToItsHandlerAndPassesOnWhatNoHandlerTakes)
{
    BYTE keys[256] = {};
    keys[VK_SHIFT] = keys[VK_RBUTTON] = 0x80;
    SetKeyboardState(keys);
    const HWND hWnd = MakePlain();
    SetWindowLongA(hWnd, GWL_WNDPROC, reinterpret_cast<LONG>(DefaultProc));
    bool bFurther = true;
    for (const CRow &row : ROWS) {
        bFurther = bFurther && row.message != WM_CREATE;
        ExpectHandled(hWnd, row, bFurther);
    }
}

TEST(MessageTable, GivesWhatAChildSentBackToTheChildFirst)
{
    CTestWindow parent;
    CChild child(parent, WS_CHILD);
    const HWND hChild = child;
    DRAWITEMSTRUCT draw = {ODT_BUTTON, 7, 0, 0, 0, hChild, nullptr, {}, 0};
    MEASUREITEMSTRUCT measure = {ODT_LISTBOX, 7, 0, 0, 0, 0};
    COMPAREITEMSTRUCT compare = {ODT_LISTBOX, 7, hChild, 0, 0, 0, 0, 0};
    DELETEITEMSTRUCT remove = {ODT_LISTBOX, 7, 0, hChild, 0};
    const std::pair<UINT, const void *> sent[] = {
        {WM_DRAWITEM, &draw},          {WM_MEASUREITEM, &measure}, {WM_COMPAREITEM, &compare},
        {WM_DELETEITEM, &remove},      {WM_CTLCOLOREDIT, hChild},  {WM_CTLCOLORBTN, hChild},
        {WM_CHARTOITEM, hChild},       {WM_VKEYTOITEM, hChild},    {WM_CTLCOLORLISTBOX, hChild},
        {WM_CTLCOLORSCROLLBAR, hChild}};
    for (const auto &[message, p] : sent) {
        EXPECT_EQ(0x77, SendMessageA(parent, message, 7, reinterpret_cast<LPARAM>(p))) << message;
        EXPECT_EQ(message, child.m_nSeen);
        SendMessageA(parent, message, 7, 0);  // names no child
    }
}
