#include "Window/Preview.h"

#include "DiscMaker/SkinFiles.h"
#include "Resource.h"
#include "Support/ImportHook.h"

namespace {

HWND WaitForWindow(const char *pszCaption)
{
    HWND hWnd = nullptr;
    for (int i = 0; i < 1200 && !hWnd; ++i) {
        hWnd = FindWindowA(nullptr, pszCaption);
        Sleep(hWnd ? 0 : 50);
    }
    return hWnd;
}

}  // namespace

TEST(Preview, RunsTheSkinAndLeavesNothing)
{
    CTemporaryDirectory temp;
    const std::string left = temp.Path() + "\\DiscMaker-fffffff1-3";
    CreateDirectoryA(left.c_str(), nullptr);
    WriteFileBytes(left + "\\AutoRun.exe", "of a program that crashed");
    char szTaken[40];
    sprintf(szTaken, "\\DiscMaker-%lx-1", GetCurrentProcessId());
    const std::string taken = temp.Path() + szTaken;
    CreateDirectoryA(taken.c_str(), nullptr);
    CProblems problems;
    const auto launcher = OpenSkin(TEST_LAUNCHER, problems);
    CSkin skin = launcher->Skin();
    SetText(skin, IDS_CAPTION, "A preview");
    {
        CPreview preview;
        ASSERT_TRUE(preview.Run(*launcher, skin, temp.Path().c_str(), problems)) << Lines(problems);
        EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesA(left.c_str()));
        const HWND hWnd = WaitForWindow("A preview");
        ASSERT_TRUE(hWnd);
        DWORD nProcess = 0;
        GetWindowThreadProcessId(hWnd, &nProcess);
        const HANDLE hProcess = OpenProcess(SYNCHRONIZE, FALSE, nProcess);
        PostMessageA(hWnd, WM_CLOSE, 0, 0);
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(hProcess, 60000));
        CloseHandle(hProcess);
    }
    EXPECT_TRUE(RemoveDirectoryA(taken.c_str()));
    // Nobody would see it.
    const CBlob background = skin.m_pictures[PictureBackground];
    const std::pair<CBlob, const char *> unseen[] = {
        {nullptr, "The background is missing. (The launcher's window has no size"},
        {PartOf(background, 0, background->size() / 2), "The background cannot be read: its data"}};
    for (const auto &test : unseen) {
        skin.m_pictures[PictureBackground] = test.first;
        problems.clear();
        EXPECT_FALSE(CPreview().Run(*launcher, skin, "", problems));
        EXPECT_TRUE(strstr(Lines(problems).c_str(), test.second)) << Lines(problems);
        EXPECT_EQ(1U, problems.size());
    }
    skin.m_pictures[PictureBackground] = background;
    EXPECT_TRUE(std::filesystem::is_empty(temp.Path()));
    const CFakeCall<BOOL(const char *, LPSECURITY_ATTRIBUTES)> full(
        "CreateDirectoryA", [](const char *, LPSECURITY_ATTRIBUTES) {
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        });
    EXPECT_FALSE(CPreview().Run(*launcher, skin, "", problems));
    EXPECT_TRUE(strstr(Lines(problems).c_str(), "preview cannot be made")) << Lines(problems);
}
