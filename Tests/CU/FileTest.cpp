#include <gtest/gtest.h>

#include <array>
#include <string>

#include "CU/File.h"
#include "Support/GuardedBuffer.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/TemporaryDirectory.h"

namespace {

// Access, sharing, creation and inheritance that the system was asked for last.
typedef std::array<DWORD, 4> COpening;
COpening s_opening;
int s_nOpened = 0;

HANDLE WINAPI FakeCreateFile(const char *name, DWORD dwAccess, DWORD dwShare,
                             SECURITY_ATTRIBUTES *security, DWORD dwCreation, DWORD dwAttributes,
                             HANDLE hTemplate)
{
    EXPECT_TRUE(!hTemplate && !security->lpSecurityDescriptor &&
                security->nLength == sizeof *security && dwAttributes == FILE_ATTRIBUTE_NORMAL);
    EXPECT_STREQ("name", name);
    s_opening = {dwAccess, dwShare, dwCreation, static_cast<DWORD>(security->bInheritHandle)};
    ++s_nOpened;
    SetLastError(ERROR_SHARING_VIOLATION);
    return INVALID_HANDLE_VALUE;
}

BOOL WINAPI Fail(HANDLE)
{
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

bool IsDirectory(const std::string &path)
{
    const DWORD dwAttributes = GetFileAttributesA(path.c_str());
    return dwAttributes != INVALID_FILE_ATTRIBUTES && (dwAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::string s_tested, s_made;

DWORD WINAPI NothingExists(const char *path)
{
    s_tested += std::string(path) + ";";
    SetLastError(ERROR_PATH_NOT_FOUND);
    return INVALID_FILE_ATTRIBUTES;
}

BOOL WINAPI MakeAll(const char *path, SECURITY_ATTRIBUTES *security)
{
    EXPECT_EQ(nullptr, security);
    s_made += std::string(path) + ";";
    return TRUE;
}

}  // namespace

TEST(File, OpenHandsItsFlagsToTheSystem)
{
    const CReports reports;
    const CImportHook createFile("CreateFileA", FakeCreateFile);
    const DWORD R = GENERIC_READ, W = GENERIC_WRITE, SR = FILE_SHARE_READ, SW = FILE_SHARE_WRITE;
    const struct
    {
        unsigned int nFlags;
        COpening opening;
    } cases[] = {{0x0, {R, 0, OPEN_EXISTING, 1}},    {0x11, {W, 0, OPEN_EXISTING, 1}},
                 {0x30, {R, SW, OPEN_EXISTING, 1}},  {0x8042, {R | W, SR | SW, OPEN_EXISTING, 1}},
                 {0x80, {R, 0, OPEN_EXISTING, 0}},   {0x1000, {R, 0, CREATE_ALWAYS, 1}},
                 {0x2000, {R, 0, OPEN_EXISTING, 1}}, {0xB0A1, {W, SR, OPEN_ALWAYS, 0}},
                 {0x4000, {R, 0, OPEN_EXISTING, 1}}};
    for (const auto &c : cases) {
        CCUFile file;
        EXPECT_EQ(0, file.Open("name", c.nFlags));
        EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), GetLastError());
        EXPECT_FALSE(file.isOpen());
        EXPECT_STREQ("name", file.GetFileName());
        EXPECT_EQ(c.opening, s_opening) << c.nFlags;
    }
    EXPECT_EQ(1, reports.Count("(nOpenFlags & typeText) == 0", "File"));
    s_nOpened = 0;
    int nReports = 0;
    for (const unsigned int nFlags : {0x3u, 0x50u, 0x60u, 0x70u, 0x1003u}) {
        CCUFile file;
        EXPECT_EQ(0, file.Open("name", nFlags));
        EXPECT_EQ(++nReports, reports.Count("0", "File"));
    }
    EXPECT_EQ(0, s_nOpened);
}

TEST(File, ReadsWritesAndSeeks)
{
    const CTemporaryDirectory directory;
    const std::string path = directory.Path() + "\\file";
    char buffer[16] = "";
    CCUFile file;
    ASSERT_EQ(1, file.Open(path.c_str(), CCUFile::modeCreate | CCUFile::modeReadWrite));
    EXPECT_TRUE(file.isOpen());
    EXPECT_EQ(path, file.GetFileName().GetString());
    const std::string text("0123\r\n\0\t78", 10);
    EXPECT_EQ(10u, file.Write(text.data(), 10));
    EXPECT_EQ(10u, file.GetPosition());
    EXPECT_EQ(4, file.Seek(-6, CCUFile::end));
    EXPECT_EQ(10u, file.GetLength());
    EXPECT_EQ(4u, file.GetPosition());
    EXPECT_EQ(6u, file.Read(buffer, sizeof buffer));
    EXPECT_EQ(text.substr(4), std::string(buffer, 6));
    EXPECT_EQ(0u, file.Read(buffer, sizeof buffer));
    EXPECT_EQ(7, file.Seek(-3, CCUFile::current));
    EXPECT_EQ(100, file.Seek(100, CCUFile::begin));
    EXPECT_EQ(10u, file.GetLength());
    EXPECT_EQ(0u, file.Read(nullptr, 0) + file.Write(nullptr, 0));
    file.Flush();
    EXPECT_TRUE(directory.Files("ZEL*").empty());
    file.Close();
    EXPECT_FALSE(file.isOpen());
    EXPECT_TRUE(file.GetFileName().IsEmpty());
    file.Close();
    file.Flush();
    {
        CCUFile again;
        EXPECT_EQ(1, again.Open(path.c_str(), CCUFile::modeRead));
        EXPECT_EQ(0u, again.Write("x", 1));
    }
    // The destructor closed it: nobody else has it now. An open object closes its own first.
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(1, file.Open(path.c_str(), CCUFile::modeCreate | CCUFile::modeWrite));
    EXPECT_EQ(0u, file.GetLength());
    EXPECT_EQ(0u, file.Read(buffer, 1));
    EXPECT_TRUE(directory.Files("ZEL*").empty());
}

TEST(File, ReportsMisuseAndGoesOn)
{
    CReports reports;
    const auto reported = [&](auto act) { return reports.Of("File", act); };
    const std::string noFile = "m_hFile != 0";
    char buffer[4] = "";
    CCUFile file;
    EXPECT_EQ(noFile, reported([&] { EXPECT_EQ(0u, file.Read(buffer, 1)); }));
    EXPECT_EQ(noFile, reported([&] { EXPECT_EQ(0u, file.Write(buffer, 0)); }));
    EXPECT_EQ(noFile + "; 0", reported([&] { EXPECT_EQ(-1, file.Seek(0, CCUFile::begin)); }));
    ASSERT_EQ(1, file.Open((reports.Directory().Path() + "\\file").c_str(), 0x1002));
    EXPECT_EQ("lpBuf != 0", reported([&] { EXPECT_EQ(0u, file.Read(nullptr, 0xFFFFFFFF)); }));
    EXPECT_EQ("lpBuf != 0", reported([&] { EXPECT_EQ(0u, file.Write(nullptr, 1)); }));
    EXPECT_EQ("nFrom == begin || nFrom == end || nFrom == current; 0",
              reported([&] { EXPECT_EQ(-1, file.Seek(0, 3)); }));
    {
        const CImportHook flush("FlushFileBuffers", Fail), close("CloseHandle", Fail);
        EXPECT_EQ("0", reported([&] { file.Flush(); }));
        EXPECT_EQ("0", reported([&] { file.Close(); }));
    }
    EXPECT_TRUE(!file.isOpen() && file.GetFileName().IsEmpty());
    EXPECT_NE(std::string::npos, reports.Directory().Contents("ZELTrace-*").find("Last Error:70"));
}

TEST(File, LengthComesFromTheDerivedSeek)
{
    struct CPart : CCUFile
    {
        long Seek(long lOff, unsigned int nFrom) override
        {
            m_nSeeks = m_nSeeks * 10 + static_cast<int>(nFrom) + 1;
            return nFrom == end ? 1000 : (nFrom == begin ? lOff : 7);
        }
        int m_nSeeks = 0;
    } part;
    EXPECT_EQ(1000u, part.GetLength());
    EXPECT_EQ(231, part.m_nSeeks);
    EXPECT_EQ(7u, part.GetPosition());
}

TEST(File, TranslatesNamesUpTo500Characters)
{
    EXPECT_STREQ("\\\\a\\b c\\d\\", CUTranslateFileName("\\/a/b c\\d/"));
    EXPECT_STREQ("", CUTranslateFileName(""));
    EXPECT_STREQ("", CUTranslateFileName(nullptr));
    for (const size_t nLength : {499u, 500u, 501u, 32000u}) {
        CGuardedBuffer name(nLength + 1);
        memset(name.Data(), '/', nLength);
        name.Data()[nLength] = '\0';
        EXPECT_EQ(std::string(nLength < 500 ? nLength : 500, '\\'),
                  CUTranslateFileName(name.Data()).GetString());
    }
}

TEST(File, MakesTheDirectoriesThatAreMissing)
{
    const CTemporaryDirectory directory;
    const std::string &base = directory.Path();
    const auto make = [&](const char *path, int nEndsInFileName) {
        return CCUFileCreateDirs((base + path).c_str(), nEndsInFileName);
    };
    EXPECT_EQ(0, CCUFileCreateDirs("", 0));
    EXPECT_EQ(1, make("/a/b/file.txt", 1));
    EXPECT_TRUE(IsDirectory(base + "\\a\\b") && !IsDirectory(base + "\\a\\b\\file.txt"));
    EXPECT_EQ(1, make("/a/b/file.txt", 0));
    EXPECT_TRUE(IsDirectory(base + "\\a\\b\\file.txt"));
    EXPECT_EQ(1, make("\\c\\", 0));
    EXPECT_EQ(1, CCUFileCreateDirs("no directory in it", 1));
    // A file in the way counts as present; what would lie under it cannot be made.
    fclose(fopen((base + "\\plain").c_str(), "w"));
    EXPECT_EQ(1, make("\\plain\\x", 1));
    EXPECT_TRUE(directory.Files("ZELLog-*").empty());
    SetLastError(0);
    EXPECT_EQ(0, make("/plain/x", 0));
    EXPECT_EQ(static_cast<DWORD>(ERROR_PATH_NOT_FOUND), GetLastError());
    EXPECT_NE(
        std::string::npos,
        directory.Contents("ZELLog-*").find("CreateDirectory " + base + "\\plain\\x\\ error"));
    for (const char *name : {"\\a\\b\\file.txt", "\\a\\b", "\\a", "\\c"})
        EXPECT_TRUE(RemoveDirectoryA((base + name).c_str()));
}

TEST(File, TestsNetworkPathsFromTheShareOn)
{
    const CImportHook exists("GetFileAttributesA", NothingExists),
        make("CreateDirectoryA", MakeAll);
    const struct
    {
        const char *path;
        int nEndsInFileName;
        const char *prefixes;
    } cases[] = {{"\\\\server\\share\\dir\\", 0, "\\\\server\\share\\;\\\\server\\share\\dir\\;"},
                 {"//server/share/dir/name", 1, "\\\\server\\share\\;\\\\server\\share\\dir\\;"},
                 {"\\\\server\\", 0, ""},
                 {"C:\\a\\b", 0, "C:\\;C:\\a\\;C:\\a\\b\\;"},
                 {"C:\\a\\b", 1, "C:\\;C:\\a\\;"},
                 {"\\a\\\\b", 0, "\\;\\a\\;\\a\\\\;\\a\\\\b\\;"}};
    for (const auto &c : cases) {
        s_tested = s_made = "";
        EXPECT_EQ(1, CCUFileCreateDirs(c.path, c.nEndsInFileName));
        EXPECT_EQ(c.prefixes, s_tested);
        EXPECT_EQ(c.prefixes, s_made);
    }
}
