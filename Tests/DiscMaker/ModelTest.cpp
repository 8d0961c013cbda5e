#include <gtest/gtest.h>

#include <string>

#include "Model/Problem.h"
#include "Model/SkinEntry.h"
#include "Model/WideText.h"
#include "Resource.h"

// What cannot be shown in a code page is told; what can be comes back.
TEST(WideText, TellsWhatACodePageLacks)
{
    const WCHAR text[] = {L'a', 0xE4, 0x20AC, 0x3B1};
    bool bLost = false;
    EXPECT_STREQ("a\xE4\x80", CWideText(text, 3).ToCodePage(1252, &bLost));
    EXPECT_FALSE(bLost);
    EXPECT_EQ(CWideText(text, 3), CWideText("a\xE4\x80", 1252));
    CWideText(text, 4).ToCodePage(1252, &bLost);
    EXPECT_TRUE(bLost);
}

// What nobody touched stays, also where the code page has one character for many.
TEST(WideText, KeepsWhatAnEditDoesNotTouch)
{
    const auto wide = [](const std::u16string &text) {
        return CWideText(reinterpret_cast<const WCHAR *>(text.data()), text.size());
    };
    const CWideText text = wide(u"\u0434\u0436 Gr\u00FC\u00DFe \u6F22!\U0001F600.");
    const CCUString sFace = wide(u"\U0001F600").ToCodePage(1252);  // one question mark, or two
    EXPECT_EQ(text, text.Edited(text.ToCodePage(1252), 1252));
    const struct
    {
        CCUString m_sEdited;
        const char16_t *m_pszKept;
    } EDITS[] = {{"?? Gr\xFC\xDF"
                  "e?",
                  u"\u0434\u0436 Gr\u00FC\u00DFe?"},
                 {"x?? Gr\xFC\xDF"
                  "e ?!" +
                      sFace + ".",
                  u"x\u0434\u0436 Gr\u00FC\u00DFe \u6F22!\U0001F600."},
                 {"?? Grand ?!" + sFace + ".", u"\u0434\u0436 Grand \u6F22!\U0001F600."},
                 {"?? Gr\xFC\xDF"
                  "e \x80!" +
                      sFace + ".",
                  u"\u0434\u0436 Gr\u00FC\u00DFe \u20AC!\U0001F600."},
                 {"", u""}};
    for (const auto &edit : EDITS)
        EXPECT_EQ(wide(edit.m_pszKept), text.Edited(edit.m_sEdited, 1252)) << edit.m_sEdited;
}

TEST(SkinEntry, ReadsAsTheLauncherDoes)
{
    SkinFont font = {1, 2, 3, "Old"};
    EXPECT_TRUE(ParseFont("26,1,0,Times New Roman", font));
    EXPECT_STREQ("Times", font.m_sFace);
    EXPECT_STREQ("26,1,0,Times", FormatFont(font));
    EXPECT_FALSE(ParseFont("9,0,0,", font));
    EXPECT_EQ(9, font.m_nPoints);
    EXPECT_STREQ("Times", font.m_sFace);
}

TEST(Problem, SaysEverythingOnceInWords)
{
    const CProblem problem = {ProblemError, IDS_RUN_COMMAND, "German",
                              "Run line, program: \"a.exe\" is gone.", "nothing happens"};
    EXPECT_STREQ(
        "error: German: IDS_RUN_COMMAND: Run line, program: \"a.exe\" is gone. (nothing happens)",
        ProblemLine(problem));
    EXPECT_STREQ("Run line, program (German)", ProblemPlace(problem));
    EXPECT_STREQ("Label", ProblemPlace({ProblemNote, IDS_DISC_LABEL, "", "", ""}));
    EXPECT_STREQ("Exit line", ProblemPlace({ProblemNote, IDS_EXIT, "", "", ""}));
    EXPECT_STREQ("Icon", ProblemPlace({ProblemNote, PROBLEM_ICON, "", "", ""}));
    EXPECT_STREQ("note: IDS_DISC_LABEL: ", ProblemLine({ProblemNote, IDS_DISC_LABEL, "", "", ""}));
    EXPECT_STREQ("Run line, program (German)\n\"a.exe\" is gone. Nothing happens.",
                 ProblemsInWords({problem}));
    const CCUString sMany = ProblemsInWords(CProblems(10, problem));
    EXPECT_STREQ("There are 4 more.", sMany.Right(17));
}
