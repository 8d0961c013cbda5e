// The examples of the reference for the utility layer: each is named after its class.

#include <stdlib.h>

#include "CU/CU.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/File.h"
#include "CU/IDGenerator.h"
#include "CU/Prober.h"
#include "CU/ProberClient.h"
#include "CU/Registry.h"
#include "CU/String.h"
#include "CU/TextFile.h"
#include "CU/ThreadExit.h"
#include "CU/Time.h"
#include "CU/Timer.h"
#include "CU/TimerTask.h"
#include "CU/Version.h"

//! [CCUDebugSwitch]
// CU_DEBUG="SlowDisk=1" in the environment turns it on.
static CCUDebugSwitch s_slowDisk("\\Debug\\Copier", "SlowDisk");

void CopyBlock()
{
    if (s_slowDisk.Get())
        Sleep(500);
}
//! [CCUDebugSwitch]

//! [CCUDumpCallback]
class CErrorCounter : public CCUDumpCallback
{
public:
    CErrorCounter() { CUDumpRegister(this); }
    ~CErrorCounter() { CUDumpUnRegister(this); }
    void OnDump(const CCUString &sText) override { m_nErrors += sText.Find("Error") >= 0; }

private:
    int m_nErrors = 0;
};
//! [CCUDumpCallback]

//! [CCUDumpFileOverrunCallback]
class CShortLogs : public CCUDumpFileOverrunCallback
{
public:
    CShortLogs()
    {
        CUDumpConfigLogFileManagement(7, 10, 1000000, false);
        CUDumpSetFileOverrunCallback(this);
    }
    void OnFileOverrun() override { CUDump("Goes on after a million bytes\n"); }
};
//! [CCUDumpFileOverrunCallback]

//! [CCUDumpNewFileCallback]
class CLogHeads : public CCUDumpNewFileCallback
{
public:
    CLogHeads() { CUDumpSetNewFileCallback(this); }
    void OnNewFile() override { ++m_nFiles; }

private:
    int m_nFiles = 0;
};
//! [CCUDumpNewFileCallback]

//! [CCUInitializer]
static void ReadDictionary()
{
    CUDump("The dictionary is read\n");
}
static void FreeDictionary()
{
    CUDump("The dictionary is gone\n");
}
// CUInitialize() in main calls the first one, the end of the process the second.
static CCUInitializer s_dictionary(ReadDictionary, FreeDictionary);
//! [CCUInitializer]

//! [CCUMutexGuard]
int NextTicket()
{
    static int s_nTicket;
    const CCUMutexGuard guard;
    return ++s_nTicket;
}
//! [CCUMutexGuard]

//! [CCUNoRecur]
void Refresh()
{
    static int s_bRunning;
    const CCUNoRecur guard(&s_bRunning);
    // What stands here must not lead to Refresh again.
}
//! [CCUNoRecur]

//! [CCUThreadExitHandler]
class CThreadBuffer : public CCUThreadExitHandler
{
public:
    CThreadBuffer() { CURegisterThreadExitHandler(this); }
    void OnThreadExit(bool) override { delete this; }

private:
    char m_bytes[4096];
};
//! [CCUThreadExitHandler]

//! [CCUTimer]
class CReminder : public CCUTimer
{
public:
    void Start() { SetAlarm(60 * 1000); }
    void TimeOut(long) override
    {
        CUDump("A minute has passed\n");
        SetAlarm(60 * 1000);  // and another one
    }
};
//! [CCUTimer]

void ShowTimerTask()
{
    //! [CCUTimerTask]
    if (const CCUTimerTask *pTask = CCUTimerTask::GetThreadTimerTask())
        CUDump("%lu alarms are armed on this thread\n", pTask->GetListLength());
    //! [CCUTimerTask]
}

//! [CCUTextFile]
// "\t" becomes four spaces; encoding and line ends stay as they are.
bool ExpandTabs(const char *pszPath)
{
    CCUTextFile file;
    if (!file.Load(pszPath) || file.GetLostCount() != 0)
        return false;
    CCUString sText;
    for (const char *p = file.GetText(); *p; ++p)
        sText += *p == '\t' ? CCUString(' ', 4) : CCUString(*p, 1);
    file.SetText(sText);
    return file.Save(pszPath) != 0;
}
//! [CCUTextFile]

bool ShowFile(CCUString &sText)
{
    //! [CCUFile]
    CCUFile file;
    if (!file.Open("Letter.txt", CCUFile::modeRead))
        return false;
    const unsigned long nLength = file.GetLength();
    const unsigned nRead = file.Read(sText.GetBuffer(static_cast<int>(nLength)), nLength);
    sText.ReleaseBuffer(static_cast<int>(nRead));
    //! [CCUFile]
    return true;
}

unsigned ShowIDGenerator()
{
    //! [CCUIIDGenerator]
    const unsigned nID = CCUIIDGenerator::GetNextID();  // a command that nobody else has
    //! [CCUIIDGenerator]
    return nID;
}

void ShowRegistry(CCUString &sFolder)
{
    //! [CCURegistry]
    CCURegistry registry(HKEY_CURRENT_USER, "Software\\Fennick\\Options", false);
    int nRuns = 0;
    registry.GetInt("Runs", nRuns);  // stays 0 where there is none
    registry.SetInt("Runs", nRuns + 1);
    if (!registry.GetString("Folder", sFolder))
        sFolder = "C:\\";
    //! [CCURegistry]
}

void ShowString()
{
    //! [CCUString]
    const CCUString sPath = "C:\\Pictures\\Harbour.bmp";
    const int nName = sPath.ReverseFind('\\') + 1;
    CCUString sTitle;
    sTitle.Format("%s, %d characters", sPath.Mid(nName).GetString(), sPath.GetLength());
    sTitle.MakeUpper();
    //! [CCUString]
}

void ShowTime()
{
    //! [CCUTime]
    const CCUTime now;
    const CCUTime newYear(now.GetYear() + 1, 1, 1, 0, 0, 0);
    CUDump("%s, %ld days to go\n", now.Format("%x %X").GetString(), (newYear - now).GetDays());
    //! [CCUTime]
    //! [CCUTimeSpan]
    CCUTimeSpan span(0, 1, 30, 0);
    span += CCUTimeSpan(45);
    CUDump("%s\n", span.Format("%H:%M:%S").GetString());  // 01:30:45
    //! [CCUTimeSpan]
}

void ShowVersion()
{
    //! [CCUVersionInfo]
    const CCUVersionInfo system;
    if (system.IsWinNT() && system.GetMajor() >= 5)
        CUDump("Windows 2000 or later: %s\n", system.GetVerString().GetString());
    //! [CCUVersionInfo]
}

void ShowProber()
{
    //! [CCUProber]
    CUProberValue value;
    if (CCUProber::Get(CCUProber::Find("\\Copier\\Files"), value) == CU_PROBER_DONE)
        CUDump("%ld files so far\n", value.nLong);
    CCUProber::Dump("\\Copier");  // all that it has, to the trace
    //! [CCUProber]
}

void ShowProberClient()
{
    //! [CCUProberClient]
    CCUProberClient client;
    for (HWND h = nullptr; (h = CCUProberClient::GetNextProgram(h)) != nullptr;)
        if (client.Connect(h))
            CUDump("%s has %d values\n", client.GetProgram().GetString(), client.List());
    //! [CCUProberClient]
}

//! [CCUProberVariable]
// Variables of one thing stand below one path; one that others may set says so.
static CCUProberLong s_speed("\\Copier", "Speed", 8, "how much at once", "MiB");
void LetOthersSetTheSpeed()
{
    s_speed.SetOpen(true);
}
//! [CCUProberVariable]

//! [CCUProberLong]
static CCUProberLong s_files("\\Copier", "Files", 0, "that were copied");
void CountFile()
{
    s_files.Add(1);  // on any thread
}
//! [CCUProberLong]

//! [CCUProberDouble]
static CCUProberDouble s_share("\\Copier", "Share", 0, "of the work that is done");
void TellShare(double fDone)
{
    s_share.Set(fDone);
}
//! [CCUProberDouble]

//! [CCUProberFlag]
static CCUProberFlag s_verify("\\Copier", "Verify", true, "reads back what it wrote");
bool IsVerified()
{
    return s_verify;
}
//! [CCUProberFlag]

//! [CCUProberText]
static CCUProberText s_current("\\Copier", "Current", "", "the file that is being copied");
void TellFile(const CCUString &sPath)
{
    s_current.Set(sPath);
}
//! [CCUProberText]

//! [CCUProberFunction]
static long QueueLength(void *)
{
    return 3;  // whatever it takes to know it
}
static CCUProberFunction s_queue("\\Copier", "Queue", QueueLength, "files that wait");
//! [CCUProberFunction]

void ShowProberWatch(HWND hWindow)
{
    //! [CCUProberWatch]
    CCUProberWatch watch("\\Copier", hWindow, WM_APP);
    // In the handler of WM_APP:
    while (const unsigned long nID = watch.Next())
        CUDump("%lu was set\n", nID);
    //! [CCUProberWatch]
}
