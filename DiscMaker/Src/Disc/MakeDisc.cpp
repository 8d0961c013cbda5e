#include "Disc/MakeDisc.h"

#include "CU/ErrorText.h"
#include "Disc/DiscLayout.h"
#include "File/OpenSkin.h"
#include "Model/TempFolder.h"
#include "Problems/Check.h"
#include "Resource.h"

namespace {

// A file of the user's temporary folder, deleted at the end.
class CTemporaryFile
{
public:
    CTemporaryFile()
    {
        const CCUString sFolder = TempFolder();
        char szFile[MAX_PATH] = "";
        if (!sFolder.IsEmpty() && GetTempFileNameA(sFolder, "dsc", 0, szFile) != 0)
            m_sPath = szFile;
    }
    ~CTemporaryFile()
    {
        if (!m_sPath.IsEmpty())
            DeleteFileA(m_sPath);
    }
    CTemporaryFile(const CTemporaryFile &) = delete;
    CTemporaryFile &operator=(const CTemporaryFile &) = delete;
    const CCUString &Path() const { return m_sPath; }

private:
    CCUString m_sPath;
};

bool Fail(CProblems &problems, UINT nEntry, const CCUString &sWhere, const CCUString &sWhat)
{
    problems.push_back({ProblemError, nEntry, sWhere, sWhat, "There is no new disc."});
    return false;
}

bool MakeLauncher(const CSkin &skin, const CCUString &sLauncher, const CCUString &sPath,
                  CProblems &problems)
{
    CProblems reading;
    const std::unique_ptr<CSkinFile> pLauncher = OpenSkin(sLauncher, reading);
    if (!pLauncher)
        problems.insert(problems.end(), reading.begin(), reading.end());
    if (pLauncher && !pLauncher->IsFolder())
        return pLauncher->SaveCopy(skin, sPath, problems);
    if (pLauncher)
        problems.push_back({ProblemError, 0, sLauncher,
                            "A launcher is wanted here, no skin folder.", "There is no new disc."});
    return false;
}

}  // namespace

bool MakeDisc(const CSkin &skin, const CCUString &sLauncher, const CCUString &sContents,
              const CCUString &sOut, CDiscProgress *pProgress, CProblems &problems)
{
    if (!skin.m_pictures[PictureBackground])
        return Fail(problems, IDB_BACKGROUND, "",
                    "The background is missing, without which the launcher has no window.");
    const CTemporaryFile launcher;
    if (launcher.Path().IsEmpty())
        return Fail(problems, 0, "",
                    "There is no temporary folder: " + CUErrorText(GetLastError()));
    if (!MakeLauncher(skin, sLauncher, launcher.Path(), problems) ||
        !LayOutDisc(launcher.Path(), MakeAutorunInf(skin), sContents, sOut, pProgress, problems))
        return false;
    CheckPrograms(skin, sOut, problems);
    return true;
}
