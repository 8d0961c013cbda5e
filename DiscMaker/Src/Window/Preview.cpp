#include "Window/Preview.h"

#include <stdlib.h>
#include <string.h>

#include "Base/Handle.h"
#include "CU/ErrorText.h"
#include "Model/TempFolder.h"
#include "Problems/Check.h"

namespace {

const char *const LAUNCHER_NAME = "\\AutoRun.exe";
const char *const FOLDER_NAME = "DiscMaker-";  // then the process that made it, and a number

void AddError(CProblems &problems, const CCUString &sWhere, const char *pszWhat)
{
    problems.push_back(
        {ProblemError, 0, sWhere, CCUString(pszWhat) + ": " + CUErrorText(GetLastError()), ""});
}

// False while the launcher in it runs.
bool RemovePreview(const CCUString &sFolder)
{
    return DeleteFileA(sFolder + LAUNCHER_NAME) && RemoveDirectoryA(sFolder);
}

bool IsRunning(DWORD nProcess)
{
    const CCUObjectHandle hProcess(OpenProcess(SYNCHRONIZE, FALSE, nProcess));
    if (!hProcess)
        return GetLastError() == ERROR_ACCESS_DENIED;
    return WaitForSingleObject(hProcess, 0) == WAIT_TIMEOUT;
}

// Those of programs that are gone.
void RemoveLeftPreviews(const CCUString &sTemp)
{
    WIN32_FIND_DATAA data;
    const CCUFindHandle hFind(FindFirstFileA(sTemp + FOLDER_NAME + "*-*", &data));
    if (!hFind)
        return;
    do {
        const DWORD nProcess = strtoul(data.cFileName + strlen(FOLDER_NAME), nullptr, 16);
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY && !IsRunning(nProcess))
            RemovePreview(sTemp + data.cFileName);
    } while (FindNextFileA(hFind, &data));
}

// Programs that are not in the launcher's folder are looked for in the current one.
bool Start(const CCUString &sFolder, const CCUString &sCurrent, HANDLE &hProcess)
{
    const CCUString sPath = sFolder + LAUNCHER_NAME;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process;
    if (!CreateProcessA(sPath, nullptr, nullptr, nullptr, FALSE, 0, nullptr, sCurrent, &startup,
                        &process))
        return false;
    CloseHandle(process.hThread);
    hProcess = process.hProcess;
    return true;
}

}  // namespace

bool CPreview::Run(const CSkinFile &launcher, const CSkin &skin, const CCUString &sContents,
                   CProblems &problems)
{
    Clean();
    if (!CheckBackground(skin, problems))
        return false;
    const CCUString sTemp = TempFolder();
    RemoveLeftPreviews(sTemp);
    CCUString sFolder;
    bool bMade = false;
    // A program that crashed may have had the number of this process.
    for (bool bTaken = !sTemp.IsEmpty(); bTaken;) {
        sFolder.Format("%s%s%lx-%u", static_cast<const char *>(sTemp), FOLDER_NAME,
                       GetCurrentProcessId(), ++m_nNext);
        bMade = CreateDirectoryA(sFolder, nullptr) != 0;
        bTaken = !bMade && GetLastError() == ERROR_ALREADY_EXISTS;
    }
    if (!bMade) {
        AddError(problems, sFolder, "The folder for the preview cannot be made");
        return false;
    }
    CRun run = {nullptr, sFolder};
    const bool bSaved = launcher.SaveCopy(skin, sFolder + LAUNCHER_NAME, problems);
    const bool bStarted =
        bSaved && Start(sFolder, sContents.IsEmpty() ? sFolder : sContents, run.m_hProcess);
    if (bSaved && !bStarted)
        AddError(problems, sFolder + LAUNCHER_NAME, "The launcher cannot be started");
    if (bStarted)
        m_runs.push_back(run);
    else if (!RemovePreview(sFolder))
        RemoveDirectoryA(sFolder);
    return bStarted;
}

// Of launchers that still run the file cannot be deleted.
void CPreview::Clean()
{
    std::vector<CRun> left;
    for (const CRun &run : m_runs) {
        if (WaitForSingleObject(run.m_hProcess, 0) != WAIT_OBJECT_0) {
            left.push_back(run);
            continue;
        }
        CloseHandle(run.m_hProcess);
        RemovePreview(run.m_sFolder);
    }
    m_runs.swap(left);
}
