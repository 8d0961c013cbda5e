#include "File/FileProblem.h"

#include "CU/ErrorText.h"
#include "File/FileBytes.h"

namespace {

CCUString Reason(DWORD nError)
{
    switch (nError) {
    case ERROR_FILE_NOT_FOUND: return "it is not there";
    case ERROR_ACCESS_DENIED:
        return "it is write-protected, or a program uses it (such as the launcher, if it runs)";
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION: return "another program uses it";
    case ERROR_WRITE_PROTECT: return "the disk is write-protected";
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_DISK_FULL: return "the disk is full";
    case ERROR_INVALID_NAME: return "no file can have such a name";
    case ERROR_PATH_NOT_FOUND:
    case ERROR_DIRECTORY: return "its folder is not there";
    case ERROR_BUFFER_OVERFLOW:
    case ERROR_FILENAME_EXCED_RANGE: return "its path is too long";
    default: break;
    }
    const CCUString sText = CUErrorText(nError);
    return sText.Right(1) == "." ? sText.Left(sText.GetLength() - 1) : sText;
}

}  // namespace

const char *LostNameText(const CCUString &sPath)
{
    // No file has such a name, but systems put it for what they cannot say.
    const CCUString sPlain = sPath.Left(4) == "\\\\?\\" ? sPath.Mid(4) : sPath;
    return sPlain.Find('?') < 0 ? ""
                                : "a name in its path has characters that this system's code "
                                  "page lacks; give that file or folder another name";
}

void AddFileProblem(CProblems &problems, const CCUString &sPath, const char *pszWhat, DWORD nError)
{
    CCUString sWhy = LostNameText(sPath);
    // Systems only say that access is denied.
    if (sWhy.IsEmpty())
        sWhy = FolderExists(sPath) ? CCUString("it is a folder") : Reason(nError);
    AddProblem(problems, ProblemError, sPath, CCUString(pszWhat) + ": " + sWhy + ".");
}
