#include <gtest/gtest.h>

#include <errno.h>
#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <string>
#include <vector>

#include "CU/Dump.h"
#include "CU/String.h"
#include "Support/FailingCall.h"
#include "Support/FakeTime.h"
#include "Support/Reports.h"
#include "Support/TemporaryDirectory.h"

namespace {

typedef std::vector<std::string> CNames;

const char Continued[] =
    "\r\n======================================================\r\nContinued in ";
const char Continuation[] = "\r\n======================================================\r\n\r\n";

DWORD s_nTicks;

DWORD WINAPI FakeTicks()
{
    return s_nTicks;
}

void NextDay()
{
    CFakeTime::s_now += 86400;
    s_nTicks += 86400001;
}

std::string NameOf(time_t time)
{
    char szName[64];
    strftime(szName, sizeof szName, "ZELLog-%Y-%m-%d-%H-%M-%S.txt", localtime(&time));
    return szName;
}

CNames Sorted(const CTemporaryDirectory &directory)
{
    CNames names = directory.Files("*");
    std::sort(names.begin(), names.end());
    return names;
}

void Make(const CTemporaryDirectory &directory, const std::string &name)
{
    fclose(fopen((directory.Path() + "\\" + name).c_str(), "wb"));
}

// A log at noon of 2020-06-15, its start-up 1,000,000 ms earlier.
class LogFiles : public testing::Test
{
protected:
    LogFiles() { s_nTicks = 1000000; }

    std::string Path(const std::string &name) const { return m_directory.Path() + "\\" + name; }
    // As the trace names it.
    std::string Logged(const std::string &name) const { return m_directory.Path() + "\\\\" + name; }
    CNames Files() const { return Sorted(m_directory); }

    const CTemporaryDirectory m_directory;
    const CFakeTime m_clock;
    const CImportHook m_ticks{"GetTickCount", FakeTicks};
    const time_t m_noon = CFakeTime::s_now = CFakeTime::Local(2020, 6, 15, 12);
};

// Counts the files that the trace tries to make.
class CTries
{
public:
    CTries() : m_hook("CreateFileA", Create)
    {
        s_create = m_hook.Original<decltype(CreateFileA)>();
        s_nTries = 0;
    }
    int Count() const { return s_nTries; }

private:
    static HANDLE WINAPI Create(const char *name, DWORD dwAccess, DWORD dwShare,
                                SECURITY_ATTRIBUTES *security, DWORD dwCreation, DWORD dwFlags,
                                HANDLE hTemplate)
    {
        s_nTries += strstr(name, "ZELLog-") != nullptr;
        return s_create(name, dwAccess, dwShare, security, dwCreation, dwFlags, hTemplate);
    }
    inline static decltype(&CreateFileA) s_create;
    inline static int s_nTries;
    const CImportHook m_hook;
};

// Takes all streams, or all descriptors, that the C library has.
class CUsedUp
{
public:
    explicit CUsedUp(bool bStreams)
    {
        while (FILE *file = bStreams ? fopen("NUL", "r") : nullptr)
            m_streams.push_back(file);
        for (int n = 0; !bStreams && (n = _open("NUL", _O_RDONLY)) >= 0;)
            m_descriptors.push_back(n);
    }
    ~CUsedUp()
    {
        for (FILE *file : m_streams)
            fclose(file);
        for (const int nFile : m_descriptors)
            _close(nFile);
    }
    CUsedUp(const CUsedUp &) = delete;
    CUsedUp &operator=(const CUsedUp &) = delete;

private:
    std::vector<FILE *> m_streams;
    std::vector<int> m_descriptors;
};

std::string s_calls;

struct CCallbacks : CCUDumpNewFileCallback, CCUDumpFileOverrunCallback
{
    void OnNewFile() override
    {
        s_calls += 'n';
        CUDump("from the new-file callback");
    }
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
    Make(m_directory, NameOf(m_noon));
    CreateDirectoryA(Path(NameOf(m_noon + 1)).c_str(), nullptr);
    CUDump("text");
    EXPECT_EQ((CNames{NameOf(m_noon), NameOf(m_noon + 2)}), Files());
    RemoveDirectoryA(Path(NameOf(m_noon + 1)).c_str());
}

TEST_F(LogFiles, ATimeThatHasNoNextSecondHasNoNextName)
{
    const CTries tries;
    Make(m_directory, NameOf(CFakeTime::s_now = 0x7FFFFFFF));
    CUDump("text");
    EXPECT_EQ(1, tries.Count());
}

TEST_F(LogFiles, WithoutAFreeStreamOneFileIsTriedAndTheOldOneStays)
{
    const CTries tries;
    const CDumped dumped;
    for (const bool bStreams : {true, false}) {
        const CUsedUp usedUp(bStreams);
        errno = EEXIST;
        CUDump("lost");
        EXPECT_TRUE(Files().empty());
    }
    EXPECT_EQ(2, tries.Count());
    CUDumpConfigLogFileManagement(30, 50, 1, false);
    CUDump("kept");
    const CNames old = Files();
    for (const bool bStreams : {true, false}) {
        const CUsedUp usedUp(bStreams);
        errno = EEXIST;
        ++CFakeTime::s_now;
        CUDump("+");
        EXPECT_EQ(old, Files());
    }
    EXPECT_EQ(5, tries.Count());
    EXPECT_EQ("lostlostkept++", dumped.m_text);
    const std::string text = m_directory.Contents("*");
    EXPECT_EQ("kept++", text.substr(text.size() - 6));
    CUDump("next");
    EXPECT_EQ(2u, Files().size());
}

TEST_F(LogFiles, NamesGoOnInOrderWhileTheClockDoes)
{
    // Each text makes a file, beside which pruning leaves the newest one.
    CUDumpConfigLogFileManagement(30, 2, 1, true);
    const auto expect = [this](int nOther, int nNewest, int nClock) {
        CFakeTime::s_now = m_noon + nClock;
        CUDump("text");
        EXPECT_EQ((CNames{NameOf(m_noon + nOther), NameOf(m_noon + nNewest)}), Files());
    };
    CUDump("text");
    for (int i = 1; i < 6; ++i)
        expect(i - 1, i, 0);
    expect(5, 6, 3);
    expect(6, 9, 9);
    // Set back: the clock's own second, whose name is free.
    expect(2, 9, 2);
}

TEST_F(LogFiles, AFullFileIsContinuedByTheNextText)
{
    CCallbacks callbacks;
    CUDumpSetNewFileCallback(&callbacks);
    CUDumpSetFileOverrunCallback(&callbacks);
    EXPECT_EQ(1, CUDumpConfigLogFileManagement(30, 50, 150, false));
    const std::string line(150, 'x');
    CUDump("%s", line.c_str());
    EXPECT_EQ("n", s_calls);
    const std::string first = NameOf(m_noon), second = NameOf(++CFakeTime::s_now);
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
    CUDump("next");
    EXPECT_EQ(17u, s_calls.size());
}

TEST_F(LogFiles, AFileIsReplacedWhenItIsOlderThanADay)
{
    s_nTicks = 0xFFFFFFFF - 1000;
    CUDump("a");
    NextDay();
    --s_nTicks;
    CUDump("b");
    EXPECT_EQ(1u, Files().size());
    ++s_nTicks;
    CUDump("c");
    EXPECT_EQ((CNames{NameOf(m_noon), NameOf(m_noon + 86400)}), Files());
    EXPECT_EQ(0u, m_directory.Contents("ZELLog-2020-06-16*").find("Continued from "));
    // An old one that is full too is replaced for its age: no overrun.
    CCallbacks callbacks;
    CUDumpSetFileOverrunCallback(&callbacks);
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
        int nAfterConfig, nAfterDump;  // what is left, the new file not counted
    } cases[] = {{1, 60, 30, 50, true, 50, 49},  {1, 60, 30, 50, false, 60, 60},
                 {1, 49, 30, 50, true, 49, 49},  {33, 3, 30, 500, false, 91, 91},
                 {30, 3, 30, 500, true, 90, 90}, {5, 2, 3, 4, true, 4, 3},
                 {5, 2, -1, 50, true, 1, 1},     {5, 2, 9, 0, true, 0, 0},
                 {5, 2, 9, -7, true, 0, 0},      {0, 0, 1, 1, true, 0, 0}};
    for (const auto &c : cases) {
        const CTemporaryDirectory directory;
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        CUDumpConfigLogFileManagement(30, 50, 0, false);  // nothing is known
        CNames all;
        for (int i = c.nDays * c.nFilesADay; i-- > 0;) {
            all.push_back(NameOf(m_noon - (i / c.nFilesADay + 1) * 86400 - i % c.nFilesADay));
            Make(directory, all.back());
        }
        CUDumpConfigLogFileManagement(c.nDaysToKeep, c.nFilesToKeep, 0, c.bManageAll);
        EXPECT_EQ(CNames(all.end() - c.nAfterConfig, all.end()), Sorted(directory));
        s_nTicks += 86400001;
        CUDump("opens another file, in this directory");
        all.push_back(NameOf(m_noon));
        EXPECT_EQ(CNames(all.end() - c.nAfterDump - 1, all.end()), Sorted(directory));
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
        names.push_back(NameOf(m_noon + i * 86400));
        if (i < 0)
            Make(m_directory, names.back());
    }
    for (int i = 0; i < 5; ++i, NextDay())
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
        const CFailingCall<DWORD(DWORD, char *)> noDirectory("GetTempPathA");
        CFailPlan::Start(CFailPlan::ALL);
        CUDump("c");
    }
    EXPECT_EQ(1u, Files().size());
    const std::string text = m_directory.Contents("*");
    EXPECT_EQ("abc", text.substr(text.size() - 3));
    CUDump("d");
    EXPECT_EQ(2u, m_directory.Files("ZELLog-*").size());
}

TEST_F(LogFiles, FolderAndPrefixCanBeChosenBeforeTheFirstText)
{
    const std::string name = "100%-2020-06-15-12-00-00.txt", others = NameOf(m_noon - 86400);
    EXPECT_EQ(1, CUDumpSetLogFile((m_directory.Path() + "/new/").c_str(), "100%"));
    Make(m_directory, "new\\100%-2020-06-14-00-00-00.txt");
    Make(m_directory, "new\\" + others);
    CUDumpConfigLogFileManagement(30, 1, 0, true);
    CUDump("text");
    EXPECT_EQ(CNames(), Files());
    EXPECT_EQ((CNames{name, others}), m_directory.Files("new\\*"));
    for (const std::string &bad : {std::string("a\\b"), std::string("a?"), std::string(101, 'a')})
        EXPECT_EQ(0, CUDumpSetLogFile(nullptr, bad.c_str()));
    EXPECT_EQ(0, CUDumpSetLogFile(std::string(300, 'a').c_str(), nullptr));
    // The file that is open is continued where the next one is to be.
    EXPECT_EQ(1, CUDumpSetLogFile(nullptr, ""));
    CUDump("next");
    EXPECT_EQ(CNames{NameOf(m_noon)}, Files());
    EXPECT_EQ("Continued from " + Path("new\\" + name) + Continuation + "next",
              m_directory.Contents("*"));
    DeleteFileA(Path("new\\" + name).c_str());
    DeleteFileA(Path("new\\" + others).c_str());
    RemoveDirectoryA(Path("new").c_str());
}

TEST_F(LogFiles, WithoutTheChosenFolderTheTemporaryDirectoryServes)
{
    Make(m_directory, "taken");
    for (const bool bBelow : {false, true}) {
        const std::string folder = Path(bBelow ? "taken\\below" : "taken");
        SetLastError(99);
        EXPECT_EQ(!bBelow, CUDumpSetLogFile(folder.c_str(), "My"));
        EXPECT_EQ(99u, GetLastError());
        CUDump("text");
        ++CFakeTime::s_now;
        CUDump("+");  // stays there
        const std::string text = m_directory.Contents("My-*0" + std::to_string(bBelow) + ".txt");
        const std::string lost = "No log file can be made in " + folder + "\r\n";
        const std::string traced = "CreateDirectory " + folder + "\\ error\r\n";
        EXPECT_NE(std::string::npos, text.find(lost + (bBelow ? traced : "") + "text+")) << text;
    }
    EXPECT_EQ(3u, Files().size());
}
