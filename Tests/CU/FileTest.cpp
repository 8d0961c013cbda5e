#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>

#include "CU/File.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"

TEST(File, OpenHandsItsFlagsToTheSystem)
{
    // Access, sharing, creation and inheritance that the system was asked for last.
    typedef std::array<DWORD, 4> COpening;
    COpening opening;
    CReports reports;
    const CFakeCall<HANDLE(const char *, DWORD, DWORD, SECURITY_ATTRIBUTES *, DWORD, DWORD, HANDLE)>
        createFile("CreateFileA", [&](const char *, DWORD dwAccess, DWORD dwShare,
                                      SECURITY_ATTRIBUTES *security, DWORD dwCreation, DWORD,
                                      HANDLE) {
            opening = {dwAccess, dwShare, dwCreation, static_cast<DWORD>(security->bInheritHandle)};
            SetLastError(ERROR_SHARING_VIOLATION);
            return INVALID_HANDLE_VALUE;
        });
    const DWORD R = GENERIC_READ, W = GENERIC_WRITE, SR = FILE_SHARE_READ, SW = FILE_SHARE_WRITE;
    const std::pair<unsigned int, COpening> cases[] = {
        {0x0, {R, 0, OPEN_EXISTING, 1}},    {0x11, {W, 0, OPEN_EXISTING, 1}},
        {0x30, {R, SW, OPEN_EXISTING, 1}},  {0x42, {R | W, SR | SW, OPEN_EXISTING, 1}},
        {0x80, {R, 0, OPEN_EXISTING, 0}},   {0x1000, {R, 0, CREATE_ALWAYS, 1}},
        {0x2000, {R, 0, OPEN_EXISTING, 1}}, {0x30A1, {W, SR, OPEN_ALWAYS, 0}}};
    for (const auto &c : cases) {
        CCUFile file;
        EXPECT_EQ(0, file.Open("name", c.first));
        EXPECT_EQ(static_cast<DWORD>(ERROR_SHARING_VIOLATION), GetLastError());
        EXPECT_FALSE(file.isOpen());
        EXPECT_STREQ("name", file.GetFileName());
        EXPECT_EQ(c.second, opening) << c.first;
    }
    for (const unsigned int nFlags : {0x3u, 0x50u})
        EXPECT_EQ("0", reports.Of("File", [&] { EXPECT_EQ(0, CCUFile().Open("name", nFlags)); }));
}

TEST(File, ReadsWritesAndSeeks)
{
    CReports reports;
    const std::string path = reports.Directory().Path() + "\\file", text("0123\r\n\0\t78", 10);
    char buffer[16] = "";
    CCUFile file;
    ASSERT_EQ(1, file.Open(path.c_str(), CCUFile::modeCreate | CCUFile::modeReadWrite));
    EXPECT_EQ(10u, file.Write(text.data(), 10));
    EXPECT_EQ(4, file.Seek(-6, CCUFile::end));
    EXPECT_EQ(10u, file.GetLength());
    EXPECT_EQ(4u, file.GetPosition());
    EXPECT_EQ(6u, file.Read(buffer, sizeof buffer));
    EXPECT_EQ(text.substr(4), std::string(buffer, 6));
    EXPECT_EQ(0u, file.Read(buffer, sizeof buffer));
    EXPECT_EQ(7, file.Seek(-3, CCUFile::current));
    EXPECT_EQ(0u, file.Read(nullptr, 0) + file.Write(nullptr, 0));
    file.Close();
    EXPECT_FALSE(file.isOpen());
    EXPECT_TRUE(file.GetFileName().IsEmpty());
    file.Close(), file.Flush();
    EXPECT_EQ(1, CCUFile().Open(path.c_str(), CCUFile::modeRead));
    // The destructor closed it: nobody else has it now. An open object closes its own first.
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(1, file.Open(path.c_str(), CCUFile::modeCreate | CCUFile::modeWrite));
    EXPECT_EQ(0u, file.GetLength());
    EXPECT_EQ(0u, file.Read(buffer, 1));
    EXPECT_EQ(0, reports.Total());
    EXPECT_EQ("m_hFile != 0; 0", reports.Of("File", [] { CCUFile().Seek(0, CCUFile::begin); }));
}

TEST(File, TranslatesNamesUpTo500Characters)
{
    EXPECT_STREQ("\\\\a\\b c\\d\\", CUTranslateFileName("\\/a/b c\\d/"));
    for (const int nLength : {0, 499, 500, 501, 32000})
        EXPECT_EQ(CCUString('\\', nLength).Left(500), CUTranslateFileName(CCUString('/', nLength)));
}

TEST(File, MakesTheDirectoriesThatAreMissing)
{
    const CTemporaryDirectory directory;
    const std::string &base = directory.Path();
    const auto make = [&](const char *path, int nEndsInFileName) {
        return CCUFileCreateDirs((base + path).c_str(), nEndsInFileName);
    };
    EXPECT_EQ(0, CCUFileCreateDirs("", 0));
    EXPECT_EQ(1, CCUFileCreateDirs("no directory in it", 1));
    EXPECT_EQ(1, make("/a/b/name", 1));
    EXPECT_FALSE(std::filesystem::exists(base + "\\a\\b\\name"));
    EXPECT_EQ(1, make("/a/b/name", 0));
    EXPECT_TRUE(std::filesystem::is_directory(base + "\\a\\b\\name"));
    // A file in the way counts as present; what would lie under it cannot be made.
    directory.Make("plain");
    EXPECT_EQ(1, make("\\plain\\x", 1));
    EXPECT_EQ(0, make("/plain/x", 0));
    // Of a network path the share comes first.
    std::string made;
    const CFakeCall<BOOL(const char *, void *)> makeAll("CreateDirectoryA",
                                                        [&](const std::string &path, void *) {
                                                            made += path + ";";
                                                            return TRUE;
                                                        });
    EXPECT_EQ(1, CCUFileCreateDirs("//server/share/dir/name", 1));
    EXPECT_EQ("\\\\server\\share\\;\\\\server\\share\\dir\\;", made);
}
