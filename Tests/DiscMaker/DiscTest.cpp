#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "Disc/DiscLayout.h"
#include "Disc/MakeDisc.h"
#include "File/DiscFiles.h"
#include "File/Sha256.h"
#include "DiscMaker/Skins.h"
#include "Support/FailingCall.h"
#include "Support/TemporaryDirectory.h"

namespace {

std::string SumOf(const std::string &text, bool bPlain, size_t nStep)
{
    CSha256 sum;
    if (bPlain)
        sum.UsePlainCode();
    for (size_t i = 0; i < text.size(); i += nStep)
        sum.Add(text.data() + i, std::min(nStep, text.size() - i));
    return sum.Finish().GetString();
}

void Write(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary) << text;
}

std::string Read(const std::string &path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// A maker's folder with contents, and where the disc goes.
class CDiscTest : public testing::Test
{
public:
    CDiscTest()
    {
        for (const char *folder : {"\\in", "\\in\\Music", "\\in\\Empty"})
            CreateDirectoryA((Path() + folder).c_str(), nullptr);
        Write(Path() + "\\in\\Setup.exe", "setup");
        Write(Path() + "\\in\\Music\\b.wav", std::string(3 << 20, 'x'));
        Write(Path() + "\\launcher", "launcher");
    }
    ~CDiscTest() override
    {
        const std::string command = "cmd /c rmdir /s /q \"" + Path() + "\"";
        system(command.c_str());
    }
    std::string Path() const { return m_folder.Path(); }
    bool Make(const char *out = "\\out", const char *in = "\\in",
              CDiscProgress *pProgress = nullptr)
    {
        m_problems.clear();
        return LayOutDisc((Path() + "\\launcher").c_str(), "inf\r\n", (Path() + in).c_str(),
                          (Path() + out).c_str(), pProgress, m_problems);
    }
    void ExpectRefused(const char *what, const char *out = "\\out", const char *in = "\\in")
    {
        EXPECT_FALSE(Make(out, in));
        ASSERT_EQ(1U, m_problems.size());
        EXPECT_TRUE(strstr(ProblemLine(m_problems[0]), what)) << ProblemLine(m_problems[0]);
        EXPECT_FALSE(strstr(ProblemLine(m_problems[0]), "\n"));
    }
    // Whether an older disc is as it was, and nothing else was left.
    void ExpectOldDisc()
    {
        EXPECT_EQ("setup", Read(Path() + "\\out\\Setup.exe"));
        WIN32_FIND_DATAA found;
        const HANDLE hFind = FindFirstFileA((Path() + "\\out*").c_str(), &found);
        EXPECT_STREQ("out", found.cFileName);
        EXPECT_FALSE(FindNextFileA(hFind, &found)) << found.cFileName;
        FindClose(hFind);
    }

    const CTemporaryDirectory m_folder;
    CProblems m_problems;
};

class CStopAt : public CDiscProgress
{
public:
    explicit CStopAt(ULONGLONG nStop) : m_nStop(nStop) {}
    bool OnProgress(ULONGLONG nDone, ULONGLONG nTotal, const CCUString &) override
    {
        m_nDone = nDone;
        m_nTotal = nTotal;
        return nDone < m_nStop;
    }
    ULONGLONG m_nStop, m_nDone = 0, m_nTotal = 0;
};

}  // namespace

// The standard's own examples, in pieces of all sizes.
TEST(Sha256, GivesThePublishedSums)
{
    const std::pair<std::string, const char *> examples[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"}};
    for (const auto &example : examples) {
        for (const bool bPlain : {false, true}) {
            for (const size_t nStep : {size_t(1), size_t(7), size_t(64), size_t(100), size_t(4096)})
                EXPECT_EQ(example.second, SumOf(example.first, bPlain, nStep)) << bPlain;
        }
    }
}

TEST_F(CDiscTest, CopiesTheContentsAndListsTheSums)
{
    const WCHAR greek[] = L"\\in\\\x3B1\x3B2.txt";
    const CCUString sFolder = Path().c_str();
    std::wstring wide(MAX_PATH, 0);
    wide.resize(size_t(MultiByteToWideChar(CP_ACP, 0, sFolder, -1, &wide[0], MAX_PATH) - 1));
    CloseHandle(
        CreateFileW((wide + greek).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    CStopAt progress(~0ULL);
    ASSERT_TRUE(Make("\\out", "\\in", &progress)) << ProblemLine(m_problems[0]);
    EXPECT_EQ("launcher", Read(Path() + "\\out\\AutoRun.exe"));
    EXPECT_EQ("inf\r\n", Read(Path() + "\\out\\autorun.inf"));
    EXPECT_EQ(Read(Path() + "\\in\\Music\\b.wav"), Read(Path() + "\\out\\Music\\b.wav"));
    EXPECT_EQ(3U << 20, progress.m_nTotal & ~0xFFULL);
    EXPECT_GE(progress.m_nDone, progress.m_nTotal);
    EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesA((Path() + "\\out\\Empty").c_str()));
    const std::string sums = Read(Path() + "\\out\\SHA256SUMS");
    EXPECT_NE(std::string::npos, sums.find(SumOf("setup", true, 9) + " *Setup.exe\n"));
    EXPECT_NE(std::string::npos, sums.find(" *Music/b.wav\n"));
    EXPECT_NE(std::string::npos, sums.find(SumOf("", true, 9) + " *\xCE\xB1\xCE\xB2.txt\n"));
}

TEST_F(CDiscTest, ReplacesOnlyWhatItWrote)
{
    ASSERT_TRUE(Make());
    DeleteFileA((Path() + "\\in\\Setup.exe").c_str());
    ASSERT_TRUE(Make());
    EXPECT_EQ("", Read(Path() + "\\out\\Setup.exe"));
    Write(Path() + "\\in\\Setup.exe", "setup");
    ASSERT_TRUE(Make());
    ExpectOldDisc();
    Write(Path() + "\\out\\tutorial.exe", "mine");
    ExpectRefused("tutorial.exe: This file was not written by Disc Maker");
    DeleteFileA((Path() + "\\out\\tutorial.exe").c_str());
    Write(Path() + "\\out\\autorun.inf", "mine");
    ExpectRefused("Somebody has changed this file");
    EXPECT_EQ("mine", Read(Path() + "\\out\\autorun.inf"));
    // Sums of another kind of folder, or as another program writes them, make no disc of it.
    Write(Path() + "\\out\\autorun.inf", "inf\r\n");
    const std::string path = Path() + "\\out\\SHA256SUMS", sums = Read(path);
    for (const std::string &other :
         {std::regex_replace(sums, std::regex(" \\*"), "  "),
          std::regex_replace(sums, std::regex(".*autorun.inf\n"), ""), std::string()})
    {
        Write(path, other);
        ExpectRefused("not written by Disc Maker");
    }
    Write(Path() + "\\in\\AUTORUN.INF", "mine");
    ExpectRefused("The contents have a file of the name", "\\new");
}

// Empty folders of an earlier disc go with it; another one is somebody's.
TEST_F(CDiscTest, DeletesNoEmptyFolderOfSomebodyElse)
{
    const auto path = [&](const char *name) { return CDiscPath((Path() + name).c_str()); };
    const FILETIME earlier = {0, 0x01D00000};
    const auto expectMine = [&](const char *name, const char *out) {
        ASSERT_TRUE(DiscMakeFolder(path(name)) && DiscSetWritten(path(name), earlier));
        ExpectRefused("mine: Disc Maker does not know this empty folder", out);
        EXPECT_TRUE(DiscIsFolder(path(name)));
    };
    ASSERT_TRUE(Make());
    ASSERT_TRUE(DiscRemoveFolder(path("\\in\\Empty")));
    ASSERT_TRUE(Make()) << ProblemLine(m_problems[0]);
    EXPECT_FALSE(DiscExists(path("\\out\\Empty")));
    // As in a copy of the disc, whose contents are other ones now.
    ASSERT_TRUE(DiscSetWritten(path("\\out\\Music"), earlier) && DiscMakeFolder(path("\\next")));
    ASSERT_TRUE(Make("\\out", "\\next")) << "the list has a file in it";
    ASSERT_TRUE(Make());
    expectMine("\\out\\Music\\mine", "\\out");
    ASSERT_TRUE(DiscMakeFolder(path("\\in\\Music\\mine")));
    EXPECT_TRUE(Make()) << "it comes again with the contents";
    ASSERT_TRUE(DiscMakeFolder(path("\\other")));
    EXPECT_TRUE(Make("\\other")) << "an empty folder holds nobody's";
    ASSERT_TRUE(DiscMakeFolder(path("\\third")));
    expectMine("\\third\\mine", "\\third");
}

TEST_F(CDiscTest, IsNotMadeWithoutABackground)
{
    ASSERT_TRUE(Make());
    CSkin skin = GoodSkin();
    skin.m_pictures[PictureBackground] = nullptr;
    m_problems.clear();
    EXPECT_FALSE(MakeDisc(skin, TEST_LAUNCHER, (Path() + "\\in").c_str(),
                          (Path() + "\\out").c_str(), nullptr, m_problems));
    ASSERT_EQ(1U, m_problems.size());
    EXPECT_EQ(UINT{IDB_BACKGROUND}, m_problems[0].m_nEntry);
    ExpectOldDisc();
}

TEST_F(CDiscTest, RefusesPlacesThatMeet)
{
    ExpectRefused("is not there", "\\out", "\\none");
    ExpectRefused("characters that this system's code page lacks", "\\o?t");
    ExpectRefused("the same folder", "\\in");
    ExpectRefused("the same folder", "\\IN\\Music\\..\\");
    ExpectRefused("lies in the folder of its own contents", "\\in\\Music\\disc");
    ExpectRefused("The contents lie in", "\\in", "\\in\\Music");
    ExpectRefused("A file has the name", "\\launcher");
    // A link leads into the disc that is there.
    ASSERT_TRUE(Make());
    CreateDirectoryA((Path() + "\\link").c_str(), nullptr);
    typedef HANDLE FOpen(const WCHAR *, DWORD, DWORD, SECURITY_ATTRIBUTES *, DWORD, DWORD, HANDLE);
    CFakeCall<FOpen> *pOpen = nullptr;
    CFakeCall<FOpen> open(
        "CreateFileW", [&](const WCHAR *name, DWORD nAccess, DWORD nShare, SECURITY_ATTRIBUTES *p,
                           DWORD nHow, DWORD nFlags, HANDLE h) {
            std::wstring path = name;
            const size_t nLink = path.find(L"\\link");
            if (nLink != std::wstring::npos)
                path.replace(nLink, 5, L"\\out\\Music");
            return pOpen->Original(path.c_str(), nAccess, nShare, p, nHow, nFlags, h);
        });
    pOpen = &open;
    ExpectRefused("The contents lie in", "\\out", "\\link");
    ExpectRefused("in which the disc is to be made is not there", "\\none\\out");
}

// Whatever fails, the disc before is whole and nothing half made stays.
TEST_F(CDiscTest, LosesNothingWhenItFails)
{
    ASSERT_TRUE(Make());
    const std::string killed = Path() + "\\out.unfinished";
    CreateDirectoryA(killed.c_str(), nullptr);
    ASSERT_TRUE(Make());
    ASSERT_EQ(1U, m_problems.size());
    EXPECT_TRUE(strstr(ProblemLine(m_problems[0]), "out.unfinished: A disc that was not finished"));
    RemoveDirectoryA(killed.c_str());
    for (const int nStop : {2 << 20, 0}) {  // 0: while the old disc is looked at
        CStopAt progress(static_cast<ULONGLONG>(nStop));
        EXPECT_FALSE(Make("\\out", "\\in", &progress));
        EXPECT_STREQ("The work was stopped.", m_problems[0].m_sWhat);
        ExpectOldDisc();
    }
    int nCall = 0, nFailAt = 0;
    bool bMade = false;
    CFakeCall<BOOL(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED)> *pWrite = nullptr;
    CFakeCall<BOOL(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED)> write(
        "WriteFile", [&](HANDLE h, LPCVOID p, DWORD n, LPDWORD pDone, LPOVERLAPPED o) {
            SetLastError(ERROR_DISK_FULL);
            return nCall++ == nFailAt ? FALSE : pWrite->Original(h, p, n, pDone, o);
        });
    pWrite = &write;
    for (; !bMade; ++nFailAt) {
        nCall = 0;
        bMade = Make();
        ExpectOldDisc();
        EXPECT_TRUE(bMade || strstr(m_problems[0].m_sWhat, "the disk is full.")) << nFailAt;
    }
    EXPECT_EQ(8, nFailAt);  // launcher, inf, setup, three pieces, sums, and then none
}

TEST_F(CDiscTest, KeepsWhatIsChangedInTheOldDiscMeanwhile)
{
    ASSERT_TRUE(Make());
    struct CChange : public CDiscProgress
    {
        bool OnProgress(ULONGLONG nDone, ULONGLONG, const CCUString &) override
        {
            if (nDone > 0)
                Write(m_path, "mine");
            return true;
        }
        std::string m_path;
    } change;
    change.m_path = Path() + "\\out\\Music\\b.wav";
    ASSERT_TRUE(Make("\\out", "\\in", &change));
    EXPECT_EQ("mine", Read(Path() + "\\out.old\\Music\\b.wav"));
    EXPECT_EQ("", Read(Path() + "\\out.old\\Setup.exe"));
    ASSERT_EQ(1U, m_problems.size());
    EXPECT_STREQ("Some of the old disc could not be deleted.", m_problems[0].m_sWhat);
}

TEST(AutorunInf, HasTheLabel)
{
    CSkin skin = GoodSkin();
    EXPECT_STREQ("[autorun]\r\nopen=AutoRun.exe\r\nicon=AutoRun.exe,0\r\nlabel=PRODUCT 1.0\r\n",
                 MakeAutorunInf(skin));
    skin.m_texts[0].m_entries.erase(IDS_DISC_LABEL);
    skin.m_texts[0].m_entries[IDS_TITLE] =
        CWideText("What?\r\nA title of more than 32 characters", 1252);
    EXPECT_TRUE(strstr(MakeAutorunInf(skin), "label=What___A title of more than 32 c\r\n"))
        << MakeAutorunInf(skin);
    // The second byte of these characters is a backslash; half of one does not stay at the end.
    const CCUString sSoft = "\x83\\\x95\\";
    skin.m_texts[0] = {MAKELANGID(LANG_JAPANESE, SUBLANG_DEFAULT), {}};
    skin.m_texts[0].m_entries[IDS_DISC_LABEL] =
        CWideText("123456789 123456789 12345678?" + sSoft, 932);
    EXPECT_TRUE(strstr(MakeAutorunInf(skin), "label=123456789 123456789 12345678_\x83\\\r\n"))
        << MakeAutorunInf(skin);
}
