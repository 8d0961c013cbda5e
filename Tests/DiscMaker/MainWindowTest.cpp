#include "Window/MainWindow.h"

#include <gtest/gtest.h>
#include <shlobj.h>

#include "DiscMaker/SkinFiles.h"
#include "DiscMaker/Skins.h"
#include "File/PictureFile.h"
#include "Support/TestSettings.h"
#include "Support/TestWindow.h"

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

    const CTemporaryDirectory m_temp;
    const CTestSettings m_settings;
    CMainWindow m_window;
};

}  // namespace

TEST_F(CMakerTest, KeepsWhatIsTypedWithoutALauncherToBeginWith)
{
    CDocument &document = m_window.Document();
    document.SetEntry(IDS_TITLE, "Title");
    EXPECT_STREQ("Title", document.Entry(IDS_TITLE));
    const HWND hList = FindWindowExA(GetDlgItem(m_window, 3), nullptr, WC_LISTVIEWA, nullptr);
    m_window.OnIdle();
    char szWhat[100] = "";
    LVITEMA item = {};
    item.iSubItem = 2;
    item.pszText = szWhat;
    item.cchTextMax = sizeof szWhat;
    SendMessageA(hList, LVM_GETITEMTEXTA, 0, reinterpret_cast<LPARAM>(&item));
    EXPECT_EQ(std::string("There is no launcher beside Disc Maker"), std::string(szWhat, 38));
}

TEST_F(CMakerTest, KeepsForACrashWhatIsNotSavedAndNoMore)
{
    m_window.TimeOut(0);
    EXPECT_EQ(0U, m_temp.Files("*").size());
    m_window.Document().SetEntry(IDS_TITLE, "Title");
    m_window.TimeOut(0);
    EXPECT_EQ(1U, m_temp.Files("DiscMaker-*.recovery").size());
    m_window.Document().Undo();
    m_window.TimeOut(0);
    EXPECT_EQ(0U, m_temp.Files("*").size());
    m_window.Document().Redo();
    m_window.TimeOut(0);
    EXPECT_EQ(1U, m_temp.Files("*").size());
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
