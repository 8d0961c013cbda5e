#include "File/SkinFile.h"

#include "File/DiscPath.h"
#include "File/FileBytes.h"
#include "File/FileProblem.h"
#include "Model/Blob.h"

bool CSkinFile::IsWhole(const CSkin &, CProblems &) const
{
    return true;
}

bool CSkinFile::IsSamePath(const CCUString &sPath, const CCUString &sOther)
{
    return CDiscPath(sPath).IsSame(CDiscPath(sOther));
}

bool CSkinFile::IsChanged(const CCUString &sPath, const CBlob &bytes, CProblems &problems) const
{
    DWORD nError = NO_ERROR;
    const CBlob now = ReadFileBytes(sPath, &nError);
    const bool bGone = nError == ERROR_FILE_NOT_FOUND || nError == ERROR_PATH_NOT_FOUND;
    m_bOutdated = m_bOutdated || (now && !SameBytes(now, bytes));
    if (m_bOverwrite || bGone || SameBytes(now, bytes))
        return false;
    if (now)
        AddProblem(problems, ProblemError, sPath,
                   "Another program has changed the file since it was opened.",
                   "saving would undo that change; nothing was written");
    else
        AddFileProblem(problems, sPath, "The file cannot be read", nError);
    return true;
}
