#include "File/FileProblem.h"

#include "CU/ErrorText.h"

namespace {

CCUString Reason(DWORD nError)
{
    switch (nError) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return "it is not there";
    case ERROR_ACCESS_DENIED:
        return "it is write-protected, or a program uses it (such as the launcher, if it runs)";
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION: return "another program uses it";
    case ERROR_WRITE_PROTECT: return "the disk is write-protected";
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_DISK_FULL: return "the disk is full";
    default: return CUErrorText(nError);
    }
}

}  // namespace

void AddFileProblem(CProblems &problems, const CCUString &sPath, const char *pszWhat, DWORD nError)
{
    AddProblem(problems, ProblemError, sPath, CCUString(pszWhat) + ": " + Reason(nError) + ".");
}
