#include <gtest/gtest.h>

#include "Command/Arguments.h"
#include "File/SkinFile.h"
#include "Picture/Import.h"
#include "DiscMaker/Commands.h"
#include "DiscMaker/RemoveTree.h"
#include "DiscMaker/Skins.h"

TEST(Arguments, AreSplitAtSpaces)
{
    const std::vector<CCUString> words =
        SplitCommandLine("\"C:\\a b\\x.exe\"  /disc \"C:\\My Disc\\\" b\"c d\"e \"\" *?");
    ASSERT_EQ(5U, words.size());
    EXPECT_STREQ("/disc", words[0]);
    EXPECT_STREQ("C:\\My Disc\\", words[1]);
    EXPECT_STREQ("bc de", words[2]);
    EXPECT_STREQ("", words[3]);
    EXPECT_STREQ("*?", words[4]);
}

TEST(Command, AnswersWhatItIsNotAsked)
{
    const CTemporaryDirectory folder;
    EXPECT_FALSE(Ask(folder, "").m_bCommand);
    EXPECT_FALSE(Ask(folder, "C:\\AutoRun.exe").m_bCommand);
    EXPECT_EQ(0, Ask(folder, "/?").m_nExitCode);
    EXPECT_NE(std::string::npos, Ask(folder, "/?").m_text.find("/check FILE [CONTENTS]"));
    EXPECT_EQ(2, Ask(folder, "/chekc a").m_nExitCode);
    EXPECT_EQ("usage: DiscMaker /picture", Ask(folder, "/picture").m_text.substr(0, 25));
    const CAnswer none = Ask(folder, "/check none.exe");
    EXPECT_EQ(2, none.m_nExitCode);
    EXPECT_EQ(0U, none.m_text.find("error: "));
}

TEST(Command, ChecksAppliesAndDraws)
{
    const CTemporaryDirectory folder;
    const std::string launcher = "\"" + folder.Path() + "\\a.exe\"";
    ASSERT_TRUE(CopyFileA(TEST_LAUNCHER, (folder.Path() + "\\a.exe").c_str(), TRUE));
    EXPECT_EQ(0, Ask(folder, "/check " + launcher).m_nExitCode);
    const CAnswer empty = Ask(folder, "/check " + launcher + " \"" + folder.Path() + "\"");
    EXPECT_EQ(1, empty.m_nExitCode);
    EXPECT_NE(std::string::npos, empty.m_text.find("\"Fennick.exe\" is not among"));
    EXPECT_EQ(3, std::count(empty.m_text.begin(), empty.m_text.end(), '\n')) << empty.m_text;

    EXPECT_EQ(2, Ask(folder, "/apply " + launcher + " /at " + launcher).m_nExitCode);
    const CAnswer applied = Ask(folder, "/apply \"" TEST_OTHER_LAUNCHER "\" /to " + launcher);
    EXPECT_EQ(0, applied.m_nExitCode) << applied.m_text;
    EXPECT_TRUE(ReadText(TEST_OTHER_LAUNCHER) == ReadText(folder.Path() + "\\a.exe"));

    const std::string exported = "\"" + folder.Path() + "\\skin\"";
    EXPECT_EQ(0, Ask(folder, "/export " + launcher + " " + exported).m_nExitCode);
    EXPECT_EQ(0, Ask(folder, "/check " + exported).m_nExitCode);
    EXPECT_EQ(2, Ask(folder, "/export " + launcher + " " + exported).m_nExitCode);
    const CAnswer gone = Ask(folder, "/check " + launcher + " \"" + folder.Path() + "\\none\"");
    EXPECT_NE(std::string::npos, gone.m_text.find("contents is not there. (No disc"));
    EXPECT_EQ(std::string::npos, gone.m_text.find("is not among")) << gone.m_text;
    const CAnswer lost = Ask(folder, "/check \"" + folder.Path() + "\\a?b.exe\"");
    EXPECT_NE(std::string::npos, lost.m_text.find("characters that this system's code page lacks"));
    const auto draw = [&](const std::string &path) {
        return Ask(folder, "/picture " + launcher + " \"" + path + "\"");
    };
    EXPECT_EQ(2, draw(folder.Path() + "\\a.exe").m_nExitCode);
    EXPECT_EQ(0, Ask(folder, "/check " + launcher).m_nExitCode) << "it is no picture now";
    const CAnswer none = draw(folder.Path() + "\\no\\p.png");
    EXPECT_NE(std::string::npos, none.m_text.find("its folder is not there.\r\n")) << none.m_text;
    for (const char *name : {"\\p.png", "\\p.bmp"}) {
        const std::string picture = folder.Path() + name;
        ASSERT_EQ(0, draw(picture).m_nExitCode);
        CProblems problems;
        CPixels pixels;
        ASSERT_TRUE(ReadPictureFile(picture.c_str(), pixels, problems)) << name;
        EXPECT_EQ(440, pixels.m_cx);
        EXPECT_EQ(300, pixels.m_cy);
    }
    // Far too large to be a window's.
    std::string background = ReadText(folder.Path() + "\\skin\\Background.bmp");
    background[19] = background[23] = 0x75;
    std::ofstream(folder.Path() + "\\skin\\Background.bmp", std::ios::binary) << background;
    const CAnswer huge = Ask(folder, "/picture " + exported + " \"" + folder.Path() + "\\h.png\"");
    EXPECT_EQ(2, huge.m_nExitCode);
    EXPECT_NE(std::string::npos, huge.m_text.find("has no size.")) << huge.m_text;
    system(("cmd /c rmdir /s /q \"" + folder.Path() + "\"").c_str());
}

// A disc by the command: the launcher has the looks, and what is missing is told, once.
TEST(Command, MakesADisc)
{
    const CTemporaryDirectory folder;
    const std::string in = folder.Path() + "\\in", out = folder.Path() + "\\out";
    CreateDirectoryA(in.c_str(), nullptr);
    for (const char *name : {"\\Fennick.exe", "\\RunFennick.exe"})
        std::ofstream(in + name) << "program";
    const std::string command = "/disc \"" TEST_LAUNCHER "\" \"" + in + "\" \"" + out + "\"";
    const CAnswer answer = Ask(folder, command);
    EXPECT_EQ(1, answer.m_nExitCode);
    EXPECT_EQ(1, std::count(answer.m_text.begin(), answer.m_text.end(), '\n')) << answer.m_text;
    EXPECT_TRUE(ReadText(TEST_LAUNCHER) == ReadText(out + "\\AutoRun.exe"));
    std::ofstream(in + "\\tutorial.exe") << "program";
    const CAnswer whole = Ask(folder, command + " /launcher \"" TEST_OTHER_LAUNCHER "\"");
    EXPECT_EQ(0, whole.m_nExitCode) << whole.m_text;
    EXPECT_TRUE(ReadText(TEST_LAUNCHER) == ReadText(out + "\\AutoRun.exe"));
    system(("cmd /c rmdir /s /q \"" + folder.Path() + "\"").c_str());
}

// Programs are found where only the long form of a path leads, and the disc is made anew there.
TEST(Command, MakesADiscInFoldersOfLongPaths)
{
    const CTemporaryDirectory folder;
    CDiscPath deep(folder.Path().c_str());
    for (int i = 0; i < 3; ++i) {
        deep = deep.Join(std::wstring(100, L'd').c_str());
        ASSERT_TRUE(DiscMakeFolder(deep));
    }
    ASSERT_TRUE(DiscMakeFolder(deep.Join(L"in")));
    for (const WCHAR *pszName : {L"in\\Fennick.exe", L"in\\RunFennick.exe", L"in\\tutorial.exe"})
        ASSERT_TRUE(CloseHandle(DiscCreateNew(deep.Join(pszName))));
    const std::string in = deep.Text().GetString();
    const std::string command =
        "/disc \"" TEST_LAUNCHER "\" \"" + in + "\\in\" \"" + in + "\\out\"";
    for (int i = 0; i < 2; ++i) {
        const CAnswer answer = Ask(folder, command);
        EXPECT_EQ(0, answer.m_nExitCode) << answer.m_text;
    }
    EXPECT_TRUE(DiscExists(deep.Join(L"out\\tutorial.exe")));
    const CAnswer again = Ask(folder, "/check \"" + in + "\\out\\AutoRun.exe\" \"" + in + "\\in\"");
    EXPECT_EQ(0, again.m_nExitCode) << again.m_text;
    ASSERT_TRUE(DiscDeleteFile(deep.Join(L"in\\tutorial.exe")));
    EXPECT_NE(std::string::npos, Ask(folder, command).m_text.find("\"tutorial.exe\" is not among"));
    RemoveTree(folder.Path());
}
