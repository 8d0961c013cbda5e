#include <gtest/gtest.h>
#include <algorithm>
#include <functional>
#include <random>

#include "Model/Document.h"
#include "Model/EntryLines.h"
#include "Model/EntryText.h"
#include "Model/Recovery.h"
#include "Model/SkinBytes.h"
#include "Model/SkinEntry.h"
#include "Resource.h"
#include "Support/ChildProcess.h"
#include "Support/FailingCall.h"
#include "Support/TemporaryDirectory.h"

namespace {

CSkin TestSkin()
{
    CSkin skin;
    skin.m_texts.push_back({0,
                            {{IDS_TITLE, CWideText("Title", 1252)},
                             {IDS_RUN_POS, CWideText("46,172", 1252)},
                             {77, CWideText("kept", 1252)}}});
    skin.m_pictures[PictureBullet] = MakeBlob(std::vector<BYTE>(1000, 7));
    skin.m_version[CWideText("ProductName", 1252)] = CWideText("Fennick", 1252);
    return skin;
}

// Everything that is in a skin, for comparison.
std::vector<BYTE> All(const CDocument &document)
{
    return PackSkin(document.Skin());
}

// What the process has taken of its heaps, which the system gives memory in large pieces.
size_t MemoryBytes()
{
    HANDLE heaps[32];
    const DWORD nHeaps = std::min<DWORD>(GetProcessHeaps(32, heaps), 32);
    size_t nBytes = 0;
    for (DWORD i = 0; i < nHeaps; ++i) {
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heaps[i], &entry)) {
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
                nBytes += entry.cbData + entry.cbOverhead;
        }
    }
    return nBytes;
}

}  // namespace

TEST(Document, TakesBackEveryKindOfChangeToTheByte)
{
    CDocument document;
    document.Start(TestSkin());
    std::vector<std::vector<BYTE>> states = {All(document)};
    const auto blob = MakeBlob(std::vector<BYTE>(10, 1));
    const std::function<void()> CHANGES[] = {[&] { document.SetEntry(IDS_TITLE, "Tidal"); },
                                             [&] { document.SetEntry(IDS_TITLE, ""); },
                                             [&] { document.SetEntry(IDS_ABOUT, "new\nlines"); },
                                             [&] { document.SetPicture(PictureBullet, blob); },
                                             [&] { document.SetPicture(PictureBullet, CBlob()); },
                                             [&] { document.SetIcon(blob); },
                                             [&] { document.SetVersion("ProductName", ""); },
                                             [&] { document.SetVersion("CompanyName", "Talvern"); },
                                             [&] {
                                                 CSkin other = TestSkin();
                                                 other.m_texts[0].m_entries.erase(77);
                                                 document.SetAll(other);
                                             }};
    for (const auto &change : CHANGES) {
        EXPECT_EQ(states.size() != 1, document.IsModified());
        change();
        states.push_back(All(document));
    }
    for (int i = 0; i < 2; ++i) {
        for (size_t n = states.size() - 1; n-- > 0;) {
            document.Undo();
            EXPECT_EQ(states[n], All(document)) << n;
        }
        EXPECT_FALSE(document.CanUndo() || document.IsModified());
        for (size_t n = 1; n < states.size(); ++n) {
            document.Redo();
            EXPECT_EQ(states[n], All(document)) << n;
        }
    }
}

// A thousand changes, undos and redos at random, beside a list of whole states.
TEST(Document, GoesBackAndForthAsAListOfStatesDoes)
{
    CDocument document;
    document.Start(TestSkin());
    std::vector<std::vector<BYTE>> states = {All(document)};
    size_t nAt = 0;
    std::minstd_rand random(7);
    for (int i = 0; i < 1000; ++i) {
        const unsigned nWhat = random() % 4;
        if (nWhat == 0) {
            document.Undo();
            nAt -= nAt > 0;
        } else if (nWhat == 1) {
            document.Redo();
            nAt += nAt + 1 < states.size();
        } else {
            const CDocumentStep step(document);
            document.SetEntry(IDS_TITLE + random() % 3, CCUString(char('a' + random() % 9), 3));
            document.SetVersion(random() % 2 ? "ProductName" : "Other", random() % 3 ? "x" : "");
            if (All(document) != states[nAt]) {
                states.resize(++nAt);
                states.push_back(All(document));
            }
        }
        ASSERT_EQ(states[nAt], All(document)) << i;
        ASSERT_TRUE(document.CanUndo() == (nAt > 0) &&
                    document.CanRedo() == (nAt + 1 < states.size()));
    }
}

// A launcher has its languages in another order than a script.
TEST(Document, TakesTheTextsOfAnotherSkinByTheirLanguages)
{
    const auto skin = [](const std::vector<LANGID> &languages) {
        CSkin made;
        for (const LANGID n : languages)
            made.m_texts.push_back({n, {{IDS_TITLE, CWideText(FormatPoint({n, 0}), 1252)}}});
        return made;
    };
    CDocument document;
    document.Start(skin({7, 9, 12}));
    document.SetAll(skin({9, 7, 10}));
    EXPECT_EQ(skin({7, 9, 10}).m_texts[2].m_entries, document.Skin().m_texts[2].m_entries);
    EXPECT_STREQ("7,0", document.Entry(IDS_TITLE));
    document.SetAll(skin({9}));
    EXPECT_STREQ("7,0", document.Entry(IDS_TITLE));
    document.SetAll(skin({0}));
    EXPECT_STREQ("0,0", document.Entry(IDS_TITLE));
    document.SetVersion("LegalCopyright", "Talvern");
    document.SetAll(skin({0}));
    EXPECT_STREQ("Talvern", document.Version("LegalCopyright")) << "nothing is said of it";
    document.SetAll(TestSkin());
    EXPECT_STREQ("", document.Version("LegalCopyright")) << "another product's";
}

TEST(Document, KeepsCharactersThatNoFieldCanShow)
{
    CSkin skin = TestSkin();
    const WCHAR russian[] = {0x0434, 0x0436, 'a'};
    skin.m_texts[0].m_entries[IDS_TITLE] = CWideText(russian, 3);
    CDocument document;
    document.Start(skin);
    document.SetEntry(IDS_TITLE, document.Entry(IDS_TITLE) + "b");
    const CWideText *const pText = document.Text(document.EntryPart(IDS_TITLE));
    ASSERT_EQ(4U, pText->Length());
    EXPECT_TRUE(CWideText(pText->Data(), 3) == CWideText(russian, 3) && pText->Data()[3] == 'b');
}

TEST(Document, JoinsWhatFollowsEachOtherUntilItIsSealedOrSaved)
{
    CDocument document;
    document.Start(TestSkin());
    const auto type = [&](const char *pszText) {
        const CDocumentStep step(document, 5);
        document.SetEntry(IDS_TITLE, pszText);
    };
    for (const char *const psz : {"T", "Ti", "Tid"})
        type(psz);
    document.MarkSaved();
    EXPECT_FALSE(document.IsModified());
    type("Tide");
    document.Seal();
    type("Tides");
    for (const char *const psz : {"Tide", "Tid", "Title"}) {
        document.Undo();
        EXPECT_STREQ(psz, document.Entry(IDS_TITLE));
        EXPECT_EQ(strcmp(psz, "Tid") != 0, document.IsModified());
    }
    // Another way from here: what was saved cannot be reached any more.
    document.SetEntry(IDS_TITLE, "Tid");
    EXPECT_TRUE(document.IsModified() && !document.CanRedo());
    document.BeginStep();
    document.SetEntry(IDS_TITLE, "away");
    document.SetEntry(IDS_RUN_POS, "1,1");
    document.CancelStep();
    EXPECT_STREQ("Tid", document.Entry(IDS_TITLE));
    EXPECT_STREQ("46,172", document.Entry(IDS_RUN_POS));
    document.Undo();
    EXPECT_STREQ("Title", document.Entry(IDS_TITLE));
}

// Ctrl+Z, Ctrl+S and a dropped file come while something is dragged, too.
TEST(Document, KeepsItsStepsInOrderWhileOneIsOpen)
{
    CDocument document;
    document.Start(TestSkin());
    document.SetEntry(IDS_TITLE, "Tide");
    document.BeginStep();
    document.SetEntry(IDS_RUN_POS, "1,1");
    EXPECT_FALSE(document.CanUndo() || document.CanRedo());
    document.Undo();
    EXPECT_STREQ("1,1", document.Entry(IDS_RUN_POS));
    document.MarkSaved();
    document.SetEntry(IDS_RUN_POS, "2,2");
    EXPECT_TRUE(document.IsModified());
    document.CancelStep();
    EXPECT_STREQ("1,1", document.Entry(IDS_RUN_POS));
    EXPECT_FALSE(document.IsModified());
    document.Undo();
    EXPECT_STREQ("46,172", document.Entry(IDS_RUN_POS));
    document.BeginStep();
    document.SetEntry(IDS_RUN_POS, "3,3");
    document.Start(CSkin());
    document.SetEntry(IDS_RUN_POS, "4,4");
    document.EndStep();
    document.Undo();
    EXPECT_FALSE(document.CanUndo() || document.IsModified());
}

// Whoever shows whether there is something to be saved does so when he is told of a change.
TEST(Document, TellsWhatCameBackToWhereItBegan)
{
    struct CMark final : CDocumentWatcher
    {
        void OnSkinChanged(const SkinPart *) override { m_bModified = m_document.IsModified(); }
        CDocument m_document{this};
        bool m_bModified = true;
    } mark;
    mark.m_document.Start(TestSkin());
    for (const bool bCancel : {false, true}) {
        mark.m_document.BeginStep();
        mark.m_document.SetEntry(IDS_TITLE, "other");
        EXPECT_TRUE(mark.m_bModified);
        mark.m_document.SetEntry(IDS_TITLE, bCancel ? "another" : "Title");
        bCancel ? mark.m_document.CancelStep() : mark.m_document.EndStep();
        EXPECT_FALSE(mark.m_bModified);
    }
}

TEST(Document, NeedsLessThanAKibibyteForAStepHoweverLongTheTexts)
{
    CDocument document;
    document.Start(TestSkin());
    const CCUString sHalf('x', 600);
    document.SetEntry(IDS_ABOUT, sHalf + sHalf);
    const std::vector<BYTE> first = All(document);
    size_t bytes[3] = {MemoryBytes()};
    for (int nPart = 1; nPart <= 2; ++nPart) {
        for (int i = 0; i < 2500; ++i) {
            const char letter = static_cast<char>('a' + i % 26);
            document.SetEntry(IDS_ABOUT, sHalf + CCUString(letter, 1) + sHalf);
            document.SetEntry(IDS_RUN_POS, FormatPoint({i, nPart}));
        }
        bytes[nPart] = MemoryBytes();
    }
    const size_t nFirst = bytes[1] - bytes[0], nSecond = bytes[2] - bytes[1];
    EXPECT_GT(nFirst, 0U);
    EXPECT_LT(nSecond, nFirst + nFirst / 4) << "flat";
    EXPECT_LT(nSecond / 5000, 1024U);
    printf("%u bytes a step\n", static_cast<unsigned>(nSecond / 5000));
    while (document.CanUndo())
        document.Undo();
    document.Redo();
    EXPECT_EQ(first, All(document));
}

TEST(SkinBytes, TakesNothingThatIsNotWhole)
{
    const std::vector<BYTE> bytes = PackSkin(TestSkin());
    CSkin skin;
    ASSERT_TRUE(UnpackSkin(bytes.data(), bytes.size(), skin));
    EXPECT_EQ(bytes, PackSkin(skin));
    for (size_t i = 0; i < bytes.size(); ++i) {
        EXPECT_FALSE(UnpackSkin(bytes.data(), i, skin));
        EXPECT_TRUE(IsDamagedSkin(bytes.data(), i));
        std::vector<BYTE> changed = bytes;
        changed[i] ^= 0x41;
        EXPECT_FALSE(UnpackSkin(changed.data(), changed.size(), skin)) << i;
        EXPECT_EQ(i >= 4, IsDamagedSkin(changed.data(), changed.size())) << "else another form";
    }
}

CHILD_PROCESS(KeepAndCrash)
{
    CRecovery kept;
    CProblems problems;
    kept.Keep(CSkin(), "first", "", problems);
    kept.Keep(TestSkin(), "C:\\a b.exe", "sum *a\n", problems);
    TerminateProcess(GetCurrentProcess(), 3);
}

TEST(Recovery, GivesBackWhatAProgramThatCrashedHadKept)
{
    const CTemporaryDirectory temp;
    temp.Make("DiscMaker-0-1.recovery");
    EXPECT_EQ(3U, CChildProcess("KeepAndCrash").ExitCode());
    EXPECT_EQ(2U, temp.Files("*").size());
    CSkin skin;
    CCUString sPath, sFiles;
    CRecovery found;
    ASSERT_TRUE(found.Find(skin, sPath, sFiles));
    EXPECT_STREQ("sum *a\n", sFiles);
    EXPECT_STREQ("C:\\a b.exe", sPath);
    EXPECT_EQ(PackSkin(TestSkin()), PackSkin(skin));
    EXPECT_FALSE(CRecovery().Find(skin, sPath, sFiles)) << "somebody has it";
    EXPECT_EQ(1U, temp.Files("*").size());
    // Nothing that is there is overwritten: numbers of processes come again.
    char szTaken[40];
    sprintf(szTaken, "DiscMaker-%lx-1.recovery", GetCurrentProcessId());
    temp.Make(szTaken);
    CProblems problems;
    EXPECT_TRUE(found.Keep(skin, sPath, sFiles, problems));
    EXPECT_EQ(2U, temp.Files("*").size());
    found.Forget();
    EXPECT_EQ(std::vector<std::string>{szTaken}, temp.Files("*"));
}

TEST(Recovery, DeletesOnlyWhatIsItsOwnAndDead)
{
    const CTemporaryDirectory temp;
    std::ofstream(temp.Path() + "\\DiscMaker-0-1.recovery") << "a.exe" << '\0' << "a later form";
    std::ofstream(temp.Path() + "\\DiscMaker-0-2.recovery") << "a.exe" << '\0' << "SKM1 cut";
    std::ofstream(temp.Path() + "\\DiscMaker-0-3.recovery")
        << "a.exe" << '\0' << "5 *a" << '\0' << "SKM1 cut";
    CChildProcess("KeepAndCrash").ExitCode();
    CSkin skin;
    CCUString sPath, sFiles;
    CFailingCall<BOOL(HANDLE, void *, DWORD, DWORD *, OVERLAPPED *)> read("ReadFile");
    CFailPlan::Start(CFailPlan::ALL);
    EXPECT_FALSE(CRecovery().Find(skin, sPath, sFiles));
    EXPECT_EQ(4U, temp.Files("*.recovery").size()) << "none can be read now";
    CFailPlan::Start(0);
    EXPECT_TRUE(CRecovery().Find(skin, sPath, sFiles));
    EXPECT_EQ(std::vector<std::string>{"DiscMaker-0-1.recovery"}, temp.Files("*.recovery"));
}

TEST(EntryText, GoesToTheClipboardAndBack)
{
    // The second byte of such a character is a backslash, and an end in the other form.
    const CCUString sSoft = "\x83\\n\x95\\";
    const CEntryTexts entries = {
        {IDS_TITLE, "a \"b\" \\n\n\\"}, {IDS_RUN_POS, "1,2"}, {IDS_DISC_LABEL, sSoft}};
    const CCUString sLines = EntriesToLines(entries, 932);
    EXPECT_EQ(entries, LinesToEntries("x\r\n" + sLines + "IDS_NOTHING \"1\"\r\n", 932));
    for (const char *const psz : {"one\ntwo", "C:\\new\\n", "\\", ""})
        EXPECT_STREQ(psz, FromOneLine(ToOneLine(psz)));
    EXPECT_STREQ(sSoft, ToOneLine(sSoft, 932));
    EXPECT_STREQ(sSoft, FromOneLine(sSoft, 932));
}

TEST(EntryText, SaysWhatIsWrong)
{
    const struct
    {
        UINT m_nID;
        const char *m_pszGood, *m_pszBad;
    } TEXTS[] = {{IDS_RUN_POS, "4,-5", "4,"},
                 {IDS_ABOUT_RECT, "1,2,3,4", "1,2,1,4"},
                 {IDS_HIGHLIGHT_COLOR, "0,255,9", "0,256,9"},
                 {IDS_ITEM_FONT, "15,0,0,Arial", "15,0,0,Courier New"},
                 {IDS_ITEM_FONT, "4,1,1,X", "3,1,1,X"},
                 {IDS_RUN_COMMAND, "a.exe", ""},
                 {IDS_TITLE, "a", ""}};
    for (const auto &text : TEXTS) {
        EXPECT_STREQ("", EntryFault(*FindSkinEntry(text.m_nID), text.m_pszGood));
        EXPECT_STRNE("", EntryFault(*FindSkinEntry(text.m_nID), text.m_pszBad)) << text.m_pszBad;
    }
}

// However a skin spaces its numbers they are shown in one form, and stay as they are until edited.
TEST(EntryText, ShowsNumbersInOneForm)
{
    const struct
    {
        UINT m_nID;
        const char *m_pszText, *m_pszShown, *m_pszWritten;
    } TEXTS[] = {{IDS_RUN_POS, "14,52", "14, 52", "14,52"},
                 {IDS_RUN_POS, " 14,  -52 ", "14, -52", "14,-52"},
                 {IDS_RUN_POS, "14,52,9", "14,52,9", "14,52,9"},
                 {IDS_RUN_POS, "14,5 2", "14,5 2", "14,5 2"},
                 {IDS_RUN_POS, "14 ,52", "14 ,52", "14 ,52"},
                 {IDS_ABOUT_RECT, "1,2, 3,4", "1, 2, 3, 4", "1,2,3,4"},
                 {IDS_HIGHLIGHT_COLOR, "0, 300,9", "0, 300, 9", "0,300,9"},
                 {IDS_TITLE, "1,2", "1,2", "1,2"}};
    for (const auto &text : TEXTS) {
        const SkinEntry &entry = *FindSkinEntry(text.m_nID);
        EXPECT_STREQ(text.m_pszShown, EntryToField(entry, text.m_pszText));
        EXPECT_STREQ(text.m_pszShown, EntryInWords(entry, text.m_pszText));
        EXPECT_STREQ(text.m_pszWritten, EntryFromField(entry, text.m_pszText));
    }
}
