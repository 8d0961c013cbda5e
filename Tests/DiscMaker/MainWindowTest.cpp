#include "Window/MainWindow.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include "Base/Handle.h"
#include "DiscMaker/SkinFiles.h"
#include "DiscMaker/Skins.h"
#include "File/PictureFile.h"
#include "Model/SkinBytes.h"
#include "Support/BoxAnswer.h"
#include "Support/FailingCall.h"
#include "Support/ImportHook.h"
#include "Support/TestSettings.h"
#include "Support/TestTimer.h"
#include "Support/TestWindow.h"
#include "Window/Ids.h"

namespace {

// Disc Maker's window, with no launcher beside the program.
struct CMakerTest : testing::Test
{
    CMakerTest()
    {
        m_window.CreateFrame("Disc Maker");
        SetWindowPos(m_window, nullptr, 0, 0, 1000, 700, SWP_NOZORDER);
        m_window.Begin();
    }
    ~CMakerTest() override
    {
        m_window.Document().MarkSaved();
        m_window.Destroy();
    }
    // The session ends, which leaves what is not saved as a crash does.
    void EndSession()
    {
        SendMessageA(m_window, WM_ENDSESSION, TRUE, 0);
        MSG quit;
        PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
        m_window.CreateFrame("Disc Maker");
    }
    void Restore()
    {
        const CBoxAnswer box("Disc Maker", IDYES);
        m_window.OfferRecovery();
        EXPECT_EQ(1, box.Asked());
    }
    // How often it asks, which this button answers.
    int Save(int nButton)
    {
        const CBoxAnswer box("Disc Maker", nButton);
        SendMessageA(m_window, WM_COMMAND, ID_SAVE, 0);
        return box.Asked();
    }
    // What the system sends when something is dropped there, on the face.
    void Drop(const std::string &path, const POINT &at)
    {
        const CCanvas &canvas = m_window.Canvas();
        const RECT place = canvas.ToClient({at.x, at.y, at.x, at.y});
        DROPFILES drop = {sizeof drop, {place.left, place.top}, FALSE, FALSE};
        MapWindowPoints(canvas, m_window, &drop.pt, 1);
        const HGLOBAL hDrop = GlobalAlloc(GHND, sizeof drop + path.size() + 2);
        BYTE *const pBytes = static_cast<BYTE *>(GlobalLock(hDrop));
        memcpy(pBytes, &drop, sizeof drop);
        memcpy(pBytes + sizeof drop, path.c_str(), path.size());
        GlobalUnlock(hDrop);
        PostMessageA(m_window, WM_DROPFILES, reinterpret_cast<WPARAM>(hDrop), 0);
        PumpWaiting();
    }

    HWND List() { return FindWindowExA(GetDlgItem(m_window, 3), nullptr, WC_LISTVIEWA, nullptr); }

    const CTemporaryDirectory m_temp;
    const CTestSettings m_settings;
    CMainWindow m_window;
};

// The system's chooser of folders, in which the user always takes the same one.
struct CFakeFolders : CTestWindow
{
    explicit CFakeFolders(const std::string &path)
    {
        s_path = path;
        s_hDialog = *this;
        m_on[BFFM_SETSELECTIONA] = [this] {
            m_first = reinterpret_cast<const char *>(m_lParam);
            return 0;
        };
    }
    static LPITEMIDLIST WINAPI Browse(BROWSEINFOA *pInfo)
    {
        if (pInfo->lpfn)
            pInfo->lpfn(s_hDialog, BFFM_INITIALIZED, 0, pInfo->lParam);
        static ITEMIDLIST s_list;
        return &s_list;
    }
    static BOOL WINAPI GetChosen(LPCITEMIDLIST, char *pszPath)
    {
        lstrcpyA(pszPath, s_path.c_str());
        return TRUE;
    }
    static FARPROC Find(HMODULE, LPCSTR pszName)
    {
        return lstrcmpA(pszName, "SHBrowseForFolderA") == 0     ? FARPROC(Browse)
               : lstrcmpA(pszName, "SHGetPathFromIDListA") == 0 ? FARPROC(GetChosen)
                                                                : nullptr;
    }
    inline static std::string s_path;
    inline static HWND s_hDialog;
    std::string m_first;  // where the chooser began
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> m_find{"GetProcAddress", Find};
};

}  // namespace

TEST_F(CMakerTest, KeepsWhatIsTypedWithoutALauncherToBeginWith)
{
    CDocument &document = m_window.Document();
    document.SetEntry(IDS_TITLE, "Title");
    EXPECT_STREQ("Title", document.Entry(IDS_TITLE));
    m_window.OnIdle();
    char szWhat[100] = "";
    ListView_GetItemText(List(), 0, 2, szWhat, sizeof szWhat);
    EXPECT_EQ(std::string("There is no launcher beside Disc Maker"), std::string(szWhat, 38));
}

TEST_F(CMakerTest, KeepsForACrashWhatIsNotSavedAndNoMore)
{
    CFakeClock clock;
    PassStartTick(clock);
    const auto Kept = [&] {
        m_window.OnIdle();
        clock.Run(5000);
        return m_temp.Files("DiscMaker-*.recovery").size();
    };
    EXPECT_EQ(0U, Kept());
    m_window.Document().SetEntry(IDS_TITLE, "Title");
    for (int nTime = 0; nTime < 2; ++nTime) {
        EXPECT_EQ(1U, Kept());
        m_window.Document().Undo();
        EXPECT_EQ(0U, Kept());
        m_window.Document().Redo();
    }
    const CFailingCall<BOOL(HANDLE)> flush("FlushFileBuffers");
    const auto Problems = [&] {
        m_window.OnIdle();
        return ListView_GetItemCount(List());
    };
    const int nProblems = Problems();
    for (const bool bSaved : {false, true}) {
        m_window.Document().SetEntry(IDS_TITLE, bSaved ? "Saved" : "Not saved");
        CFailPlan::Start(CFailPlan::ALL);
        EXPECT_EQ(bSaved ? 1U : 0U, Kept());
        CFailPlan::Start(0);
        if (bSaved) {
            EXPECT_EQ(nProblems + 1, Problems());
            m_window.Document().MarkSaved();
        }
        clock.Run(5000);
        EXPECT_EQ(bSaved ? 0U : 1U, m_temp.Files("*").size()) << "with nobody there";
        EXPECT_EQ(nProblems, Problems());
    }
}

// Windows ends a session in spite of a question that is open. What is left is offered, and saved
// before the window closes, or it stays.
TEST_F(CMakerTest, KeepsWhatIsNotSavedWhenTheSessionEnds)
{
    const std::string launcher = m_temp.Path() + "\\a.exe";
    CopyFileA(TEST_LAUNCHER, launcher.c_str(), TRUE);
    const int answers[][2] = {{IDNO, 0}, {IDCANCEL, IDNO}, {IDCANCEL, IDYES}};
    for (const auto &answer : answers) {
        m_window.OnOpenFile(launcher.c_str());
        m_window.Document().SetEntry(IDS_TITLE, "Kept");
        const CBoxAnswer box("Disc Maker", answer[0], IDCANCEL, answer[1]);
        EXPECT_EQ(answer[0] == IDNO, SendMessageA(m_window, WM_QUERYENDSESSION, 0, 0));
        EXPECT_EQ(1, box.Asked());
        const HWND hWnd = m_window;
        EndSession();
        EXPECT_FALSE(IsWindow(hWnd));
        m_window.Begin();
        m_window.OfferRecovery();
        EXPECT_EQ(answer[1] ? 3 : 1, box.Asked()) << "Escape is no answer";
        const bool bTitle = m_window.Document().Entry(IDS_TITLE) == "Kept";
        EXPECT_EQ(answer[1] == IDYES, bTitle && m_window.Document().IsModified());
        EXPECT_EQ(answer[1] == IDYES, m_temp.Files("*.recovery").size() == 1);
    }
    EndSession();
    m_window.Begin();
    PostMessageA(m_window, WM_ENDSESSION, TRUE, 0);
    m_window.OfferRecovery();
    EXPECT_FALSE(m_window.Exist()) << "the session ends while it asks";
    EndSession();
    m_window.Begin();
    Restore();
    for (const bool bHeld : {true, false}) {
        const char *const pszHeld = bHeld ? launcher.c_str() : TEST_LAUNCHER;
        const CCUFileHandle hHeld(CreateFileA(pszHeld, GENERIC_READ, FILE_SHARE_READ, nullptr,
                                              OPEN_EXISTING, 0, nullptr));
        const CBoxAnswer box("Disc Maker", IDYES, IDCANCEL);
        SendMessageA(m_window, WM_CLOSE, 0, 0);
        EXPECT_EQ(bHeld ? 2 : 1, box.Asked());
        EXPECT_EQ(bHeld, m_window.Exist() && m_window.Document().IsModified());
        EXPECT_EQ(bHeld, m_temp.Files("*.recovery").size() == 1);
        CProblems problems;
        EXPECT_EQ(bHeld ? "Fennick 4.1" : "Kept",
                  TextOf(OpenSkin(launcher.c_str(), problems)->Skin(), IDS_TITLE));
    }
}

// What somebody else saves before the next start is not overwritten unseen.
TEST_F(CMakerTest, AsksBeforeWhatIsRestoredGoesOverTheWorkOfOthers)
{
    const std::string launcher = m_temp.Path() + "\\a.exe";
    CopyFileA(TEST_LAUNCHER, launcher.c_str(), TRUE);
    const CBlob small = TestPictureBlob(16, 16, MakePixel(1, 2, 3));
    CProblems problems;
    for (const std::string &path : {launcher, CopyFolder(m_temp, SKIN_FOLDERS[0]) + "\\Skin.rc"}) {
        const auto onDisk = [&] { return OpenSkin(path.c_str(), problems); };
        m_window.OnOpenFile(path.c_str());
        m_window.Document().SetEntry(IDS_TITLE, "First");
        EndSession();
        Restore();
        EXPECT_EQ(0, Save(IDCANCEL)) << "nobody else was there";
        m_window.Document().SetEntry(IDS_TITLE, "Kept");
        EndSession();
        CSkin other = onDisk()->Skin();
        other.m_pictures[PictureBullet] = small;
        ASSERT_TRUE(onDisk()->Save(other, path.c_str(), problems));
        for (int nCrash = 0; nCrash < 2; ++nCrash) {
            Restore();
            EXPECT_EQ(1, Save(IDCANCEL)) << path;
            ExpectSameSkin(other, onDisk()->Skin());
            EndSession();
        }
        Restore();
        EXPECT_EQ(1, Save(IDRETRY));
        ExpectSameSkin(m_window.Document().Skin(), onDisk()->Skin());
        m_window.Document().SetEntry(IDS_TITLE, "Last");
        EXPECT_EQ(0, Save(IDCANCEL));
        EXPECT_EQ("Last", TextOf(onDisk()->Skin(), IDS_TITLE));
        // Kept by a version that kept no sums.
        const std::vector<BYTE> skin = PackSkin(other);
        std::ofstream(m_temp.Path() + "\\DiscMaker-0-1.recovery", std::ios::binary)
            << path << '\0' << std::string(skin.begin(), skin.end());
        Restore();
        EXPECT_EQ(1, Save(IDCANCEL));
        EXPECT_EQ("Last", TextOf(onDisk()->Skin(), IDS_TITLE));
        EXPECT_EQ(1, Save(IDRETRY));
        ExpectSameSkin(other, onDisk()->Skin());
    }
}

// A launcher is opened; a picture becomes that of what it is dropped on.
TEST_F(CMakerTest, TakesWhatIsDropped)
{
    const std::string launcher = m_temp.Path() + "\\a.exe", picture = m_temp.Path() + "\\a.PNG";
    CopyFileA(TEST_LAUNCHER, launcher.c_str(), TRUE);
    Drop(launcher, {1, 1});
    EXPECT_STREQ(launcher.c_str(), m_window.GetDocument());
    CProblems problems;
    ExpectSameSkin(OpenSkin(TEST_LAUNCHER, problems)->Skin(), m_window.Document().Skin());
    const CBlob small = TestPictureBlob(16, 16, MakePixel(1, 2, 3)), bmp = MakeBmpFile(small);
    WriteFileBytes(picture, std::string(bmp->begin(), bmp->end()));
    const POINT places[] = {{500, 5}, {400, 150}, {20, 180}};
    for (const int n : {PictureBullet, PictureProduct, PictureBackground}) {
        CDocument &document = m_window.Document();
        Drop(picture, places[n]);
        EXPECT_TRUE(SameBytes(small, document.Skin().m_pictures[n])) << n;
        document.Undo();
        EXPECT_FALSE(document.IsModified());
    }
}

TEST_F(CMakerTest, AsksBeforeASkinGoesOverFilesAndBeginsWhereItIs)
{
    const std::string own = CopyFolder(m_temp, SKIN_FOLDERS[0]), other = m_temp.Path() + "\\other";
    CreateDirectoryA(other.c_str(), nullptr);
    for (const char *pszName : {"\\Bullet.bmp", "\\mine.txt"})
        WriteFileBytes(other + pszName, "mine");
    m_window.OnOpenFile((own + "\\Skin.rc").c_str());
    CFakeFolders chooser(other);
    const auto save = [&](int nButton) {
        const CBoxAnswer box("Save as skin folder", nButton);
        SendMessageA(m_window, WM_COMMAND, ID_SAVE_FOLDER, 0);
        return box.Asked();
    };
    EXPECT_EQ(1, save(IDCANCEL));
    EXPECT_EQ(own + "\\", chooser.m_first);
    EXPECT_EQ("mine", Contents(other + "\\Bullet.bmp"));
    EXPECT_EQ("(no file)", Contents(other + "\\Skin.rc"));
    EXPECT_EQ(1, save(IDOK));
    EXPECT_TRUE(Contents(own + "\\Bullet.bmp") == Contents(other + "\\Bullet.bmp"));
    EXPECT_TRUE(Contents(own + "\\Skin.rc") == Contents(other + "\\Skin.rc"));
    EXPECT_EQ("mine", Contents(other + "\\mine.txt"));
    EXPECT_EQ(0, save(IDCANCEL)) << "where it is already";
    EXPECT_EQ(other + "\\", chooser.m_first);
}

// Between lines, all of a skin, and in fields, with the system's clipboard.
TEST_F(CMakerTest, CopiesAndPastesByTheKeyboard)
{
    CDocument &document = m_window.Document();
    CCanvas &canvas = m_window.Canvas();
    document.Start(GoodSkin());
    const auto press = [](WPARAM nKey, const char *pszBox = "Paste") {
        const CBoxAnswer box(pszBox, IDCANCEL);
        HoldKey(VK_CONTROL);
        PressKey(nKey);
        HoldKey(0);
        return box.Asked();
    };
    SetFocus(canvas);
    press('C');
    document.SetPicture(PictureBullet, nullptr);
    press('V');
    ExpectSameSkin(GoodSkin(), document.Skin());
    document.MarkSaved();
    canvas.Select(ItemRun);
    press('C');
    canvas.Select(ItemHelp);
    press('X');  // is for fields
    press('V');
    EXPECT_STREQ("Run", document.Entry(IDS_HELP));
    EXPECT_STREQ("Tools\\Run.exe /x", document.Entry(IDS_HELP_COMMAND));
    press('Z');
    EXPECT_FALSE(document.IsModified()) << "one step, and no other place";
    m_window.Properties().SelectEntry(IDS_RUN, true);
    press('X');
    EXPECT_STREQ("", document.Entry(IDS_RUN));
    m_window.Properties().SelectEntry(IDS_TITLE, true);
    press('V');
    EXPECT_STREQ("Run", document.Entry(IDS_TITLE));
    SetFocus(canvas);
    const unsigned nRevision = document.Revision();
    EXPECT_EQ(1, press('V')) << "no entry of a skin";
    ASSERT_TRUE(OpenClipboard(m_window) && EmptyClipboard() && CloseClipboard());
    EXPECT_EQ(0, press('V')) << "nothing";
    press('C');
    const CTestWindow other;
    ASSERT_TRUE(OpenClipboard(other));
    EXPECT_EQ(1, press('V'));
    EXPECT_EQ(1, press('C', "Copy"));
    CloseClipboard();
    EXPECT_EQ(nRevision, document.Revision());
}

// Also where its row is selected already; what is about no entry leads nowhere.
TEST_F(CMakerTest, GoesToTheProblemThatIsClickedTwice)
{
    CSkin skin = GoodSkin();
    skin.m_texts.push_back({MAKELANGID(LANG_GREEK, SUBLANG_DEFAULT), skin.m_texts[0].m_entries});
    skin.m_texts[1].m_entries[IDS_RUN_POS] = CWideText("600,140", 1252);
    m_window.Document().Start(skin);
    m_window.OnIdle();
    for (const size_t nItem : {0U, 1U, 1U}) {
        m_window.Canvas().Select(ItemNone);
        RECT row = {LVIR_LABEL, 0, 0, 0};
        Send(List(), LVM_GETITEMRECT, nItem, reinterpret_cast<LPARAM>(&row));
        const LPARAM at = MAKELPARAM(row.left + 2, row.top + 2);
        MapWindowPoints(List(), nullptr, reinterpret_cast<POINT *>(&row), 1);
        SetCursorPos(row.left + 2, row.top + 2);
        for (const int nMessage : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP})
            PostMessageA(List(), static_cast<UINT>(nMessage), 0, at);
        PumpWaiting();
        EXPECT_EQ(std::vector<FaceItem>(nItem, ItemRun), m_window.Canvas().Selection());
        EXPECT_EQ(nItem == 1, m_window.Properties().Selected()->m_nID == IDS_RUN_POS);
        EXPECT_EQ(nItem == 1, GetFocus() == GetDlgItem(m_window.Properties(), 1));
        EXPECT_EQ(nItem, m_window.Document().Language());
    }
}
