#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "DiscMaker/Commands.h"
#include "DiscMaker/SkinFiles.h"
#include "DiscMaker/Skins.h"
#include "File/PictureFile.h"
#include "Picture/PngWriter.h"
#include "Support/ImportHook.h"

namespace {

typedef std::map<std::string, std::string> CFiles;

// Somebody who makes a disc: a skin and contents with which nothing is wrong, and the last disc.
class CMaker
{
public:
    CMaker() : m_skin(CopyFolder(m_folder, SKIN_FOLDERS[0]))
    {
        CreateDirectoryA(Path("in").c_str(), nullptr);
        for (const char *name : {"in\\Fennick.exe", "in\\RunFennick.exe", "in\\tutorial.exe"})
            Write(name, name);
        CopyFileA(TEST_LAUNCHER, Path("launcher").c_str(), TRUE);
        const CAnswer answer = MakeDisc();
        EXPECT_EQ(0, answer.m_nExitCode);
        EXPECT_EQ("", answer.m_text);
    }
    std::string Path(const std::string &name) const { return m_folder.Path() + "\\" + name; }
    CAnswer MakeDisc() const
    {
        return Ask(m_folder, "/disc \"" + m_skin + "\" \"" + Path("in") + "\" \"" + Path("out") +
                                 "\" /launcher \"" + Path("launcher") + "\"");
    }
    CAnswer Apply() const
    {
        return Ask(m_folder, "/apply \"" + m_skin + "\" /to \"" + Path("launcher") + "\"");
    }
    CAnswer Export() const
    {
        return Ask(m_folder, "/export \"" + m_skin + "\" \"" + Path("new") + "\"");
    }
    void Replace(const std::string &from, const std::string &to) const
    {
        std::string script = Contents(Path("skin\\Skin.rc"));
        ASSERT_NE(std::string::npos, script.find(from)) << from;
        for (size_t nAt = 0; (nAt = script.find(from, nAt)) != std::string::npos; nAt += to.size())
            script.replace(nAt, from.size(), to);
        Write("skin\\Skin.rc", script);
    }
    void Write(const char *name, const std::string &bytes) const
    {
        WriteFileBytes(Path(name), bytes);
    }
    void Draw(const char *name, const CBlob &bytes) const
    {
        Write(name, std::string(bytes->begin(), bytes->end()));
    }
    void Swap(const char *name, const char *other) const
    {
        MoveFileA(Path(name).c_str(), Path("x").c_str());
        MoveFileA(Path(other).c_str(), Path(name).c_str());
        MoveFileA(Path("x").c_str(), Path(other).c_str());
    }
    // All that there is, by its path.
    CFiles Files() const
    {
        CFiles files;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(m_folder.Path()))
            files[entry.path().string()] =
                entry.is_directory() ? "" : Contents(entry.path().string());
        return files;
    }

private:
    const CTemporaryDirectory m_folder;
    const std::string m_skin;
};

typedef std::function<void(const CMaker &)> FMistake;

FMistake InScript(const char *from, const char *to)
{
    return [=](const CMaker &maker) { maker.Replace(from, to); };
}

FMistake InFile(const char *name, const std::string &bytes)
{
    return [=](const CMaker &maker) { maker.Write(name, bytes); };
}

FMistake InPicture(const char *name, int cx, int cy, DWORD nPixel)
{
    return [=](const CMaker &maker) {
        maker.Draw(name, MakeBmpFile(TestPictureBlob(cx, cy, nPixel)));
    };
}

CBlob Png()
{
    CPixels pixels;
    pixels.Create(514, 345);
    return WritePng(pixels);
}

int CountLines(const CAnswer &answer)
{
    return static_cast<int>(std::count(answer.m_text.begin(), answer.m_text.end(), '\n'));
}

const int ANY = 0;
const std::string LAUNCHER = Contents(TEST_LAUNCHER);

const struct
{
    FMistake m_make;
    const char *m_pszLine;
    int m_nExitCode;
    int m_nLines = 1;
} MISTAKES[] = {
    {[](const CMaker &maker) {
         maker.Replace("#pragma code_page(65001)", "");
         maker.Replace("Exit this", "Exit f\xC3\xBCr");
     },
     "Skin.rc:18: The script is in UTF-8, but does not say so", 1, 2},
    {InScript("Exit this", "Exit \xCE\xB1"), "the character U+03B1 is not in the disc's", 1},
    {InScript("IDS_SETUP \"Install the software on your PC\"", ""), "the entry is missing", 1},
    {InScript("46,204", "600,204"), "Install line is outside of the picture", 1},
    {InScript("302,73", "402,73"), "goes 88 pixels beyond the right edge", 1},
    {InScript("46,236", "46,206"), "Exit line overlaps Install line", 1},
    {InScript("212,0,0", "312,0,0"), "312 is no part of a colour", 1},
    {InScript("46,172", "46 172"), "A comma is missing right behind number 1", 1},
    {InScript("13,280,500,332", "13,280,500,"), "Number 4 is missing", 1},
    {InScript("_POS \"", "_POS \"x"), "Number 1 is missing", 1, 11},
    {InScript("tutorial.exe", "lesson.exe"), "\"lesson.exe\" is not among the disc's", 1},
    {InScript("tutorial.exe", "..\\\\tutorial.exe"), "leaves the disc", 1},
    {InScript("tutorial.exe", "Tools\\tutorial.exe"), "a backslash is written twice", 1},
    {InScript("\"tutorial.exe", "\"\"\"tutorial.exe"), "a quote has no partner", 1},
    {InScript("Talvern DVR", "Talvern & Co"), "a single \"&\" is swallowed; write \"&&\"", 1},
    {InScript("26,1,0,Arial", "26,1,0,Times New Roman"), "is cut to \"Times\"", 1},
    {InScript("IDS_DISC_LABEL", "99 \"more\" IDS_DISC_LABEL"), "does not use this entry", 0},
    {InScript("LABEL \"Fennick", "LABEL \"What?"), "a character that a label cannot have", 1},
    {InFile("skin\\Skin.rc",
            "2 ICON Fennick.ico\n200 BITMAP Background.bmp\n309 BITMAP Product.bmp\n"
            "311 BITMAP Bullet.bmp\n"),
     "error: There are no texts at all.", 2},
    {InScript("Exit this program\"", "Exit this program"), "Skin.rc:", 2},
    {InPicture("skin\\Background.bmp", 514, 345, OPAQUE_PIXEL), "too dark under the text", 1, ANY},
    {InPicture("skin\\Background.bmp", 1600, 1200, MakePixel(240, 240, 220)),
     "The background is 1600 x 1200 pixels, more than 640 x 480", 1, ANY},
    {[](const CMaker &maker) { maker.Draw("skin\\Background.bmp", Png()); },
     "\"Background.bmp\" is no .bmp file: it is a PNG", 2},
    {[](const CMaker &maker) { DeleteFileA(maker.Path("skin\\Product.bmp").c_str()); },
     "\"Product.bmp\" cannot be read: it is not there", 2},
    {[](const CMaker &maker) { maker.Swap("skin\\Product.bmp", "skin\\Bullet.bmp"); },
     "The bullet is larger than the product picture. Were they swapped?", 1, ANY},
    {InFile("out\\tutorial.exe", "mine"), "Somebody has changed this file", 2},
    {InFile("in\\autorun.inf", "mine"), "The contents have a file of the name", 2},
    // Of the launcher.
    {InFile("launcher", ""), "The file is empty", 2},
    {InFile("launcher", "#!/bin/sh"), "not a program", 2},
    {[](const CMaker &maker) {
         CopyFileA("C:\\windows\\system32\\notepad.exe", maker.Path("launcher").c_str(), FALSE);
     },
     "This program is no launcher of discs", 2},
    {InFile("launcher", LAUNCHER.substr(0, LAUNCHER.size() - 5000)), "cut off", 2}};

}  // namespace

// Each has a line of its own. Nobody's file changes but those of the disc, which is a whole one.
TEST(Mistakes, AreToldAndNothingIsLost)
{
    for (const auto &mistake : MISTAKES) {
        const CMaker maker;
        mistake.m_make(maker);
        CFiles before = maker.Files();
        const CAnswer answer = maker.MakeDisc();
        EXPECT_EQ(mistake.m_nExitCode, answer.m_nExitCode) << answer.m_text;
        EXPECT_LT(answer.m_text.find(mistake.m_pszLine), answer.m_text.find('\n'))
            << mistake.m_pszLine << " is not at first in\n"
            << answer.m_text;
        EXPECT_TRUE(mistake.m_nLines == ANY || mistake.m_nLines == CountLines(answer))
            << answer.m_text;
        CFiles after = maker.Files();
        for (const char *name : {"out\\AutoRun.exe", "out\\autorun.inf", "out\\SHA256SUMS"}) {
            if (mistake.m_nExitCode < 2)
                after[maker.Path(name)] = before[maker.Path(name)];
        }
        EXPECT_TRUE(before == after) << mistake.m_pszLine;
    }
}

// What the system refuses while a disc is made, and what others do meanwhile.
TEST(Mistakes, OfTheSystemAreToldAndNothingIsLost)
{
    const CMaker maker;
    const CFiles before = maker.Files();
    const auto ExpectRefused = [&](const char *pszLine) {
        const CAnswer answer = maker.MakeDisc();
        EXPECT_EQ(2, answer.m_nExitCode);
        EXPECT_NE(std::string::npos, answer.m_text.find(pszLine)) << answer.m_text;
        EXPECT_EQ(1, CountLines(answer));
    };
    {
        CFakeCall<BOOL(const WCHAR *, SECURITY_ATTRIBUTES *)> readOnly(
            "CreateDirectoryW", [](const WCHAR *, SECURITY_ATTRIBUTES *) {
                SetLastError(ERROR_ACCESS_DENIED);
                return FALSE;
            });
        ExpectRefused("writing is not allowed there");
    }
    {
        typedef BOOL FWrite(HANDLE, const void *, DWORD, DWORD *, OVERLAPPED *);
        CFakeCall<FWrite> *pFull = nullptr;
        CFakeCall<FWrite> full("WriteFile",
                               [&](HANDLE h, const void *p, DWORD n, DWORD *pDone, OVERLAPPED *o) {
                                   SetLastError(ERROR_DISK_FULL);
                                   return n > 10000 ? FALSE : pFull->Original(h, p, n, pDone, o);
                               });
        pFull = &full;
        ExpectRefused("the disk is full");
    }
    EXPECT_TRUE(before == maker.Files());
    typedef HANDLE FOpen(const WCHAR *, DWORD, DWORD, SECURITY_ATTRIBUTES *, DWORD, DWORD, HANDLE);
    {
        CFakeCall<FOpen> *pDenied = nullptr;
        CFakeCall<FOpen> denied(
            "CreateFileW", [&](const WCHAR *name, DWORD nAccess, DWORD nShare,
                               SECURITY_ATTRIBUTES *p, DWORD nHow, DWORD nFlags, HANDLE h) {
                SetLastError(ERROR_ACCESS_DENIED);
                return wcsstr(name, L"in\\tutorial.exe")
                           ? INVALID_HANDLE_VALUE
                           : pDenied->Original(name, nAccess, nShare, p, nHow, nFlags, h);
            });
        pDenied = &denied;
        ExpectRefused("tutorial.exe: The file cannot be opened: this user may not read it");
    }
    // The script names a picture that has gone when it is that one's turn.
    CFakeCall<FOpen> *pOpen = nullptr;
    CFakeCall<FOpen> open(
        "CreateFileW", [&](const WCHAR *name, DWORD nAccess, DWORD nShare, SECURITY_ATTRIBUTES *p,
                           DWORD nHow, DWORD nFlags, HANDLE h) {
            if (wcsstr(name, L"Background.bmp"))
                DeleteFileA(maker.Path("skin\\Product.bmp").c_str());
            return pOpen->Original(name, nAccess, nShare, p, nHow, nFlags, h);
        });
    pOpen = &open;
    ExpectRefused("\"Product.bmp\" cannot be read: it is not there");
    EXPECT_EQ(2, maker.Apply().m_nExitCode);
    EXPECT_EQ(2, maker.Export().m_nExitCode);
    EXPECT_TRUE(LAUNCHER == Contents(maker.Path("launcher")));
}
