#include "TraceFile.h"

#include <stdlib.h>

#include "CU/Assert.h"
#include "CU/CrashReport.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CU/Time.h"
#include "KeepLastError.h"

namespace {

// In pieces, or it would hold trigraphs.
const char TraceFilePattern[] =
    "\\ZELTrace-????"
    "-??"
    "-??.txt";
const long SecondsOfDay = 24 * 60 * 60;

// One registered handler. Nodes are only added until the process ends, so that a report, which may
// come from a crash, walks the list without a lock while others change it.
struct CReportHandler
{
    void (*handler)(FILE *);  // null: taken away
    CReportHandler *next;
};

CReportHandler *s_pFirstHandler = nullptr;
LONG s_nListUsers = 0;  // threads that look at nodes

template <typename T>
bool Exchange(T *place, T expected, T value)
{
    return __atomic_compare_exchange_n(place, &expected, value, false, __ATOMIC_SEQ_CST,
                                       __ATOMIC_SEQ_CST);
}

template <typename T>
T Load(T *place)
{
    return __atomic_load_n(place, __ATOMIC_SEQ_CST);
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
void DeleteHandlers()
{
    CReportHandler *node = __atomic_exchange_n(
        &s_pFirstHandler, static_cast<CReportHandler *>(nullptr), __ATOMIC_SEQ_CST);
    if (Load(&s_nListUsers) != 0)
        return;
    while (node) {
        CReportHandler *next = node->next;
        delete node;
        node = next;
    }
}

// False when there is none, or when it is longer than a path may be.
bool FindTempDirectory(CCUString &sTempDir)
{
    char szTempDir[MAX_PATH];
    const DWORD nLength = GetTempPathA(MAX_PATH, szTempDir);
    if (nLength == 0 || nLength >= MAX_PATH)
        return false;
    sTempDir = szTempDir;
    return true;
}

}  // namespace

void CURegisterExceptionHandler(void (*handler)(FILE *))
{
    if (!handler)
        return;
    const CListUse use;
    CReportHandler *node = nullptr;
    CReportHandler **place = &s_pFirstHandler;
    for (;;) {
        CReportHandler *last = nullptr;
        for (; Load(place); place = &last->next)
            last = Load(place);
        // Who registers and unregisters in turns finds its old node here.
        if (last && Exchange<void (*)(FILE *)>(&last->handler, nullptr, handler))
            break;
        if (!node)
            node = new CReportHandler{handler, nullptr};
        if (Exchange<CReportHandler *>(place, nullptr, node)) {
            if (place == &s_pFirstHandler)
                atexit(DeleteHandlers);
            return;
        }
    }
    delete node;
}

void CUUnregisterExceptionHandler(void (*handler)(FILE *))
{
    if (!handler)
        return;
    const CListUse use;
    for (CReportHandler *node = Load(&s_pFirstHandler); node; node = Load(&node->next)) {
        if (Exchange<void (*)(FILE *)>(&node->handler, handler, nullptr))
            return;
    }
}

FILE *CUOpenReport()
{
    CCUString sTempDir;
    if (!FindTempDirectory(sTempDir))
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
    for (CReportHandler *node = Load(&s_pFirstHandler); node; node = Load(&node->next)) {
        void (*handler)(FILE *) = Load(&node->handler);
        if (!handler)
            continue;
        // A handler that crashes takes no more along than its own text.
        fflush(file);
        handler(file);
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
    if (daysToKeep >= now.GetTime() / SecondsOfDay || !FindTempDirectory(sTempDir))
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
