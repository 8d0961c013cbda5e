#include "Report/ReportFile.h"

#include <fcntl.h>
#include <io.h>
#include <limits.h>
#include <stdlib.h>
#include <time.h>

#include "Base/Atomic.h"
#include "Base/CallbackList.h"
#include "Base/Handle.h"
#include "Base/Lifetime.h"
#include "Base/TempDirectory.h"
#include "CU/Assert.h"
#include "Time/Clock.h"
#include "Time/TimeZone.h"

namespace {

// What was registered with CURegisterExceptionHandler. Walked without a lock: a report may come
// from a crash, whoever holds what lock.
struct CReportHandler : CCURegistered
{
    void (*volatile handler)(FILE *);
};

CCURegistered *volatile s_pFirstHandler = nullptr;
volatile LONG s_nLastOrder = 0;
CCUInsideCount s_inside;  // threads that look at items
typedef CCUInsideCount::CInside CListUse;

CReportHandler *NextHandler(LONG &nOrder, LONG nLast)
{
    return static_cast<CReportHandler *>(CUNextRegistered(s_pFirstHandler, nOrder, nLast));
}

// At the end of the process. While another thread still walks the list, everything is left to it.
CCULastCall s_lastCall;
void DeleteHandlers(CCULastCall &)
{
    CCURegistered *item = s_pFirstHandler;
    s_pFirstHandler = nullptr;
    if (s_inside.IsAnybodyInside())
        return;
    while (item) {
        CCURegistered *const next = item->next;
        delete static_cast<CReportHandler *>(item);
        item = next;
    }
}

// An item for one more handler: one whose handler was taken back, or a new one. No walk sees it
// until it gets its number.
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

FILETIME FileTimeOf(long nSeconds)
{
    const long long nTicks = CUEpochTicks() + CU_TICKS_PER_SECOND * nSeconds;
    return {static_cast<DWORD>(nTicks), static_cast<DWORD>(nTicks >> 32)};
}

// The current time with the fields that CCUTime would give it. CCUTime itself may write to the
// trace, which takes memory and locks.
SYSTEMTIME LocalNow()
{
    const time_t now = time(nullptr);
    const long nNow = now < 0 ? LONG_MAX : static_cast<long>(now);
    TIME_ZONE_INFORMATION zone;
    bool bDaylight;
    const bool bZone = CUGetCurrentZone(zone) != TIME_ZONE_ID_INVALID;
    const long nLocal = bZone ? CULocalSeconds(nNow, zone, bDaylight) : -1;
    const FILETIME time = FileTimeOf(nLocal < 0 ? nNow : nLocal);
    FILETIME local = time;
    if (nLocal < 0)  // the zone cannot tell; maybe the system can
        FileTimeToLocalFileTime(&time, &local);
    SYSTEMTIME fields = {};
    FileTimeToSystemTime(&local, &fields);
    return fields;
}

// The time is written as CCUTime's format "%x %X" has it: in the user's own pictures of dates and
// times.
void WriteHead(FILE *file, const SYSTEMTIME &time)
{
    char szDate[128];
    char szTime[128];
    if (!GetDateFormatA(LOCALE_USER_DEFAULT, 0, &time, nullptr, szDate, sizeof szDate))
        szDate[0] = '\0';
    if (!GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &time, nullptr, szTime, sizeof szTime))
        szTime[0] = '\0';
    fprintf(file, "========================================================\n%s %s\n", szDate,
            szTime);
}

// The report that has the file for itself, and the thread that writes it.
FILE *volatile s_pLocked = nullptr;
volatile LONG s_nLockedBy = 0;

// Two reports of different threads or processes would write over each other: the C library looks
// for the end of the file and then writes there. The lock is on a byte that no report reaches, and
// goes with the file, or with the process. One that hangs must not keep others from reporting: they
// wait no longer than for a slow one, and a thread that fails in its own report does not.
bool LockReport(HANDLE hFile)
{
    const DWORD BEYOND = 0x7FFFFFFF;
    const int MOST_TRIES = 100;
    const DWORD TRY_MILLISECONDS = 20;
    if (s_nLockedBy == static_cast<LONG>(GetCurrentThreadId()))
        return false;
    for (int i = 0; !LockFile(hFile, BEYOND, 0, 1, 0); ++i) {
        if (GetLastError() != ERROR_LOCK_VIOLATION || i == MOST_TRIES)
            return false;
        Sleep(TRY_MILLISECONDS);
    }
    return true;
}

// As fopen's "a", with the report locked; null: there is no such file.
FILE *OpenLocked(const char *pszName)
{
    CCUFileHandle handle(CreateFileA(pszName, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                     nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle)
        return nullptr;
    const HANDLE hFile = handle;
    const int nFile =
        _open_osfhandle(reinterpret_cast<intptr_t>(hFile), _O_TEXT | _O_APPEND | _O_NOINHERIT);
    if (nFile < 0)
        return nullptr;
    handle.Release();  // the C library's by now
    FILE *const file = _fdopen(nFile, "a");
    if (!file) {
        _close(nFile);
    } else if (LockReport(hFile)) {
        s_pLocked = file;
        s_nLockedBy = static_cast<LONG>(GetCurrentThreadId());
    }
    return file;
}

}  // namespace

void CURegisterExceptionHandler(void (*handler)(FILE *))
{
    if (!handler)
        return;
    const CListUse use(s_inside);
    CReportHandler *const item = TakeItem();
    item->handler = handler;
    InterlockedExchange(&item->nOrder, InterlockedIncrement(&s_nLastOrder));
}

void CUUnregisterExceptionHandler(void (*handler)(FILE *))
{
    const CListUse use(s_inside);
    LONG nOrder = 0;
    while (CReportHandler *item = NextHandler(nOrder, s_nLastOrder)) {
        if (item->handler == handler &&
            InterlockedCompareExchange(&item->nOrder, 0, nOrder) == nOrder)
            return;
    }
}

FILE *CUOpenReport(CCUReportBuffer &buffer)
{
    char szName[MAX_PATH + 32];
    const DWORD nLength = CUFindTempDirectory(szName);
    if (nLength == 0)
        return nullptr;
    const SYSTEMTIME now = LocalNow();
    sprintf(szName + nLength, "/ZELTrace-%04d-%02d-%02d.txt", now.wYear, now.wMonth, now.wDay);
    FILE *const file = OpenLocked(szName);
    if (!file)
        return nullptr;
    setvbuf(file, buffer.text, _IOFBF, sizeof buffer.text);
    WriteHead(file, now);
    return file;
}

void CUCloseReport(FILE *file)
{
    const CListUse use(s_inside);
    const LONG nLast = s_nLastOrder;
    LONG nOrder = 0;
    while (CReportHandler *item = NextHandler(nOrder, nLast)) {
        // When a handler crashes, what was written before it is in the file already.
        fflush(file);
        item->handler(file);
    }
    if (file == s_pLocked) {
        s_pLocked = nullptr;
        s_nLockedBy = 0;
    }
    fclose(file);
}
