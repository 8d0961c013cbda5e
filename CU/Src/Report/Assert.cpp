#include "CU/Assert.h"

#include "Base/KeepLastError.h"
#include "CU/StackTrace.h"
#include "Report/ReportFile.h"

#define CU_SOURCE "Assert"

namespace {

// A check that fails in a loop must not fill the disk.
const LONG MOST_REPORTS = 10;

LONG s_nReports = 0;

bool CountReport()
{
    return s_nReports < MOST_REPORTS && InterlockedIncrement(&s_nReports) <= MOST_REPORTS;
}

}  // namespace

int CUDisplayAssert(const char *expression, const char *file, int line)
{
    const CCUKeepLastError keepLastError;
    if (!CountReport())
        return 0;
    // The stack takes long, so it comes before the file is opened: other threads and processes
    // report there too.
    char szStack[4096];
    CUGetStackTrace(GetCurrentThread(), szStack, sizeof szStack);
    CCUReportBuffer buffer;
    FILE *report = CUOpenReport(buffer);
    if (!report)
        return 0;
    fprintf(report, "Assert:%s  File:%s  Line:%d  Last Error:%lx\n\n%s\n", expression, file, line,
            keepLastError.Error(), szStack);
    CUCloseReport(report);
    return 0;
}

CCUNoRecur::CCUNoRecur(int *flag) : m_nFlag(flag)
{
    CU_ASSERT(*m_nFlag == 0);
    *m_nFlag = 1;
}

CCUNoRecur::~CCUNoRecur()
{
    *m_nFlag = 0;
}

CCUNoRecur &CCUNoRecur::operator=(const CCUNoRecur &other) = default;
