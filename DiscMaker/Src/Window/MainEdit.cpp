// How the main window changes what is selected.
#include <stdlib.h>

#include <algorithm>

#include "CUI/Choosers.h"
#include "CUI/MessageBox.h"
#include "File/FileBytes.h"
#include "File/IconGroup.h"
#include "Model/EntryLines.h"
#include "Model/EntryText.h"
#include "Picture/Import.h"
#include "Picture/Palette.h"
#include "Problems/SkinStrings.h"
#include "Resource.h"
#include "Window/Clipboard.h"
#include "Window/MainWindow.h"
#include "Window/ProgramPath.h"
#include "Window/TextDialog.h"
// What the choosers may be told.
#include <commdlg.h>

namespace {

const int POINTS_PER_INCH = 72;
const char *const PICTURE_PATTERNS = "*.bmp;*.dib;*.png;*.jpg;*.jpeg;*.gif";

bool IsEdit(HWND hWnd)
{
    char szClass[16] = "";
    GetClassNameA(hWnd, szClass, sizeof szClass);
    return lstrcmpiA(szClass, "Edit") == 0;
}

void AddItem(const CDocument &document, FaceItem item, CEntryTexts &entries)
{
    const FaceItemInfo &info = FaceItemInfoOf(item);
    for (const UINT nID : {info.m_nPlace, info.m_nText, info.m_nCommand}) {
        if (nID)
            entries[nID] = document.Entry(nID);
    }
}

// The item that all entries are about, or ItemNone.
FaceItem OnlyItem(const CEntryTexts &entries)
{
    FaceItem item = ItemNone;
    for (const auto &entry : entries) {
        const FaceItem of = FaceItemOf(entry.first);
        if (of == ItemNone || (item != ItemNone && of != item))
            return ItemNone;
        item = of;
    }
    return item;
}

void SetIfThere(CDocument &document, const CEntryTexts &entries, UINT nFrom, UINT nTo)
{
    const auto found = entries.find(nFrom);
    if (found != entries.end() && nFrom && nTo)
        document.SetEntry(nTo, found->second);
}

}  // namespace

// --- Clipboard ---

bool CMainWindow::IsTyping()
{
    return IsEdit(GetFocus());
}

// A field that is being typed in has its own clipboard commands.
bool CMainWindow::SendToEdit(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!IsTyping())
        return false;
    SendMessageA(GetFocus(), message, wParam, lParam);
    return true;
}

void CMainWindow::Copy(bool bSkin)
{
    if (!bSkin && SendToEdit(WM_COPY, 0, 0))
        return;
    bSkin = bSkin || m_canvas.Selection().empty();
    CEntryTexts entries;
    for (const FaceItem item : m_canvas.Selection()) {
        if (!bSkin)
            AddItem(m_document, item, entries);
    }
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        if (bSkin)
            entries[entry.m_nID] = m_document.Entry(entry.m_nID);
    }
    if (bSkin)
        entries[IDS_DISC_LABEL] = m_document.Entry(IDS_DISC_LABEL);
    if (!CopyToClipboard(*this, EntriesToLines(entries), bSkin ? &m_document.Skin() : nullptr))
        CUIMessageBox(this, "The clipboard is in use by another program. Nothing was copied.",
                      "Copy", MB_OK | MB_ICONWARNING);
}

// Texts and programs of one item go to the one that is selected, which stays where it is; anything
// else to where it came from.
void CMainWindow::Paste()
{
    if (SendToEdit(WM_PASTE, 0, 0))
        return;
    CSkin skin;
    if (SkinFromClipboard(*this, skin)) {
        m_document.SetAll(skin);
        return;
    }
    const CEntryTexts entries = LinesToEntries(TextFromClipboard(*this));
    if (entries.empty()) {
        CUIMessageBox(
            this,
            "There is no entry of a skin in the text of the clipboard, or another program "
            "uses it. Entries are pasted in the form of a script, such as\n\n"
            "IDS_TITLE \"Fennick 4.1\"",
            "Paste", MB_OK | MB_ICONINFORMATION);
        return;
    }
    const CDocumentStep step(m_document);
    const FaceItem from = OnlyItem(entries);
    if (from != ItemNone && m_canvas.Selection().size() == 1 && m_canvas.Selection()[0] != from) {
        const FaceItemInfo &source = FaceItemInfoOf(from);
        const FaceItemInfo &target = FaceItemInfoOf(m_canvas.Selection()[0]);
        SetIfThere(m_document, entries, source.m_nText, target.m_nText);
        SetIfThere(m_document, entries, source.m_nCommand, target.m_nCommand);
        return;
    }
    for (const auto &entry : entries)
        m_document.SetEntry(entry.first, entry.second);
}

// --- Choosers ---

void CMainWindow::EditText(const PropertyRow &row)
{
    CTextDialog dialog(m_document.Entry(row.m_nID));
    if (dialog.DoModal(this) == IDOK)
        m_document.SetEntry(row.m_nID, dialog.Text());
}

void CMainWindow::PickFont(const PropertyRow &row)
{
    SkinFont font = {12, 0, 0, "Arial"};
    ParseFont(m_document.Entry(row.m_nID), font);
    // The chooser counts by the screen's dots an inch, launchers by 96.
    LOGFONTA logFont = {};
    const HDC hDC = GetDC(nullptr);
    const int nDots = GetDeviceCaps(hDC, LOGPIXELSY);
    ReleaseDC(nullptr, hDC);
    logFont.lfHeight = -MulDiv(font.m_nPoints, nDots, POINTS_PER_INCH);
    logFont.lfWeight = font.m_nBold > 0 ? FW_BOLD : FW_NORMAL;
    logFont.lfItalic = font.m_nItalic != 0;
    lstrcpynA(logFont.lfFaceName, font.m_sFace, LF_FACESIZE);
    if (!CUIChooseFont(this, logFont, nullptr, CF_NOVERTFONTS | CF_NOSCRIPTSEL))
        return;
    const SkinFont chosen = {MulDiv(abs(logFont.lfHeight), POINTS_PER_INCH, nDots),
                             logFont.lfWeight > FW_MEDIUM, logFont.lfItalic != 0,
                             logFont.lfFaceName};
    m_document.SetEntry(row.m_nID, FormatFont(chosen));
    if (!IsFaceEverywhere(chosen.m_sFace))
        CUIMessageBox(
            this,
            "Not every Windows has the face " + chosen.m_sFace +
                ". Where it is missing, the launcher shows another one, which may be wider "
                "or narrower.\n\nArial, Courier and Times are everywhere.",
            "Font", MB_OK | MB_ICONINFORMATION, "Face");
}

void CMainWindow::PickColor(const PropertyRow &row)
{
    int components[3] = {};
    ParseColor(m_document.Entry(row.m_nID), components);
    COLORREF cr = RGB(components[0], components[1], components[2]);
    if (CUIChooseColor(this, cr, CC_FULLOPEN))
        m_document.SetEntry(row.m_nID, FormatColor(cr));
}

void CMainWindow::ChooseProgram(const PropertyRow &row)
{
    if (m_sContents.IsEmpty())
        ChooseContents();
    if (m_sContents.IsEmpty())
        return;
    CCUIFileChoice choice;
    choice.pszTitle = "Which program on the disc shall the line start?";
    choice.pszFolder = m_sContents;
    CCUString sPath;
    if (!CUIChooseOpenFile(this, sPath,
                           "Programs (*.exe;*.com;*.bat)|*.exe;*.com;*.bat|All files|*.*", &choice))
        return;
    const CCUString sCommand = CommandOfProgram(sPath, m_sContents);
    if (sCommand.IsEmpty())
        CUIMessageBox(this,
                      "This program is not in the folder of the disc's contents,\n" + m_sContents +
                          "\nso it would not be on the disc.",
                      "Program", MB_OK | MB_ICONWARNING);
    else
        m_document.SetEntry(row.m_nID, sCommand);
}

void CMainWindow::ChoosePicture(const PropertyRow &row)
{
    CCUString sPath;
    if (CUIChooseOpenFile(this, sPath,
                          CCUString("Pictures|") + PICTURE_PATTERNS + "|All files|*.*"))
        TakePicture(sPath, static_cast<SkinPicture>(row.m_nID));
}

void CMainWindow::TakePicture(const CCUString &sPath, SkinPicture picture)
{
    CProblems problems;
    const CBlob blob = ImportPicture(sPath, m_document.Skin(), picture, problems);
    if (blob)
        m_document.SetPicture(picture, blob);
    else
        ShowProblems("The picture cannot be used.", problems);
}

void CMainWindow::ChooseIcon()
{
    CCUString sPath;
    if (CUIChooseOpenFile(this, sPath, "Icons (*.ico)|*.ico"))
        TakeIcon(sPath);
}

void CMainWindow::TakeIcon(const CCUString &sPath)
{
    const CBlob icon = ReadFileBytes(sPath);
    if (icon && IsIconFile(CByteView(*icon)))
        m_document.SetIcon(icon);
    else
        CUIMessageBox(this, sPath + "\nis no icon, or cannot be read.", "Icon",
                      MB_OK | MB_ICONERROR);
}

// A picture that is dropped beside all that has one becomes the background. False for other files.
bool CMainWindow::TakeDropped(const CCUString &sPath, const POINT &point)
{
    const CCUString sPattern = CCUString("*") + sPath.Mid(std::max(0, sPath.ReverseFind('.')));
    if (sPattern.CompareNoCase("*.ico") == 0) {
        TakeIcon(sPath);
        return true;
    }
    CCUString sLower = sPattern;
    sLower.MakeLower();
    if ((CCUString(PICTURE_PATTERNS) + ";").Find(sLower + ";") < 0)
        return false;
    const FaceItem item = m_canvas.ItemAt(point);
    TakePicture(sPath, item == ItemProduct                                  ? PictureProduct
                       : item != ItemNone && FaceItemInfoOf(item).m_bBullet ? PictureBullet
                                                                            : PictureBackground);
    return true;
}

void CMainWindow::OnFilesDropped(const CCUString *pFiles, int nFiles, const POINT &point)
{
    POINT onCanvas = point;
    MapWindowPoints(*this, m_canvas, &onCanvas, 1);
    // Under an open dialog nothing is taken.
    if (nFiles != 1 || !IsWindowEnabled(*this) || !TakeDropped(pFiles[0], onCanvas))
        CCUIFrameWindow::OnFilesDropped(pFiles, nFiles, point);
    else
        BringToFront();
}

void CMainWindow::ChooseLanguage()
{
    CCUIMenu menu;
    const std::vector<CSkinTexts> &texts = m_document.Skin().m_texts;
    for (size_t i = 0; i < texts.size(); ++i)
        menu.Append(static_cast<UINT>(i + 1), LanguageName(texts[i].m_nLanguage));
    POINT point;
    GetCursorPos(&point);
    const int nChosen = DisplayPopupMenu(&menu, TPM_RETURNCMD, point, nullptr);
    if (nChosen > 0)
        m_document.SetLanguage(static_cast<size_t>(nChosen - 1));
}

void CMainWindow::ShareAllColors()
{
    CSkin skin = m_document.Skin();
    if (!ShareColours(skin)) {
        CUIMessageBox(this, "There is no picture whose colours could be shared.", "Share colours",
                      MB_OK | MB_ICONINFORMATION);
        return;
    }
    const CDocumentStep step(m_document);
    for (int i = 0; i < PictureCount; ++i)
        m_document.SetPicture(static_cast<SkinPicture>(i), skin.m_pictures[i]);
}
