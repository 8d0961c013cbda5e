#include "File/OpenSkin.h"
#include "File/SkinFolder.h"

#include "DiscMaker/SkinFiles.h"
#include "Model/Blob.h"
#include "Resource.h"
#include "Support/FailingCall.h"

namespace {

const std::string HEAD = "#include \"Resource.h\"\nLANGUAGE 0, 0\n";

// A folder with a script and no pictures.
struct CScriptFolder
{
    explicit CScriptFolder(const std::string &script) { Write(script); }
    void Write(const std::string &script) { WriteFileBytes(Path(), script); }
    std::string Path() const { return m_directory.Path() + "\\Skin.rc"; }
    std::unique_ptr<CSkinFile> Open()
    {
        m_problems.clear();
        return OpenSkin(m_directory.Path().c_str(), m_problems);
    }
    CTemporaryDirectory m_directory;
    CProblems m_problems;
};

// What becomes of a script when its skin is changed.
template <typename Change>
std::string Edited(const std::string &script, Change change)
{
    CScriptFolder folder(script);
    const auto file = folder.Open();
    if (!file)
        return Lines(folder.m_problems);
    CSkin skin = file->Skin();
    change(skin);
    file->Save(skin, folder.Path().c_str(), folder.m_problems);
    std::string saved = Contents(folder.Path());
    EXPECT_TRUE(file->Save(skin, folder.Path().c_str(), folder.m_problems));
    EXPECT_EQ(saved, Contents(folder.Path()));
    return saved;
}

}  // namespace

// The sources say what the tools made of them, and saving them changes nothing.
TEST(SkinFolder, ReadsAndKeepsTheSkins)
{
    for (int i = 0; i < 2; ++i) {
        CTemporaryDirectory directory;
        const std::string path = CopyFolder(directory, SKIN_FOLDERS[i]);
        CProblems problems;
        const auto folder = OpenSkin(path.c_str(), problems);
        const auto launcher = OpenSkin(SKIN_LAUNCHERS[i], problems);
        ASSERT_TRUE(folder && launcher) << Lines(problems);
        ExpectSameSkin(folder->Skin(), launcher->Skin());
        const CTemporaryDirectory elsewhere;
        const std::string copy = elsewhere.Path() + "\\new\\copy";
        EXPECT_TRUE(folder->SaveCopy(folder->Skin(), copy.c_str(), problems));
        EXPECT_TRUE(folder->Save(folder->Skin(), path.c_str(), problems));
        for (const char *const name : {"Skin.rc", "Background.bmp", "Product.bmp", "Bullet.bmp"}) {
            const std::string shipped = Contents(SKIN_FOLDERS[i] + std::string("/") + name);
            EXPECT_TRUE(shipped == Contents(path + "\\" + name)) << name;
            EXPECT_TRUE(shipped == Contents(copy + "\\" + name)) << name;
        }
        const std::string exported = directory.Path() + "\\exported";
        EXPECT_TRUE(CSkinFolder::Export(launcher->Skin(), exported.c_str(), problems));
        const auto read = OpenSkin(exported.c_str(), problems);
        ASSERT_TRUE(read) << Lines(problems);
        ExpectSameSkin(read->Skin(), launcher->Skin());
        EXPECT_TRUE(read->Skin().m_version == launcher->Skin().m_version);
        EXPECT_EQ("", Lines(problems));
        EXPECT_FALSE(CSkinFolder::Export(launcher->Skin(), exported.c_str(), problems));
    }
}

// As windres and rc read them.
TEST(SkinFolder, ReadsTextsAsCompilersDo)
{
    CScriptFolder folder(
        "#define MINE 20\nstringtable discardable\n{\n1 \"a\"\"b\" // c\n"
        "0x2, \"x\\xE4\\344y\\q\\\\z\\a|\\x41g\" /* 3 \"no\"\n*/ 3 L\"\\x20ACb\\x41\\101\"\n"
        "4 \"a\" \"b\"\n\"c\"\n5 \"a\"L\"\\x20AC\" (2+4) \"a//b\" 7L \"\\0507\\18\"\n"
        "8 \"a\\\nb\" 9 \"\\\"\" MINE \"m\" MINE+1 \"n\" 1 \"last\" 30 \"\xE4\"\n}\n"
        "#if defined(MINE) && MINE < 5\nSTRINGTABLE { 40 \"no\" }\n#elif MINE == 20\n"
        "STRINGTABLE { 41 \"yes\" }\n#else\nrubbish \"\n#endif\n"
        "#pragma code_page(1251)\nSTRINGTABLE\nLANGUAGE LANG_GERMAN, SUBLANG_GERMAN\n"
        "BEGIN\n1 \"\xE4\"\nEND\n");
    const auto file = folder.Open();
    ASSERT_TRUE(file) << Lines(folder.m_problems);
    const CSkin &skin = file->Skin();
    ASSERT_EQ(2u, skin.m_texts.size());
    EXPECT_EQ(0x409, skin.m_texts[0].m_nLanguage);
    EXPECT_EQ(0x407, skin.m_texts[1].m_nLanguage);
    const char *const texts[] = {"last",
                                 "x\xE4\xE4y\\q\\z\b|Ag",
                                 "\x80"
                                 "bAA",
                                 "abc",
                                 "a\x80",
                                 "a//b",
                                 "(7\x01"
                                 "8",
                                 "ab",
                                 "\""};
    for (UINT i = 0; i < 9; ++i)
        EXPECT_EQ(texts[i], TextOf(skin, i + 1));
    EXPECT_EQ("m n \xE4 (none) yes", TextOf(skin, 20) + " " + TextOf(skin, 21) + " " +
                                         TextOf(skin, 30) + " " + TextOf(skin, 40) + " " +
                                         TextOf(skin, 41));
    EXPECT_EQ(CWideText("\xE4", 1251), skin.m_texts[1].m_entries.at(1));
    EXPECT_EQ("", Lines(folder.m_problems));
}

// Only what changed is written, and as what is around it.
TEST(SkinFolder, ChangesOnlyWhatWasEdited)
{
    const std::string script =
        "// \xE4\r\n" + HEAD +
        "STRINGTABLE\r\nBEGIN\r\n  IDS_SETUP,   \"In\"\r\n"
        "  IDS_EXIT,\t\"Out\" // the \"way\" out\r\n  9 \"x\" 10 \"y\"\r\nEND\r\n// end";
    EXPECT_EQ(script, Edited(script, [](CSkin &) {}));
    const auto With = [&](const std::string &from, const std::string &to) {
        std::string changed = script;
        return changed.replace(changed.find(from), from.size(), to);
    };
    EXPECT_EQ(With("\"Out\"", "\"\"\"O\"\"\\\\\\n\\001\xE4\""),
              Edited(script, [](CSkin &skin) { SetText(skin, IDS_EXIT, "\"O\"\\\n\x01\xE4"); }));
    EXPECT_EQ(With("\"In\"", "L\"\\x03B1\""), Edited(script, [](CSkin &skin) {
                  skin.m_texts[0].m_entries[IDS_SETUP] = CWideText("\xE1", 1253);
              }));
    EXPECT_EQ(With("  IDS_EXIT,\t\"Out\" // the \"way\" out\r\n", ""),
              Edited(script, [](CSkin &skin) { skin.m_texts[0].m_entries.erase(IDS_EXIT); }));
    EXPECT_EQ(With("9 \"x\" ", " "),
              Edited(script, [](CSkin &skin) { skin.m_texts[0].m_entries.erase(9); }));
    EXPECT_EQ(With("  9", "  IDS_EXIT_POS,\t\"1,2\"\r\n  9"),
              Edited(script, [](CSkin &skin) { SetText(skin, IDS_EXIT_POS, "1,2"); }));
    EXPECT_EQ(With("  IDS_EXIT,\t\"Out\" // the \"way\" out\r\n", "  IDS_EXIT_POS,\t\"1,2\"\r\n"),
              Edited(script, [](CSkin &skin) {
                  skin.m_texts[0].m_entries.erase(IDS_EXIT);
                  SetText(skin, IDS_EXIT_POS, "1,2");
              }));
    EXPECT_EQ(With("\"y\"", "\"y\" 40 \"L\""),
              Edited(script, [](CSkin &skin) { SetText(skin, IDS_DISC_LABEL, "L"); }));
    EXPECT_EQ(script +
                  "\r\n\r\nSTRINGTABLE\r\nLANGUAGE 0x07, 0x01\r\nBEGIN\r\n    IDS_EXIT \"Raus\"\r\n"
                  "END\r\n",
              Edited(script, [](CSkin &skin) {
                  skin.m_texts.push_back(CSkinTexts{0x407, {{IDS_EXIT, CWideText("Raus", 1252)}}});
              }));
    // UTF-16, with an odd byte at its end.
    std::string wide = "\xFF\xFE";
    for (const char ch : HEAD + "STRINGTABLE { 2 \"Out\" }\n")
        wide += std::string(1, ch) + '\0';
    wide += 'x';
    std::string changed = wide;
    changed.replace(wide.find('O'), 6, std::string("\xB1\3", 2));
    EXPECT_EQ(changed, Edited(wide, [](CSkin &skin) {
                  skin.m_texts[0].m_entries[IDS_EXIT] = CWideText("\xE1", 1253);
              }));
    const std::string version =
        "1 VERSIONINFO\nBEGIN\nBLOCK \"StringFileInfo\"\n{ BLOCK \"040904E4\"\n{\n"
        " VALUE \"A\", \"1\\0\"\n VALUE \"B\", \"2\"\n} }\nEND\n";
    std::string other = version;
    other.replace(other.find(" VALUE \"B\", \"2\"\n"), 15, " VALUE \"C\", \"4\"");
    other.replace(other.find("\"1\\0\""), 5, "\"3\"");
    EXPECT_EQ(other, Edited(version, [](CSkin &skin) {
                  skin.m_version = {{CWideText("A", 1252), CWideText("3", 1252)},
                                    {CWideText("C", 1252), CWideText("4", 1252)}};
              }));
}

TEST(SkinFolder, SaysWhereAScriptIsWrong)
{
    const std::pair<const char *, const char *> cases[] = {
        {"STRINGTABLE\nBEGIN\n1 \"\xC3\xA4\"\nEND\n", "Skin.rc:3: The script is in UTF-8, but"},
        {"#pragma code_page(65001)\nSTRINGTABLE { 1 \"\xE4\" }",
         "Skin.rc:2: The script says that it is"},
        {"LANGUAGE 7 1\n", "Skin.rc:1: The comma is missing"},
        {"STRINGTABLE\nBEGIN\n1 \"a\n2 \"b\"\nEND\n", "Skin.rc:3: A text has no quotation mark"},
        {"STRINGTABLE\nBEGIN\n1 \"C:\\\"\nEND\n", "Skin.rc:3: A text has no quotation mark"},
        {"STRINGTABLE\n1 \"a\"\nEND\n", "Skin.rc:2: BEGIN is missing"},
        {"STRINGTABLE\nBEGIN\n1 \"a\"\n2 BITMAP \"b.bmp\"\n",
         "Skin.rc:4: The END of the block that begins in line 1"},
        {"STRINGTABLE\nBEGIN\n1 \"a\"\n", "Skin.rc:4: The END of the block that begins in line 1"},
        {"STRINGTABLE\nBEGIN\nIDS_SETUPP \"a\"\nEND\n",
         "Skin.rc:3: \"IDS_SETUPP\" is no known number"},
        {"STRINGTABLE\nBEGIN\nIDS_SETUP a\nEND\n",
         "Skin.rc:3: A text in quotation marks is missing"},
        {"1 VERSIONINFO\n{ BLOCK \"a\" { VALUE \"b\" \"c\" } }\n",
         "Skin.rc:2: VALUE is followed by"},
        {"/* a\n", "A comment that begins"},
        {"200 BITMAP\n", "Skin.rc:1: The name of the picture's file is missing"},
        {"200 BITMAP none.bmp\n",
         "Skin.rc:1: bitmap 200: \"none.bmp\" cannot be read: it is not there"},
        {"200 BITMAP \"Skin.rc\"\n", "\"Skin.rc\" is no .bmp file"},
        {"#if 1\n", "An #if is not ended"},
        {"7 DIALOG 0, 0, 1, 1\nCAPTION \"x\"\n{\n}\n8 RCDATA\nBEGIN\n1\nEND\n9 TXT a/b.txt\n",
         "note: Skin.rc:9: \"TXT\""},
        {"#pragma code_page(77777)\n", "Skin.rc:1: This system does not have the code page"},
    };
    for (const auto &test : cases) {
        CScriptFolder folder(test.first);
        const auto file = folder.Open();
        EXPECT_TRUE(strstr(Lines(folder.m_problems).c_str(), test.second))
            << test.first << Lines(folder.m_problems);
        EXPECT_EQ(!file, strstr(Lines(folder.m_problems).c_str(), "cannot be opened") != nullptr);
    }
}

// Pictures go into the files that they came from, or into new ones; what fails takes all back.
TEST(SkinFolder, WritesPicturesBesideTheScript)
{
    CTemporaryDirectory directory;
    const std::string path = CopyFolder(directory, SKIN_FOLDERS[1]);
    CProblems problems;
    auto file = OpenSkin(path.c_str(), problems);
    const CSkin before = file->Skin();
    CSkin skin = before;
    std::swap(skin.m_pictures[PictureProduct], skin.m_pictures[PictureBackground]);
    SetText(skin, IDS_TITLE, "Other");
    const auto Write = [&] {
        problems.clear();
        const bool bSaved = file->Save(skin, path.c_str(), problems);
        CFailPlan::s_nFailAt = 0;
        const auto now = OpenSkin(path.c_str(), problems);
        EXPECT_TRUE(now) << Lines(problems);
        ExpectSameSkin(now ? now->Skin() : CSkin(), bSaved ? skin : before);
        EXPECT_EQ(6u, directory.Files("skin\\*").size());
        if (bSaved) {
            EXPECT_TRUE(file->Save(before, path.c_str(), problems)) << Lines(problems);
        }
        return bSaved;
    };
    {
        CFailingCall<BOOL(HANDLE, const void *, DWORD, DWORD *, OVERLAPPED *)> write("WriteFile");
        CFailingCall<BOOL(HANDLE)> flush("FlushFileBuffers");
        CFailingCall<BOOL(const WCHAR *, const WCHAR *)> move("MoveFileW");
        int nFailAt = 1;
        for (; CFailPlan::Start(nFailAt), !Write(); ++nFailAt)
            ASSERT_LT(nFailAt, 100);
        EXPECT_GT(nFailAt, 12);
    }
    EXPECT_TRUE(Contents(SKIN_FOLDERS[1] + std::string("/Product.bmp")) ==
                Contents(path + "\\Product.bmp"));
    // One file for two pictures, until one of them is another.
    CScriptFolder shared("309 BITMAP a.bmp\n311 BITMAP DISCARDABLE \"a.bmp\"\n");
    CopyFileA((SKIN_FOLDERS[1] + std::string("/Bullet.bmp")).c_str(),
              (shared.m_directory.Path() + "\\a.bmp").c_str(), TRUE);
    file = shared.Open();
    skin = file->Skin();
    skin.m_pictures[PictureProduct] = before.m_pictures[PictureProduct];
    skin.m_pictures[PictureBackground] = before.m_pictures[PictureBackground];
    skin.m_icon = before.m_icon;
    ASSERT_TRUE(file->Save(skin, shared.Path().c_str(), problems)) << Lines(problems);
    EXPECT_EQ(
        "309 BITMAP \"Product.bmp\"\n311 BITMAP DISCARDABLE \"a.bmp\"\n"
        "IDB_BACKGROUND BITMAP \"Background.bmp\"\nIDI_AUTORUN ICON \"AutoRun.ico\"\n",
        Contents(shared.Path()));
    ExpectSameSkin(shared.Open()->Skin(), skin);
    CScriptFolder both("309 BITMAP a.bmp\n311 BITMAP a.bmp\n");
    CopyFileA((SKIN_FOLDERS[1] + std::string("/Bullet.bmp")).c_str(),
              (both.m_directory.Path() + "\\a.bmp").c_str(), TRUE);
    const std::string copy = both.m_directory.Path() + "\\copy";
    EXPECT_TRUE(both.Open()->SaveCopy(both.Open()->Skin(), copy.c_str(), problems));
    ExpectSameSkin(OpenSkin(copy.c_str(), problems)->Skin(), both.Open()->Skin());
    // Somebody else draws and writes meanwhile; what that was goes if it is wished.
    WriteFileBytes(shared.m_directory.Path() + "\\a.bmp", "BM drawn anew, with many bytes.");
    WriteFileBytes(shared.Path(), Contents(shared.Path()) + "STRINGTABLE { 28 \"T\" }\n");
    problems.clear();
    EXPECT_FALSE(file->Save(skin, shared.Path().c_str(), problems));
    EXPECT_TRUE(strstr(Lines(problems).c_str(), "a.bmp: Another program has changed"));
    file->OverwriteChanges(true);
    EXPECT_TRUE(file->Save(skin, shared.Path().c_str(), problems));
    ExpectSameSkin(shared.Open()->Skin(), skin);
}

TEST(SkinFolder, IsNotWrittenElsewhereWithoutItsHeader)
{
    CScriptFolder folder("#include \"names.h\"\nSTRINGTABLE { NAME \"T\" }\n");
    const std::string header = folder.m_directory.Path() + "\\names.h";
    const std::string other = folder.m_directory.Path() + "\\new";
    WriteFileBytes(header, "#define NAME 28\n");
    const auto file = folder.Open();
    ASSERT_TRUE(file) << Lines(folder.m_problems);
    DeleteFileA(header.c_str());
    CProblems problems;
    EXPECT_FALSE(file->Save(file->Skin(), other.c_str(), problems));
    EXPECT_TRUE(strstr(Lines(problems).c_str(), "names.h: The header cannot be read any more"));
    EXPECT_EQ("(no file)", Contents(other + "\\Skin.rc"));
    WriteFileBytes(header, "#define NAME 28\n");
    EXPECT_TRUE(file->Save(file->Skin(), other.c_str(), problems)) << Lines(problems);
}

TEST(SkinFolder, SaysThatNotEveryCompilerKnowsTheMarkOfUtf8)
{
    for (const char *const pragma : {"", "#pragma code_page(65001)\n"}) {
        std::string script = "\xEF\xBB\xBF";
        script.append(pragma).append("STRINGTABLE { 28 \"\xC3\xA4\" }\n");
        CScriptFolder folder(script);
        const auto file = folder.Open();
        ASSERT_TRUE(file);
        EXPECT_EQ("\xE4", TextOf(file->Skin(), IDS_TITLE));
        const std::string lines = Lines(folder.m_problems);
        EXPECT_EQ(!*pragma, lines.find("#pragma code_page(65001)") != std::string::npos) << lines;
    }
}

TEST(SkinFolder, SaysWhyItCannotBeReadBack)
{
    CScriptFolder folder("STRINGTABLE { 28 \"T\" }\n");
    const auto file = folder.Open();
    CSkin skin = file->Skin();
    SetText(skin, IDS_TITLE, "New");
    bool bMoved = false;
    const CFakeCall<BOOL(const WCHAR *, const WCHAR *, DWORD)> place(
        "MoveFileExW", [&](const WCHAR *pszFrom, const WCHAR *pszTo, DWORD nFlags) {
            bMoved = true;
            return place.Original(pszFrom, pszTo, nFlags);
        });
    typedef HANDLE Open(const WCHAR *, DWORD, DWORD, SECURITY_ATTRIBUTES *, DWORD, DWORD, HANDLE);
    const CFakeCall<Open> open("CreateFileW", [&](auto... arguments) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return bMoved ? INVALID_HANDLE_VALUE : open.Original(arguments...);
    });
    CProblems problems;
    EXPECT_FALSE(file->Save(skin, folder.Path().c_str(), problems));
    EXPECT_TRUE(strstr(Lines(problems).c_str(),
                       "cannot be read: another program uses it. (it was "
                       "written, but cannot be read back)"));
}

TEST(SkinFolder, IsWrittenAnewWhereItHasGone)
{
    const CTemporaryDirectory directory;
    const std::string path = CopyFolder(directory, SKIN_FOLDERS[0]);
    CProblems problems;
    const auto file = OpenSkin(path.c_str(), problems);
    const CSkin skin = file->Skin();
    for (const char *gone : {"", "\\Skin.rc", "\\Product.bmp"}) {
        std::filesystem::remove_all(path + gone);
        EXPECT_TRUE(file->Save(skin, path.c_str(), problems));
        const auto again = OpenSkin(path.c_str(), problems);
        ASSERT_TRUE(again) << Lines(problems);
        ExpectSameSkin(again->Skin(), skin);
    }
}
