// How the main window opens and saves.
#include "CUI/Choosers.h"
#include "CUI/MessageBox.h"
#include "File/DiscFiles.h"
#include "File/FileBytes.h"
#include "File/FileProblem.h"
#include "File/OpenSkin.h"
#include "File/SkinFolder.h"
#include "Window/MainWindow.h"
#include "Window/ProgramPath.h"

namespace {

const char *const OPEN_FILTER =
    "Launchers and skins (*.exe;*.rc)|*.exe;*.rc|Launchers (*.exe)|*.exe|Skins (*.rc)|*.rc";
const char *const LAUNCHER_FILTER = "Launchers (*.exe)|*.exe";
const char *const LAUNCHER_NAME = "AutoRun.exe";

}  // namespace

void CMainWindow::Begin()
{
    const CCUString sLauncher = ProgramFolder() + LAUNCHER_NAME;
    const bool bThere = FileExists(sLauncher);
    if (bThere && OpenPath(sLauncher, true))
        return;
    m_document.Start(CSkin());
    m_nKept = m_document.Revision();
    if (!bThere)
        AddProblem(m_fileProblems, ProblemNote, sLauncher,
                   "There is no launcher beside Disc Maker, and so no looks to begin with.",
                   "a launcher will be asked for when it is saved or the disc is made");
    m_bCheck = true;
    ShowName();
}

void CMainWindow::OfferRecovery()
{
    CSkin skin;
    CCUString sPath;
    CCUString sFiles;
    if (!m_recovery.Find(skin, sPath, sFiles))
        return;
    const CCUString sName = sPath.IsEmpty() ? CCUString("A new disc") : sPath;
    CCUIMessageBox box(sName + " was not saved when Disc Maker ended last time.", "Disc Maker",
                       MB_ICONQUESTION);
    box.AddButton(IDYES, "&Restore");
    box.AddButton(IDNO, "&Discard");
    m_bOffering = true;
    const int nAnswer = box.DoModal(this);
    m_bOffering = false;
    if (nAnswer == IDNO)
        m_recovery.Forget();
    else if (nAnswer != IDYES)
        m_recovery.Leave();
    if (nAnswer != IDYES)
        return;
    CProblems problems;
    std::unique_ptr<CSkinFile> file;
    if (!sPath.IsEmpty())
        file = OpenSkin(sPath, problems);
    m_bUntitled = !file;
    if (file) {
        file->RecallFiles(sFiles);
        m_file = std::move(file);
    }
    m_fileProblems = problems;
    m_document.Start(skin, false);
    ShowName();
}

void CMainWindow::OnOpenFile(const CCUString &sPath)
{
    if (QueryClose())
        OpenPath(sPath, false);
}

bool CMainWindow::OpenPath(const CCUString &sPath, bool bUntitled)
{
    CProblems problems;
    std::unique_ptr<CSkinFile> file = OpenSkin(sPath, problems);
    if (!file) {
        ShowProblems("It cannot be opened.", problems);
        return false;
    }
    m_file = std::move(file);
    m_bUntitled = bUntitled;
    m_fileProblems = problems;
    m_bCheck = true;
    m_canvas.Select(ItemNone);
    m_document.Start(m_file->Skin());
    KeepForCrash();  // nothing more
    if (!bUntitled)
        m_recent.Add(sPath);
    ShowName();
    return true;
}

void CMainWindow::ShowName()
{
    SetDocument(m_file && !m_bUntitled ? m_file->Path() : CCUString("New disc"));
    SetModified(m_document.IsModified());
    OnCanvasZoom();
}

void CMainWindow::ShowProblems(const char *pszText, const CProblems &problems)
{
    CUIMessageBox(this, CCUString(pszText) + "\n\n" + ProblemsInWords(problems), "Disc Maker",
                  MB_OK | MB_ICONERROR);
}

void CMainWindow::NewFrom()
{
    CCUIFileChoice choice;
    choice.pszTitle = "New disc: which launcher or skin shall it begin with?";
    const CCUString sFolder = ProgramFolder();
    choice.pszFolder = sFolder;
    CCUString sPath;
    if (QueryClose() && CUIChooseOpenFile(this, sPath, OPEN_FILTER, &choice))
        OpenPath(sPath, true);
}

void CMainWindow::ChooseFile()
{
    CCUString sPath = m_bUntitled ? CCUString() : GetDocument();
    if (QueryClose() && CUIChooseOpenFile(this, sPath, OPEN_FILTER))
        OpenPath(sPath, false);
}

void CMainWindow::ChooseFolder()
{
    CCUString sFolder;
    if (QueryClose() && CUIChooseFolder(this, sFolder, "The folder of the skin, with its Skin.rc:"))
        OpenPath(sFolder, false);
}

// --- Saving ---

bool CMainWindow::QueryClose()
{
    if (!m_document.IsModified())
        return true;
    CCUIMessageBox box("Save the changes to this disc?", "Disc Maker", MB_ICONQUESTION);
    box.AddButton(IDYES, "&Save");
    box.AddButton(IDNO, "&Discard");
    box.AddButton(IDCANCEL);
    // A session that ends may not wait for the answer.
    KeepForCrash();
    m_nDiscarded = 0;
    const int nAnswer = box.DoModal(this);
    if (nAnswer == IDNO)
        m_nDiscarded = m_document.Revision();
    return nAnswer == IDNO || (nAnswer == IDYES && Save());
}

bool CMainWindow::Save()
{
    if (m_file && !m_bUntitled)
        return SaveTo(m_file, m_file->Path());
    return m_file && m_file->IsFolder() ? SaveAsFolder() : SaveAsLauncher();
}

// The file becomes the document's when that is done.
bool CMainWindow::SaveTo(std::unique_ptr<CSkinFile> &file, const CCUString &sPath)
{
    m_document.Seal();
    CProblems problems;
    file->OverwriteChanges(false);
    bool bSaved = file->Save(m_document.Skin(), sPath, problems);
    if (!bSaved && file->IsOutdated()) {
        CCUIMessageBox box("It was not saved.\n\n" + ProblemsInWords(problems), "Disc Maker",
                           MB_ICONWARNING);
        box.AddButton(IDRETRY, "Save &anyway");
        box.AddButton(IDCANCEL);
        box.SetDefaultButton(IDCANCEL);
        if (box.DoModal(this) != IDRETRY)
            return false;
        file->OverwriteChanges(true);
        problems.clear();
        bSaved = file->Save(m_document.Skin(), sPath, problems);
        file->OverwriteChanges(false);
    }
    if (!bSaved) {
        ShowProblems("It was not saved.", problems);
        return false;
    }
    if (&file != &m_file)
        m_file = std::move(file);
    Saved(problems);
    return true;
}

// The document is what m_file is.
void CMainWindow::Saved(const CProblems &problems)
{
    m_bUntitled = false;
    m_fileProblems = problems;
    m_bCheck = true;
    m_document.MarkSaved();
    m_recovery.Forget();
    m_recent.Add(m_file->Path());
    ShowName();
}

bool CMainWindow::SaveAsLauncher()
{
    CCUString sPath =
        m_file && !m_bUntitled && !m_file->IsFolder() ? m_file->Path() : CCUString(LAUNCHER_NAME);
    CCUIFileChoice choice;
    choice.pszTitle = "Save as launcher";
    choice.pszExtension = "exe";
    if (!CUIChooseSaveFile(this, sPath, LAUNCHER_FILTER, &choice))
        return false;
    if (m_file && !m_file->IsFolder())
        return SaveTo(m_file, sPath);
    if (!IsWhole("It was not saved."))
        return false;
    std::unique_ptr<CSkinFile> launcher = OpenLauncher(true);
    return launcher && SaveTo(launcher, sPath);
}

// Whether nothing is lost when the skin is put into another launcher, or a disc; else that is told.
bool CMainWindow::IsWhole(const char *pszText)
{
    CProblems problems;
    if (!m_file || m_file->IsWhole(m_document.Skin(), problems))
        return true;
    ShowProblems(pszText, problems);
    return false;
}

// Whether there is nothing in a folder that could be lost, or the user does not want it any more.
bool CMainWindow::MayReplaceFiles(const CCUString &sFolder)
{
    const CCUString sScript = JoinPath(sFolder, SKIN_SCRIPT_NAME);
    if (!DiscHasFiles(CDiscPath(sFolder)) ||
        (!m_bUntitled && m_file->Path().CompareNoCase(sScript) == 0))
        return true;
    const char *const pszText = FileExists(sScript) ? "There is a skin in this folder already:\n"
                                                    : "There are files in this folder already:\n";
    return CUIMessageBox(
               this,
               pszText + sFolder +
                   "\n\nReplace those that have the name of the skin's script or of one of "
                   "its pictures?",
               "Save as skin folder", MB_OKCANCEL | MB_ICONWARNING | MB_DEFBUTTON2) == IDOK;
}

bool CMainWindow::SaveAsFolder()
{
    CCUString sFolder;
    if (m_file && m_file->IsFolder() && !m_bUntitled)
        sFolder = FolderOf(m_file->Path());
    if (!CUIChooseFolder(this, sFolder, "The folder for the skin:"))
        return false;
    if (m_file && m_file->IsFolder())
        return MayReplaceFiles(sFolder) && SaveTo(m_file, sFolder);
    m_document.Seal();
    CProblems problems;
    std::unique_ptr<CSkinFile> folder;
    if (CSkinFolder::Export(m_document.Skin(), sFolder, problems))
        folder = OpenSkin(sFolder, problems);
    if (!folder) {
        ShowProblems("It was not saved.", problems);
        return false;
    }
    m_file = std::move(folder);
    Saved(problems);
    return true;
}

// Some launcher: the document's, the one beside this program, or one that the user names.
std::unique_ptr<CSkinFile> CMainWindow::OpenLauncher(bool bAsk)
{
    CCUString sPath =
        m_file && !m_file->IsFolder() ? m_file->Path() : ProgramFolder() + LAUNCHER_NAME;
    if (!FileExists(sPath)) {
        CCUIFileChoice choice;
        choice.pszTitle = "Which launcher shall be used?";
        sPath = "";
        if (!bAsk || !CUIChooseOpenFile(this, sPath, LAUNCHER_FILTER, &choice))
            return nullptr;
    }
    CProblems problems;
    std::unique_ptr<CSkinFile> file = OpenSkin(sPath, problems);
    if (!file)
        ShowProblems("The launcher cannot be opened.", problems);
    return file;
}

// The window goes. Who was not asked, or did not answer, finds the skin at the next start.
void CMainWindow::LeaveOrForget()
{
    if (m_bOffering) {
        m_recovery.Leave();
        return;
    }
    if (!m_document.IsModified() || m_nDiscarded == m_document.Revision()) {
        m_recovery.Forget();
        return;
    }
    KeepForCrash();
    m_recovery.Leave();
}

void CMainWindow::KeepForCrash()
{
    if (m_nKept == m_document.Revision())
        return;
    CProblems problems;
    bool bDone = true;
    if (m_document.IsModified()) {
        const bool bFile = m_file && !m_bUntitled;
        const CCUString sPath = bFile ? m_file->Path() : CCUString();
        const CCUString sFiles = bFile ? m_file->KnownFiles() : CCUString();
        bDone = m_recovery.Keep(m_document.Skin(), sPath, sFiles, problems);
    } else {
        m_recovery.Forget();
    }
    if (bDone)
        m_nKept = m_document.Revision();
    if (problems.empty() == m_keepProblems.empty())
        return;
    m_keepProblems = problems;
    m_bCheck = true;
    // Shown in the idle pass, which the timer does not bring about.
    PostMessageA(m_hWnd, WM_NULL, 0, 0);
}
