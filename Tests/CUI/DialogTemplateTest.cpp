#include <gtest/gtest.h>

#include <string>

#include "CUI/DialogTemplate.h"
#include "Support/GuardedBuffer.h"
#include "Support/ImportHook.h"

namespace {

struct CFields
{
    bool bExtended;
    std::u16string menu, windowClass;  // with the NUL of a name, without that of an ordinal
    std::u16string caption;
    int nPoints;  // 0: no font
    const char16_t *face;
    WORD nWeight;
    std::u16string creationData;
};

const std::u16string NONE(1, u'\0');
const std::u16string DIALOG_CLASS = u"\xFFFF\x8002";

// The words of a template with two controls, and the bytes after which each of its parts is whole.
class CWords
{
public:
    explicit CWords(const CFields &fields)
    {
        const DWORD nStyle = WS_POPUP | (fields.nPoints ? DS_SETFONT : 0u);
        if (fields.bExtended)
            Add({1, 0xFFFF, 0, 0, WS_EX_TOPMOST, 0, LOWORD(nStyle), HIWORD(nStyle)});
        else
            Add({LOWORD(nStyle), HIWORD(nStyle), WS_EX_TOPMOST, 0});
        Add({2, 0, 0, 101, 53});
        nHeader = Bytes();
        Add(fields.menu + fields.windowClass + fields.caption + NONE);
        nCaption = Bytes();
        if (fields.nPoints)
            Add({static_cast<char16_t>(fields.nPoints)});
        if (fields.face && fields.bExtended)
            Add({fields.nWeight, MAKEWORD(TRUE, DEFAULT_CHARSET)});
        if (fields.face)
            Add(fields.face + NONE);
        nFont = Bytes();
        AddControl(fields.bExtended, u"Static" + NONE, u"text" + NONE, fields.creationData);
        AddControl(fields.bExtended, u"\xFFFF\x0080", u"\xFFFF\x0001", u"");
        nAll = Bytes();
    }

    std::u16string words;
    size_t nHeader, nCaption, nFont, nAll;

private:
    size_t Bytes() const { return words.size() * sizeof(WORD); }
    void Add(const std::u16string &more) { words += more; }
    void AddControl(bool bExtended, const std::u16string &windowClass, const std::u16string &title,
                    const std::u16string &data)
    {
        words.resize((words.size() + 1) / 2 * 2);
        words.resize(words.size() + (bExtended ? 12 : 9));
        words[words.size() - (bExtended ? 7 : 8)] = HIWORD(WS_CHILD);
        Add(windowClass + title);
        Add({static_cast<char16_t>(data.size() * 2)});
        Add(data);
    }
};

const CFields FIELDS[] = {
    {false, NONE, NONE, u"", 0, nullptr, 0, u""},
    {true, NONE, NONE, u"", 0, nullptr, 0, u"four"},
    {false, u"\xFFFF\x0064", u"#32770" + NONE, u"Caption", 8, u"Tahoma", 0, u""},
    {true, u"menu" + NONE, DIALOG_CLASS, u"Caption", 14, u"Courier New", FW_BOLD, u"odd"},
    {true, NONE, DIALOG_CLASS, u"C", 0x7FFF, nullptr, 0, u""},
    {false, NONE, NONE, u"Caption", 200, u"A face with a name longer than any font's", 0, u""},
};

// The one resource that the program has: the bytes that the test gives.
const void *s_pData;
DWORD s_nSize;
HRSRC WINAPI Find(HMODULE, LPCSTR, LPCSTR)
{
    return reinterpret_cast<HRSRC>(1);
}
HGLOBAL WINAPI Load(HMODULE, HRSRC)
{
    return reinterpret_cast<HGLOBAL>(2);
}
LPVOID WINAPI Lock(HGLOBAL)
{
    return const_cast<void *>(s_pData);
}
DWORD WINAPI Size(HMODULE, HRSRC)
{
    return s_nSize;
}

CCUIDialogTemplate Use(const void *pData, size_t nSize)
{
    const CImportHook find("FindResourceA", Find), load("LoadResource", Load);
    const CImportHook lock("LockResource", Lock), size("SizeofResource", Size);
    s_pData = pData;
    s_nSize = static_cast<DWORD>(nSize);
    return CCUIDialogTemplate(nullptr, "any");
}

// Compares what the template says with the dialog that the system makes of it.
void ExpectLikeTheSystem(const CCUIDialogTemplate &dialogTemplate)
{
    ASSERT_NE(nullptr, dialogTemplate.GetTemplate());
    HWND hWnd =
        CreateDialogIndirectParamA(nullptr, dialogTemplate.GetTemplate(), nullptr, nullptr, 0);
    ASSERT_NE(nullptr, hWnd);
    RECT client;
    GetClientRect(hWnd, &client);
    SIZE size;
    EXPECT_EQ(1, dialogTemplate.GetSizeInPixels(size));
    EXPECT_EQ(client.right, size.cx);
    EXPECT_EQ(client.bottom, size.cy);
    char szText[100];
    GetWindowTextA(hWnd, szText, sizeof szText);
    CCUString sCaption = "old";
    EXPECT_EQ(1, dialogTemplate.GetCaption(sCaption));
    EXPECT_STREQ(szText, sCaption);
    LOGFONTA logFont = {};
    const LRESULT font = SendMessageA(hWnd, WM_GETFONT, 0, 0);
    GetObjectA(reinterpret_cast<HFONT>(font), sizeof logFont, &logFont);
    CCUString sFace;
    unsigned short nPoints = 0;
    EXPECT_EQ(font ? 1 : 0, dialogTemplate.GetFont(sFace, nPoints));
    EXPECT_EQ(font ? 1 : 0, dialogTemplate.HasFontStyle());
    EXPECT_STREQ(logFont.lfFaceName, sFace.Left(LF_FACESIZE - 1));
    EXPECT_EQ(-logFont.lfHeight, MulDiv(nPoints, 96, 72));
    const DWORD nStyle = static_cast<DWORD>(GetWindowLongA(hWnd, GWL_STYLE));
    EXPECT_EQ(0u, (nStyle ^ dialogTemplate.GetStyle()) & (WS_POPUP | WS_SYSMENU));
    DestroyWindow(hWnd);
}

}  // namespace

TEST(DialogTemplate, SaysOfBothFormsWhatTheSystemMakesOfThem)
{
    for (const CFields &fields : FIELDS) {
        const CWords words(fields);
        const CCUIDialogTemplate dialogTemplate = Use(words.words.data(), words.nAll);
        ExpectLikeTheSystem(dialogTemplate);
        SIZE size;
        EXPECT_EQ(1, dialogTemplate.GetSizeInDialogUnits(size));
        EXPECT_TRUE(size.cx == 101 && size.cy == 53);
        EXPECT_EQ(static_cast<DWORD>(WS_EX_TOPMOST), dialogTemplate.GetExStyle());
    }
}

// Behind an odd count of creation data the system looks for the next control in another place. What
// it finds here is a class name that runs to the end, and a title behind it.
TEST(DialogTemplate, IsNotWholeWithAnOddCountOfCreationData)
{
    const char16_t words[] = {0, HIWORD(WS_POPUP), 0, 0, 2, 0, 0, 100, 50, 0, 0, 0,
                              // a control with 3 bytes of data
                              0, HIWORD(WS_CHILD), 0, 0, 0, 0, 0, 0, 1, 0xFFFF, 0x82, 0, 3, 1, 1, 0,
                              // and the next one, where it belongs
                              0, HIWORD(WS_CHILD), 0, 0, 0, 0, 9, 14, 7, 0xFFFF, 0x80, 0xFFFF, 1,
                              0};
    CGuardedBuffer buffer(sizeof words);
    memcpy(buffer.Data(), words, sizeof words);
    EXPECT_EQ(nullptr, Use(buffer.Data(), sizeof words).GetTemplate());
    buffer.Data()[24 * 2] = 4;
    EXPECT_NE(nullptr, Use(buffer.Data(), sizeof words).GetTemplate());
}

TEST(DialogTemplate, AnswersForWhatIsThereOfACutOrWrongOne)
{
    for (const CFields &fields : FIELDS) {
        const CWords words(fields);
        for (size_t nSize = 0; nSize <= words.nAll; ++nSize) {
            CGuardedBuffer buffer((nSize + 1) / 2 * 2);  // resources lie on whole words
            memcpy(buffer.Data(), words.words.data(), nSize);
            const CCUIDialogTemplate dialogTemplate = Use(buffer.Data(), nSize);
            SIZE size;
            CCUString sText = "old";
            unsigned short nPoints = 1;
            const int bHeader = nSize >= words.nHeader;
            EXPECT_EQ(bHeader, dialogTemplate.GetSizeInPixels(size) && size.cx && size.cy);
            EXPECT_EQ(bHeader && fields.nPoints, dialogTemplate.HasFontStyle());
            EXPECT_EQ(nSize >= words.nCaption, dialogTemplate.GetCaption(sText));
            EXPECT_EQ(nSize < words.nCaption || fields.caption.empty(), sText.IsEmpty());
            const int bFont = fields.nPoints && nSize >= words.nFont;
            EXPECT_EQ(bFont, dialogTemplate.GetFont(sText, nPoints));
            EXPECT_EQ(bFont, !sText.IsEmpty() && nPoints != 0);
            EXPECT_EQ(nSize >= words.nAll, dialogTemplate.GetTemplate() != nullptr) << nSize;
        }
    }
    CWords wrong(FIELDS[1]);
    wrong.words[0] = 2;  // a version that nobody knows
    for (const CCUIDialogTemplate &none :
         {Use(wrong.words.data(), wrong.nAll), CCUIDialogTemplate(nullptr, "missing")})
    {
        EXPECT_EQ(nullptr, none.GetTemplate());
        EXPECT_EQ(0ul, none.GetStyle() | none.GetExStyle());
    }
}
