#include "Window/Preview.h"

#include "Base/TempDirectory.h"
#include "CU/ErrorText.h"

namespace {

const char *const LAUNCHER_NAME = "\\AutoRun.exe";

void AddError(CProblems &problems, const CCUString &sWhere, const char *pszWhat)
{
    problems.push_back({ProblemError, 0, sWhere, CCUString(pszWhat) + ": " +
                        CUErrorText(GetLastError()), "nothing happens on the disc"});
}

bool Start(const CCUString &sFolder, HANDLE &hProcess)
{
    const CCUString sPath = sFolder + LAUNCHER_NAME;
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process;
    if (!CreateProcessA(sPath, nullptr, nullptr, nullptr, FALSE, 0, nullptr, sFolder, &startup,
                        &process))
        return false;
    CloseHandle(process.hThread);
    hProcess = process.hProcess;
    return true;
}

}  // namespace

bool CPreview::Run(const CSkinFile &launcher, const CSkin &skin, CProblems &problems)
{
    Clean();
    char szTemp[MAX_PATH] = "";
    CUFindTempDirectory(szTemp);
    CCUString sFolder;
    sFolder.Format("%sDiscMaker-%lx-%u", szTemp, GetCurrentProcessId(), ++m_nNext);
    if (!CreateDirectoryA(sFolder, nullptr)) {
        AddError(problems, sFolder, "The folder for the preview cannot be made");
        return false;
    }
    CRun run = {nullptr, sFolder};
    const bool bSaved = launcher.SaveCopy(skin, sFolder + LAUNCHER_NAME, problems);
    const bool bStarted = bSaved && Start(sFolder, run.m_hProcess);
    if (bSaved && !bStarted)
        AddError(problems, sFolder + LAUNCHER_NAME, "The launcher cannot be started");
    m_runs.push_back(run);
    return bStarted;
}

// Of launchers that still run the file cannot be deleted.
void CPreview::Clean()
{
    std::vector<CRun> left;
    for (const CRun &run : m_runs) {
        if (run.m_hProcess && WaitForSingleObject(run.m_hProcess, 0) != WAIT_OBJECT_0) {
            left.push_back(run);
            continue;
        }
        if (run.m_hProcess)
            CloseHandle(run.m_hProcess);
        DeleteFileA(run.m_sFolder + LAUNCHER_NAME);
        RemoveDirectoryA(run.m_sFolder);
    }
    m_runs.swap(left);
}
