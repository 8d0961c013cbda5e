#include "Window/DiscDialog.h"

#include <gtest/gtest.h>

#include "DiscMaker/SkinFiles.h"
#include "Support/BoxAnswer.h"
#include "Support/TestSettings.h"
#include "Support/TestWindow.h"
#include "Window/Ids.h"

// What is stopped leaves nothing behind, neither beside the disc nor in the temporary folder.
TEST(DiscDialog, AsksBeforeASessionEndsItsWork)
{
    const CTemporaryDirectory directory;
    const CTestSettings settings;
    const std::string in = directory.Path() + "\\in", out = directory.Path() + "\\out";
    CreateDirectoryA(in.c_str(), nullptr);
    WriteFileBytes(in + "\\Setup.exe", "setup");
    CProblems problems;
    const CSkin skin = OpenSkin(TEST_LAUNCHER, problems)->Skin();
    for (const int nButton : {IDYES, 0, IDCANCEL}) {
        CDiscDialog dialog(skin, TEST_LAUNCHER, in.c_str());
        dialog.DoModeless(nullptr);
        SetWindowTextA(dialog, "not the question");
        SetDlgItemTextA(dialog, IDC_OUT, out.c_str());
        CTestWindow system;
        LRESULT nMayEnd = 0;
        system.m_on[WM_APP] = [&] {
            nMayEnd = nButton ? SendMessageA(dialog, WM_QUERYENDSESSION, 0, 0) : dialog.Destroy();
            return 0;
        };
        PostMessageA(system, WM_APP, 0, 0);
        const CBoxAnswer box("Make the disc", nButton);
        SendMessageA(dialog, WM_COMMAND, IDOK, 0);
        EXPECT_EQ(nButton != IDCANCEL, nMayEnd != 0);
        EXPECT_EQ(nButton != 0, box.Asked());
        EXPECT_EQ(nButton == IDCANCEL ? "setup" : "(no file)", Contents(out + "\\Setup.exe"));
        EXPECT_FALSE(std::filesystem::exists(out + ".unfinished"));
        EXPECT_EQ(0U, directory.Files("dsc*").size());
        dialog.Destroy();
    }
    std::filesystem::remove_all(in);
    std::filesystem::remove_all(out);
}
