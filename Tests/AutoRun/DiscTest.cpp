// The disc as it is laid out: what the files on it hold, and what its sample programs show.

#include <gtest/gtest.h>

#include <string.h>
#include <fstream>
#include <set>
#include <string>
#include <utility>

#include "Resource.h"
#include "Samples/DiscProgram.h"
#include "Support/ProgramFile.h"
#include "Support/StartedProgram.h"
#include "Support/TemporaryDirectory.h"

namespace {

std::string OnDisc(const std::string &name)
{
    char path[MAX_PATH] = "";
    GetFullPathNameA((AUTORUN_DISC "/" + name).c_str(), MAX_PATH, path, nullptr);
    return path;
}

// The first section as it is in the file: the mapped one is changed by where it is mapped.
std::string CodeIn(const char *path)
{
    const CProgramFile program(path);
    const IMAGE_SECTION_HEADER &section = *IMAGE_FIRST_SECTION(&program.Headers());
    std::string code(section.SizeOfRawData, '\0');
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(section.PointerToRawData));
    file.read(&code[0], static_cast<std::streamsize>(code.size()));
    return file ? code : "";
}

const BITMAPINFOHEADER &Header(const std::string &bitmap)
{
    return *reinterpret_cast<const BITMAPINFOHEADER *>(bitmap.data());
}

// The index in the palette at a place of an 8-bit bitmap.
BYTE Pixel(const std::string &bitmap, LONG x, LONG y)
{
    const BITMAPINFOHEADER &header = Header(bitmap);
    const LONG nRow = (header.biWidth + 3) / 4 * 4;
    return static_cast<BYTE>(
        bitmap[static_cast<size_t>(40 + 1024 + (header.biHeight - 1 - y) * nRow + x)]);
}

std::string Lower(std::string text)
{
    CharLowerA(&text[0]);
    return text;
}

// Each as "library.dll name", from a file with "library.dll: name name ..." for each library.
std::set<std::string> AllowedImports()
{
    std::set<std::string> allowed;
    std::ifstream file(AUTORUN_IMPORTS);
    std::string library;
    for (std::string word; file >> word;) {
        if (word.back() == ':')
            library = word.substr(0, word.size() - 1);
        else
            allowed.insert(library + " " + word);
    }
    return allowed;
}

}  // namespace

TEST(Disc, StartsTheLauncherAndShowsItsIcon)
{
    const char *const entries[][2] = {
        {"open", "AutoRun.exe"}, {"icon", "AutoRun.exe,0"}, {"label", "Fennick 4.1"}};
    for (const auto &entry : entries) {
        char text[100] = "";
        GetPrivateProfileStringA("autorun", entry[0], "", text, sizeof text,
                                 OnDisc("autorun.inf").c_str());
        EXPECT_STREQ(text, entry[1]);
    }
    EXPECT_EQ(GetFileAttributesA(OnDisc("AutoRun.exe").c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0u);
}

TEST(Launcher, NeedsNothingThatTheFirst32BitWindowsLacks)
{
    const CProgramFile launcher(AUTORUN_SHIPPED_LAUNCHER);
    ASSERT_TRUE(launcher.Module());
    const IMAGE_OPTIONAL_HEADER &header = launcher.Headers().OptionalHeader;
    EXPECT_EQ(header.Subsystem, IMAGE_SUBSYSTEM_WINDOWS_GUI);
    EXPECT_EQ(header.MajorSubsystemVersion, 4);
    EXPECT_EQ(header.MinorSubsystemVersion, 0);
    EXPECT_EQ(header.MajorOperatingSystemVersion, 4);
    EXPECT_EQ(header.DllCharacteristics, 0x40 | 0x100) << "address randomisation, no execution";
    EXPECT_GT(header.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0u);
    EXPECT_EQ(launcher.Headers().FileHeader.NumberOfSymbols, 0u);
    const IMAGE_SECTION_HEADER *pSection = IMAGE_FIRST_SECTION(&launcher.Headers());
    DWORD nBytes = header.SizeOfHeaders;
    for (WORD i = 0; i < launcher.Headers().FileHeader.NumberOfSections; ++i)
        nBytes += pSection[i].SizeOfRawData;
    EXPECT_LE(nBytes - header.DataDirectory[IMAGE_DIRECTORY_ENTRY_RESOURCE].Size, 256u * 1024);

    // Before a name is added there: Windows 95 and NT 4 have it?
    const std::set<std::string> allowed = AllowedImports();
    const auto *pImport = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR *>(
        launcher.At(header.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress));
    ASSERT_TRUE(pImport->Name);
    for (; pImport->Name; ++pImport) {
        const std::string library =
            Lower(reinterpret_cast<const char *>(launcher.At(pImport->Name)));
        const auto *pName =
            reinterpret_cast<const DWORD *>(launcher.At(pImport->OriginalFirstThunk));
        ASSERT_TRUE(*pName);
        for (; *pName; ++pName) {
            // Behind a hint of two bytes.
            const std::string name = reinterpret_cast<const char *>(launcher.At(*pName + 2));
            EXPECT_EQ(allowed.count(library + " " + name), 1u) << library << " " << name;
        }
    }
    EXPECT_NE(launcher.Resource(1, RT_MANIFEST).find("\"asInvoker\""), std::string::npos);
    const std::string version = launcher.Resource(VS_VERSION_INFO, RT_VERSION);
    const DWORD fixed[] = {VS_FFI_SIGNATURE, VS_FFI_STRUCVERSION, 0x00040001, 0};
    EXPECT_NE(version.find(std::string(reinterpret_cast<const char *>(fixed), sizeof fixed)),
              std::string::npos);
}

// Anybody may have written to the folder of a launcher that was copied from its disc. The system
// itself takes the libraries of the import list from its own folder.
TEST(Launcher, LoadsNoLibraryFromItsOwnFolder)
{
    const CTemporaryDirectory folder;
    const std::string launcher = folder.Path() + "\\Beside.exe";
    ASSERT_TRUE(CopyFileA(AUTORUN_SHIPPED_LAUNCHER, launcher.c_str(), FALSE));
    // Wine takes its own of a name that it has too, unless it is told to do what Windows does.
    HKEY hOverrides = nullptr;
    RegCreateKeyA(HKEY_CURRENT_USER, "Software\\Wine\\AppDefaults\\Beside.exe\\DllOverrides",
                  &hOverrides);
    // winmm.dll, and one that it needs itself.
    for (const std::string name : {"winmm", "msacm32"}) {
        const std::string planted = folder.Path() + "\\" + name + ".dll";
        ASSERT_TRUE(CopyFileA(AUTORUN_PLANTED, planted.c_str(), FALSE));
        RegSetValueExA(hOverrides, name.c_str(), 0, REG_SZ,
                       reinterpret_cast<const BYTE *>("native,builtin"), 15);
    }
    RegCloseKey(hOverrides);
    const CStartedProgram program("\"" + launcher + "\"");
    EXPECT_TRUE(program.Window());
    EXPECT_EQ(program.End(IDCANCEL), 0u);
}

TEST(Skin, ShipsItsStringTableAndItsDialog)
{
    const std::string table =
        "1=Install the software on your PC;2=Exit this program;5=46,236;6=46,204;"
        "7=13,280,500,332;9=Fennick Setup;10=Fennick.exe;11=212,0,0;12=192,0,0;13=15,0,0,Arial;"
        "14=11,0,0,Arial;20=Run the software from the CD;21=Learn to use the software;24=46,172;"
        "25=46,140;26=RunFennick.exe;27=tutorial.exe;28=Fennick 4.1;30=13,93;32=26,1,0,Arial;"
        "33=302,73;34=13,98;35=The Fennick is a software application that lets you replay stored "
        "video \nclips (.avi) recorded by a Talvern DVR.;36=15,144;37=15,176;38=15,208;39=15,240;";
    const CProgramFile launcher(AUTORUN_SHIPPED_LAUNCHER);
    std::string shipped;
    for (UINT nID = 0; nID < 64; ++nID) {
        char text[300];
        if (LoadStringA(launcher.Module(), nID, text, sizeof text) > 0)
            shipped += std::to_string(nID) + "=" + text + ";";
    }
    EXPECT_EQ(shipped, table);

    const WORD dialog[] = {1,    0xFFFF, 0,   0,  // extended
                           0,    4,               // WS_EX_APPWINDOW
                           0x40, 0x9000, 0,  // DS_SETFONT, WS_POPUP and WS_VISIBLE; no controls
                           0,    0,      107, 71,  // dialog units
                           0,    0,      0,        // menu, class, caption
                           8};
    const std::string found = launcher.Resource(IDD_AUTORUN, RT_DIALOG);
    ASSERT_GE(found.size(), sizeof dialog);
    EXPECT_EQ(memcmp(found.data(), dialog, sizeof dialog), 0);
    EXPECT_EQ(wcscmp(reinterpret_cast<const wchar_t *>(found.data() + sizeof dialog + 4),
                     L"MS Sans Serif"),
              0);
}

// Pictures are drawn opaque: what looks cut out has the background's own pixels around it.
TEST(Skin, PicturesFitTheBackground)
{
    const CProgramFile launcher(AUTORUN_SHIPPED_LAUNCHER);
    const std::string background = launcher.Resource(IDB_BACKGROUND, RT_BITMAP);
    EXPECT_EQ(Header(background).biWidth, 514);
    EXPECT_EQ(Header(background).biHeight, 345);
    for (const int nID : {IDB_BACKGROUND, IDB_PRODUCT, IDB_BULLET}) {
        const std::string bitmap = launcher.Resource(nID, RT_BITMAP);
        ASSERT_GT(bitmap.size(), 40u + 1024u);
        EXPECT_EQ(Header(bitmap).biBitCount, 8);
        EXPECT_EQ(bitmap.substr(40, 1024), background.substr(40, 1024)) << "one palette";
    }
    const std::string product = launcher.Resource(IDB_PRODUCT, RT_BITMAP);
    EXPECT_LE(302 + Header(product).biWidth, 514);
    EXPECT_LE(73 + Header(product).biHeight, 280);
    const std::string bullet = launcher.Resource(IDB_BULLET, RT_BITMAP);
    const LONG nLast = Header(bullet).biWidth - 1;
    for (const LONG y : {144, 176, 208, 240}) {
        for (const POINT corner : {POINT{0, 0}, POINT{nLast, 0}, POINT{0, nLast}})
            EXPECT_EQ(Pixel(bullet, corner.x, corner.y),
                      Pixel(background, 15 + corner.x, y + corner.y));
    }

    const std::string icon = launcher.Resource(IDI_AUTORUN, RT_GROUP_ICON);
    std::set<std::pair<int, int>> sizes;  // and depths
    for (size_t n = 6; n + 14 <= icon.size(); n += 14)
        sizes.insert({icon[n], icon[n + 6]});
    const std::set<std::pair<int, int>> wanted = {{16, 8},  {16, 32}, {32, 8},
                                                  {32, 32}, {48, 8},  {48, 32}};
    EXPECT_EQ(sizes, wanted);
}

TEST(Skin, AnotherOneHasTheSameCode)
{
    const std::string code = CodeIn(AUTORUN_SHIPPED_LAUNCHER);
    EXPECT_GT(code.size(), 0x1000u);
    EXPECT_TRUE(CodeIn(AUTORUN_OTHER_LAUNCHER) == code);
    const CProgramFile other(AUTORUN_OTHER_LAUNCHER);
    char text[100] = "";
    LoadStringA(other.Module(), IDS_TITLE, text, sizeof text);
    EXPECT_STREQ(text, "Harbour Tides 2.0");
}

TEST(DiscProgram, SaysWhatItStandsForAndWhereItWasStartedFrom)
{
    const char *const programs[][2] = {{"Fennick.exe", "Install Fennick"},
                                       {"RunFennick.exe", "Fennick from the disc"},
                                       {"tutorial.exe", "Learn to use Fennick"}};
    const CTemporaryDirectory folder;
    for (const auto &shown : programs) {
        const std::string path = OnDisc(shown[0]);
        const std::string command = "\"" + path + "\" of a kind";
        const CStartedProgram program(command, folder.Path());
        ASSERT_TRUE(program.Window()) << path;
        const auto field = [&program](int nID) {
            char text[MAX_PATH] = "";
            const HWND hField = nID ? GetDlgItem(program.Window(), nID) : program.Window();
            SendMessageA(hField, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
            return std::string(text);
        };
        EXPECT_EQ(field(0), shown[1]);
        EXPECT_EQ(Lower(field(IDC_MODULE)), Lower(path));
        EXPECT_EQ(Lower(field(IDC_DIRECTORY)), Lower(folder.Path()));
        EXPECT_EQ(field(IDC_COMMAND_LINE), command);
        EXPECT_EQ(program.End(IDOK), 0u);
    }
}
