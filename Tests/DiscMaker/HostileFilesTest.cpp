#include <random>

#include "DiscMaker/SkinFiles.h"
#include "File/LauncherFile.h"
#include "Model/Blob.h"
#include "Resource.h"
#include "Script/ScriptEditor.h"

namespace {

const int MUTATIONS = 50000;

// A launcher without code and with small pictures: headers, resources, relocations.
std::vector<BYTE> SmallLauncher()
{
    CProblems problems;
    const auto file = CLauncherFile::Read("a", ReadFileBytes(TEST_LAUNCHER), problems);
    CSkin skin = file->Skin();
    for (CBlob &picture : skin.m_pictures)
        picture = MakeBlob(std::vector<BYTE>(64, 1));
    const CBlob small = file->WithSkin(skin, problems);
    const CByteView all(*small);
    const size_t nHeader = all.Dword(60);
    const size_t nTable = nHeader + 24 + all.Word(nHeader + 20);
    std::vector<BYTE> bytes = all.Part(0, nTable).Copy();
    std::vector<BYTE> data;
    UINT nSections = 0;
    for (size_t i = 0; i < all.Word(nHeader + 6); ++i) {
        const CByteView header = all.Part(nTable + i * 40, 40);
        if (header.Dword(0) != 0x7273722E && header.Dword(0) != 0x6C65722E)
            continue;
        Append(bytes, header);
        PutDword(bytes, bytes.size() - 20, 1024 + static_cast<DWORD>(data.size()));
        Append(data, all.Part(header.Dword(20), header.Dword(16)));
        ++nSections;
    }
    PutWord(bytes, nHeader + 6, nSections);
    bytes.resize(1024);
    Append(bytes, CByteView(data));
    return bytes;
}

// Changes a few numbers, at places and to values that hurt most.
template <typename Bytes>
void Mutate(Bytes &bytes, size_t nStructured, std::mt19937 &random)
{
    const DWORD values[] = {0,
                            1,
                            0x7F,
                            0x80,
                            0xFFFF,
                            0x80000000,
                            0x7FFFFFFF,
                            0xFFFFFFFF,
                            0x1000,
                            static_cast<DWORD>(random()),
                            static_cast<DWORD>(bytes.size()),
                            0x80000000 | static_cast<DWORD>(random() % bytes.size())};
    for (unsigned i = random() % 4 + 1; i > 0; --i) {
        const size_t nPlace = random() % (random() % 4 ? nStructured : bytes.size() - 4);
        const DWORD nValue = values[random() % (sizeof values / sizeof *values)];
        for (unsigned j = 0; j < (1u << random() % 3); ++j)
            bytes[nPlace + j] = static_cast<BYTE>(nValue >> j * 8);
    }
    if (random() % 16 == 0)
        bytes.resize(random() % bytes.size() + 4);
}

}  // namespace

// Whatever is in a launcher's file: it is opened or refused, and what can be opened can be
// be saved and opened again.
TEST(HostileFiles, LaunchersDoNoHarm)
{
    const std::vector<BYTE> good = SmallLauncher();
    std::mt19937 random(1);
    int nOpened = 0, nSaved = 0;
    for (int i = 0; i < MUTATIONS; ++i) {
        std::vector<BYTE> bytes = good;
        // Headers, then directories and their records.
        Mutate(bytes, 1024 + 1024, random);
        CProblems problems;
        const auto file = CLauncherFile::Read("a", MakeBlob(bytes), problems);
        ASSERT_EQ(!file, HasErrors(problems));
        nOpened += file ? 1 : 0;
        if (!file || i % 4)
            continue;
        CSkin skin = file->Skin();
        SetText(skin, IDS_TITLE, "Other");
        skin.m_pictures[PictureBullet] = MakeBlob(std::vector<BYTE>(random() % 20000, 2));
        skin.m_icon = i % 8 ? skin.m_icon : nullptr;
        problems.clear();
        const CBlob saved = file->WithSkin(skin, problems);
        ASSERT_EQ(!saved, HasErrors(problems));
        if (!saved)
            continue;
        ++nSaved;
        const auto again = CLauncherFile::Read("a", saved, problems);
        ASSERT_TRUE(again);
        ASSERT_EQ("Other", TextOf(again->Skin(), IDS_TITLE));
    }
    EXPECT_GT(nOpened, MUTATIONS / 10);
    EXPECT_GT(nSaved, MUTATIONS / 20);
}

// A script is cut, doubled and mixed up; what is read is written as it was, and what is changed is
// read as it was meant.
TEST(HostileFiles, ScriptsDoNoHarm)
{
    const std::string good =
        "// a\r\n#define A 5\n#pragma code_page(1252)\nLANGUAGE LANG_GERMAN, SUBLANG_GERMAN\n"
        "2 ICON \"a.ico\"\n200 BITMAP a\\b.bmp\nSTRINGTABLE DISCARDABLE\nBEGIN\nIDS_SETUP "
        "\"a\"\"b\\n\" "
        "L\"\\x20AC\"\nA+1, \"c\" // d\n 0x10 \"\xE4\" END\n#if defined(A) && A > 4\nSTRINGTABLE { "
        "9 \"x\" "
        "10 \"y\" }\n#else\n5 RCDATA { 1 }\n#endif\n1 VERSIONINFO\nFILEVERSION 1,0,0,0\nBEGIN\n"
        "BLOCK \"StringFileInfo\" { BLOCK \"040904E4\" { VALUE \"A\", \"1\\0\" } }\nEND\n"
        "7 DIALOG 0, 0, 1, 1\n{ }\n";
    std::mt19937 random(1);
    int nOpened = 0, nSaved = 0;
    for (int i = 0; i < MUTATIONS; ++i) {
        std::string text = good;
        for (unsigned j = random() % 3 + 1; j > 0; --j) {
            const size_t nFrom = random() % text.size(), nLength = random() % 12;
            const std::string part = text.substr(nFrom, nLength);
            const char odd[] = "\"\\/*{}(#\n\r\x80\xFF\0L,";
            switch (random() % 4) {
            case 0: text.erase(nFrom, nLength); break;
            case 1: text.insert(random() % text.size(), part); break;
            case 2: text[nFrom] = odd[random() % sizeof odd]; break;
            default: text.insert(nFrom, 1, odd[random() % sizeof odd]);
            }
        }
        if (random() % 8 == 0)
            text.insert(0, random() % 2 ? "\xFF\xFE" : "\xEF\xBB\xBF");
        const CByteView bytes(reinterpret_cast<const BYTE *>(text.data()), text.size());
        CProblems problems;
        CSkinScript script;
        const bool bRead = script.Read(bytes, "Skin.rc", "", problems);
        ASSERT_EQ(!bRead, HasErrors(problems)) << text;
        ASSERT_TRUE(CScriptEditor(script).Finish() == bytes.Copy()) << text;
        if (!bRead)
            continue;
        ++nOpened;
        std::vector<CSkinTexts> texts = script.Texts();
        CScriptEditor same(script);
        same.SetTexts(texts);
        ASSERT_TRUE(same.Finish() == bytes.Copy()) << text;
        texts[0].m_entries[IDS_TITLE] = CWideText("\xE4\"\\\n", 1252);
        if (i % 2)
            texts[0].m_entries.erase(texts[0].m_entries.begin());
        CScriptEditor editor(script);
        editor.SetTexts(texts);
        editor.SetPicture(false, IDB_BACKGROUND, "new.bmp");
        const std::vector<BYTE> changed = editor.Finish();
        CSkinScript again;
        ASSERT_TRUE(again.Read(CByteView(changed), "Skin.rc", "", problems)) << text;
        nSaved += again.Texts()[0].m_entries == texts[0].m_entries;
    }
    EXPECT_GT(nOpened, MUTATIONS / 10);
    EXPECT_EQ(nOpened, nSaved);
}
