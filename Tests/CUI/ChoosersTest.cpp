// The system's choosers: driven as a user would, and replaced where the system has to refuse.

#include "CUI/Choosers.h"
#include "CUI/Data.h"
#include "Support/BoxAnswer.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"
#include "Support/TestSettings.h"
#include "Support/TestWindow.h"

#include <cderr.h>
#include <commdlg.h>

namespace {

DWORD s_dwCode;
DWORD WINAPI ExtendedError()
{
    return s_dwCode;
}

// A system that refuses three times before it has an answer.
std::string s_asked, s_folder;
BOOL WINAPI OpenAfterAll(OPENFILENAMEA *pRecord)
{
    s_asked += Text("%lu %lu %s; ", pRecord->lStructSize, pRecord->nMaxFile, pRecord->lpstrFile);
    if (pRecord->lStructSize != 76)
        return s_dwCode = CDERR_STRUCTSIZE, FALSE;
    if (*pRecord->lpstrFile)
        return s_dwCode = FNERR_INVALIDFILENAME, FALSE;
    if (pRecord->nMaxFile < 100000)
        return s_dwCode = FNERR_BUFFERTOOSMALL, memset(pRecord->lpstrFile, 'x', 2), FALSE;
    EXPECT_EQ(0, memcmp("Pictures\0*.bmp;*.dib\0All\0*.*\0", pRecord->lpstrFilter, 30));
    SetCurrentDirectoryA("C:\\");
    pRecord->nFilterIndex = 2;
    s_asked += Text("%lx %s", pRecord->Flags, pRecord->lpstrTitle);
    const std::string names = s_folder + std::string("\0one.bmp\0D:\\two.bmp\0", 21);
    return memcpy(pRecord->lpstrFile, names.data(), names.size()), TRUE;
}

BOOL WINAPI ColorWithOwn(CHOOSECOLORA *pRecord)
{
    EXPECT_EQ(GetSysColor(COLOR_BTNFACE), pRecord->rgbResult);
    s_asked += Text("%lx %lx; ", pRecord->lpCustColors[2], pRecord->lpCustColors[3]);
    pRecord->lpCustColors[3] = 0x123456;
    pRecord->rgbResult = 7;
    return pRecord->lpCustColors[2] == 0x5A;
}

// A library with no function but these, and the one that tells why they refused.
struct CFakeLibrary
{
    std::map<std::string, FARPROC> m_functions{{"CommDlgExtendedError", FARPROC(ExtendedError)},
                                               {"GetOpenFileNameA", FARPROC(OpenAfterAll)},
                                               {"GetSaveFileNameA", FARPROC(OpenAfterAll)},
                                               {"ChooseColorA", FARPROC(ColorWithOwn)}};
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> m_find{
        "GetProcAddress", [this](HMODULE, LPCSTR name) { return m_functions[name]; }};
};

}  // namespace

TEST(Choosers, AskTheSystemAgainInTheWayThatItWants)
{
    const CFakeLibrary library;
    const auto before = std::filesystem::current_path();
    CCUString sPath("a?b");
    CCUIFileChoice choice;
    choice.nFlags = OFN_CREATEPROMPT;
    choice.pszTitle = "Title";
    s_folder = "C:\\";
    EXPECT_TRUE(CUIChooseOpenFile(nullptr, sPath, "Pictures|*.bmp;*.dib|All|*.*", &choice));
    EXPECT_EQ("88 32768 a?b; 76 32768 a?b; 76 32768 ; 76 262144 ; 8380c Title", s_asked);
    EXPECT_STREQ("C:\\", sPath);
    EXPECT_EQ(2, choice.nFilter);
    EXPECT_EQ(before, std::filesystem::current_path());
    std::string chosen;
    for (const char *const folder : {"C:\\", "C:\\in"}) {
        s_folder = folder;
        CCUIChosenFiles files;
        EXPECT_TRUE(CUIChooseOpenFiles(nullptr, files, "Pictures|*.bmp;*.dib|All|*.*", &choice));
        for (int i = 0; i <= files.GetCount(); ++i)
            chosen += std::string(files.GetPath(i)) + " ";
    }
    EXPECT_EQ("C:\\one.bmp D:\\two.bmp  C:\\in\\one.bmp D:\\two.bmp  ", chosen);
    EXPECT_NE(std::string::npos, s_asked.find(" 83a0c Title"));
    CUIChooseSaveFile(nullptr, sPath, "Pictures|*.bmp;*.dib|All|*.*", &choice);
    EXPECT_NE(std::string::npos, s_asked.find(" 8a80e Title")) << "asks before it overwrites";
}

TEST(Choosers, KeepTheUsersOwnColorsAndTellAFailureFromACancel)
{
    const CTestSettings settings;
    const CFakeLibrary library;
    COLORREF cr = CUIGetWinData()->crSys[COLOR_BTNFACE];
    s_asked.clear();
    s_dwCode = 1;
    EXPECT_FALSE(CUIChooseColor(nullptr, cr));
    EXPECT_NE(DWORD(ERROR_CANCELLED), GetLastError());
    // Another program that runs changes one of those that are kept.
    COLORREF kept[16] = {};
    DWORD nSize = sizeof kept;
    CCURegistry registry;
    EXPECT_TRUE(CUIOpenSettings(registry, "Choosers", false) &&
                registry.GetBinary("CustomColors", kept, nSize));
    kept[2] = 0x5A;
    registry.SetBinary("CustomColors", kept, sizeof kept);
    EXPECT_TRUE(CUIChooseColor(nullptr, cr));
    EXPECT_EQ("ffffff ffffff; 5a 123456; ", s_asked);
    EXPECT_EQ(7u, cr);
}

TEST(Choosers, GiveWhatTheUserChooses)
{
    const CTemporaryDirectory directory;
    CCUIFileChoice choice;
    choice.pszFolder = directory.Path().c_str();
    choice.pszExtension = "txt";
    CCUString sPath("new");
    CTestWindow owner;
    ShowWindow(owner, SW_SHOWMINIMIZED);
    {
        const CBoxAnswer cancel("", IDCANCEL);
        EXPECT_FALSE(CUIChooseSaveFile(&owner, sPath));
        EXPECT_EQ(DWORD(ERROR_CANCELLED), GetLastError());
    }
    EXPECT_FALSE(IsIconic(owner));
    const CBoxAnswer answer("", IDOK);
    EXPECT_TRUE(CUIChooseSaveFile(&owner, sPath, nullptr, &choice));
    EXPECT_EQ(directory.Path() + "\\new.txt", std::string(sPath));
    // One beside which no other test makes or deletes folders, while the chooser lists them.
    sPath = "C:\\windows\\system32";
    EXPECT_TRUE(CUIChooseFolder(&owner, sPath, "Where to?"));
    EXPECT_STRCASEEQ("C:\\windows\\system32", sPath);
    COLORREF crText = RGB(255, 0, 0);
    LOGFONTA font = {};
    strcpy(font.lfFaceName, "Liberation Sans");
    EXPECT_TRUE(CUIChooseFont(&owner, font, &crText));
    EXPECT_STREQ("Liberation Sans", font.lfFaceName);
    EXPECT_EQ(COLORREF(RGB(255, 0, 0)), crText);
}
