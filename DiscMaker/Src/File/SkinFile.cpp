#include "File/SkinFile.h"

#include "File/DiscPath.h"
#include "File/FileBytes.h"
#include "File/FileProblem.h"
#include "File/Sha256.h"
#include "Model/Blob.h"

bool CSkinFile::IsWhole(const CSkin &, CProblems &) const
{
    return true;
}

bool CSkinFile::IsSamePath(const CCUString &sPath, const CCUString &sOther)
{
    return CDiscPath(sPath).IsSame(CDiscPath(sOther));
}

CCUString CSkinFile::SumOf(const CBlob &bytes)
{
    return CSha256::Of(bytes->data(), bytes->size());
}

// Whether the skin was made of these bytes, too. Where nothing is known only the first of the files
// is held to be another: one question is enough.
bool CSkinFile::IsRecalled(const CCUString &sPath, const CBlob &bytes) const
{
    if (!m_bRecalled)
        return true;
    if (m_recalled.empty())
        return sPath != m_sPath;
    const auto at = m_recalled.find(sPath);
    return at != m_recalled.end() && at->second == SumOf(bytes);
}

bool CSkinFile::IsChanged(const CCUString &sPath, const CBlob &bytes, CProblems &problems) const
{
    DWORD nError = NO_ERROR;
    const CBlob now = ReadFileBytes(sPath, &nError);
    const bool bGone = nError == ERROR_FILE_NOT_FOUND || nError == ERROR_PATH_NOT_FOUND;
    const bool bSame = SameBytes(now, bytes) && IsRecalled(sPath, now);
    m_bOutdated = m_bOutdated || (now && !bSame);
    if (m_bOverwrite || bGone || bSame)
        return false;
    if (!now)
        AddFileProblem(problems, sPath, "The file cannot be read", nError);
    else if (m_bRecalled && m_recalled.empty())
        AddProblem(problems, ProblemError, sPath,
                   "Another program may have changed the file since the changes were kept.",
                   "saving would undo what it did; nothing was written");
    else
        AddProblem(problems, ProblemError, sPath,
                   "Another program has changed the file since it was opened.",
                   "saving would undo that change; nothing was written");
    return true;
}

void CSkinFile::BeSaved(const CSkin &skin)
{
    m_skin = skin;
    m_bOverwrite = false;
    m_bRecalled = false;
}
