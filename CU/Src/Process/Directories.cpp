#include "Process/Directories.h"

#include "CU/Platform.h"

namespace {

// A file that stands in the way, and a directory that somebody else has made meanwhile, answer
// that they exist already.
bool IsPresentOrCreated(const char *path)
{
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES || CreateDirectoryA(path, nullptr) ||
           GetLastError() == ERROR_ALREADY_EXISTS;
}

}  // namespace

CCUString CUMakeDirectories(const CCUString &sPath)
{
    // Of "\\server\share\", neither the slashes nor the server can be tested or made.
    const int nSkipped = sPath.Left(2) == "\\\\" ? 3 : 0;
    int nPrefix = 0;
    for (int i = 0; i < sPath.GetLength(); ++i) {
        if (sPath[i] != '\\' || nPrefix++ < nSkipped)
            continue;
        const CCUString sPrefix = sPath.Left(i + 1);
        if (!IsPresentOrCreated(sPrefix))
            return sPrefix;
    }
    return CCUString();
}
