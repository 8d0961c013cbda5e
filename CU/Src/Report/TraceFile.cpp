#include "Report/TraceFile.h"

#include <stdlib.h>

#include "Base/Atomic.h"
#include "Base/KeepLastError.h"
#include "Base/Lifetime.h"
#include "Base/CallbackList.h"
#include "CU/Assert.h"
#include "CU/CrashReport.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CU/Time.h"

namespace {

// In pieces, or it would hold trigraphs.
const char TraceFilePattern[] =
    "\\ZELTrace-????"
    "-??"
    "-??.txt";
const long SecondsOfDay = 24 * 60 * 60;

// A report may come from a crash, whoever holds what lock.
struct CReportHandler : CCURegistered
{
    void (*volatile handler)(FILE *);
};

CCURegistered *volatile s_pFirstHandler = nullptr;
volatile LONG s_nLastOrder = 0;
LONG s_nListUsers = 0;  // threads that look at items

CReportHandler *NextHandler(LONG &nOrder, LONG nLast)
{
    return static_cast<CReportHandler *>(CUNextRegistered(s_pFirstHandler, nOrder, nLast));
}

class CListUse
{
public:
    CListUse() { InterlockedIncrement(&s_nListUsers); }
    ~CListUse() { InterlockedDecrement(&s_nListUsers); }
    CListUse(const CListUse &) = delete;
    CListUse &operator=(const CListUse &) = delete;
};

// At the end of the process. A thread that is in the list still keeps what it has.
CCULastCall s_lastCall;
void DeleteHandlers(CCULastCall &)
{
    CCURegistered *item = s_pFirstHandler;
    s_pFirstHandler = nullptr;
    if (InterlockedExchangeAdd(&s_nListUsers, 0) != 0)
        return;
    while (item) {
        CCURegistered *const next = item->next;
        delete static_cast<CReportHandler *>(item);
        item = next;
    }
}

// One that was taken back, or a new one; not ready yet.
CReportHandler *TakeItem()
{
    for (CCURegistered *item = s_pFirstHandler; item; item = item->next) {
        if (InterlockedCompareExchange(&item->nOrder, -1, 0) == 0)
            return static_cast<CReportHandler *>(item);
    }
    CReportHandler *const item = new CReportHandler{{nullptr, -1}, nullptr};
    CUPushFront<CCURegistered>(s_pFirstHandler, item, &CCURegistered::next);
    if (!item->next)
        CUAtLast(s_lastCall, DeleteHandlers);
    return item;
}

}  // namespace

void CURegisterExceptionHandler(void (*handler)(FILE *))
{
    if (!handler)
        return;
    const CListUse use;
    CReportHandler *const item = TakeItem();
    item->handler = handler;
    InterlockedExchange(&item->nOrder, InterlockedIncrement(&s_nLastOrder));
}

void CUUnregisterExceptionHandler(void (*handler)(FILE *))
{
    const CListUse use;
    LONG nOrder = 0;
    while (CReportHandler *item = NextHandler(nOrder, s_nLastOrder)) {
        if (item->handler == handler &&
            InterlockedCompareExchange(&item->nOrder, 0, nOrder) == nOrder)
            return;
    }
}

bool CUFindTempDirectory(CCUString &sTempDir)
{
    char szTempDir[MAX_PATH];
    const DWORD nLength = GetTempPathA(MAX_PATH, szTempDir);
    if (nLength == 0 || nLength >= MAX_PATH)
        return false;
    sTempDir = szTempDir;
    return true;
}

FILE *CUOpenReport()
{
    CCUString sTempDir;
    if (!CUFindTempDirectory(sTempDir))
        return nullptr;
    const CCUTime now;
    FILE *file = fopen(sTempDir + now.Format("/ZELTrace-%Y-%m-%d.txt"), "a");
    if (!file)
        return nullptr;
    fputs("========================================================\n", file);
    fputs(now.Format("%x %X"), file);
    fputc('\n', file);
    return file;
}

void CUCloseReport(FILE *file)
{
    const CListUse use;
    const LONG nLast = s_nLastOrder;
    LONG nOrder = 0;
    while (CReportHandler *item = NextHandler(nOrder, nLast)) {
        // A handler that crashes takes no more along than its own text.
        fflush(file);
        item->handler(file);
    }
    fclose(file);
}

int CUPurgeTraceFiles(int daysToKeep)
{
    const CCUKeepLastError keepLastError;
    const CCUTime now;
    // At noon, so that days of 23 and 25 hours do not count for another.
    const CCUTime noon(now.GetYear(), now.GetMonth(), now.GetDay(), 12, 0, 0);
    CCUString sTempDir;
    if (daysToKeep >= now.GetTime() / SecondsOfDay || !CUFindTempDirectory(sTempDir))
        return 0;
    const CCUTimeSpan age(daysToKeep > 0 ? daysToKeep * SecondsOfDay : 0);
    const CCUString sOldestToKeep = (noon - age).Format("ZELTrace-%Y-%m-%d.txt");
    WIN32_FIND_DATAA data;
    const HANDLE find = FindFirstFileA(sTempDir + TraceFilePattern, &data);
    if (find == INVALID_HANDLE_VALUE)
        return 0;
    int nDeleted = 0;
    do {
        if (sOldestToKeep.CompareNoCase(data.cFileName) <= 0)
            continue;
        CUDump("Deleting trace file: %s\n", data.cFileName);
        if (DeleteFileA(sTempDir + "\\" + data.cFileName))
            ++nDeleted;
    } while (FindNextFileA(find, &data));
    FindClose(find);
    return nDeleted;
}
