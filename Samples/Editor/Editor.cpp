// A text editor: open texts, drop them, or name them in the command line.

#include <utility>

#include "CU/ErrorText.h"
#include "CU/TextFile.h"
#include "CUI/ControlBar.h"
#include "CUI/Font.h"
#include "CUI/FrameWindow.h"
#include "CUI/Menu.h"
#include "CUI/MessageBox.h"
#include "CUI/PrintPreview.h"
#include "CUI/RecentFiles.h"
#include "CUI/ResourceCommands.h"
#include "CUI/StatusBar.h"
#include "Dialogs.h"
#include "Pages.h"

const char FILTER[] = "Texts|*.txt;*.log;*.ini;*.md|All files|*.*";
const char UNTITLED[] = "Untitled";

class CEditor : public CCUIFrameWindow, private CCUIResourceCommands
{
public:
    CEditor() : CCUIResourceCommands(ID_NEW, ID_CLOSE_PREVIEW - ID_NEW + 1)
    {
        m_options.Keep(false);
    }

    void OnOpenFile(const CCUString &sPath) override
    {
        CCUTextFile file;
        if (!QueryClose())
            return;
        if (!file.Load(sPath)) {
            Tell(MB_ICONWARNING, "\"%s\" cannot be opened: %s", sPath, CUErrorText(GetLastError()));
            return;
        }
        Show(sPath, file);
        m_recent.Add(sPath);
        // A control ends a text at its first NUL, and may have no room.
        if (file.GetLostCount())
            ShowReadOnly(
                "has characters that this system's code page does not have, and others "
                "are shown for them");
        else if (m_edit.GetText().GetLength() != file.GetText().GetLength())
            ShowReadOnly("is no text, or too long, and not all of it is shown");
    }

private:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        // The commands in the order of their pictures, and those of the two bars.
        static const UINT PICTURES[] = {ID_NEW,       ID_OPEN,    ID_SAVE,     ID_PRINT,
                                        ID_PREVIEW,   ID_CUT,     ID_COPY,     ID_PASTE,
                                        ID_UNDO,      ID_FIND,    ID_OPTIONS,  ID_PREVIOUS_PAGE,
                                        ID_NEXT_PAGE, ID_ZOOM_IN, ID_ZOOM_OUT, ID_WHOLE_PAGE};
        static const UINT TOOLS[] = {ID_NEW,  ID_OPEN,  ID_SAVE, 0, ID_PRINT, ID_PREVIEW, 0, ID_CUT,
                                     ID_COPY, ID_PASTE, ID_UNDO, 0, ID_FIND,  ID_OPTIONS};
        const bool bLarge = CUIGetWinData()->cyPixelsPerInch >= 120;
        const CCUIBitmap strip(bLarge ? IDB_LARGE_TOOLS : IDB_TOOLS, CUIBMP_SYSCOLORS, m_hInstance);
        m_menu.SetPictures(strip, PICTURES);
        SetMenu(m_menu);
        SetAccelerators(m_hInstance, MAKEINTRESOURCE(IDR_EDITOR));
        AcceptFiles(true);

        m_bar.SetPictures(strip, strip.Height());
        m_bar.CreateBar(*this, 2, "Tools");
        m_bar.SetButtons(TOOLS);
        AddBar(&m_bar);
        m_pageBar.SetPictures(strip, strip.Height());
        m_pageBar.CreateBar(*this, 3, "Preview");
        m_pageBar.AddButton(ID_PRINT, 3);
        m_pageBar.AddSeparator();
        for (int n = 11; n < 16; n++)
            m_pageBar.AddButton(PICTURES[n], n);
        m_pageBar.AddSeparator();
        m_pageBar.AddButton(ID_CLOSE_PREVIEW, -1);
        m_pageBar.Show(false);
        AddBar(&m_pageBar);
        for (int n = 0; n < 3; n++)
            m_status.AddPane(CUI_PANE_FIT, 60);
        m_status.CreateBar(*this, 4);
        SetStatusBar(&m_status);

        m_preview.CreateControl(*this, 5, "");
        m_preview.Show(false);
        UseOptions();
        Show(UNTITLED, CCUTextFile());
        return CCUIFrameWindow::OnCreate(pCreate);
    }
    void OnDestroy() override
    {
        m_options.Keep(true);
        CCUIFrameWindow::OnDestroy();
    }
    void OnCommand(UINT nCode, UINT nID, HWND hControl) override
    {
        if (nCode == EN_CHANGE && hControl == m_edit)
            SetModified(true);
        else
            CCUIFrameWindow::OnCommand(nCode, nID, hControl);
    }
    bool QueryClose() override
    {
        if (!IsModified())
            return true;
        CCUIMessageBox box("Save \"" + GetName() + "\"?", "Editor", MB_ICONQUESTION);
        box.AddButton(IDYES, "&Save");
        box.AddButton(IDNO, "&Do not save");
        box.AddButton(IDCANCEL);
        const int nAnswer = box.DoModal(this);
        return nAnswer == IDNO || (nAnswer == IDYES && Save());
    }

    void HandleCommand(unsigned nID) override
    {
        switch (nID) {
        case ID_NEW:
            if (QueryClose())
                Show(UNTITLED, CCUTextFile());
            break;
        case ID_OPEN: Open(); break;
        case ID_SAVE: Save(); break;
        case ID_SAVE_AS: SaveAs(); break;
        case ID_PRINT: Print(); break;
        case ID_PREVIEW: ShowPreview(!m_preview.IsShown()); break;
        case ID_EXIT: OnClose(); break;
        case ID_UNDO: m_edit.Undo(); break;
        case ID_CUT: m_edit.Cut(); break;
        case ID_COPY: m_edit.Copy(); break;
        case ID_PASTE: m_edit.Paste(); break;
        case ID_SELECT_ALL: m_edit.SetSelection(0, -1); break;
        case ID_FIND: m_find.Open(this); break;
        case ID_FIND_NEXT: Find(false); break;
        case ID_FIND_PREVIOUS: Find(true); break;
        case ID_REPLACE:
            m_edit.Replace(m_find.GetSearch());
            Find(false);
            break;
        case ID_REPLACE_ALL: ReplaceAll(); break;
        case ID_GO_TO: GoTo(); break;
        case ID_WRAP:
            m_options.m_bWrap = !m_options.m_bWrap;
            UseOptions();
            break;
        case ID_FULL_SCREEN: SetFullScreen(!IsFullScreen()); break;
        case ID_OPTIONS:
            if (m_options.DoModal(this) == IDOK)
                UseOptions();
            break;
        case ID_PREVIOUS_PAGE: m_preview.SetPage(m_preview.GetPage() - 1); break;
        case ID_NEXT_PAGE: m_preview.SetPage(m_preview.GetPage() + 1); break;
        case ID_ZOOM_IN: m_preview.StepZoom(true); break;
        case ID_ZOOM_OUT: m_preview.StepZoom(false); break;
        case ID_WHOLE_PAGE: m_preview.SetZoom(0); break;
        case ID_CLOSE_PREVIEW: ShowPreview(false); break;
        }
    }
    unsigned short GetState(unsigned nID) override
    {
        const bool bPages = m_preview.IsShown(), bText = !bPages;
        const bool bWritable = bText && !m_edit.IsReadOnly();
        const bool bSearch = bText && !m_find.GetSearch().sWhat.IsEmpty();
        switch (nID) {
        case ID_SAVE: return CUICommandState(IsModified());
        case ID_SAVE_AS: return CUICommandState(!m_edit.IsReadOnly());
        case ID_UNDO: return CUICommandState(bWritable && m_edit.CanUndo());
        case ID_CUT: return CUICommandState(bWritable && m_edit.HasSelection());
        case ID_COPY: return CUICommandState(bText && m_edit.HasSelection());
        case ID_PASTE: return CUICommandState(bWritable && IsClipboardFormatAvailable(CF_TEXT));
        case ID_FIND_NEXT:
        case ID_FIND_PREVIOUS: return CUICommandState(bSearch);
        case ID_REPLACE:
        case ID_REPLACE_ALL: return CUICommandState(bSearch && bWritable);
        case ID_PREVIEW: return CUICommandState(true, bPages);
        case ID_SELECT_ALL:
        case ID_FIND:
        case ID_GO_TO:
        case ID_OPTIONS: return CUICommandState(bText);
        case ID_WRAP: return CUICommandState(bText, m_options.m_bWrap != 0);
        case ID_FULL_SCREEN: return CUICommandState(true, IsFullScreen());
        case ID_PREVIOUS_PAGE: return CUICommandState(bPages && m_preview.GetPage() > 0);
        case ID_NEXT_PAGE:
            return CUICommandState(bPages && m_preview.GetPage() + 1 < m_preview.GetPageCount());
        case ID_ZOOM_IN: return CUICommandState(bPages && m_preview.GetZoom() < 400);
        case ID_ZOOM_OUT: return CUICommandState(bPages && m_preview.GetZoom() > 10);
        case ID_WHOLE_PAGE: return CUICommandState(bPages, m_preview.IsWhole());
        case ID_CLOSE_PREVIEW: return CUICommandState(bPages);
        default: return CUI_COMMAND_ACTIVE;
        }
    }
    // Once after each turn of the message loop, and so for one of the commands.
    void HandleUpdate(unsigned nID) override
    {
        static const char *const ENCODINGS[] = {"ANSI", "UTF-8", "UTF-8 with a mark", "UTF-16",
                                                "UTF-16, big-endian"};
        static const char *const LINE_ENDS[] = {"CR LF", "LF", "CR", "mixed line ends"};
        if (nID != ID_NEW)
            return;
        CCUString sPlace, sFile;
        const POINT caret = m_edit.GetCaretPlace();
        if (m_preview.IsShown())
            sPlace.Format("Page %d of %d, %d %%", m_preview.GetPage() + 1, m_preview.GetPageCount(),
                          m_preview.GetZoom());
        else
            sPlace.Format("Line %ld, column %ld", caret.y, caret.x);
        sFile.Format("%s, %s", ENCODINGS[m_file.GetEncoding()], LINE_ENDS[m_file.GetLineEnd()]);
        m_status.SetText(1, sPlace);
        m_status.SetText(2, m_edit.IsReadOnly() ? "Read only" : IsModified() ? "Modified" : "");
        m_status.SetText(3, sFile);
    }

    // --- Files ---

    bool HasFile() const { return GetDocument() != UNTITLED; }
    CCUString GetName() const { return GetDocument().Mid(GetDocument().ReverseFind('\\') + 1); }

    void Show(const char *pszPath, const CCUTextFile &file)
    {
        ShowPreview(false);
        m_file = file;
        m_edit.SetReadOnly(false);
        m_edit.SetText(file.GetText());
        SetDocument(pszPath);
        SetModified(false);
    }
    // What is not all there must not take the file's place.
    void ShowReadOnly(const char *pszWhy)
    {
        m_edit.SetReadOnly(true);
        Tell(MB_ICONINFORMATION, "\"%s\" %s. It can only be read.", GetName(), pszWhy);
    }
    void Open()
    {
        CCUString sPath;
        if (CUIChooseOpenFile(this, sPath, FILTER))
            OnOpenFile(sPath);
        else
            TellFailure("The file cannot be chosen");
    }
    bool Save() { return HasFile() ? SaveTo(GetDocument()) : SaveAs(); }
    bool SaveAs()
    {
        CCUString sPath = HasFile() ? GetDocument() : CCUString();
        CCUIFileChoice choice;
        choice.pszExtension = "txt";
        if (CUIChooseSaveFile(this, sPath, FILTER, &choice))
            return SaveTo(sPath);
        TellFailure("The file cannot be chosen");
        return false;
    }
    bool SaveTo(const CCUString &sPath)
    {
        if (m_file.GetLineEnd() == CCUTextFile::Differ) {
            if (CUIMessageBox(this,
                              "The lines of the file end in different ways. All will end in "
                              "CR and LF.",
                              "Editor", MB_OKCANCEL | MB_ICONQUESTION) != IDOK)
                return false;
            m_file.SetLineEnd(CCUTextFile::CrLf);
        }
        m_file.SetText(m_edit.GetText());
        if (!m_file.Save(sPath)) {
            Tell(MB_ICONWARNING, "\"%s\" cannot be saved: %s", sPath, CUErrorText(GetLastError()));
            return false;
        }
        SetDocument(sPath);
        SetModified(false);
        m_recent.Add(sPath);
        return true;
    }

    // --- Messages ---

    void Tell(UINT nIcon, const char *pszFormat, const CCUString &sFirst, const CCUString &sSecond)
    {
        CCUString sText;
        sText.Format(pszFormat, sFirst.GetString(), sSecond.GetString());
        CUIMessageBox(m_find.Exist() ? static_cast<CCUIWindow *>(&m_find) : this, sText, "Editor",
                      MB_OK | nIcon);
    }
    // That the user has cancelled is no failure.
    void TellFailure(const char *pszWhat)
    {
        if (GetLastError() != ERROR_CANCELLED)
            Tell(MB_ICONWARNING, "%s: %s", pszWhat, CUErrorText(GetLastError()));
    }

    // --- The text ---

    void Find(bool bBack)
    {
        const CSearch search = m_find.GetSearch();
        if (!m_edit.Find(search, bBack))
            Tell(MB_ICONINFORMATION, "\"%s\" was not found.", search.sWhat, "");
    }
    void ReplaceAll()
    {
        const CSearch search = m_find.GetSearch();
        CCUString sCount;
        sCount.Format("%d", m_edit.ReplaceAll(search));
        Tell(MB_ICONINFORMATION, "\"%s\" was replaced %s times.", search.sWhat, sCount);
    }
    void GoTo()
    {
        CGoToDialog dialog(static_cast<int>(m_edit.GetCaretPlace().y), m_edit.CountLines());
        if (dialog.DoModal(this) == IDOK)
            m_edit.GoToLine(dialog.m_nLine);
    }
    void UseOptions()
    {
        CCUIFont font(m_options.GetFont(CUIGetWinData()->cyPixelsPerInch));
        if (!m_edit.Exist() || m_edit.IsWrapping() != (m_options.m_bWrap != 0)) {
            m_edit.Make(*this, m_options.m_bWrap != 0);
            SetClient(&m_edit);
        }
        m_edit.SetFont(font);
        m_edit.SetTabWidth(m_options.m_nTabWidth);
        m_font = std::move(font);
    }

    // --- Pages ---

    void SetPages()
    {
        const CUIPaper paper = m_printer.GetPaper();
        m_pages.Set(m_edit.GetText(), m_options.m_bHeader ? GetName() : CCUString(),
                    m_options.GetFont(CUI_PAPER_INCH), m_options.m_nTabWidth, paper);
        m_preview.SetPages(&m_pages, paper);
    }
    void ShowPreview(bool bShow)
    {
        if (bShow == m_preview.IsShown())
            return;
        if (bShow) {
            m_find.Close();
            m_printer.OpenDefault();  // without one there are usual papers
            SetPages();
            m_preview.SetPage(0);
            m_preview.SetZoom(0);
        }
        m_edit.Show(!bShow);
        m_preview.Show(bShow);
        m_bar.Show(!bShow);
        m_pageBar.Show(bShow);
        SetClient(bShow ? static_cast<CCUIWindow *>(&m_preview) : &m_edit);
    }
    void Print()
    {
        if (!m_printer.Choose(this)) {
            TellFailure("No printer can be chosen");
            return;
        }
        SetPages();
        if (!m_printer.Print(GetName(), m_pages))
            TellFailure("The text cannot be printed");
    }

    COptions m_options;
    CCUIMenu m_menu{m_hInstance, MAKEINTRESOURCE(IDR_EDITOR), CUI_MENU_BAR};
    CCUIRecentFiles m_recent{this, ID_RECENT};
    CCUIControlBar m_bar, m_pageBar;
    CCUIStatusBar m_status;
    CCUIFont m_font;
    CTextEdit m_edit;
    CTextPages m_pages;
    CCUIPrintPreview m_preview;
    CCUIPrinter m_printer;
    CFindDialog m_find;
    CCUTextFile m_file;
};

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int nShow)
{
    CUISetSettingsKey("Software\\Samples\\Editor");
    CEditor editor;
    if (!editor.CreateFrame("Editor"))
        return 1;
    editor.ShowKept("Frame", nShow);
    editor.OnCommandLine(GetCommandLineA(), "");
    return CCUIWindow::RunLoop();
}
