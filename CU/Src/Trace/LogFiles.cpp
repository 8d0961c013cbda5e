#include "Trace/LogFiles.h"

#include <fcntl.h>
#include <io.h>
#include <limits.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "Base/Handle.h"
#include "Base/TempDirectory.h"
#include "CU/Assert.h"
#include "Text/Characters.h"
#include "Time/LocalTime.h"

#define CU_SOURCE "Dump"

namespace {

const DWORD MILLISECONDS_PER_DAY = 86400000;
const char DEFAULT_PREFIX[] = "ZELLog";
// "-2001-12-31", after the prefix: what two files of one day have in common.
const int DAY_LENGTH = 11;
// What follows the prefix. In pieces, because "??-" within one literal would be a trigraph.
const char LOG_FILE_PATTERN[] =
    "-????"
    "-??"
    "-??"
    "-??"
    "-??"
    "-??.txt";
// Enough names for every process that may start within a second; an end for a file system that
// claims to hold each of them.
const int MOST_NAMES = 86400;

bool FindTempDirectory(CCUString &sTempDir)
{
    char szTempDir[MAX_PATH];
    const bool bFound = CUFindTempDirectory(szTempDir) != 0;
    CU_ASSERT_TEXT(bFound, "GetTempPath(_MAX_PATH, sTempDir.GetBuffer(_MAX_PATH))");
    if (bFound) {
        CUTurnSlashes(szTempDir);
        sTempDir = szTempDir;
    }
    return bFound;
}

long Now()
{
    const long nNow = static_cast<long>(time(nullptr));
    return nNow < 0 ? LONG_MAX : nNow;
}

// What follows the prefix in the name of the file of a second; empty where the calendar has ended.
CCUString TimedName(long nTime)
{
    bool bInvalidZone;
    char szName[32] = "";
    const tm *const record = CULocalTm(nTime, nullptr, bInvalidZone);
    if (record)
        strftime(szName, sizeof szName, "-%Y-%m-%d-%H-%M-%S.txt", record);
    return szName;
}

// Makes a file that did not exist before, so that two processes never share one. Null when it
// cannot be made; bTaken tells whether that is because the name is taken. The system makes it, not
// the C library: that one does not say for certain why it failed, and may leave a file behind when
// its own tables are full. Child processes do not inherit the handle.
FILE *CreateNew(const char *name, bool &bTaken)
{
    CCUFileHandle handle(CreateFileA(name, GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_NEW,
                                     FILE_ATTRIBUTE_NORMAL, nullptr));
    bTaken = false;
    if (!handle) {
        const DWORD dwError = GetLastError();
        bTaken = dwError == ERROR_FILE_EXISTS || dwError == ERROR_ALREADY_EXISTS;
        return nullptr;
    }
    const HANDLE hFile = handle;
    const int nFile = _open_osfhandle(reinterpret_cast<intptr_t>(hFile), _O_TEXT | _O_NOINHERIT);
    if (nFile >= 0) {
        handle.Release();  // the C library's by now
        if (FILE *const file = _fdopen(nFile, "w+"))
            return file;
        _close(nFile);
    }
    handle.Close();
    DeleteFileA(name);
    return nullptr;
}

// What turns the times of the trace into others: the zone, and when the system was started.
void WriteHeader(FILE *file)
{
    TIME_ZONE_INFORMATION zone = {};
    GetTimeZoneInformation(&zone);
    zone.StandardName[sizeof zone.StandardName / sizeof zone.StandardName[0] - 1] = L'\0';
    char szName[3 * sizeof zone.StandardName / sizeof zone.StandardName[0]] = "";
    WideCharToMultiByte(CP_ACP, 0, zone.StandardName, -1, szName, sizeof szName, nullptr, nullptr);
    szName[sizeof szName - 1] = '\0';
    const SYSTEMTIME &standard = zone.StandardDate;
    const SYSTEMTIME &daylight = zone.DaylightDate;
    fprintf(file, "**TZ** bias:%d std:%d %d:%d:%d:%d:%d day:%d %d:%d:%d:%d:%d %s\n",
            static_cast<int>(zone.Bias), static_cast<int>(zone.StandardBias), standard.wMonth,
            standard.wDayOfWeek, standard.wDay, standard.wHour, standard.wMinute,
            static_cast<int>(zone.DaylightBias), daylight.wMonth, daylight.wDayOfWeek,
            daylight.wDay, daylight.wHour, daylight.wMinute, szName);
    fprintf(file, "Seconds since start-up: %d\n", static_cast<int>(GetTickCount() / 1000));
}

}  // namespace

CCULogFiles::CCULogFiles()
    : m_settings{30, 50, 0, false},
      m_sPrefix(DEFAULT_PREFIX),
      m_bMoved(false),
      m_file(nullptr),
      m_nTimeOfName(0),
      m_nTimeMade(0),
      m_nStartTime(0),
      m_nWritten(0),
      m_pNewFileCallback(nullptr)
{
}

CCULogFiles::~CCULogFiles()
{
    if (m_file)
        fclose(m_file);
}

void CCULogFiles::Configure(const CSettings &settings)
{
    m_settings = settings;
    CCUString sFolder;
    if (FindFolder(sFolder))
        Prune(sFolder, false);
}

void CCULogFiles::SetPlace(const CCUString &sFolder, const CCUString &sPrefix)
{
    m_sFolder = sFolder;
    m_sPrefix = sPrefix.IsEmpty() ? DEFAULT_PREFIX : sPrefix.GetString();
    m_bMoved = true;
    // They are of another place.
    m_knownFiles.Empty();
}

bool CCULogFiles::Write(const CCUString &sText)
{
    bool bOverrun = false;
    if (NeedsNewFile(bOverrun))
        OpenNewFile();
    if (m_file) {
        m_nWritten += fwrite(sText, 1, static_cast<size_t>(sText.GetLength()), m_file);
        fflush(m_file);
    }
    return bOverrun;
}

bool CCULogFiles::NeedsNewFile(bool &bOverrun) const
{
    // Unsigned, so that a process that was silent for weeks counts as old too.
    if (!m_file || m_bMoved || GetTickCount() - m_nStartTime > MILLISECONDS_PER_DAY)
        return true;
    bOverrun = m_settings.nMaxFileSize > 0 &&
               m_nWritten > static_cast<unsigned long>(m_settings.nMaxFileSize);
    return bOverrun;
}

bool CCULogFiles::FindFolder(CCUString &sFolder) const
{
    if (m_sFolder.IsEmpty())
        return FindTempDirectory(sFolder);
    sFolder = m_sFolder;
    return true;
}

void CCULogFiles::OpenNewFile()
{
    CCUString sFolder;
    if (!FindFolder(sFolder) || OpenIn(sFolder, CCUString()) || m_sFolder.IsEmpty())
        return;
    // For good, so that pruning goes on to know the files that there are.
    const CCUString sLost = m_sFolder;
    SetPlace(CCUString(), m_sPrefix);
    if (FindFolder(sFolder))
        OpenIn(sFolder, sLost);
}

// False when no file can be made there. The file tells of the folder in which it was to be.
bool CCULogFiles::OpenIn(const CCUString &sFolder, const CCUString &sLostFolder)
{
    Prune(sFolder, true);
    const long nNow = Now();
    long nTime = FirstTimeForName(sFolder, nNow);
    CCUString sName;
    FILE *file = CreateNamedByTime(sFolder, nTime, sName);
    if (!file)
        return false;
    m_knownFiles.Add(sName.Mid(sFolder.GetLength() + 1));
    BeginFile(file, sName);
    if (!sLostFolder.IsEmpty())
        fprintf(file, "No log file can be made in %s\n", sLostFolder.GetString());
    m_file = file;
    m_sName = sName;
    m_bMoved = false;
    m_nTimeOfName = nTime;
    m_nTimeMade = nNow;
    m_nStartTime = GetTickCount();
    m_nWritten = 0;
    if (m_pNewFileCallback)
        m_pNewFileCallback->OnNewFile();
    return true;
}

// Opens a file named after `nTime`, or after the first second from then on that has none, which
// `nTime` is then.
FILE *CCULogFiles::CreateNamedByTime(const CCUString &sFolder, long &nTime, CCUString &sName) const
{
    for (int i = 0; i < MOST_NAMES; ++i, ++nTime) {
        const CCUString sTimed = TimedName(nTime);
        if (sTimed.IsEmpty())
            return nullptr;
        // The temporary directory ends in a backslash, so the name has two there.
        sName = NameStart(sFolder) + sTimed;
        bool bTaken;
        FILE *file = CreateNew(sName, bTaken);
        if (!bTaken || nTime == LONG_MAX)
            return file;
    }
    return nullptr;
}

// Where files are made faster than one a second, their names run ahead of the clock, and pruning
// may free the earlier ones: a file that took such a name again would sort before those it follows.
// A clock that has been set back since is followed all the same.
long CCULogFiles::FirstTimeForName(const CCUString &sFolder, long nNow) const
{
    const CCUString sStart = NameStart(sFolder);
    const bool bAhead = nNow >= m_nTimeMade && nNow <= m_nTimeOfName && m_nTimeOfName < LONG_MAX &&
                        strncmp(m_sName, sStart, static_cast<size_t>(sStart.GetLength())) == 0;
    return bAhead ? m_nTimeOfName + 1 : nNow;
}

void CCULogFiles::BeginFile(FILE *file, const CCUString &sName)
{
    if (!m_file) {
        WriteHeader(file);
        return;
    }
    fprintf(m_file, "\n======================================================\nContinued in %s\n",
            sName.GetString());
    fprintf(file, "Continued from %s\n======================================================\n\n",
            m_sName.GetString());
    fclose(m_file);
}

void CCULogFiles::Prune(const CCUString &sFolder, bool bMakeRoom)
{
    const int nKnownBefore = m_knownFiles.Count();
    ListFiles(sFolder);
    DeleteOldest(sFolder, CountOlderThanDaysToKeep());
    if (!m_settings.bManageAllFiles && m_knownFiles.Count() > nKnownBefore)
        m_knownFiles.Remove(0, m_knownFiles.Count() - nKnownBefore);
    int nMost = m_settings.nFilesToKeep;
    if (bMakeRoom && nMost > 0)
        --nMost;
    if (m_knownFiles.Count() > nMost)
        DeleteOldest(sFolder, m_knownFiles.Count() - (nMost > 0 ? nMost : 0));
}

void CCULogFiles::ListFiles(const CCUString &sFolder)
{
    m_knownFiles.Empty();
    WIN32_FIND_DATAA data;
    const CCUFindHandle find(FindFirstFileA(NameStart(sFolder) + LOG_FILE_PATTERN, &data));
    for (bool bFound = bool(find); bFound; bFound = FindNextFileA(find, &data) != FALSE)
        m_knownFiles.Add(data.cFileName);
    m_knownFiles.Sort([](const CCUString &s1, const CCUString &s2) { return s1 < s2; });
}

int CCULogFiles::CountOlderThanDaysToKeep() const
{
    const size_t nDayLength = static_cast<size_t>(m_sPrefix.GetLength() + DAY_LENGTH);
    int nDays = 0;
    const char *day = "";
    for (int i = m_knownFiles.Count() - 1; i >= 0; --i) {
        const char *name = m_knownFiles[i];
        if (strncmp(name, day, nDayLength) == 0)
            continue;
        day = name;
        if (++nDays > m_settings.nDaysToKeep)
            return i;
    }
    return 0;
}

void CCULogFiles::DeleteOldest(const CCUString &sFolder, int nCount)
{
    for (int i = 0; i < nCount; ++i)
        DeleteFileA(sFolder + "\\" + m_knownFiles[i]);
    m_knownFiles.Remove(0, nCount);
}
