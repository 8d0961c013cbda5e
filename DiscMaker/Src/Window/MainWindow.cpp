#include "Window/MainWindow.h"

#include "CUI/Data.h"
#include "CUI/MessageBox.h"
#include "CUI/Settings.h"
#include "Model/SkinEntry.h"
#include "Problems/Check.h"
#include "Resource.h"
#include "Window/Clipboard.h"
#include "Window/Scaled.h"

namespace {

const char *const SECTION = "Window";
const long KEEP_AFTER = 5000;  // milliseconds after which a crash loses nothing more of a change

enum
{
    PaneHelp,
    PanePlace,
    PaneZoom,
    PaneProblems
};

const unsigned TOOLS[] = {
    ID_NEW,       ID_OPEN,       ID_SAVE, 0,          ID_UNDO,     ID_REDO, 0,
    ID_ZOOM_IN,   ID_ZOOM_OUT,   0,       ID_ZONES,   ID_SNAP,     0,       ID_ALIGN_LEFT,
    ID_ALIGN_TOP, ID_SPACE_DOWN, 0,       ID_PREVIEW, ID_MAKE_DISC};

HINSTANCE Instance()
{
    return GetModuleHandleA(nullptr);
}

}  // namespace

CMainWindow::CMainWindow()
    : CCUIResourceCommands(ID_NEW, ID_LAST - ID_NEW + 1),
      m_document(this),
      m_menu(Instance(), MAKEINTRESOURCEA(IDR_MAIN), CUI_MENU_BAR),
      m_canvasMenu(Instance(), MAKEINTRESOURCEA(IDR_CANVAS), 0),
      m_recent(this, ID_RECENT),
      m_column(CCUILayoutWindow::Column),
      m_row(CCUILayoutWindow::Row),
      m_side(CCUILayoutWindow::Column),
      m_canvas(m_document, *this),
      m_grid(m_document, *this),
      m_list(*this),
      m_cxSide(Scaled(330)),
      m_cyList(Scaled(110))
{
}

CMainWindow::~CMainWindow() = default;

// --- The window ---

int CMainWindow::OnCreate(CREATESTRUCTA *pCreate)
{
    KeepSettings(false);
    const bool bLarge = CUIGetWinData()->cyPixelsPerInch >= 120;
    const CCUIBitmap strip(bLarge ? IDB_LARGE_TOOLS : IDB_TOOLS, CUIBMP_SYSCOLORS, Instance());
    const int nDpi = bLarge ? 144 : 96;  // that they were drawn for
    m_menu.SetPictures(strip, TOOLS, ARRAYSIZE(TOOLS), nDpi);
    m_canvasMenu.SetPictures(strip, TOOLS, ARRAYSIZE(TOOLS), nDpi);
    SetMenu(m_menu.GetHandle());
    SetAccelerators(Instance(), MAKEINTRESOURCEA(IDR_MAIN));
    AcceptFiles(true);
    m_bar.SetPictures(strip, strip.Height(), nDpi);
    m_bar.CreateBar(*this, 1, "Tools");
    m_bar.SetButtons(TOOLS);
    AddBar(&m_bar);
    m_status.AddPane(CUI_PANE_FIT, Scaled(150));
    m_status.AddPane(CUI_PANE_FIT, Scaled(48));
    m_status.AddPane(CUI_PANE_FIT, Scaled(90));
    m_status.CreateBar(*this, 2);
    SetStatusBar(&m_status);
    CreateParts();
    CCUIWindow::SetIdleCallback(this);
    return CCUIFrameWindow::OnCreate(pCreate);
}

void CMainWindow::CreateParts()
{
    const RECT nowhere = {0, 0, 0, 0};
    const DWORD dwStyle = WS_CHILD | WS_VISIBLE;
    m_column.Create(nullptr, "", dwStyle, nowhere, *this, 3);
    m_row.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_SPLITTER | CUIPlaceWeight(1));
    m_row.SetFixedSize(Scaled(120));
    m_row.Create(nullptr, "", dwStyle, nowhere, m_column, 1);
    m_canvas.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_SPLITTER | CUIPlaceWeight(1));
    m_canvas.SetFixedSize(Scaled(160));
    m_canvas.CreateCanvas(m_row, 1);
    m_canvas.SetContextMenu(&m_canvasMenu);
    m_side.SetLayoutFlags(CUI_PLACE_FILL);
    m_side.SetFixedSize(m_cxSide);
    m_side.Create(nullptr, "", dwStyle, nowhere, m_row, 2);
    m_grid.SetLayoutFlags(CUI_PLACE_FILL | CUI_PLACE_SPLITTER | CUIPlaceWeight(1));
    m_grid.SetFixedSize(Scaled(80));
    m_grid.CreateGrid(m_side, 1);
    m_note.SetLayoutFlags(CUI_PLACE_FILL);
    m_note.SetFixedSize(Scaled(84));
    m_note.CreateControl(m_side, 2, "");
    m_list.SetLayoutFlags(CUI_PLACE_FILL);
    m_list.SetFixedSize(m_cyList);
    m_list.CreateList(m_column, 2);
    SetClient(&m_column);
}

void CMainWindow::OnDestroy()
{
    m_cxSide = m_side.GetFixedSize();
    m_cyList = m_list.GetFixedSize();
    KeepSettings(true);
    CCUIWindow::SetIdleCallback(nullptr);
    LeaveOrForget();
    CCUIFrameWindow::OnDestroy();
}

void CMainWindow::KeepSettings(bool bSave)
{
    CCURegistry registry;
    if (!CUIOpenSettings(registry, SECTION, !bSave))
        return;
    int bZones = m_canvas.ZonesShown(), bSnap = m_canvas.IsSnapping();
    const struct
    {
        const char *m_pszName;
        int &m_nValue;
    } values[] = {
        {"Properties", m_cxSide}, {"Problems", m_cyList}, {"Zones", bZones}, {"Snap", bSnap}};
    for (const auto &value : values) {
        if (bSave)
            registry.SetInt(value.m_pszName, value.m_nValue);
        else
            registry.GetInt(value.m_pszName, value.m_nValue);
    }
    if (bSave) {
        registry.SetString("Contents", m_sContents);
        return;
    }
    registry.GetString("Contents", m_sContents);
    m_canvas.ShowZones(bZones != 0);
    m_canvas.SetSnapping(bSnap != 0);
}

void CMainWindow::OnSysColorChange()
{
    CCUIFrameWindow::OnSysColorChange();
    InvalidateRect(m_canvas, nullptr, FALSE);
}

// Another depth needs other bitmaps.
void CMainWindow::OnDisplayChange(UINT nBitsPerPixel, int cx, int cy)
{
    CCUIFrameWindow::OnDisplayChange(nBitsPerPixel, cx, cy);
    m_canvas.Read(nullptr);
}

// The screen gets the background's colours while this window is at the front.
long CMainWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    const bool bOther =
        message == WM_PALETTECHANGED && reinterpret_cast<HWND>(wParam) != m_canvas.GetHandle();
    if (message != WM_QUERYNEWPALETTE && !bOther)
        return CCUIFrameWindow::OnMessage(message, wParam, lParam);
    // To draw with other colours of the screen changes them once more.
    if (m_bRealizing)
        return 0;
    m_bRealizing = true;
    const bool bChanged = m_canvas.Face().RealizeBackground(m_canvas);
    if (bChanged)
        m_canvas.Read(nullptr);  // its bitmaps have the screen's colours
    m_bRealizing = false;
    return bChanged;
}

void CMainWindow::TimeOut(long)
{
    KeepForCrash();
    // What could not be written may be some time later, whether anybody does anything or not.
    if (m_nKept != m_document.Revision())
        SetAlarm(KEEP_AFTER);
}

// --- Commands ---

void CMainWindow::HandleCommand(unsigned int nID)
{
    if (!HandleFileCommand(nID) && !HandleEditCommand(nID) && !HandleViewCommand(nID))
        HandleDiscCommand(nID);
}

bool CMainWindow::HandleFileCommand(unsigned int nID)
{
    switch (nID) {
    case ID_NEW: NewFrom(); return true;
    case ID_OPEN: ChooseFile(); return true;
    case ID_OPEN_FOLDER: ChooseFolder(); return true;
    case ID_SAVE: Save(); return true;
    case ID_SAVE_LAUNCHER: SaveAsLauncher(); return true;
    case ID_SAVE_FOLDER: SaveAsFolder(); return true;
    case ID_EXIT: OnClose(); return true;
    default: return false;
    }
}

bool CMainWindow::HandleEditCommand(unsigned int nID)
{
    switch (nID) {
    case ID_UNDO: m_document.Undo(); return true;
    case ID_REDO: m_document.Redo(); return true;
    case ID_CUT: SendToEdit(WM_CUT, 0, 0); return true;
    case ID_COPY: Copy(false); return true;
    case ID_COPY_SKIN: Copy(true); return true;
    case ID_PASTE: Paste(); return true;
    case ID_SELECT_ALL:
        if (!SendToEdit(EM_SETSEL, 0, -1))
            m_canvas.SelectAll();
        return true;
    case ID_EDIT_TEXT:
        if (!m_canvas.Selection().empty())
            OnCanvasActivate(m_canvas.Selection()[0]);
        return true;
    case ID_SHARE_COLORS: ShareAllColors(); return true;
    default: break;
    }
    if (nID < ID_ARRANGE || nID > ID_SPACE_DOWN)
        return false;
    m_canvas.ArrangeSelection(static_cast<Arrangement>(nID - ID_ARRANGE));
    return true;
}

bool CMainWindow::HandleViewCommand(unsigned int nID)
{
    switch (nID) {
    case ID_ZOOM_IN: m_canvas.ZoomBy(1); return true;
    case ID_ZOOM_OUT: m_canvas.ZoomBy(-1); return true;
    case ID_ACTUAL_SIZE: m_canvas.SetZoom(100); return true;
    case ID_ZONES: m_canvas.ShowZones(!m_canvas.ZonesShown()); return true;
    case ID_SNAP: m_canvas.SetSnapping(!m_canvas.IsSnapping()); return true;
    case ID_GO_CANVAS: SetFocus(m_canvas); return true;
    case ID_GO_PROPERTIES: SetFocus(m_grid); return true;
    case ID_GO_PROBLEMS: SetFocus(m_list); return true;
    default: return false;
    }
}

bool CMainWindow::HandleDiscCommand(unsigned int nID)
{
    switch (nID) {
    case ID_CONTENTS: ChooseContents(); return true;
    case ID_PREVIEW: Preview(); return true;
    case ID_MAKE_DISC: MakeDiscNow(); return true;
    case ID_HELP_PAGE: ShowHelpPage(); return true;
    case ID_ABOUT:
        CUIMessageBox(this,
                      "Disc Maker\n\nMakes the launcher of a disc: opens one, or a skin folder, "
                      "and changes what it shows and starts.",
                      "About Disc Maker", MB_OK | MB_ICONINFORMATION);
        return true;
    default: return false;
    }
}

unsigned short CMainWindow::GetState(unsigned int nID)
{
    const bool bSelected = !m_canvas.Selection().empty();
    switch (nID) {
    case ID_SAVE: return CUICommandState(m_document.IsModified() || m_bUntitled);
    case ID_CUT: return CUICommandState(IsTyping());
    case ID_PASTE: return CUICommandState(CanPaste());
    case ID_UNDO: return CUICommandState(m_document.CanUndo());
    case ID_REDO: return CUICommandState(m_document.CanRedo());
    case ID_EDIT_TEXT: return CUICommandState(bSelected);
    case ID_ZOOM_IN: return CUICommandState(m_canvas.CanZoom(1));
    case ID_ZOOM_OUT: return CUICommandState(m_canvas.CanZoom(-1));
    case ID_ZONES: return CUICommandState(true, m_canvas.ZonesShown());
    case ID_SNAP: return CUICommandState(true, m_canvas.IsSnapping());
    default: break;
    }
    if (nID >= ID_ARRANGE && nID <= ID_SPACE_DOWN)
        return CUICommandState(m_canvas.CanArrange(static_cast<Arrangement>(nID - ID_ARRANGE)));
    return CUI_COMMAND_ACTIVE;
}

// --- What the parts tell ---

void CMainWindow::OnSkinChanged(const SkinPart *pPart)
{
    m_canvas.Read(pPart);
    m_grid.Read(pPart);
    SetModified(m_document.IsModified());
    ShowPlace();
}

void CMainWindow::OnCanvasSelection()
{
    ShowPlace();
    // The row that has chosen the item stays the selected one.
    if (m_canvas.Selection().empty() || m_bFollowing)
        return;
    const FaceItemInfo &info = FaceItemInfoOf(m_canvas.Selection()[0]);
    m_bFollowing = true;
    m_grid.SelectEntry(info.m_nPlace, false);
    m_bFollowing = false;
}

void CMainWindow::OnCanvasActivate(FaceItem item)
{
    const FaceItemInfo &info = FaceItemInfoOf(item);
    if (info.m_nText)
        m_grid.SelectEntry(info.m_nText, true);
    else
        m_grid.SelectEntry(item == ItemProduct ? IDB_PRODUCT : IDB_BULLET, false);
}

void CMainWindow::OnCanvasZoom()
{
    CCUString sZoom;
    sZoom.Format("%d %%", m_canvas.GetZoom());
    m_status.SetText(PaneZoom, sZoom);
}

// What is wrong with a row as it is typed, else what the last check has found.
CCUString CMainWindow::FaultOf(const PropertyRow &row) const
{
    CCUString sFault = RowFault(m_document, row);
    for (const CProblem &problem : m_list.Problems()) {
        if (sFault.IsEmpty() && problem.m_nEntry && problem.m_nEntry == RowEntry(row) &&
            m_document.IsShown(problem))
            sFault = ProblemWhat(problem) + " " + ProblemEffect(problem);
    }
    return sFault;
}

void CMainWindow::OnPropertyRow(const PropertyRow &row, bool bChosen)
{
    m_note.Show(row.m_sCaption, RowHelp(m_document, row), FaultOf(row));
    const FaceItem item = row.m_kind == PropertyRow::Entry ? FaceItemOf(row.m_nID) : ItemNone;
    if (bChosen && !m_bFollowing && item != ItemNone && !m_canvas.IsSelected(item)) {
        m_bFollowing = true;
        m_canvas.Select(item);
        m_bFollowing = false;
    }
}

void CMainWindow::OnPropertyButton(const PropertyRow &row)
{
    const SkinEntry *const pEntry =
        row.m_kind == PropertyRow::Entry ? FindSkinEntry(row.m_nID) : nullptr;
    if (row.m_kind == PropertyRow::Picture)
        ChoosePicture(row);
    else if (row.m_kind == PropertyRow::Icon)
        ChooseIcon();
    else if (row.m_kind == PropertyRow::Language)
        ChooseLanguage();
    else if (pEntry && pEntry->m_kind == EntryFont)
        PickFont(row);
    else if (pEntry && pEntry->m_kind == EntryColor)
        PickColor(row);
    else if (pEntry && pEntry->m_kind == EntryCommand)
        ChooseProgram(row);
    else if (pEntry)
        EditText(row);
}

void CMainWindow::OnProblem(const CProblem &problem)
{
    if (!problem.m_nEntry)
        return;
    if (!m_document.IsShown(problem)) {
        m_document.SetLanguage(static_cast<size_t>(problem.m_nTexts));
        m_bCheck = true;
    }
    m_grid.SelectEntry(problem.m_nEntry, true);
}

void CMainWindow::ShowPlace()
{
    CCUString sPlace;
    const std::vector<FaceItem> &items = m_canvas.Selection();
    if (items.size() == 1) {
        const RECT &rect = m_canvas.ItemRect(items[0]);
        sPlace.Format("%ld, %ld   %ld x %ld", rect.left, rect.top, rect.right - rect.left,
                      rect.bottom - rect.top);
    } else if (items.size() > 1) {
        sPlace.Format("%u selected", static_cast<unsigned>(items.size()));
    }
    m_status.SetText(PanePlace, sPlace);
}

// The problems of what there is now.
void CMainWindow::OnIdle()
{
    if (m_nKept != m_document.Revision())
        SetAlarmIfEarlier(KEEP_AFTER);
    if (!m_bCheck && m_nChecked == m_document.Revision())
        return;
    m_bCheck = false;
    m_nChecked = m_document.Revision();
    CProblems problems = m_fileProblems;
    problems.insert(problems.end(), m_keepProblems.begin(), m_keepProblems.end());
    CheckSkin(m_document.Skin(), m_sContents, problems);
    m_list.Show(problems);
    m_grid.SetProblems(problems);
    if (m_grid.Selected())
        OnPropertyRow(*m_grid.Selected(), false);
    CCUString sCount;
    sCount.Format(problems.size() == 1 ? "1 problem" : "%u problems",
                  static_cast<unsigned>(problems.size()));
    m_status.SetText(PaneProblems, problems.empty() ? CCUString("No problems") : sCount);
}
