#include "CU/Dump.h"

#include <stdarg.h>
#include <stdio.h>

#include "Base/Array.h"
#include "Base/CallbackList.h"
#include "Base/KeepLastError.h"
#include "Base/Lock.h"
#include "Base/Lifetime.h"
#include "CU/Assert.h"
#include "CU/String.h"
#include "Process/Directories.h"
#include "Text/Characters.h"
#include "Trace/DumpCount.h"
#include "Trace/LogFiles.h"

#define CU_SOURCE "Dump"

namespace {

const char NOT_IN_NAMES[] = "\\/:*?\"<>|";
const int LONGEST_PREFIX = 100;
const int DUMP_BUFFER_SIZE = 2048;
// How deep the overrun callback is told of files that its own texts have filled; one that always
// dumps more than a file may hold would have no end.
const int MOST_OVERRUNS = 8;

struct CDumpWindow
{
    HWND hWnd;
    unsigned int uMessage;
};

bool operator==(const CDumpWindow &w1, const CDumpWindow &w2)
{
    return w1.hWnd == w2.hWnd && w1.uMessage == w2.uMessage;
}

// Everything that a text is brought to. Used under the lock only.
class CDumpOutputs
{
public:
    CDumpOutputs();

    // True when the log file had run over. From inside itself it does nothing.
    bool Distribute(const CCUString &sText);
    void TellOverrun();

    void Add(const CDumpWindow &window) { m_windows.Add(window); }
    void Remove(const CDumpWindow &window);

    CCUCallbackList<CCUDumpCallback> m_callbacks;
    CCULogFiles m_logFiles;
    CCUDumpFileOverrunCallback *m_pOverrunCallback;

private:
    void PostToWindows(const CCUString &sText) const;

    CCUArray<CDumpWindow> m_windows;
    bool m_bBusy;
    int m_nTellingOverrun;
};

CDumpOutputs::CDumpOutputs() : m_pOverrunCallback(nullptr), m_bBusy(false), m_nTellingOverrun(0) {}

bool CDumpOutputs::Distribute(const CCUString &sText)
{
    if (m_bBusy)
        return false;
    m_bBusy = true;
    const bool bOverrun = m_logFiles.Write(sText);
    PostToWindows(sText);
    CCUCallbackList<CCUDumpCallback>::CWalk walk(m_callbacks);
    while (CCUDumpCallback *const pCallback = walk.Next())
        pCallback->OnDump(sText);
    m_bBusy = false;
    return bOverrun;
}

void CDumpOutputs::PostToWindows(const CCUString &sText) const
{
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): a posted text is the window's
    for (int i = 0; i < m_windows.Count(); ++i) {
        const CDumpWindow &window = m_windows[i];
        if (!window.hWnd)
            continue;
        const CCUString *pText = new CCUString(sText);
        if (!PostMessageA(window.hWnd, window.uMessage, 0, reinterpret_cast<LPARAM>(pText)))
            delete pText;
    }
}

void CDumpOutputs::TellOverrun()
{
    if (!m_pOverrunCallback || m_nTellingOverrun >= MOST_OVERRUNS)
        return;
    ++m_nTellingOverrun;
    m_pOverrunCallback->OnFileOverrun();
    --m_nTellingOverrun;
}

// One that was added twice stays once.
void CDumpOutputs::Remove(const CDumpWindow &window)
{
    int i = 0;
    while (i < m_windows.Count() && !(m_windows[i] == window))
        ++i;
    if (i < m_windows.Count())
        m_windows.Remove(i, 1);
}

volatile LONG s_nTexts = 0;  // that were dumped

CCULazyLock s_lock;
CDumpOutputs *s_pOutputs = nullptr;  // made by the first use, under the lock
CCUInsideCount s_inside;             // threads in here, the waiting ones too
LONG s_bGone = 0;                    // after the last call: nothing is made or touched any more
CCULastCall s_lastCall;

// A thread that is inside keeps everything for as long as the process lasts; every text has been
// flushed.
void DeleteOutputs(CCULastCall &)
{
    InterlockedExchange(&s_bGone, 1);
    if (s_inside.IsAnybodyInside())
        return;
    delete s_pOutputs;
    s_pOutputs = nullptr;
}

// Entry into the trace: the lock and the outputs. After the last call there are none, and only the
// debugger gets texts.
class CDumpUse
{
public:
    CDumpUse() : m_inside(s_inside), m_pOutputs(nullptr)
    {
        if (InterlockedExchangeAdd(&s_bGone, 0))
            return;
        s_lock.Enter();
        if (!s_pOutputs) {
            s_pOutputs = new CDumpOutputs;
            CUAtLast(s_lastCall, DeleteOutputs);
        }
        m_pOutputs = s_pOutputs;
    }
    ~CDumpUse()
    {
        if (m_pOutputs)
            s_lock.Leave();
    }
    CDumpUse(const CDumpUse &) = delete;
    CDumpUse &operator=(const CDumpUse &) = delete;

    explicit operator bool() const { return m_pOutputs != nullptr; }
    CDumpOutputs *operator->() const { return m_pOutputs; }

private:
    CCUKeepLastError m_keepLastError;
    CCUInsideCount::CInside m_inside;
    CDumpOutputs *m_pOutputs;
};

// The folder from the root on, without a backslash at its end; empty for none. False when it is too
// long.
bool FullPath(const char *folder, CCUString &sFull)
{
    sFull.Empty();
    if (!folder || !*folder)
        return true;
    char szFull[MAX_PATH];
    char *pName;
    const DWORD nLength = GetFullPathNameA(folder, MAX_PATH, szFull, &pName);
    if (nLength == 0 || nLength >= MAX_PATH)
        return false;
    CUTurnSlashes(szFull);
    sFull = szFull;
    if (sFull.Right(1) == "\\")
        sFull = sFull.Left(sFull.GetLength() - 1);
    return true;
}

CCUString CopyText(const char *text, int length)
{
    if (!text)
        return CCUString();
    return length < 0 ? CCUString(text) : CCUString(text, length);
}

}  // namespace

void CUDump(const char *format, ...)
{
    const CCUKeepLastError keepLastError;
    // Filled with zeros: a conversion that the C library gives up leaves no NUL behind.
    char szBuffer[DUMP_BUFFER_SIZE] = "";
    va_list args;
    va_start(args, format);
    const int nLength = _vsnprintf(szBuffer, DUMP_BUFFER_SIZE - 1, format, args);
    va_end(args);
    CU_ASSERT_TEXT(nLength >= 0, "nLength < DumpBufferSize");
    CUDumpString(szBuffer, -1);
}

void CUDumpString(const char *text, int length)
{
    const CCUKeepLastError keepLastError;
    const CCUString sText = CopyText(text, length);
    InterlockedIncrement(&s_nTexts);
    const CDumpUse dump;
    const bool bOverrun = dump && dump->Distribute(sText);
    OutputDebugStringA(sText);
    if (bOverrun)
        dump->TellOverrun();
}

long CUCountDumps()
{
    return s_nTexts;
}

int CUDumpConfigLogFileManagement(int daysToKeep, int filesToKeep, long maxFileSize,
                                  bool manageAllFiles)
{
    const CDumpUse dump;
    if (dump)
        dump->m_logFiles.Configure({daysToKeep, filesToKeep, maxFileSize, manageAllFiles});
    return 1;
}

void CUDumpGetConfigLogFileManagement(int *daysToKeep, int *filesToKeep, long *maxFileSize,
                                      bool *manageAllFiles)
{
    const CDumpUse dump;
    if (!dump)
        return;
    const CCULogFiles::CSettings &settings = dump->m_logFiles.GetSettings();
    if (daysToKeep)
        *daysToKeep = settings.nDaysToKeep;
    if (filesToKeep)
        *filesToKeep = settings.nFilesToKeep;
    if (maxFileSize)
        *maxFileSize = settings.nMaxFileSize;
    if (manageAllFiles)
        *manageAllFiles = settings.bManageAllFiles;
}

int CUDumpSetLogFile(const char *folder, const char *prefix)
{
    const CCUKeepLastError keepLastError;
    const CCUString sPrefix(prefix);
    CCUString sFolder;
    if (sPrefix.GetLength() > LONGEST_PREFIX || sPrefix.FindOneOf(NOT_IN_NAMES) >= 0 ||
        !FullPath(folder, sFolder))
        return 0;
    const CDumpUse dump;
    if (dump)
        dump->m_logFiles.SetPlace(sFolder, sPrefix);
    const CCUString sFailed = CUMakeDirectories(sFolder.IsEmpty() ? sFolder : sFolder + '\\');
    if (!sFailed.IsEmpty())
        CUDump(CU_DIRECTORY_FAILED, sFailed.GetString());
    return sFailed.IsEmpty();
}

void CUDumpSetFileOverrunCallback(CCUDumpFileOverrunCallback *pCallback)
{
    const CDumpUse dump;
    if (dump)
        dump->m_pOverrunCallback = pCallback;
}

void CUDumpSetNewFileCallback(CCUDumpNewFileCallback *pCallback)
{
    const CDumpUse dump;
    if (dump)
        dump->m_logFiles.SetNewFileCallback(pCallback);
}

void CUDumpRegister(CCUDumpCallback *pCallback)
{
    const CDumpUse dump;
    CU_ASSERT(pCallback != NULL);
    if (dump && pCallback)
        dump->m_callbacks.Add(pCallback);
}

void CUDumpUnRegister(CCUDumpCallback *pCallback)
{
    const CDumpUse dump;
    if (dump)
        dump->m_callbacks.Remove(pCallback);
}

void CUDumpRegisterWindow(HWND hWnd, unsigned int message)
{
    const CDumpUse dump;
    if (dump)
        dump->Add(CDumpWindow{hWnd, message});
}

void CUDumpUnRegisterWindow(HWND hWnd, unsigned int message)
{
    const CDumpUse dump;
    if (dump)
        dump->Remove(CDumpWindow{hWnd, message});
}
