#include <errno.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "CU/Dump.h"
#include "CU/String.h"
#include "Support/FakeTime.h"
#include "Support/TemporaryDirectory.h"

namespace {

typedef std::vector<std::string> CNames;

std::string NameOf(time_t time)
{
    char szName[64];
    strftime(szName, sizeof szName, "ZELLog-%Y-%m-%d-%H-%M-%S.txt", localtime(&time));
    return szName;
}

// A log at noon of 2020-06-15, its start-up 1,000,000 ms earlier.
class LogFiles : public testing::Test
{
protected:
    const CTemporaryDirectory m_directory;
    const CFakeTime m_clock;
    DWORD m_nTicks = 1000000;
    const CFakeCall<DWORD()> m_ticking{"GetTickCount", [this] { return m_nTicks; }};
    const time_t m_noon = CFakeTime::s_now = CFakeTime::Local(2020, 6, 15, 12);
};

struct CCallbacks : CCUDumpNewFileCallback, CCUDumpFileOverrunCallback
{
    void OnNewFile() override { m_calls += 'n'; }
    void OnFileOverrun() override { m_calls += 'o', CUDump("from the overrun callback"); }
    std::string m_calls;
};

// Where all streams are in use. The C library does not say so.
int g_nStreams = 0;
FILE *__cdecl NoStream(int, const char *)
{
    ++g_nStreams;
    return nullptr;
}

}  // namespace

TEST_F(LogFiles, TheFirstTextOpensAFileWithTheZoneAndTheUpTime)
{
    // A name that is taken is the next second.
    m_directory.Make(NameOf(m_noon));
    std::filesystem::create_directory(m_directory.Path() + "\\" + NameOf(m_noon + 1));
    CUDump("first\n");
    CUDump("second\n");
    const std::string text = m_directory.Contents("*");
    EXPECT_EQ(0u, text.find("**TZ** bias:")) << text;
    EXPECT_NE(std::string::npos,
              text.find("\r\nSeconds since start-up: 1000\r\nfirst\r\nsecond\r\n"));
    EXPECT_EQ((CNames{"ZELLog-2020-06-15-12-00-00.txt", "ZELLog-2020-06-15-12-00-02.txt"}),
              m_directory.Files("*"));
}

TEST_F(LogFiles, AFullFileIsContinuedByTheNextText)
{
    CCallbacks callbacks;
    CUDumpSetNewFileCallback(&callbacks);
    CUDumpSetFileOverrunCallback(&callbacks);
    EXPECT_EQ(1, CUDumpConfigLogFileManagement(30, 50, 150, false));
    const std::string line(150, 'x');
    CUDump("%s", line.c_str());
    EXPECT_EQ("n", callbacks.m_calls);
    CUDump("+");  // 150 bytes do not pass the limit, and the header does not count
    CUDump("next");
    EXPECT_EQ("nno", callbacks.m_calls);
    // The name of the same second is taken.
    const std::string first = NameOf(m_noon), second = NameOf(m_noon + 1);
    const std::string head = m_directory.Contents(first), path = m_directory.Path() + "\\\\";
    EXPECT_NE(std::string::npos,
              head.find("Continued in " + path + second + "\r\n", head.find(line + "+\r\n")));
    const std::string next = m_directory.Contents(second),
                      text = "\r\nnextfrom the overrun callback";
    EXPECT_EQ(0u, next.find("Continued from " + path + first + "\r\n"));
    EXPECT_EQ(text, next.substr(next.size() - text.size()));
}

TEST_F(LogFiles, AFileIsReplacedWhenItIsOlderThanADay)
{
    CCallbacks callbacks;
    CUDumpSetFileOverrunCallback(&callbacks);
    m_nTicks = 0xFFFFFFFF - 1000;
    CUDump("a");
    CUDumpConfigLogFileManagement(30, 50, 1, false);  // old and full: replaced for its age
    CFakeTime::s_now += 86400;
    m_nTicks += 86400001;
    CUDump("b");
    EXPECT_EQ((CNames{NameOf(m_noon), NameOf(m_noon + 86400)}), m_directory.Files("*"));
    EXPECT_EQ("", callbacks.m_calls);
    // Where none can be made, the old file stays, and the next text tries again: once.
    CUDumpConfigLogFileManagement(30, 50, 0, false);
    m_nTicks += 86400001;
    int nRefused = 0;
    {
        const CFakeCall<HANDLE(const char *, DWORD, DWORD, SECURITY_ATTRIBUTES *, DWORD, DWORD,
                               HANDLE)>
            refuse("CreateFileA", [&](auto...) {
                SetLastError(ERROR_ACCESS_DENIED);
                return ++nRefused, INVALID_HANDLE_VALUE;
            });
        CUDump("c");
    }
    {
        const CImportHook streams("_fdopen", NoStream);
        errno = EEXIST;  // of another call
        CUDump("d");
    }
    EXPECT_TRUE(nRefused == 1 && g_nStreams == 1);
    EXPECT_EQ(2u, m_directory.Files("*").size());
    const std::string text = m_directory.Contents("*");
    EXPECT_EQ("bcd", text.substr(text.size() - 3));
    CUDump("e");
    EXPECT_EQ(3u, m_directory.Files("*").size());
}

TEST_F(LogFiles, PruningKeepsTheNewestDaysAndFiles)
{
    // Days and files a day that are there, days and files to keep, whether to manage all; what is
    // left then, and after the next text, its file not counted.
    const int cases[][7] = {{1, 60, 30, 50, 1, 50, 49},  {1, 60, 30, 50, 0, 60, 60},
                            {1, 49, 30, 50, 1, 49, 49},  {33, 3, 30, 500, 0, 91, 91},
                            {30, 3, 30, 500, 1, 90, 90}, {5, 2, -1, 50, 1, 1, 1},
                            {5, 2, 9, -7, 1, 0, 0}};
    for (const auto &c : cases) {
        const CTemporaryDirectory directory;
        CUDumpConfigLogFileManagement(30, 50, 0, false);  // nothing is known
        CNames all;
        for (int i = c[0] * c[1]; i-- > 0;) {
            all.push_back(NameOf(m_noon - (i / c[1] + 1) * 86400 - i % c[1]));
            directory.Make(all.back());
        }
        CUDumpConfigLogFileManagement(c[2], c[3], 0, c[4] != 0);
        EXPECT_EQ(CNames(all.end() - c[5], all.end()), directory.Files("*"));
        m_nTicks += 86400001;
        CUDump("opens another file, in this directory");
        all.push_back(NameOf(m_noon));
        EXPECT_EQ(CNames(all.end() - c[6] - 1, all.end()), directory.Files("*"));
    }
    // A process that manages its own files alone deletes those that it has made.
    CUDumpConfigLogFileManagement(30, 2, 1, false);
    m_directory.Make(NameOf(m_noon));
    CFakeTime::s_now += 100;
    for (int i = 0; i < 4; ++i)
        CUDump("text");
    EXPECT_EQ((CNames{NameOf(m_noon), NameOf(m_noon + 102), NameOf(m_noon + 103)}),
              m_directory.Files("*"));
}

TEST_F(LogFiles, FolderAndPrefixCanBeChosenBeforeTheFirstText)
{
    const std::string name = "100%-2020-06-15-12-00-00.txt", others = NameOf(m_noon - 86400);
    EXPECT_EQ(1, CUDumpSetLogFile((m_directory.Path() + "/new/").c_str(), "100%"));
    m_directory.Make("new\\100%-2020-06-14-00-00-00.txt");
    m_directory.Make("new\\" + others);
    CUDumpConfigLogFileManagement(30, 1, 0, true);
    CUDump("text");
    EXPECT_EQ(CNames(), m_directory.Files("*.txt"));
    EXPECT_EQ((CNames{name, others}), m_directory.Files("new\\*"));
    EXPECT_EQ(0, CUDumpSetLogFile(nullptr, std::string(101, 'a').c_str()));
    EXPECT_EQ(0, CUDumpSetLogFile(std::string(300, 'a').c_str(), nullptr));
    // The file that is open is continued where the next one is to be.
    EXPECT_EQ(1, CUDumpSetLogFile(nullptr, ""));
    CUDump("next");
    EXPECT_EQ(CNames{NameOf(m_noon)}, m_directory.Files("*.txt"));
}

TEST_F(LogFiles, WithoutTheChosenFolderTheTemporaryDirectoryServes)
{
    m_directory.Make("taken");
    const std::string folder = m_directory.Path() + "\\taken\\below";
    EXPECT_EQ(0, CUDumpSetLogFile(folder.c_str(), "My"));
    CUDump("text");
    EXPECT_NE(std::string::npos, m_directory.Contents("My-*").find("\r\ntext"));
}
