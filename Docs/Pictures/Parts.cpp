// What Tools/refresh-picture takes pictures of for the page of the framework: a menu, a message
// box, buttons in all their states, the system's controls, a chooser and a notification icon.
// Usage: Parts menu|box|buttons|controls|chooser|icon

#include <windows.h>

#include <commdlg.h>
#include <string.h>

#include "CUI/Button.h"
#include "CUI/Choosers.h"
#include "CUI/ComboBox.h"
#include "CUI/Data.h"
#include "CUI/Draw.h"
#include "CUI/Edit.h"
#include "CUI/ListBox.h"
#include "CUI/ListView.h"
#include "CUI/Menu.h"
#include "CUI/MessageBox.h"
#include "CUI/NotifyIcon.h"
#include "CUI/ProgressBar.h"
#include "CUI/ScrollBar.h"
#include "CUI/Separator.h"
#include "CUI/SpinButton.h"
#include "CUI/Static.h"
#include "CUI/TabControl.h"
#include "CUI/TrackBar.h"
#include "CUI/TreeView.h"
#include "CUI/Window.h"

const int PICTURE = 14;
const COLORREF KEY = RGB(255, 0, 255);

// Pixels at 96 dots per inch, in those of the screen.
static int Scaled(LONG nPixels)
{
    return MulDiv(static_cast<int>(nPixels), CUIGetWinData()->cyPixelsPerInch, 96);
}
static RECT Scaled(const RECT &place)
{
    return {Scaled(place.left), Scaled(place.top), Scaled(place.right), Scaled(place.bottom)};
}

// A row of pictures: discs in red and purple, a blue square, a yellow triangle.
static CCUIBitmap MakePictures()
{
    const HDC hScreen = GetDC(nullptr);
    const HDC hDC = CreateCompatibleDC(hScreen);
    const HBITMAP hBitmap = CreateCompatibleBitmap(hScreen, 4 * PICTURE, PICTURE);
    const HGDIOBJ hOldBitmap = SelectObject(hDC, hBitmap);
    const RECT all = {0, 0, 4 * PICTURE, PICTURE};
    CUIDCFillSolidRect(hDC, &all, KEY);
    const COLORREF colors[] = {RGB(224, 32, 32), RGB(128, 32, 160), RGB(32, 64, 200),
                               RGB(255, 216, 0)};
    for (int i = 0; i < 4; ++i) {
        const HBRUSH hBrush = CreateSolidBrush(colors[i]);
        const HGDIOBJ hOldBrush = SelectObject(hDC, hBrush);
        const int x = i * PICTURE;
        const POINT corners[] = {{x + 6, 1}, {x + 12, 12}, {x, 12}};
        if (i < 2)
            Ellipse(hDC, x, 0, x + 13, 13);
        else if (i == 2)
            Rectangle(hDC, x, 2, x + 12, 12);
        else
            Polygon(hDC, corners, 3);
        SelectObject(hDC, hOldBrush);
        DeleteObject(hBrush);
    }
    SelectObject(hDC, hOldBitmap);
    DeleteDC(hDC);
    ReleaseDC(nullptr, hScreen);
    return {hBitmap, nullptr};
}

// Escape closes it, so that Tools/photograph can.
class CPartsWindow : public CCUIWindow
{
protected:
    int PreTranslateMessage(MSG *pMsg) override
    {
        if (pMsg->message != WM_KEYDOWN || pMsg->wParam != VK_ESCAPE)
            return CCUIWindow::PreTranslateMessage(pMsg);
        Destroy();
        return 1;
    }
    int OnEraseBkgnd(HDC hDC) override
    {
        const RECT area = GetClientArea();
        FillRect(hDC, &area, CUIGetWinData()->hbrBtnFace);
        return 1;
    }
    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }
};

static int ShowMenu()
{
    enum : UINT
    {
        ID_OPEN = 1000,
        ID_SAVE,
        ID_DELETE,
        ID_PRINT,
        ID_SEND,
        ID_PROPERTIES,
        ID_READ_ONLY,
        ID_TEXTS,
        ID_PICTURES,
        ID_NEXT,
        ID_EXIT
    };
    CCUIMenu more, file, view, bar(CUI_MENU_BAR);
    more.Append(ID_NEXT, "&Next");
    view.Append(ID_NEXT, "&Next");
    file.Append(ID_OPEN, "&Open...\tCtrl+O");
    file.Append(ID_SAVE, "&Save all\tF2");
    file.AppendSeparator();
    file.Append(ID_DELETE, "&Delete\tDel");
    file.Append(ID_PRINT, "&Print...\tCtrl+P");
    file.Append(ID_SEND, "S&end");
    file.AppendSeparator();
    file.Append(ID_PROPERTIES, "P&roperties\tAlt+Enter");
    file.Append(ID_READ_ONLY, "Read &only");
    file.Append(ID_TEXTS, "&Texts\tShift+1");
    file.Append(ID_PICTURES, "P&ictures\tShift+2");
    file.AppendSeparator();
    file.AppendPopup("&More", more);
    file.Append(ID_EXIT, "E&xit");
    file.SetDefault(ID_OPEN);
    file.Enable(ID_PRINT, false);
    file.Enable(ID_SEND, false);
    file.Check(ID_PROPERTIES, true);
    file.Check(ID_READ_ONLY, true);
    file.CheckRadio(ID_TEXTS, ID_PICTURES, ID_PICTURES);
    const UINT ids[] = {ID_DELETE, ID_READ_ONLY, ID_OPEN, ID_PRINT};
    file.SetPictures(MakePictures(), ids);
    bar.AppendPopup("&File", file);
    bar.AppendPopup("&View", view);

    CPartsWindow window;
    window.Create(nullptr, "Menu", WS_OVERLAPPEDWINDOW, Scaled({0, 0, 240, 284}), nullptr, 0);
    SetMenu(window, bar.GetHandle());
    window.Show();
    return CCUIWindow::RunLoop();
}

// Wine 8 gives the first window of a program the focus, but not if it is a dialog.
static void MakeOwner(CCUIWindow &window, const RECT &place)
{
    window.Create(nullptr, "Owner", WS_OVERLAPPEDWINDOW, place, nullptr, 0);
    window.Show();
    window.Show(false);
}

static int ShowBox()
{
    CPartsWindow window;
    MakeOwner(window, {440, 360, 580, 410});
    CCUIMessageBox box(
        "Save the changes to \"Harbour at dusk & dawn.bmp\" before the viewer closes?\n\n"
        "What is not saved is lost.",
        "Picture Viewer", MB_ICONQUESTION);
    box.AddButton(IDYES, "&Save");
    box.AddButton(IDNO, "D&iscard");
    box.AddButton(IDCANCEL);
    box.SetDontAsk("SaveOnClose");
    box.SetCountdown(15);
    return box.DoModal(&window) == IDCANCEL ? 0 : 1;
}

static int ShowChooser()
{
    CPartsWindow window;
    MakeOwner(window, {0, 0, 140, 50});
    COLORREF cr = RGB(32, 64, 200);
    CUIChooseColor(&window, cr, CC_FULLOPEN);
    return 0;
}

static int ShowIcon()
{
    CPartsWindow window;
    window.Create(nullptr, "Icon", WS_POPUP, {0, 0, 190, 112}, nullptr, 0);
    window.Show();
    CCUINotifyIcon icon;
    icon.Add(LoadIconA(nullptr, IDI_INFORMATION), "The harbour");
    // Blanks, since Wine 8 makes balloons too narrow.
    icon.ShowBalloon("Harbour", "High water in half an hour.   ");
    return CCUIWindow::RunLoop();
}

static int ShowButtons()
{
    CPartsWindow window;
    window.Create(nullptr, "Buttons", WS_POPUP, Scaled({0, 0, 430, 150}), nullptr, 0);
    const CCUIBitmap pictures = MakePictures();
    const struct
    {
        CUIButtonKind kind;
        RECT place;
        const char *pszText;
        int nPicture;  // -1: none
        UINT nCheck;
        bool bFlat;
        bool bEnabled;
    } buttons[] = {
        {CUI_BUTTON_PUSH, {4, 8, 60, 32}, "Stop", 0, 0, true, true},
        {CUI_BUTTON_PUSH, {64, 8, 134, 32}, "Record", 0, 0, true, true},
        {CUI_BUTTON_CHECK, {138, 8, 204, 32}, "Frame", 2, BST_CHECKED, true, true},
        {CUI_BUTTON_PUSH, {208, 8, 264, 32}, "Mark", 3, 0, true, false},
        {CUI_BUTTON_SPLIT, {280, 8, 352, 32}, "Back", 2, 0, true, true},
        {CUI_BUTTON_DROPDOWN, {358, 8, 422, 32}, "More", -1, 0, true, true},
        {CUI_BUTTON_CHECK, {10, 50, 100, 70}, "&Wrap lines", -1, BST_CHECKED, false, true},
        {CUI_BUTTON_CHECK, {10, 74, 100, 94}, "&Mixed", -1, BST_INDETERMINATE, false, true},
        {CUI_BUTTON_CHECK, {10, 98, 100, 118}, "Disabled", -1, BST_CHECKED, false, false},
        {CUI_BUTTON_RADIO, {118, 50, 190, 70}, "&Left", -1, BST_CHECKED, false, true},
        {CUI_BUTTON_RADIO, {118, 74, 190, 94}, "&Right", -1, 0, false, true},
        {CUI_BUTTON_PUSH, {210, 48, 286, 72}, "&Open", -1, 0, false, true},
        {CUI_BUTTON_PUSH, {210, 80, 286, 104}, "Pressed", -1, 0, false, true},
        {CUI_BUTTON_SPLIT, {210, 112, 298, 136}, "&Play", -1, 0, false, true},
        {CUI_BUTTON_PUSH, {320, 48, 396, 72}, "&Save", -1, 0, false, true},
        {CUI_BUTTON_PUSH, {320, 80, 396, 104}, "Not now", -1, 0, false, false},
        {CUI_BUTTON_PUSH, {320, 112, 396, 136}, "M&ark", 3, 0, false, true},
    };
    const int nCount = sizeof buttons / sizeof *buttons;
    CCUIButton *pButtons[nCount];
    for (int i = 0; i < nCount; ++i) {
        CCUIButton &button = *(pButtons[i] = new CCUIButton(buttons[i].kind));
        button.SetFlat(buttons[i].bFlat);
        if (buttons[i].nPicture >= 0)
            button.SetPicture(pictures, buttons[i].nPicture, PICTURE, KEY);
        button.SetCheck(buttons[i].nCheck);
        const RECT place = Scaled(buttons[i].place);
        button.CreateControl(window, 100 + static_cast<UINT>(i), buttons[i].pszText, &place);
        button.Enable(buttons[i].bEnabled);
    }
    pButtons[11]->SetDefault(true);
    SendMessageA(*pButtons[12], BM_SETSTATE, TRUE, 0);
    CCUISeparator upright, level;
    const RECT side = Scaled({270, 6, 274, 34});
    const RECT below = Scaled({8, 36, 422, 40});
    upright.CreateControl(window, 200, "", &side);
    level.CreateControl(window, 201, "", &below);

    window.Show();
    pButtons[11]->Focus();
    const int nResult = CCUIWindow::RunLoop();
    for (CCUIButton *pButton : pButtons)
        delete pButton;
    return nResult;
}

// A control, with its style or the usual one.
static void Make(CCUISystemControl &control, HWND hParent, const char *pszText, const RECT &place,
                 DWORD dwStyle = 0)
{
    static UINT s_nID = 100;
    const RECT scaled = Scaled(place);
    control.CreateControl(hParent, ++s_nID, pszText, dwStyle, &scaled);
}

static int ShowControls()
{
    CPartsWindow window;
    window.Create(nullptr, "Controls", WS_POPUP, Scaled({0, 0, 470, 210}), nullptr, 0);
    CCUIStatic label;
    CCUIEdit name, number;
    CCUISpinButton spin;
    CCUIComboBox choice;
    CCUIListBox list;
    CCUITreeView tree;
    CCUITabControl tabs;
    CCUIListView files;
    CCUITrackBar zoom;
    CCUIProgressBar progress;
    CCUIScrollBar scroll;

    Make(label, window, "&Name", {8, 11, 48, 27});
    Make(name, window, "Harbour at dusk", {50, 8, 150, 28});
    Make(number, window, "", {8, 36, 70, 56});
    Make(spin, window, nullptr, {70, 36, 88, 56});
    spin.SetRange(1, 3600);
    spin.SetPos(15);
    Make(choice, window, nullptr, {94, 36, 150, 120});
    choice.AddString("Bitmap");
    choice.SetCurSel(0);
    Make(list, window, nullptr, {8, 64, 150, 124});
    list.AddString("Dunes");
    list.AddString("Fennec");
    list.AddString("Harbour");
    list.AddString("Island");
    list.SetCurSel(1);
    Make(tree, window, nullptr, {8, 132, 150, 202});
    const HTREEITEM hRoot = tree.InsertItem(nullptr, "Pictures");
    tree.InsertItem(hRoot, "Animals");
    tree.InsertItem(tree.InsertItem(hRoot, "Sea"), "Boats");
    tree.Expand(hRoot);

    // A page of the tabs is in front of them.
    Make(files, window, nullptr, {164, 40, 454, 118});
    Make(tabs, window, nullptr, {158, 8, 462, 124});
    tabs.AddItem("Files");
    tabs.AddItem("Options");
    files.InsertColumn(0, "Name", Scaled(110));
    files.InsertColumn(1, "Size", Scaled(90), LVCFMT_RIGHT);
    files.SetItemText(files.AddItem("Fennec.bmp"), 1, "177 KB");
    files.SetItemText(files.AddItem("Harbour.bmp"), 1, "96 KB");
    files.Select(1);
    Make(zoom, window, nullptr, {158, 132, 462, 160});
    zoom.SetTicFreq(10);
    zoom.SetPos(30);
    Make(progress, window, nullptr, {164, 164, 456, 180});
    progress.SetPos(60);
    Make(scroll, window, nullptr, {164, 186, 456, 202}, SBS_HORZ);
    scroll.SetRange(0, 100, 30);
    scroll.SetPos(20);

    window.Show();
    files.Focus();
    return CCUIWindow::RunLoop();
}

int main(int nArguments, char **ppszArguments)
{
    const char *pszPart = nArguments > 1 ? ppszArguments[1] : "";
    return !strcmp(pszPart, "menu")       ? ShowMenu()
           : !strcmp(pszPart, "box")      ? ShowBox()
           : !strcmp(pszPart, "controls") ? ShowControls()
           : !strcmp(pszPart, "chooser")  ? ShowChooser()
           : !strcmp(pszPart, "icon")     ? ShowIcon()
                                          : ShowButtons();
}
