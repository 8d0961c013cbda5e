#include "DiscMaker/RemoveTree.h"
#include "DiscMaker/SkinFiles.h"

#include "File/OpenSkin.h"
#include "File/LauncherFile.h"
#include "File/SkinFolder.h"
#include "Model/Blob.h"
#include "Picture/Import.h"
#include "Resource.h"
#include "Support/ImportHook.h"

namespace {

std::unique_ptr<CLauncherFile> Launcher(CProblems &problems)
{
    return CLauncherFile::Read("AutoRun.exe", ReadFileBytes(TEST_LAUNCHER), problems);
}

CBlob BlobOf(size_t nSize, BYTE nByte)
{
    return MakeBlob(std::vector<BYTE>(nSize, nByte));
}

// Every section's name and bytes but those of one.
std::string OtherSections(const CBytes &file, const char *pszBut)
{
    const CByteView bytes(file);
    const CByteView headers = bytes.From(bytes.Dword(60));
    std::string all;
    for (size_t i = 0; i < headers.Word(6); ++i) {
        const CByteView header = headers.From(24 + headers.Word(20) + i * 40);
        const CByteView data = bytes.Part(header.Dword(20), header.Dword(16));
        const std::string name(reinterpret_cast<const char *>(header.Data()), 8);
        if (strcmp(name.c_str(), pszBut) != 0)
            all += name + std::string(reinterpret_cast<const char *>(data.Data()), data.Size());
    }
    return all;
}

// Some other program, or one in which all texts are empty.
std::string Without(UINT nType, UINT nFirst, UINT nLast)
{
    CPeImage image;
    CCUString sWhat;
    CResourceTree tree;
    image.Read(ReadFileBytes(TEST_LAUNCHER), sWhat);
    tree.Read(image.Resources(), image.ResourcesAddress());
    for (UINT nId = nFirst; nId <= nLast; ++nId)
        tree.RemoveAll(nType, nId);
    const std::vector<BYTE> bytes = image.WithResources(tree);
    return std::string(bytes.begin(), bytes.end());
}

// What the system finds in a program's file. Loaded as one, elsewhere than it is linked for, so
// that its relocations are applied too.
struct CSystemView
{
    explicit CSystemView(const std::string &path)
        : m_h(LoadLibraryExA(path.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES))
    {
    }
    ~CSystemView() { FreeLibrary(m_h); }
    std::string Text(UINT nId) const
    {
        char text[300] = "";
        LoadStringA(m_h, nId, text, sizeof text);
        return text;
    }
    CBlob Picture(UINT nId) const
    {
        const HRSRC found = FindResourceA(m_h, MAKEINTRESOURCEA(nId), RT_BITMAP);
        const BYTE *const p = static_cast<const BYTE *>(LockResource(LoadResource(m_h, found)));
        return MakeBlob(std::vector<BYTE>(p, p + SizeofResource(m_h, found)));
    }
    HMODULE m_h;
};

BOOL CALLBACK PutResource(HMODULE hFrom, LPCSTR pszType, LPSTR pszName, LONG_PTR nUpdate)
{
    const HRSRC found = FindResourceA(hFrom, pszName, pszType);
    return UpdateResourceA(reinterpret_cast<HANDLE>(nUpdate), pszType, pszName, LANG_NEUTRAL,
                           LockResource(LoadResource(hFrom, found)), SizeofResource(hFrom, found));
}

}  // namespace

// The linker lays the section out as we do, so that nothing changes but what was edited: one skin's
// launcher becomes the other's, as it was built.
TEST(LauncherFile, WritesWhatTheToolsWrite)
{
    CPeImage image;
    CCUString sWhat;
    ASSERT_TRUE(image.Read(ReadFileBytes(TEST_LAUNCHER), sWhat)) << sWhat;
    CResourceTree tree;
    ASSERT_TRUE(tree.Read(image.Resources(), image.ResourcesAddress()));
    EXPECT_TRUE(image.Bytes() == *MakeBlob(image.WithResources(tree)));
    CProblems problems;
    const auto shipped = Launcher(problems);
    const CBlob other = ReadFileBytes(TEST_OTHER_LAUNCHER);
    const auto wanted = CLauncherFile::Read("b", other, problems);
    EXPECT_TRUE(SameBytes(shipped->WithSkin(wanted->Skin(), problems), other)) << Lines(problems);
    const auto folder = OpenSkin(SKIN_FOLDERS[1], problems);
    EXPECT_TRUE(SameBytes(shipped->WithSkin(folder->Skin(), problems), other)) << Lines(problems);
    EXPECT_TRUE(
        SameBytes(shipped->WithSkin(shipped->Skin(), problems), ReadFileBytes(TEST_LAUNCHER)));
    EXPECT_EQ("", Lines(problems));
    // A signature is taken out, and nothing else, whichever launcher is larger.
    for (const CBlob &file : {ReadFileBytes(TEST_LAUNCHER), other}) {
        std::vector<BYTE> bytes = CByteView(*file).Copy();
        const size_t nDirectory = CByteView(bytes).Dword(60) + 120 + 4 * 8;
        PutDword(bytes, nDirectory, static_cast<DWORD>(bytes.size()));
        PutDword(bytes, nDirectory + 4, 500);
        bytes.insert(bytes.end(), 500, 's');
        const auto made = CLauncherFile::Read("c", MakeBlob(bytes), problems);
        const auto target = CLauncherFile::Read(
            "d", file == other ? ReadFileBytes(TEST_LAUNCHER) : other, problems);
        EXPECT_EQ("", Lines(problems)) << "as long as it is kept";
        EXPECT_TRUE(SameBytes(made->WithSkin(target->Skin(), problems),
                              file == other ? ReadFileBytes(TEST_LAUNCHER) : other));
        EXPECT_TRUE(strstr(Lines(problems).c_str(), "was signed. (the signature is taken out"));
        problems.clear();
    }
}

// Not copied: they live as long as one of them does. Where a header may not stand they are.
TEST(LauncherFile, SharesTheBytesOfItsFile)
{
    CProblems problems;
    CBlob bytes = ReadFileBytes(TEST_LAUNCHER);
    const CBlob picture =
        CLauncherFile::Read("a", bytes, problems)->Skin().m_pictures[PictureBackground];
    EXPECT_LT(bytes->begin(), picture->begin());
    EXPECT_GE(bytes->end(), picture->end());
    const CBlob part = PartOf(bytes, 1, 77),
                equal = MakeBlob({bytes->begin() + 1, bytes->begin() + 78});
    EXPECT_TRUE(part->data() < bytes->begin() || part->data() >= bytes->end());
    EXPECT_TRUE(SameBytes(part, equal));
    const std::weak_ptr<const void> file = bytes->Holder();
    bytes = nullptr;
    EXPECT_FALSE(file.expired());
}

// The system reads what was written.
TEST(LauncherFile, SystemReadsWhatWasSaved)
{
    CTemporaryDirectory directory;
    const std::string path = directory.Path() + "\\a.exe";
    CProblems problems;
    const auto file = Launcher(problems);
    CSkin skin = file->Skin();
    SetText(skin, IDS_TITLE,
            "Gr\xFC\xDF"
            "e");
    SetText(skin, 1000, "no entry of ours");
    skin.m_texts[0].m_entries.erase(IDS_ABOUT);
    skin.m_pictures[PictureBullet] = BlobOf(300000, 7);
    const CWideText sName("ProductName", 1252);
    skin.m_version[sName] = CWideText("Tides", 1252);
    ASSERT_TRUE(file->Save(skin, path.c_str(), problems)) << Lines(problems);
    {
        const CSystemView view(path);
        ASSERT_TRUE(view.m_h);
        EXPECT_EQ(
            "Gr\xFC\xDF"
            "e",
            view.Text(IDS_TITLE));
        EXPECT_EQ("no entry of ours", view.Text(1000));
        EXPECT_EQ("", view.Text(IDS_ABOUT));
        EXPECT_EQ("Fennick.exe", view.Text(IDS_SETUP_COMMAND));
        EXPECT_TRUE(SameBytes(view.Picture(IDB_BULLET), skin.m_pictures[PictureBullet]));
        EXPECT_TRUE(SameBytes(view.Picture(IDB_PRODUCT), skin.m_pictures[PictureProduct]));
    }
    const CBlob saved = ReadFileBytes(path.c_str());
    EXPECT_TRUE(OtherSections(*ReadFileBytes(TEST_LAUNCHER), ".rsrc") ==
                OtherSections(*saved, ".rsrc"));
    const auto again = OpenSkin(path.c_str(), problems);
    EXPECT_TRUE(again->Skin().m_version == skin.m_version);
    // Back again, all is as it was.
    ASSERT_TRUE(file->Save(Launcher(problems)->Skin(), path.c_str(), problems)) << Lines(problems);
    EXPECT_TRUE(SameBytes(ReadFileBytes(path.c_str()), ReadFileBytes(TEST_LAUNCHER)));
}

// Of what was written nothing may be another: a damaged byte of any part is told.
TEST(LauncherFile, KnowsTheSkinThatItHas)
{
    CProblems problems;
    const auto file = Launcher(problems);
    CSkin skin = file->Skin();
    SetText(skin, IDS_TITLE, "Tides");
    skin.m_pictures[PictureBullet] = BlobOf(3000, 0xA7);
    skin.m_version = {{CWideText("Name", 1252), CWideText("Isle", 1252)}};
    // The second picture stands first, behind it a gap; the first has no planes and bits.
    const std::string icon = std::string(
                                 "\0\0\1\0\2\0"
                                 "\x10\x10\x10\0\0\0\0\0\6\0\0\0\x2E\0\0\0"
                                 "\x20\x20\0\0\1\0\x8\0\6\0\0\0\x26\0\0\0",
                                 38) +
                             "second  -first";
    skin.m_icon = MakeBlob({icon.begin(), icon.end()});
    const CBlob bytes = file->WithSkin(skin, problems);
    ASSERT_TRUE(bytes) << Lines(problems);
    std::string good(bytes->begin(), bytes->end());
    const auto HasSkin = [&](const std::string &made) {
        return CLauncherFile::Read("a", MakeBlob({made.begin(), made.end()}), problems)
            ->HasSkin(skin);
    };
    EXPECT_TRUE(HasSkin(good));
    for (const std::string &part :
         {std::string("T\0i\0d\0e\0s", 9), std::string(3000, '\xA7'), std::string("-first"),
          std::string("second"), std::string("N\0a\0m\0e", 7), std::string("I\0s\0l\0e", 7),
          std::string("\x10\x10\x10\0\1\0\4\0\6", 9), std::string("\1\0\x8\0\6\0\0\0", 8)})
    {
        const size_t nOffset = good.rfind(part) + (part[0] != 1 ? 0 : 2);
        ASSERT_GT(good.size(), nOffset);
        good[nOffset] ^= 1;
        EXPECT_FALSE(HasSkin(good)) << part;
        good[nOffset] ^= 1;
    }
    // A name that no version can hold.
    const WCHAR name[] = {'a', 0, 'b'};
    skin.m_version[CWideText(name, 3)] = CWideText("c", 1252);
    EXPECT_FALSE(file->WithSkin(skin, problems));
    EXPECT_TRUE(strstr(Lines(problems).c_str(), "no room for these")) << Lines(problems);
}

// Again and again, too: what a skin does not say, or the launcher has no place for, stays.
TEST(LauncherFile, KeepsItsVersionForSkinsThatSayNothingOfIt)
{
    const CTemporaryDirectory directory;
    const CCUString sPath = (directory.Path() + "\\a.exe").c_str();
    std::string launcher = Contents(TEST_LAUNCHER);
    for (const CWideText &name : {CWideText(), CWideText("Name", 1252)}) {
        CProblems problems;
        const auto file =
            CLauncherFile::Read("a", MakeBlob({launcher.begin(), launcher.end()}), problems);
        CSkin skin = file->Skin();
        const auto version = skin.m_version;
        EXPECT_EQ(name.IsEmpty() ? 6U : 0U, version.size());
        skin.m_version.clear();
        if (!name.IsEmpty())
            skin.m_version[name] = name;
        for (const char *pszTitle : {"One", "Two"}) {
            SetText(skin, IDS_TITLE, pszTitle);
            ASSERT_TRUE(file->Save(skin, sPath, problems)) << Lines(problems);
            EXPECT_TRUE(OpenSkin(sPath, problems)->Skin().m_version == version);
        }
        EXPECT_EQ(!name.IsEmpty(), strstr(Lines(problems).c_str(), "has no place for") != nullptr);
        // The second round's has no texts in its version.
        const std::string block("S\0t\0r\0i\0n\0g\0F\0i\0l\0e\0I", 21);
        launcher[launcher.find(block)] = 's';
    }
}

// What the system's writer, which Windows 98 has not, makes of the same pictures and texts.
TEST(LauncherFile, WritesWhatTheSystemsWriterDoes)
{
    CTemporaryDirectory directory;
    const std::string path = directory.Path() + "\\a.exe", theirs = directory.Path() + "\\b.exe";
    CProblems problems;
    CopyFileA(TEST_LAUNCHER, theirs.c_str(), FALSE);
    {
        const CSystemView other(TEST_OTHER_LAUNCHER);
        const HANDLE update = BeginUpdateResourceA(theirs.c_str(), FALSE);
        for (LPSTR type : {RT_STRING, RT_BITMAP, RT_ICON, RT_GROUP_ICON})
            EnumResourceNamesA(other.m_h, type, PutResource, reinterpret_cast<LONG_PTR>(update));
        ASSERT_TRUE(EndUpdateResourceA(update, FALSE));
    }
    const auto wanted = OpenSkin(TEST_OTHER_LAUNCHER, problems);
    ASSERT_TRUE(Launcher(problems)->SaveCopy(wanted->Skin(), path.c_str(), problems));
    ExpectSameSkin(OpenSkin(theirs.c_str(), problems)->Skin(),
                   OpenSkin(path.c_str(), problems)->Skin());
    EXPECT_TRUE(OtherSections(*ReadFileBytes(theirs.c_str()), ".rsrc") ==
                OtherSections(*ReadFileBytes(path.c_str()), ".rsrc"));
    EXPECT_EQ("", Lines(problems));
}

// Where another section is in the way the resources move to a new one, at the end.
TEST(LauncherFile, AddsASectionWhereThereIsNoRoom)
{
    CTemporaryDirectory directory;
    const std::string path = directory.Path() + "\\a.exe";
    std::vector<BYTE> bytes = CByteView(*ReadFileBytes(TEST_LAUNCHER)).Copy();
    const size_t nDirectories = CByteView(bytes).Dword(60) + 120;
    const DWORD nRelocations = CByteView(bytes).Dword(nDirectories + 5 * 8);
    // A table that somebody put behind the relocations, of nothing.
    PutDword(bytes, nDirectories + 10 * 8, nRelocations + 4);
    PutDword(bytes, nDirectories + 10 * 8 + 4, 1);
    bytes.insert(bytes.end(), 1000, 'x');
    CProblems problems;
    auto file = CLauncherFile::Read("a", MakeBlob(bytes), problems);
    for (const size_t nSize : {400000U, 500000U, 10U}) {
        CSkin skin = file->Skin();
        skin.m_pictures[PictureBullet] = BlobOf(nSize, 7);
        ASSERT_TRUE(file->Save(skin, path.c_str(), problems)) << Lines(problems);
        const CSystemView view(path);
        ASSERT_TRUE(view.m_h);
        EXPECT_TRUE(SameBytes(view.Picture(IDB_BULLET), skin.m_pictures[PictureBullet]));
        EXPECT_EQ("Fennick.exe", view.Text(IDS_SETUP_COMMAND));
        const std::string saved = Contents(path);
        EXPECT_EQ(std::string(1000, 'x'), saved.substr(saved.size() - 1000));
        EXPECT_EQ("", Lines(problems));
    }
}

TEST(LauncherFile, SaysWhatAFileIsThatIsNone)
{
    std::string good = Contents(TEST_LAUNCHER);
    const size_t nHeader = static_cast<BYTE>(good[60]);
    const auto With = [&](size_t nOffset, const std::string &bytes) {
        return std::string(good).replace(nOffset, bytes.size(), bytes);
    };
    const std::pair<std::string, const char *> cases[] = {
        {"", "empty"},
        {"hello", "not a program"},
        {good.substr(0, 100), "DOS"},
        {With(nHeader, "NE"), "16-bit"},
        {With(nHeader + 24, std::string("\x0B\x02", 2)), "64-bit"},
        {With(nHeader + 4, std::string("\x64\xAA", 2)), "another kind"},
        {good.substr(0, good.size() / 2), "cut off"},
        {With(good.find(std::string("\0\0\0\0\0\0\x07\0\x02\0\0\0", 12)), std::string(8, '\xFF')),
         "cut off or damaged"},
        {Without(5, IDD_AUTORUN, IDD_AUTORUN), "no launcher"},
        {Without(6, 1, 0x1000), "none of a launcher's texts"},
    };
    for (const auto &test : cases) {
        CProblems problems;
        const std::vector<BYTE> bytes(test.first.begin(), test.first.end());
        EXPECT_FALSE(CLauncherFile::Read("x", MakeBlob(bytes), problems));
        EXPECT_TRUE(strstr(Lines(problems).c_str(), test.second)) << Lines(problems);
    }
}

// Whatever goes wrong while saving, the old file is there, and nothing else.
TEST(LauncherFile, LosesNothingWhenItCannotSave)
{
    CTemporaryDirectory directory;
    const std::string path = directory.Path() + "\\a.exe";
    CopyFileA(TEST_LAUNCHER, path.c_str(), FALSE);
    CProblems problems;
    const auto file = OpenSkin(path.c_str(), problems);
    CSkin skin = file->Skin();
    SetText(skin, IDS_TITLE, "Other");
    const auto ExpectFailure = [&](const char *pszReason) {
        problems.clear();
        EXPECT_FALSE(file->Save(skin, path.c_str(), problems));
        EXPECT_TRUE(strstr(Lines(problems).c_str(), pszReason)) << Lines(problems);
        EXPECT_TRUE(Contents(TEST_LAUNCHER) == Contents(path));
        EXPECT_EQ(std::vector<std::string>{"a.exe"}, directory.Files("*"));
    };
    {
        CFakeCall<BOOL(HANDLE, const void *, DWORD, DWORD *, OVERLAPPED *)> full(
            "WriteFile", [](auto...) { return SetLastError(ERROR_DISK_FULL), FALSE; });
        ExpectFailure("the disk is full");
    }
    {
        // A drive that says it has all and keeps nothing.
        CFakeCall<BOOL(HANDLE, const void *, DWORD, DWORD *, OVERLAPPED *)> forgets(
            "WriteFile", [](HANDLE, const void *, DWORD nSize, DWORD *pWritten, OVERLAPPED *) {
                *pWritten = nSize;
                return TRUE;
            });
        ExpectFailure("The file cannot be written");
    }
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    ExpectFailure("write-protected");
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    {
        const HANDLE used = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        ExpectFailure("a program uses it");
        CloseHandle(used);
    }
    {
        // Such as a program that runs: it may get another name, but not be replaced.
        const HANDLE runs =
            CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                        OPEN_EXISTING, 0, nullptr);
        CFakeCall<BOOL(const WCHAR *, const WCHAR *, DWORD)> replace(
            "MoveFileExW", [](auto...) { return SetLastError(ERROR_ACCESS_DENIED), FALSE; });
        ExpectFailure("if it runs");
        CloseHandle(runs);
    }
    EXPECT_FALSE(file->IsOutdated());
    WriteFileBytes(path, "changed");
    problems.clear();
    EXPECT_FALSE(file->Save(skin, path.c_str(), problems));
    EXPECT_TRUE(strstr(Lines(problems).c_str(), "has changed the file")) << Lines(problems);
    EXPECT_EQ("changed", Contents(path));
    EXPECT_TRUE(file->IsOutdated());
    file->OverwriteChanges(true);
    EXPECT_TRUE(file->Save(skin, path.c_str(), problems));
    EXPECT_EQ("Other", TextOf(OpenSkin(path.c_str(), problems)->Skin(), IDS_TITLE));
    // Kept and taken up again; the user may spell the name in another way.
    const std::string same = directory.Path() + "\\A.EXE";
    for (const CCUString &sKnown : {CCUString(), file->KnownFiles()}) {
        file->RecallFiles(sKnown);
        EXPECT_EQ(!sKnown.IsEmpty(), file->Save(skin, same.c_str(), problems)) << sKnown;
    }
}

// Beyond what Windows takes in the narrow form.
TEST(LongPaths, AreReadAndWritten)
{
    const CTemporaryDirectory directory;
    std::string folder = directory.Path();
    while (folder.size() < 300)
        folder += "\\a folder of a deep tree";
    const CCUString sFolder = folder.c_str(), sLauncher = sFolder + "\\a.exe";
    CProblems problems;
    const auto launcher = OpenSkin(TEST_LAUNCHER, problems);
    CSkin skin = launcher->Skin();
    EXPECT_TRUE(CSkinFolder::Export(skin, sFolder, problems));
    EXPECT_TRUE(launcher->Save(skin, sLauncher, problems));
    SetText(skin, IDS_TITLE, "Other");
    skin.m_pictures[PictureBullet] = ImportPicture(sFolder + "\\Product.bmp", problems);
    EXPECT_TRUE(launcher->Save(skin, sLauncher, problems));
    EXPECT_TRUE(OpenSkin(sFolder, problems)->Save(skin, sFolder, problems));
    for (const CCUString &sPath : {sFolder, sLauncher})
        ExpectSameSkin(OpenSkin(sPath, problems)->Skin(), skin);
    EXPECT_TRUE(skin.m_pictures[PictureBullet]);
    EXPECT_EQ("", Lines(problems));
    RemoveTree(directory.Path());
}
