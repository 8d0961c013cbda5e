#include <gtest/gtest.h>

#include <string>

#include "CU/File.h"
#include "Support/Reports.h"

TEST(File, SharesAndCreatesAsItsFlagsSay)
{
    const CTemporaryDirectory directory;
    const std::string path = directory.Path() + "\\file";
    const auto opens = [&](unsigned int nFlags) { return CCUFile().Open(path.c_str(), nFlags); };
    EXPECT_EQ(0, opens(CCUFile::modeWrite));
    EXPECT_EQ(1, opens(CCUFile::modeWrite | CCUFile::modeCreate | CCUFile::modeNoTruncate));
    const unsigned int shares[] = {0, CCUFile::shareExclusive, CCUFile::shareDenyWrite,
                                   CCUFile::shareDenyRead, CCUFile::shareDenyNone};
    for (int i = 0; i < 5; ++i) {
        CCUFile first;
        ASSERT_EQ(1, first.Open(path.c_str(), CCUFile::modeReadWrite | shares[i]));
        const unsigned int nOthers = CCUFile::shareDenyNone;
        EXPECT_EQ(i == 2 || i == 4, opens(CCUFile::modeRead | nOthers)) << i;
        EXPECT_EQ(i > 2, opens(CCUFile::modeWrite | nOthers)) << i;
    }
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
}

TEST(File, TranslatesNamesUpTo500Characters)
{
    EXPECT_STREQ("\\\\a\\b c\\d\\", CUTranslateFileName("\\/a/b c\\d/"));
    EXPECT_EQ(CCUString('\\', 500), CUTranslateFileName(CCUString('/', 501)));
}

TEST(File, MakesTheDirectoriesThatAreMissing)
{
    const CTemporaryDirectory directory;
    const auto make = [&](const char *path, int nEndsInFileName) {
        return CCUFileCreateDirs((directory.Path() + path).c_str(), nEndsInFileName);
    };
    EXPECT_EQ(0, CCUFileCreateDirs("", 0));
    EXPECT_EQ(1, make("/a/b/name", 1));
    EXPECT_FALSE(std::filesystem::exists(directory.Path() + "\\a\\b\\name"));
    EXPECT_EQ(1, make("/a/b/name", 0));
    EXPECT_TRUE(std::filesystem::is_directory(directory.Path() + "\\a\\b\\name"));
    directory.Make("plain");  // in the way it counts as present, but nothing can be made in it
    EXPECT_EQ(1, make("/plain/x", 1));
    EXPECT_EQ(0, make("/plain/x", 0));
}
