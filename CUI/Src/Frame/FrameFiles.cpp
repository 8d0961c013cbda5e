// The files that a frame is asked to open from outside.

#include "CU/Dump.h"
#include "CUI/FrameWindow.h"
#include "Frame/Paths.h"
#include "Window/LoadedLibrary.h"

namespace {

// What is used of shell32.dll, which is loaded when the first files are dropped.
struct CDrop
{
    decltype(&::DragQueryFileA) queryFile;
    decltype(&::DragQueryPoint) queryPoint;
    decltype(&::DragFinish) finish;

    bool Find()
    {
        const HMODULE hShell = finish ? nullptr : CUILoadLibrary(CUIShell32);
        if (hShell) {
            queryFile = CUFindFunction<decltype(::DragQueryFileA)>(hShell, "DragQueryFileA");
            queryPoint = CUFindFunction<decltype(::DragQueryPoint)>(hShell, "DragQueryPoint");
            finish = CUFindFunction<decltype(::DragFinish)>(hShell, "DragFinish");
        }
        return queryFile && queryPoint && finish;
    }
};

CDrop s_drop;

CCUString DroppedFile(HDROP hDrop, UINT nIndex)
{
    CCUString sPath;
    const UINT nLength = s_drop.queryFile(hDrop, nIndex, nullptr, 0);
    s_drop.queryFile(hDrop, nIndex, sPath.GetBuffer(static_cast<int>(nLength)), nLength + 1);
    sPath.ReleaseBuffer();
    return sPath;
}

bool IsBlank(char ch)
{
    return ch == ' ' || ch == '\t';
}

// Takes an argument off a command line: up to a blank outside of quotes, without the quotes. False
// at the end.
bool TakeArgument(const char *&psz, CCUString &sArgument)
{
    while (IsBlank(*psz))
        ++psz;
    if (!*psz)
        return false;
    char *const pStart = sArgument.GetBuffer(lstrlenA(psz));
    char *p = pStart;
    bool bQuoted = false;
    for (; *psz && (bQuoted || !IsBlank(*psz)); ++psz) {
        if (*psz == '"')
            bQuoted = !bQuoted;
        else
            *p++ = *psz;
    }
    sArgument.ReleaseBuffer(static_cast<int>(p - pStart));
    return true;
}

}  // namespace

void CCUIFrameWindow::AcceptFiles(bool bAccept)
{
    if (!Exist())
        return;
    const LONG nStyle = GetWindowLongA(m_hWnd, GWL_EXSTYLE);
    SetWindowLongA(m_hWnd, GWL_EXSTYLE,
                   bAccept ? nStyle | WS_EX_ACCEPTFILES : nStyle & ~WS_EX_ACCEPTFILES);
}

void CCUIFrameWindow::OnDropFiles(HDROP hDrop)
{
    // Any program may send such a message; the system's function reads what is not there.
    if (!GlobalLock(hDrop))
        return;
    GlobalUnlock(hDrop);
    if (!s_drop.Find()) {
        CUDump("Unable to list dropped files, gle: %lu\n", GetLastError());
        return;
    }
    const UINT nFiles = s_drop.queryFile(hDrop, 0xFFFFFFFF, nullptr, 0);
    auto *const pFiles = new CCUString[nFiles];
    for (UINT i = 0; i < nFiles; ++i)
        pFiles[i] = DroppedFile(hDrop, i);
    POINT point = {0, 0};
    s_drop.queryPoint(hDrop, &point);
    s_drop.finish(hDrop);
    OnFilesDropped(pFiles, static_cast<int>(nFiles), point);
    delete[] pFiles;
}

void CCUIFrameWindow::OnFilesDropped(const CCUString *pFiles, int nFiles, const POINT &)
{
    CWatch watch(this);
    BringToFront();
    for (int i = 0; i < nFiles && !watch.IsGone() && MayOpen(pFiles[i]); ++i)
        OnOpenFile(pFiles[i]);
}

// Not under an open dialog, which may be about the document that there is.
bool CCUIFrameWindow::MayOpen(const CCUString &sPath)
{
    if (!Exist() || IsWindowEnabled(m_hWnd))
        return true;
    CUDump("A dialog is open, so this file is not: %s\n", sPath.GetString());
    return false;
}

void CCUIFrameWindow::OnOpenFile(const CCUString &) {}

void CCUIFrameWindow::OnCommandLine(const CCUString &sCommandLine, const CCUString &sFolder)
{
    CWatch watch(this);
    const char *psz = sCommandLine;
    CCUString sArgument;
    TakeArgument(psz, sArgument);  // the program
    while (!watch.IsGone() && TakeArgument(psz, sArgument)) {
        const bool bOption = *sArgument == '/' || *sArgument == '-';
        if (!sArgument.IsEmpty() && !bOption && MayOpen(sArgument))
            OnOpenFile(CUIFullPath(sArgument, sFolder));
    }
}
