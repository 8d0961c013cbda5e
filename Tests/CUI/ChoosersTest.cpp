// The system's choosers: driven as a user would, and replaced where the system has to refuse.

#include <fstream>

#include "CUI/Choosers.h"
#include "CUI/Data.h"
#include "Support/ImportHook.h"
#include "Support/Reports.h"
#include "Support/TestSettings.h"
#include "Support/TestWindow.h"

#include <cderr.h>
#include <commdlg.h>

namespace {

// Types a name into a file chooser (unless empty) and presses a button of the dialog. The name's
// field is there some time after the dialog.
struct CDriver : CTestWindow
{
    CDriver(const std::string &name, WPARAM nButton)
    {
        m_on[WM_TIMER] = [=] { return Drive(name, nButton), 0; };
        SetTimer(*this, 1, 20, nullptr);
    }
    void Drive(const std::string &name, WPARAM nButton)
    {
        const HWND hDialog = GetLastActivePopup(*this);
        if (hDialog == *this || !IsWindowVisible(hDialog))
            return;
        EXPECT_FALSE(IsWindowEnabled(*this) || IsIconic(*this));
        HWND hName = GetDlgItem(hDialog, 0x480);
        hName = hName ? hName : GetDlgItem(hDialog, 0x47C);
        if (!name.empty() && !(hName && SetWindowTextA(hName, name.c_str())))
            return;
        KillTimer(*this, 1);
        PostMessageA(hDialog, WM_COMMAND, nButton, LPARAM(GetDlgItem(hDialog, int(nButton))));
    }
};

DWORD s_dwCode;
DWORD WINAPI ExtendedError()
{
    return s_dwCode;
}

// A library with no function but the test's, and the one that tells why that refused.
struct CFakeLibrary
{
    template <typename F>
    CFakeLibrary(const char *name, F *pFunction)
        : m_functions{{"CommDlgExtendedError", FARPROC(ExtendedError)}, {name, FARPROC(pFunction)}}
    {
    }
    std::map<std::string, FARPROC> m_functions;
    const CFakeCall<FARPROC(HMODULE, LPCSTR)> m_find{
        "GetProcAddress", [this](HMODULE, LPCSTR name) { return m_functions[name]; }};
};

BOOL WINAPI Refuse(OPENFILENAMEA *pRecord)
{
    EXPECT_TRUE(pRecord->Flags & OFN_OVERWRITEPROMPT);
    return FALSE;
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
    return s_dwCode = 0, pRecord->lpCustColors[2] == 0x5A;
}

}  // namespace

// First, before the libraries are there.
TEST(Choosers, TellAFailureFromACancel)
{
    CDumped dumped;
    CCUString sPath("kept");
    {
        const CFakeCall<HMODULE(LPCSTR, HANDLE, DWORD)> load(
            "LoadLibraryExA", [](LPCSTR, HANDLE, DWORD) {
                return SetLastError(ERROR_MOD_NOT_FOUND), HMODULE(nullptr);
            });
        EXPECT_FALSE(CUIChooseFolder(nullptr, sPath));
        EXPECT_EQ(DWORD(ERROR_MOD_NOT_FOUND), GetLastError());
        EXPECT_FALSE(CUIChooseOpenFile(nullptr, sPath));
        EXPECT_EQ(DWORD(ERROR_MOD_NOT_FOUND), GetLastError());
    }
    const CFakeLibrary library("GetSaveFileNameA", Refuse);
    s_dwCode = 1;
    EXPECT_FALSE(CUIChooseSaveFile(nullptr, sPath));
    EXPECT_NE(DWORD(ERROR_CANCELLED), GetLastError());
    EXPECT_FALSE(dumped.m_text.empty());
    EXPECT_STREQ("kept", sPath);
}

TEST(Choosers, AskTheSystemAgainInTheWayThatItWants)
{
    const CFakeLibrary library("GetOpenFileNameA", OpenAfterAll);
    char szBefore[MAX_PATH] = "", szAfter[MAX_PATH] = "";
    GetCurrentDirectoryA(MAX_PATH, szBefore);
    CCUString sPath("a?b");
    CCUIFileChoice choice;
    choice.nFlags = OFN_CREATEPROMPT;
    choice.pszTitle = "Title";
    s_folder = "C:\\";
    EXPECT_TRUE(CUIChooseOpenFile(nullptr, sPath, "Pictures|*.bmp;*.dib|All|*.*", &choice));
    EXPECT_EQ("88 32768 a?b; 76 32768 a?b; 76 32768 ; 76 262144 ; 8380c Title", s_asked);
    EXPECT_STREQ("C:\\", sPath);
    EXPECT_EQ(2, choice.nFilter);
    GetCurrentDirectoryA(MAX_PATH, szAfter);
    EXPECT_STREQ(szBefore, szAfter);
    CCUIChosenFiles files;
    EXPECT_EQ(0, files.GetCount());
    choice.nFlags = 0;
    for (const char *const folder : {"C:\\", "C:\\in"}) {
        s_asked.clear();
        s_folder = folder;
        EXPECT_TRUE(CUIChooseOpenFiles(nullptr, files, "Pictures|*.bmp;*.dib|All|*.*", &choice));
        EXPECT_NE(std::string::npos, s_asked.find(" 81a0c Title"));
        EXPECT_EQ(2, files.GetCount());
        EXPECT_EQ(s_folder == "C:\\" ? "C:\\one.bmp" : "C:\\in\\one.bmp",
                  std::string(files.GetPath(0)));
        EXPECT_STREQ("D:\\two.bmp", files.GetPath(1));
        EXPECT_TRUE(files.GetPath(2).IsEmpty());
    }
}

TEST(Choosers, KeepTheUsersOwnColors)
{
    const CTestSettings settings;
    const CFakeLibrary library("ChooseColorA", ColorWithOwn);
    COLORREF cr = CUIGetWinData()->crSys[COLOR_BTNFACE];
    s_asked.clear();
    EXPECT_FALSE(CUIChooseColor(nullptr, cr));
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
    const std::string &folder = directory.Path();
    std::ofstream(folder + "\\one.txt") << "text";
    CCUIFileChoice choice;
    choice.pszFolder = folder.c_str();
    choice.pszExtension = "txt";
    CCUString sPath;
    CDriver one("one.txt", IDOK);
    EXPECT_TRUE(CUIChooseOpenFile(&one, sPath, "Texts|*.txt", &choice));
    EXPECT_EQ(folder + "\\one.txt", std::string(sPath));
    CDriver save("new", IDOK), cancel("", IDCANCEL), browse("", IDOK), look("", IDOK);
    ShowWindow(cancel, SW_SHOWMINIMIZED);
    EXPECT_TRUE(CUIChooseSaveFile(&save, sPath, nullptr, &choice));
    EXPECT_EQ(folder + "\\new.txt", std::string(sPath));
    EXPECT_FALSE(CUIChooseSaveFile(&cancel, sPath));
    EXPECT_EQ(DWORD(ERROR_CANCELLED), GetLastError());
    EXPECT_TRUE(IsWindowEnabled(cancel));
    // One beside which no other test makes or deletes folders, while the chooser lists them.
    char szSystem[MAX_PATH] = "";
    GetSystemDirectoryA(szSystem, MAX_PATH);
    sPath = szSystem;
    EXPECT_TRUE(CUIChooseFolder(&browse, sPath, "Where to?"));
    EXPECT_EQ(0, sPath.CompareNoCase(szSystem)) << sPath;
    COLORREF crText = RGB(255, 0, 0);
    LOGFONTA font = {};
    strcpy(font.lfFaceName, "Liberation Sans");
    EXPECT_TRUE(CUIChooseFont(&look, font, &crText));
    EXPECT_STREQ("Liberation Sans", font.lfFaceName);
    EXPECT_EQ(COLORREF(RGB(255, 0, 0)), crText);
}
