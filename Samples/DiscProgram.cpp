// The programs that the sample disc's lines start: one source, told apart by the name under which
// it runs. Each says what it stands for and where it was started from.

#include "DiscProgram.h"

#include "CU/String.h"
#include "CUI/Data.h"
#include "CUI/Dialog.h"
#include "CUI/Draw.h"
#include "CUI/Font.h"
#include "CUI/ResourceString.h"

namespace {

const char *const PROGRAMS[] = {"Fennick.exe", "RunFennick.exe", "tutorial.exe"};
const int ICON_SIDE = 48;

CCUString ModulePath()
{
    char path[MAX_PATH + 1] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return path;
}

CCUString CurrentDirectory()
{
    char path[MAX_PATH + 1] = "";
    GetCurrentDirectoryA(MAX_PATH, path);
    return path;
}

// The place in PROGRAMS, or the one behind the last for any other name.
UINT ProgramIndex(const CCUString &sPath)
{
    const CCUString sName = sPath.Mid(sPath.ReverseFind('\\') + 1);
    UINT nIndex = 0;
    for (const char *name : PROGRAMS) {
        if (sName.CompareNoCase(name) == 0)
            break;
        ++nIndex;
    }
    return nIndex;
}

class CDiscProgramDlg : public CCUIDialog
{
public:
    explicit CDiscProgramDlg(HINSTANCE hInstance);

protected:
    int OnInitDialog(HWND hFocus, LPARAM lParam) override;
    int OnEraseBkgnd(HDC hDC) override;

private:
    void DrawHeader(HDC hDC, const RECT &rectHeader);

    CCUString m_sModule;
    CCUString m_sHeading;
    CCUString m_sPurpose;
    CCUIFont m_fontHeading;
    HICON m_hIcon;
};

CDiscProgramDlg::CDiscProgramDlg(HINSTANCE hInstance)
    : CCUIDialog(hInstance, MAKEINTRESOURCEA(IDD_PROGRAM)), m_sModule(ModulePath())
{
    const UINT nProgram = ProgramIndex(m_sModule);
    m_sHeading = CUIResourceString(hInstance, IDS_HEADING + nProgram, false);
    m_sPurpose = CUIResourceString(hInstance, IDS_PURPOSE + nProgram, false);

    LOGFONTA font = {};
    font.lfHeight = -21;
    font.lfWeight = FW_BOLD;
    font.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    lstrcpyA(font.lfFaceName, "Arial");
    m_fontHeading = CCUIFont(font);
    // A shared icon is the system's to free.
    m_hIcon = static_cast<HICON>(LoadImageA(hInstance, MAKEINTRESOURCEA(IDI_PROGRAM), IMAGE_ICON,
                                            ICON_SIDE, ICON_SIDE, LR_SHARED));
}

int CDiscProgramDlg::OnInitDialog(HWND hFocus, LPARAM lParam)
{
    SetWindowTextA(*this, m_sHeading);
    SendMessageA(*this, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(m_hIcon));
    SetDlgItemTextA(*this, IDC_MODULE, m_sModule);
    SetDlgItemTextA(*this, IDC_DIRECTORY, CurrentDirectory());
    SetDlgItemTextA(*this, IDC_COMMAND_LINE, GetCommandLineA());
    CCUIDialog::OnInitDialog(hFocus, lParam);
    // Not the first field, whose text would stand there selected.
    SetFocus(GetDlgItem(*this, IDOK));
    return 0;
}

int CDiscProgramDlg::OnEraseBkgnd(HDC hDC)
{
    RECT rectClient;
    GetClientRect(*this, &rectClient);
    CUIDCFillSolidRect(hDC, &rectClient, CUIGetWinData()->ResolveColor(GetColor()));

    RECT rectHeader = {0, 0, 0, 42};
    MapDialogRect(*this, &rectHeader);
    rectHeader.right = rectClient.right;
    DrawHeader(hDC, rectHeader);
    return 1;
}

void CDiscProgramDlg::DrawHeader(HDC hDC, const RECT &rectHeader)
{
    const int nMargin = (rectHeader.bottom - ICON_SIDE) / 2;
    const int nState = SaveDC(hDC);
    CUIDCFillSolidRect(hDC, &rectHeader, RGB(255, 255, 255));
    RECT rectEdge = rectHeader;
    DrawEdge(hDC, &rectEdge, EDGE_ETCHED, BF_BOTTOM);
    DrawIconEx(hDC, nMargin, nMargin, m_hIcon, ICON_SIDE, ICON_SIDE, 0, nullptr, DI_NORMAL);

    const int x = ICON_SIDE + 2 * nMargin;
    SetBkMode(hDC, TRANSPARENT);
    SetTextColor(hDC, RGB(0, 0, 0));
    SelectObject(hDC, m_fontHeading);
    TextOutA(hDC, x, nMargin, m_sHeading, m_sHeading.GetLength());
    SelectObject(hDC, reinterpret_cast<HFONT>(SendMessageA(*this, WM_GETFONT, 0, 0)));
    TextOutA(hDC, x, nMargin + 30, m_sPurpose, m_sPurpose.GetLength());
    RestoreDC(hDC, nState);
}

}  // namespace

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE, LPSTR, int)
{
    CDiscProgramDlg dialog(hInstance);
    dialog.DoModal(nullptr);
    return 0;
}
