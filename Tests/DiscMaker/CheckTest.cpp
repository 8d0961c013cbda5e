#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "DiscMaker/Skins.h"
#include "Problems/Check.h"
#include "Support/BmpBytes.h"
#include "Support/TemporaryDirectory.h"

namespace {

// A folder with what the good skin's lines start, as long as a test runs.
class CContents : public CTemporaryDirectory
{
public:
    CContents()
    {
        CreateDirectoryA((Path() + "\\Tools").c_str(), nullptr);
        for (const char *name : {"Learn.exe", "Tools\\Run.exe", "My Setup.exe"})
            Make(name);
    }
    ~CContents()
    {
        DeleteFileA((Path() + "\\Tools\\Run.exe").c_str());
        RemoveDirectoryA((Path() + "\\Tools").c_str());
    }
};

std::string Lines(const CSkin &skin, const char *contents)
{
    CProblems problems;
    CheckSkin(skin, contents, problems);
    std::string lines;
    for (const CProblem &problem : problems)
        lines += std::string(ProblemLine(problem)) + "\n";
    return lines;
}

void ExpectLine(const CSkin &skin, const char *contents, const std::string &line)
{
    const std::string lines = Lines(skin, contents);
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(), '\n')) << lines;
    EXPECT_NE(std::string::npos, lines.find(line)) << line << " is not in\n" << lines;
}

struct CMistake
{
    UINT m_nID;
    const char *m_pszText;
    const char *m_pszLine;
};

// Each alone, in a skin that is good else: one line, and the right one.
const CMistake MISTAKES[] = {
    {IDS_HELP, "", "warning: IDS_HELP: Learn line: the entry is missing"},
    {IDS_SPARE_COLOR, "", "note: IDS_SPARE_COLOR"},
    {IDS_RUN_POS, "46;140", "A comma is missing right behind number 1"},
    {IDS_RUN_POS, "46", "A comma is missing right behind number 1"},
    {IDS_RUN_POS, "46,", "Number 2 is missing"},
    {IDS_RUN_POS, "x,140", "Number 1 is missing"},
    {IDS_RUN_POS, "46,140,7", "has more numbers than x,y. (The launcher leaves out \",7\".)"},
    {IDS_RUN_POS, "46,140px", "something behind its numbers"},
    {IDS_TITLE_POS, "99999999999,5", "a number is far too large"},
    {IDS_ABOUT_RECT, "13,260,500", "A comma is missing right behind number 3"},
    {IDS_ABOUT_RECT, "500,260,13,310", "right must be more than left"},
    {IDS_HIGHLIGHT_COLOR, "300,0,0",
     "300 is no part of a colour; 0 to 255 are. (The launcher "
     "takes 44 instead.)"},
    {IDS_TITLE_FONT, "26,1,0,Times New Roman", "\"Times New Roman\" is cut to \"Times\""},
    {IDS_TITLE_FONT, "26,1,0,Calibri", "not every system has the face \"Calibri\""},
    {IDS_TITLE_FONT, "26,1,0,Verdana", "note: IDS_TITLE_FONT: Title, font: Windows 95"},
    {IDS_TITLE_FONT, "26,1,0", "A comma is missing right behind number 3"},
    {IDS_TITLE_FONT, "0,1,0,Arial", "a height of 0 points"},
    {IDS_RUN, "Run \xC3\xBC", "looks like UTF-8"},
    {IDS_RUN, "Run && go", "\"&&\" stands for one \"&\" in the description only"},
    {IDS_RUN, "Run\nnow", "only the description can have several lines"},
    {IDS_ABOUT, "Dogs & cats", "a single \"&\" is swallowed"},
    {IDS_ABOUT, "1\n2\n3\n4", "the lines need"},
    {IDS_ABOUT, "This one is a very long line, for it has no break where one would be wanted",
     "a line is"},
    {IDS_RUN_POS, "600,140", "Run line is outside of the picture"},
    {IDS_RUN_POS, "500,140", "beyond the right edge of the picture. (It is cut off there.)"},
    {IDS_RUN_POS, "46,-5", "Run line goes 5 pixels beyond the upper edge"},
    {IDS_RUN_POS, "46,190", "Run line overlaps Install line"},
    {IDS_RUN_ICON_POS, "15,186", "Run line, bullet overlaps Install line, bullet"},
    {IDS_TITLE_POS, "250,20", "note: IDS_TITLE_POS: Title overlaps Product picture"},
    {IDS_HIGHLIGHT_COLOR, "240,240,200", "much like the picture under it"},
    {IDS_RUN_COMMAND, "C:\\Run.exe", "names a drive"},
    {IDS_RUN_COMMAND, "\\\\server\\Run.exe", "is on a network"},
    {IDS_RUN_COMMAND, "Tools\\..\\..\\Run.exe", "leaves the disc by \"..\""},
    {IDS_RUN_COMMAND, "\\Tools\\Run.exe", "begins with a backslash"},
    {IDS_RUN_COMMAND, "Tools/Run.exe", "not by \"/\""},
    {IDS_RUN_COMMAND, "Tools\\\\Run.exe", "two backslashes stand side by side"},
    {IDS_RUN_COMMAND, "\"Learn.exe", "a quote has no partner"},
    {IDS_RUN_COMMAND, "Tools\tools.exe", "In Skin.rc a backslash is written twice"},
    {IDS_RUN_COMMAND, "Readme.txt", "the launcher cannot open documents"},
    {IDS_RUN_COMMAND, "Other.exe",
     "error: IDS_RUN_COMMAND: Run line, program: \"Other.exe\" is "
     "not among the disc's contents. (A click on the line does"},
    {IDS_RUN_COMMAND, "Tools", "\"Tools\" is not among"},
    {IDS_RUN_COMMAND, "My Setup.exe /x", "a name with spaces stands in no quotes"},
    {IDS_DISC_LABEL, "A label of more than 32 characters", "more than 32 characters"},
    {IDS_DISC_LABEL, "What?", "a character that a label cannot have"},
    {99, "Fennick", "note: 99: The launcher does not use this entry"}};

}  // namespace

TEST(Check, FindsNothingInAGoodSkin)
{
    const CContents contents;
    EXPECT_EQ("", Lines(GoodSkin(), contents.Path().c_str()));
    CSkin skin = GoodSkin();
    for (const char *command : {"Learn", "notepad Readme.txt", "LEARN.EXE", "Tools\\.\\Run"}) {
        skin.m_texts[0].m_entries[IDS_RUN_COMMAND] = CWideText(command, 1252);
        EXPECT_EQ("", Lines(skin, contents.Path().c_str())) << command;
    }
    EXPECT_NE(std::string::npos, Lines(CSkin(), "").find("error: There are no texts at all."));
}

TEST(Check, TellsEachMistake)
{
    const CContents contents;
    for (const CMistake &mistake : MISTAKES) {
        CSkin skin = GoodSkin();
        skin.m_texts[0].m_entries[mistake.m_nID] = CWideText(mistake.m_pszText, 1252);
        ExpectLine(skin, contents.Path().c_str(), mistake.m_pszLine);
    }
    CSkin skin = GoodSkin();
    const WCHAR greek[] = {L'A', 0x3B1};
    skin.m_texts[0].m_entries[IDS_RUN] = CWideText(greek, 2);
    ExpectLine(skin, "", "the character U+03B1 is not in the disc's code page 1252");
    // In Greek it is; what a block of that language lacks is missing, other blocks are the
    // neutral's.
    skin.m_texts[0].m_entries[IDS_RUN] = CWideText("Run", 1252);
    skin.m_texts.push_back({MAKELANGID(LANG_GREEK, SUBLANG_DEFAULT), skin.m_texts[0].m_entries});
    skin.m_texts[1].m_entries[IDS_RUN] = CWideText(greek, 2);
    skin.m_texts[1].m_entries.erase(IDS_TITLE);
    for (UINT nID = 0; nID < 16; ++nID)
        skin.m_texts[1].m_entries.erase(nID);
    ExpectLine(skin, "", "warning: Greek: IDS_TITLE: Title: the entry is missing");
}

// Once, not entry by entry.
TEST(Check, TellsThatThereAreNoTexts)
{
    CSkin skin = GoodSkin();
    const UINT lines[] = {IDS_CAPTION, IDS_TITLE, IDS_HELP, IDS_RUN, IDS_SETUP, IDS_EXIT};
    for (const UINT nID : lines) {
        skin.m_texts[0].m_entries.erase(nID);
        EXPECT_EQ(std::string::npos, Lines(skin, "").find("are all empty"));
    }
    skin.m_texts[0].m_entries[IDS_ABOUT] = CWideText();
    ExpectLine(skin, "", "error: IDS_CAPTION: The titles, the lines and the description are all");
    for (auto &entry : skin.m_texts[0].m_entries)
        entry.second = CWideText();
    ExpectLine(skin, "", "error: There are no texts at all. (The launcher would show its pictures");
    skin.m_texts.push_back({MAKELANGID(LANG_GREEK, SUBLANG_DEFAULT), {}});
    ExpectLine(skin, "", "error: There are no texts at all.");
    skin.m_texts.clear();
    ExpectLine(skin, "", "error: There are no texts at all.");
}

TEST(Check, TellsMistakesInPictures)
{
    const auto with = [](SkinPicture picture, const CBlob &blob) {
        CSkin skin = GoodSkin();
        skin.m_pictures[picture] = blob;
        return skin;
    };
    const CBlob whole = GoodSkin().m_pictures[PictureBackground];
    const CBlob cut = PartOf(whole, 0, whole->size() - 1);
    ExpectLine(with(PictureBackground, nullptr), "",
               "error: bitmap 200: The background is missing");
    ExpectLine(with(PictureBackground, cut), "", "its data is cut off");
    ExpectLine(with(PictureBullet, nullptr), "", "warning: bitmap 311: The bullet is missing");
    ExpectLine(with(PictureBackground, TestPictureBlob(641, 400, 0xFFFFFFFF)), "",
               "is 641 x 400 pixels, more than 640 x 480");
    const std::string swapped = Lines(with(PictureBullet, whole), "");
    EXPECT_NE(std::string::npos, swapped.find("larger than the product picture. Were they"));
    const std::string dark =
        Lines(with(PictureBackground, TestPictureBlob(514, 345, MakePixel(40, 40, 40))), "");
    int nFound = 0;
    for (size_t at = 0; (at = dark.find("too dark under the text", at)) != std::string::npos; ++at)
        ++nFound;
    EXPECT_EQ(6, nFound) << dark;
    // What old systems do not draw: too many bits, from the top, runs, a long header.
    for (const CBmpBytes &bmp : {CBmpBytes(9, 6, 32), CBmpBytes(9, -6, 24),
                                 CBmpBytes(9, 6, 8, 40, BI_RLE8), CBmpBytes(9, 6, 24, 108)})
        ExpectLine(with(PictureBullet, MakeBlob(bmp.Packed(0))), "",
                   "warning: bitmap 311: The bullet is not a plain bitmap of 24 bits or less.");
    CSkin noIcon = GoodSkin();
    noIcon.m_icon = nullptr;
    ExpectLine(noIcon, "", "warning: IDI_AUTORUN: The icon is missing");
    for (const auto &bytes : {std::vector<BYTE>{0, 0, 2, 0, 0, 0}, {0, 0, 1, 0, 0}}) {
        noIcon.m_icon = MakeBlob(bytes);
        ExpectLine(noIcon, "", "warning: IDI_AUTORUN: The icon is no .ico file.");
    }
}
