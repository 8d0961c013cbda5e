#include <gtest/gtest.h>

#include <string>

#include "CUI/DialogTemplate.h"
#include "Support/FakeResource.h"
#include "Support/HeapWatch.h"
#include "Support/ImportHook.h"

namespace {

// Compares what the template says with the dialog that the system makes of it.
void ExpectLikeTheSystem(const CCUIDialogTemplate &dialogTemplate)
{
    const HWND hWnd =
        CreateDialogIndirectParamA(nullptr, dialogTemplate.GetTemplate(), nullptr, nullptr, 0);
    RECT client;
    GetClientRect(hWnd, &client);
    SIZE size;
    std::string face;  // that it measures with; in Wine 8 all have the same size
    const CFakeCall<HFONT(const LOGFONTA *)> make("CreateFontIndirectA", [&](const LOGFONTA *p) {
        face = p->lfFaceName;
        return make.Original(p);
    });
    EXPECT_EQ(1, dialogTemplate.GetSizeInPixels(size));
    EXPECT_EQ(client.right, size.cx);
    EXPECT_EQ(client.bottom, size.cy);
    char szText[100];
    GetWindowTextA(hWnd, szText, sizeof szText);
    CCUString sCaption = "old", sFace;
    EXPECT_EQ(1, dialogTemplate.GetCaption(sCaption));
    EXPECT_STREQ(szText, sCaption);
    LOGFONTA logFont = {};
    const LRESULT font = SendMessageA(hWnd, WM_GETFONT, 0, 0);
    GetObjectA(reinterpret_cast<HFONT>(font), sizeof logFont, &logFont);
    unsigned short nPoints = 0;
    EXPECT_EQ(font != 0, dialogTemplate.GetFont(sFace, nPoints));
    EXPECT_STREQ(logFont.lfFaceName, sFace.Left(LF_FACESIZE - 1));
    EXPECT_EQ(logFont.lfFaceName, face);
    EXPECT_EQ(-logFont.lfHeight, MulDiv(nPoints, 96, 72));
    EXPECT_EQ(static_cast<DWORD>(WS_EX_TOPMOST), dialogTemplate.GetExStyle());
    DestroyWindow(hWnd);
}

}  // namespace

TEST(DialogTemplate, SaysOfBothFormsWhatTheSystemMakesOfThemAndOfACutOneWhatIsThere)
{
    for (int nID = 510; nID <= 514; ++nID) {
        SCOPED_TRACE(nID);
        const HRSRC hResource = FindResourceA(nullptr, MAKEINTRESOURCEA(nID), MAKEINTRESOURCEA(5));
        const auto *const pBytes =
            static_cast<const BYTE *>(LockResource(LoadResource(nullptr, hResource)));
        const DWORD nWhole = SizeofResource(nullptr, hResource);
        ExpectLikeTheSystem(CCUIDialogTemplate(nullptr, MAKEINTRESOURCEW(nID)));
        const CHeapWatch heap;
        for (DWORD nSize = 1; nSize < nWhole; ++nSize) {
            const CFakeResource cut(std::vector<BYTE>(pBytes, pBytes + nSize));
            const CCUIDialogTemplate dialogTemplate(nullptr, "");
            CCUString sText;
            unsigned short nPoints = 0;
            EXPECT_LE(dialogTemplate.GetFont(sText, nPoints), dialogTemplate.GetCaption(sText));
            EXPECT_EQ(nullptr, dialogTemplate.GetTemplate()) << nSize;
        }
    }
}

TEST(DialogTemplate, IsNotWholeWhereTheSystemWouldReadOnBehindTheEnd)
{
    for (const int nID : {520, 521, 599})
        EXPECT_EQ(nullptr, CCUIDialogTemplate(nullptr, MAKEINTRESOURCEA(nID)).GetTemplate()) << nID;
}
