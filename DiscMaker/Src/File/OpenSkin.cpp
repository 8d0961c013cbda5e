#include "File/OpenSkin.h"

#include "File/FileBytes.h"
#include "File/FileProblem.h"
#include "File/LauncherFile.h"
#include "File/SkinFolder.h"

namespace {

bool IsScript(const CCUString &sPath)
{
    return sPath.Right(3).CompareNoCase(".rc") == 0;
}

}  // namespace

std::unique_ptr<CSkinFile> OpenSkin(const CCUString &sPath, CProblems &problems)
{
    DWORD nError = NO_ERROR;
    const CBlob bytes = IsScript(sPath) ? nullptr : ReadFileBytes(sPath, &nError);
    if (!bytes && FolderExists(sPath))
        return CSkinFolder::Read(JoinPath(sPath, SKIN_SCRIPT_NAME), problems);
    if (IsScript(sPath))
        return CSkinFolder::Read(sPath, problems);
    if (!bytes) {
        AddFileProblem(problems, sPath, "The file cannot be read", nError);
        return nullptr;
    }
    return CLauncherFile::Read(sPath, bytes, problems);
}
