// How the main window tries a disc, and makes it.
#include "Base/SystemLibrary.h"
#include "CUI/Choosers.h"
#include "CUI/MessageBox.h"
#include "File/FileBytes.h"
#include "Window/DiscDialog.h"
#include "Window/MainWindow.h"
#include "Window/ProgramPath.h"

void CMainWindow::ChooseContents()
{
    CCUString sFolder = m_sContents;
    if (!CUIChooseFolder(this, sFolder, "The folder with what the disc holds beside the launcher:"))
        return;
    m_sContents = sFolder;
    m_bCheck = true;
}

void CMainWindow::Preview()
{
    const std::unique_ptr<CSkinFile> launcher = OpenLauncher(true);
    // A line would start nothing, or something else, where a contents folder has gone.
    const bool bContents = !m_sContents.IsEmpty() && FolderExists(m_sContents);
    CProblems problems;
    if (launcher &&
        !m_preview.Run(*launcher, m_document.Skin(), bContents ? m_sContents : "", problems))
        ShowProblems("There is no preview.", problems);
}

void CMainWindow::MakeDiscNow()
{
    if (!IsWhole("The disc was not made."))
        return;
    const std::unique_ptr<CSkinFile> launcher = OpenLauncher(true);
    if (!launcher)
        return;
    CDiscDialog dialog(m_document.Skin(), launcher->Path(), m_sContents);
    const int nAnswer = dialog.DoModal(this);
    if (m_sContents != dialog.Contents()) {
        m_sContents = dialog.Contents();
        m_bCheck = true;
    }
    if (nAnswer != IDOK)
        return;
    const CProblems &problems = dialog.Problems();
    CCUString sText = "The disc is in\n" + dialog.Out() + "\n\n";
    if (problems.empty())
        sText += "Burn what is in this folder.";
    else
        sText += "Before you burn what is in this folder:\n\n" + ProblemsInWords(problems);
    CUIMessageBox(this, sText, "Make the disc",
                  MB_OK | (problems.empty() ? MB_ICONINFORMATION : MB_ICONWARNING));
}

void CMainWindow::ShowHelpPage()
{
    const CCUString sPage = ProgramFolder() + "Help\\DiscMaker.html";
    typedef HINSTANCE(WINAPI * ShellExecuteFunction)(HWND, const char *, const char *, const char *,
                                                     const char *, int);
    const HMODULE hShell = CULoadSystemLibrary("shell32.dll");
    const auto pExecute =
        hShell ? reinterpret_cast<ShellExecuteFunction>(GetProcAddress(hShell, "ShellExecuteA"))
               : nullptr;
    const bool bShown =
        pExecute && reinterpret_cast<UINT_PTR>(
                        pExecute(*this, "open", sPage, nullptr, nullptr, SW_SHOWNORMAL)) > 32;
    if (!bShown)
        CUIMessageBox(this, "The page of help cannot be shown:\n" + sPage, "Help",
                      MB_OK | MB_ICONWARNING);
}
