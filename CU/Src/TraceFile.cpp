#include "TraceFile.h"

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

// One registered handler. Nodes are only ever added, so that a report, which may come from a
// crash, walks the list without a lock while others change it.
struct CReportHandler
{
    void (*handler)(FILE *);  // null: taken away
    CReportHandler *next;
};

CReportHandler *s_pFirstHandler = nullptr;

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
        if (Exchange<CReportHandler *>(place, nullptr, node))
            return;
    }
    delete node;
}

void CUUnregisterExceptionHandler(void (*handler)(FILE *))
{
    if (!handler)
        return;
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
    CCUString sTempDir;
    if (daysToKeep >= now.GetTime() / SecondsOfDay || !FindTempDirectory(sTempDir))
        return 0;
    const CCUTimeSpan age(daysToKeep > 0 ? daysToKeep * SecondsOfDay : 0);
    const CCUString sOldestToKeep = (now - age).Format("ZELTrace-%Y-%m-%d.txt");
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
