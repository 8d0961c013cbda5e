#include <gtest/gtest.h>

#include <time.h>

#include <algorithm>
#include <string>
#include <vector>

#include "CU/Dump.h"
#include "CU/String.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"

namespace {

typedef std::vector<std::string> CNames;

const char Continued[] =
    "\r\n======================================================\r\nContinued in ";
const char Continuation[] = "\r\n======================================================\r\n\r\n";

// The clocks of the trace.
time_t s_time;
DWORD s_nTicks;

time_t FakeTime(time_t *)
{
    return s_time;
}

DWORD WINAPI FakeTicks()
{
    return s_nTicks;
}

time_t LocalTime(int nYear, int nMonth, int nDay, int nHour = 0, int nMinute = 0, int nSecond = 0)
{
    tm local = {};
    local.tm_year = nYear - 1900, local.tm_mon = nMonth - 1, local.tm_mday = nDay;
    local.tm_hour = nHour, local.tm_min = nMinute, local.tm_sec = nSecond, local.tm_isdst = -1;
    return mktime(&local);
}

std::string NameOf(time_t time)
{
    char szName[64];
    strftime(szName, sizeof szName, "ZELLog-%Y-%m-%d-%H-%M-%S.txt", localtime(&time));
    return szName;
}

DWORD WINAPI NoTempPath(DWORD, char *)
{
    return 0;
}

void Make(const CTemporaryDirectory &directory, const std::string &name)
{
    fclose(fopen((directory.Path() + "\\" + name).c_str(), "wb"));
}

void ExpectTheFirst(CNames newest, size_t nCount, const CTemporaryDirectory &directory)
{
    CNames names = directory.Files("*");
    std::sort(names.rbegin(), names.rend());
    newest.resize(nCount);
    EXPECT_EQ(newest, names);
}

// A log at noon of 2020-06-15, its start-up 1,000,000 ms earlier.
class LogFiles : public testing::Test
{
protected:
    LogFiles() : m_clock("time", FakeTime), m_ticks("GetTickCount", FakeTicks)
    {
        s_time = LocalTime(2020, 6, 15, 12);
        s_nTicks = 1000000;
    }

    std::string Path(const std::string &name) const { return m_directory.Path() + "\\" + name; }
    // As the trace names it.
    std::string Logged(const std::string &name) const { return m_directory.Path() + "\\\\" + name; }
    CNames Files() const
    {
        CNames names = m_directory.Files("*");
        std::sort(names.begin(), names.end());
        return names;
    }

    const CTemporaryDirectory m_directory;
    const CImportHook m_clock, m_ticks;
};

std::string s_calls;

struct CNewFile : CCUDumpNewFileCallback
{
    void OnNewFile() override
    {
        s_calls += 'n';
        CUDump("from the new-file callback");
    }
};

struct COverrun : CCUDumpFileOverrunCallback
{
    void OnFileOverrun() override
    {
        s_calls += 'o';
        CUDump("from the overrun callback");
    }
};

}  // namespace

TEST_F(LogFiles, TheFirstTextOpensAFileWithTheZoneAndTheUpTime)
{
    CUDump("first\n");
    CUDump("second\n");
    TIME_ZONE_INFORMATION z = {};
    GetTimeZoneInformation(&z);
    const SYSTEMTIME &s = z.StandardDate, &d = z.DaylightDate;
    char szHeader[512];
    sprintf(szHeader,
            "**TZ** bias:%ld std:%ld %d:%d:%d:%d:%d day:%ld %d:%d:%d:%d:%d %ls\r\n"
            "Seconds since start-up: 1000\r\nfirst\r\nsecond\r\n",
            z.Bias, z.StandardBias, s.wMonth, s.wDayOfWeek, s.wDay, s.wHour, s.wMinute,
            z.DaylightBias, d.wMonth, d.wDayOfWeek, d.wDay, d.wHour, d.wMinute, z.StandardName);
    EXPECT_EQ(CNames{"ZELLog-2020-06-15-12-00-00.txt"}, Files());
    EXPECT_EQ(szHeader, m_directory.Contents("*"));
}

TEST_F(LogFiles, ANameThatIsTakenIsTheNextSecond)
{
    Make(m_directory, NameOf(s_time));
    CreateDirectoryA(Path(NameOf(s_time + 1)).c_str(), nullptr);
    CUDump("text");
    EXPECT_EQ((CNames{NameOf(s_time), NameOf(s_time + 2)}), Files());
    RemoveDirectoryA(Path(NameOf(s_time + 1)).c_str());
}

TEST_F(LogFiles, AFullFileIsContinuedByTheNextText)
{
    CNewFile newFile;
    COverrun overrun;
    CUDumpSetNewFileCallback(&newFile);
    CUDumpSetFileOverrunCallback(&overrun);
    EXPECT_EQ(1, CUDumpConfigLogFileManagement(30, 50, 150, false));
    const std::string line(150, 'x');
    CUDump("%s", line.c_str());
    EXPECT_EQ("n", s_calls);
    const std::string first = NameOf(s_time++), second = NameOf(s_time);
    CUDump("+");  // 150 bytes do not pass the limit, and the header does not count
    CUDump("next");
    EXPECT_EQ("nno", s_calls);
    EXPECT_EQ((CNames{first, second}), Files());
    const std::string head = m_directory.Contents(first);
    EXPECT_EQ(line + "+" + Continued + Logged(second) + "\r\n", head.substr(head.find("xxx")));
    EXPECT_EQ("Continued from " + Logged(first) + Continuation + "nextfrom the overrun callback",
              m_directory.Contents(second));
    // The callback fills each file itself: it is told so, though not without end.
    s_calls.clear();
    CUDumpConfigLogFileManagement(30, 50, 1, false);
    CUDump("next");
    EXPECT_EQ("nonononononononon", s_calls);
    CUDumpSetFileOverrunCallback(nullptr);
    CUDumpSetNewFileCallback(nullptr);
    s_calls.clear();
    CUDump("next");
    EXPECT_EQ("", s_calls);
}

TEST_F(LogFiles, AFileIsReplacedWhenItIsOlderThanADay)
{
    s_nTicks = 0xFFFFFFFF - 1000;
    CUDump("a");
    s_nTicks += 86400000;
    s_time = LocalTime(2020, 6, 16, 12);
    CUDump("b");
    EXPECT_EQ(1u, Files().size());
    ++s_nTicks;
    CUDump("c");
    EXPECT_EQ((CNames{"ZELLog-2020-06-15-12-00-00.txt", "ZELLog-2020-06-16-12-00-00.txt"}),
              Files());
    EXPECT_EQ(0u, m_directory.Contents("ZELLog-2020-06-16*").find("Continued from "));
    // An old one that is full too is replaced for its age: no overrun.
    COverrun overrun;
    CUDumpSetFileOverrunCallback(&overrun);
    CUDumpConfigLogFileManagement(30, 50, 1, false);
    CUDump("d");
    s_nTicks += 86400001;
    CUDump("e");
    EXPECT_EQ(3u, Files().size());
    EXPECT_EQ("", s_calls);
}

TEST_F(LogFiles, PruningKeepsTheNewestDaysAndFiles)
{
    const struct
    {
        int nDays, nFilesADay;  // what is there
        int nDaysToKeep, nFilesToKeep;
        bool bManageAll;
        size_t nAfterConfig, nAfterDump;  // what is left, the new file not counted
    } cases[] = {{1, 60, 30, 50, true, 50, 49},   {1, 60, 30, 50, false, 60, 60},
                 {1, 50, 30, 50, true, 50, 49},   {1, 49, 30, 50, true, 49, 49},
                 {33, 3, 30, 500, false, 91, 91}, {31, 3, 30, 500, true, 91, 91},
                 {30, 3, 30, 500, true, 90, 90},  {5, 2, 3, 4, true, 4, 3},
                 {5, 2, 0, 50, false, 1, 1},      {5, 2, -1, 50, true, 1, 1},
                 {5, 2, 9, 0, true, 0, 0},        {5, 2, 9, -7, true, 0, 0},
                 {2, 2, 9, 0, false, 4, 4},       {0, 0, 1, 1, true, 0, 0}};
    for (const auto &c : cases) {
        const CTemporaryDirectory directory;
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        CUDumpConfigLogFileManagement(30, 50, 0, false);  // nothing is known
        CNames newest;
        for (int i = 0; i < c.nDays * c.nFilesADay; ++i) {
            newest.push_back(NameOf(s_time - (i / c.nFilesADay + 1) * 86400 - i % c.nFilesADay));
            Make(directory, newest.back());
        }
        CUDumpConfigLogFileManagement(c.nDaysToKeep, c.nFilesToKeep, 0, c.bManageAll);
        ExpectTheFirst(newest, c.nAfterConfig, directory);
        s_nTicks += 86400001;
        CUDump("opens another file, in this directory");
        newest.insert(newest.begin(), NameOf(s_time));
        ExpectTheFirst(newest, c.nAfterDump + 1, directory);
    }
    int nDays = 0, nFiles = 0;
    long nSize = 0;
    bool bManageAll = true;
    CUDumpConfigLogFileManagement(-1, 2, 3, false);
    CUDumpGetConfigLogFileManagement(nullptr, nullptr, nullptr, nullptr);
    CUDumpGetConfigLogFileManagement(&nDays, &nFiles, &nSize, &bManageAll);
    EXPECT_TRUE(nDays == -1 && nFiles == 2 && nSize == 3 && !bManageAll);
}

TEST_F(LogFiles, AProcessThatManagesItsOwnFilesLeavesTheOthersAlone)
{
    CUDumpConfigLogFileManagement(30, 2, 0, false);
    CNames names;
    for (int i = -4; i < 5; ++i) {
        names.push_back(NameOf(s_time + i * 86400));
        if (i < 0)
            Make(m_directory, names.back());
    }
    for (int i = 0; i < 5; ++i, s_time += 86400, s_nTicks += 86400001)
        CUDump("text");
    names.erase(names.begin() + 4, names.begin() + 7);
    EXPECT_EQ(names, Files());
}

TEST_F(LogFiles, WithoutADirectoryTheOldFileStaysAndTheNextTextTriesAgain)
{
    for (const std::string &path : {Path("missing"), std::string(300, 'x')}) {
        CTemporaryDirectory::Set(path);
        SetLastError(99);
        CUDump("lost");
        EXPECT_EQ(99u, GetLastError());
        EXPECT_EQ(1, CUDumpConfigLogFileManagement(30, 50, 0, false));
    }
    CTemporaryDirectory::Set(m_directory.Path());
    CUDump("a");
    CTemporaryDirectory::Set(Path("missing"));
    s_nTicks += 86400001;
    CUDump("b");
    CTemporaryDirectory::Set(m_directory.Path());
    {
        const CImportHook noDirectory("GetTempPathA", NoTempPath);
        CUDump("c");
    }
    EXPECT_EQ(1u, Files().size());
    const std::string text = m_directory.Contents("*");
    EXPECT_EQ("abc", text.substr(text.size() - 3));
    CUDump("d");
    EXPECT_EQ(2u, m_directory.Files("ZELLog-*").size());
}
