#include "Base/Handle.h"
#include "Base/KeepLastError.h"
#include "Base/TempDirectory.h"
#include "CU/CrashReport.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CU/Time.h"

namespace {

// In pieces, or it would hold trigraphs.
const char REPORT_PATTERN[] =
    "\\ZELTrace-????"
    "-??"
    "-??.txt";
const long SECONDS_PER_DAY = 24 * 60 * 60;

}  // namespace

int CUPurgeTraceFiles(int daysToKeep)
{
    const CCUKeepLastError keepLastError;
    const CCUTime now;
    char szPath[2 * MAX_PATH];
    char *const name = szPath + CUFindTempDirectory(szPath);
    if (daysToKeep >= now.GetTime() / SECONDS_PER_DAY || name == szPath)
        return 0;
    // At noon, so that days of 23 and 25 hours do not count for another.
    const CCUTime noon(now.GetYear(), now.GetMonth(), now.GetDay(), 12, 0, 0);
    const CCUTimeSpan age(daysToKeep > 0 ? daysToKeep * SECONDS_PER_DAY : 0);
    const CCUString sOldestToKeep = (noon - age).Format("ZELTrace-%Y-%m-%d.txt");
    lstrcpynA(name, REPORT_PATTERN, MAX_PATH);
    WIN32_FIND_DATAA data;
    const CCUFindHandle find(FindFirstFileA(szPath, &data));
    if (!find)
        return 0;
    int nDeleted = 0;
    do {
        if (sOldestToKeep.CompareNoCase(data.cFileName) <= 0)
            continue;
        CUDump("Deleting trace file: %s\n", data.cFileName);
        lstrcpynA(name, data.cFileName, MAX_PATH);
        if (DeleteFileA(szPath))
            ++nDeleted;
    } while (FindNextFileA(find, &data));
    return nDeleted;
}
