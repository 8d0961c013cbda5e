#include "CUI/Printer.h"

#include <limits.h>

#include "Base/GdiGuards.h"
#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "Dialog/ChooserOwner.h"
#include "Dialog/CommonDialog.h"

namespace {

const int MOST_PAGES = 0xFFFF;  // that the system's dialog can count
const char DIALOG[] = "PrintDlgA";

// One of the device's values across or down, in units of paper.
int InUnits(HDC hDC, int nValue, int nPixelsPerInch)
{
    return MulDiv(GetDeviceCaps(hDC, nValue), CUI_PAPER_INCH, GetDeviceCaps(hDC, nPixelsPerInch));
}

// "1" for inches, "0" for metres.
bool MeasuresInInches()
{
    char szMeasure[2] = "";
    GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_IMEASURE, szMeasure, sizeof szMeasure);
    return *szMeasure == '1';
}

void FreeRecord(PRINTDLGA &record)
{
    GlobalFree(record.hDevMode);
    GlobalFree(record.hDevNames);
}

}  // namespace

CCUIPrinter::CCUIPrinter()
    : m_hDC(nullptr), m_hDevMode(nullptr), m_hDevNames(nullptr), m_nFirst(0), m_nEnd(INT_MAX)
{
}

CCUIPrinter::~CCUIPrinter()
{
    Close();
}

void CCUIPrinter::Close()
{
    if (m_hDC)
        DeleteDC(m_hDC);
    GlobalFree(m_hDevMode);
    GlobalFree(m_hDevNames);
    m_hDC = nullptr;
    m_hDevMode = m_hDevNames = nullptr;
    m_nFirst = 0;
    m_nEnd = INT_MAX;
}

int CCUIPrinter::OpenDefault()
{
    if (m_hDC)
        return 1;
    PRINTDLGA record = {};
    record.lStructSize = sizeof record;
    record.Flags = PD_RETURNDC | PD_RETURNDEFAULT | PD_NOWARNING;
    const CUICommonResult result = CUICommonDialog(DIALOG, &record);
    if (!result.bChosen) {
        FreeRecord(record);
        return CUICommonAnswer(DIALOG, result);
    }
    m_hDC = record.hDC;
    m_hDevMode = record.hDevMode;
    m_hDevNames = record.hDevNames;
    return 1;
}

int CCUIPrinter::Choose(CCUIWindow *pParent, int nPages)
{
    PRINTDLGA record = {};
    record.lStructSize = sizeof record;
    // The dialog takes both over and gives them, or others, back.
    record.hDevMode = m_hDevMode;
    record.hDevNames = m_hDevNames;
    record.Flags = PD_RETURNDC | PD_NOSELECTION | PD_USEDEVMODECOPIESANDCOLLATE | PD_NOWARNING;
    record.nMinPage = record.nFromPage = 1;
    record.nMaxPage = static_cast<WORD>(nPages > 0 && nPages < MOST_PAGES ? nPages : MOST_PAGES);
    record.nToPage = record.nMaxPage;
    record.nCopies = 1;
    CUICommonResult result;
    {
        const CCUIChooserOwner owner(pParent);
        record.hwndOwner = owner;
        result = CUICommonDialog(DIALOG, &record);
    }
    m_hDevMode = record.hDevMode;
    m_hDevNames = record.hDevNames;
    if (!result.bChosen)
        return CUICommonAnswer(DIALOG, result);
    if (m_hDC)
        DeleteDC(m_hDC);
    m_hDC = record.hDC;
    const bool bSome = (record.Flags & PD_PAGENUMS) != 0;
    m_nFirst = bSome ? record.nFromPage - 1 : 0;
    m_nEnd = bSome ? record.nToPage : INT_MAX;
    return 1;
}

CUIPaper CCUIPrinter::GetPaper(int nMargin) const
{
    if (!m_hDC) {
        const SIZE a4 = {11906, 16838}, letter = {12240, 15840};
        return {MeasuresInInches() ? letter : a4, {nMargin, nMargin, nMargin, nMargin}};
    }
    const SIZE size = {InUnits(m_hDC, PHYSICALWIDTH, LOGPIXELSX),
                       InUnits(m_hDC, PHYSICALHEIGHT, LOGPIXELSY)};
    const int nLeft = InUnits(m_hDC, PHYSICALOFFSETX, LOGPIXELSX);
    const int nTop = InUnits(m_hDC, PHYSICALOFFSETY, LOGPIXELSY);
    const int nRight = size.cx - nLeft - InUnits(m_hDC, HORZRES, LOGPIXELSX);
    const int nBottom = size.cy - nTop - InUnits(m_hDC, VERTRES, LOGPIXELSY);
    return {size,
            {CUILarger(nMargin, nLeft), CUILarger(nMargin, nTop), CUILarger(nMargin, nRight),
             CUILarger(nMargin, nBottom)}};
}

int CCUIPrinter::Print(const char *pszName, CCUIPages &pages)
{
    if (!m_hDC) {
        SetLastError(ERROR_INVALID_PRINTER_NAME);
        return 0;
    }
    const DOCINFOA document = {sizeof document, pszName, nullptr, nullptr, 0};
    if (StartDocA(m_hDC, &document) > 0) {
        if (PrintPages(pages) && EndDoc(m_hDC) > 0)
            return 1;
        const DWORD nError = GetLastError();
        AbortDoc(m_hDC);
        SetLastError(nError);
    }
    const DWORD nError = GetLastError();
    CUDump("Unable to print %s, gle: %lu\n", pszName, nError);
    SetLastError(nError);
    return 0;
}

bool CCUIPrinter::PrintPages(CCUIPages &pages)
{
    const int nCount = pages.GetPageCount();
    for (int nPage = m_nFirst; nPage < m_nEnd && nPage < nCount; ++nPage) {
        if (!PrintPage(pages, nPage))
            return false;
    }
    return true;
}

bool CCUIPrinter::PrintPage(CCUIPages &pages, int nPage)
{
    if (StartPage(m_hDC) <= 0)
        return false;
    {
        const CCUISavedDC saved(m_hDC);
        SetMapMode(m_hDC, MM_ANISOTROPIC);
        SetWindowExtEx(m_hDC, CUI_PAPER_INCH, CUI_PAPER_INCH, nullptr);
        SetViewportExtEx(m_hDC, GetDeviceCaps(m_hDC, LOGPIXELSX), GetDeviceCaps(m_hDC, LOGPIXELSY),
                         nullptr);
        // The DC begins where the printer can print, not at the paper's edge.
        SetViewportOrgEx(m_hDC, -GetDeviceCaps(m_hDC, PHYSICALOFFSETX),
                         -GetDeviceCaps(m_hDC, PHYSICALOFFSETY), nullptr);
        pages.DrawPage(m_hDC, nPage);
    }
    return EndPage(m_hDC) > 0;
}
