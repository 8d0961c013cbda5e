#include "CUI/Printer.h"

#include <limits.h>

#include "Base/KeepLastError.h"
#include "Base/Wrap.h"
#include "CU/Dump.h"
#include "CU/String.h"
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

void Free(HDC hDC, HGLOBAL hDevMode, HGLOBAL hDevNames)
{
    if (hDC)
        DeleteDC(hDC);
    GlobalFree(hDevMode);
    GlobalFree(hDevNames);
}

// What a call of printing answered: Windows 95 tells failures by the answer alone.
bool IsDone(int nAnswer)
{
    if (nAnswer > 0)
        return true;
    if (GetLastError() == NO_ERROR)
        SetLastError(nAnswer == SP_USERABORT   ? ERROR_CANCELLED
                     : nAnswer == SP_OUTOFDISK ? ERROR_DISK_FULL
                                               : ERROR_GEN_FAILURE);
    return false;
}

}  // namespace

// A call of the printer during which code of others runs, which may close or delete it.
class CCUIPrinter::CRun
{
public:
    explicit CRun(CCUIPrinter *pPrinter)
        : m_pPrinter(pPrinter), m_pOuter(pPrinter->m_pRun), m_bOver(false)
    {
        pPrinter->m_pRun = this;
    }
    ~CRun()
    {
        if (m_pPrinter)
            m_pPrinter->m_pRun = m_pOuter;
    }
    CRun(const CRun &) = delete;
    CRun &operator=(const CRun &) = delete;

    // Touch nothing of the printer then, nor of what belongs to it.
    bool IsOver() const { return m_bOver; }
    // All that run. Deleted: the printer is.
    static void EndAll(CRun *pRun, bool bDeleted)
    {
        for (; pRun; pRun = pRun->m_pOuter) {
            pRun->m_bOver = true;
            if (bDeleted)
                pRun->m_pPrinter = nullptr;
        }
    }

private:
    CCUIPrinter *m_pPrinter;
    CRun *m_pOuter;
    bool m_bOver;
};

CCUIPrinter::CCUIPrinter()
    : m_hDC(nullptr),
      m_hDevMode(nullptr),
      m_hDevNames(nullptr),
      m_nFirst(0),
      m_nEnd(INT_MAX),
      m_pRun(nullptr)
{
}

CCUIPrinter::~CCUIPrinter()
{
    Close();
    CRun::EndAll(m_pRun, true);
}

void CCUIPrinter::Close()
{
    CRun::EndAll(m_pRun, false);
    if (m_pRun && m_hDC)
        AbortDoc(m_hDC);
    Free(m_hDC, m_hDevMode, m_hDevNames);
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
        Free(nullptr, record.hDevMode, record.hDevNames);
        return CUICommonAnswer(DIALOG, result);
    }
    Close();
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
    m_hDevMode = m_hDevNames = nullptr;
    record.Flags = PD_RETURNDC | PD_NOSELECTION | PD_USEDEVMODECOPIESANDCOLLATE | PD_NOWARNING;
    record.nMinPage = record.nFromPage = 1;
    record.nMaxPage = static_cast<WORD>(nPages > 0 && nPages < MOST_PAGES ? nPages : MOST_PAGES);
    record.nToPage = record.nMaxPage;
    record.nCopies = 1;
    CUICommonResult result;
    {
        const CRun run(this);
        {
            const CCUIChooserOwner owner(pParent);
            record.hwndOwner = owner;
            result = CUICommonDialog(DIALOG, &record);
        }
        if (run.IsOver()) {
            Free(record.hDC, record.hDevMode, record.hDevNames);
            return CUIChoiceCancelled();
        }
    }
    if (!result.bChosen) {
        m_hDevMode = record.hDevMode;
        m_hDevNames = record.hDevNames;
        return CUICommonAnswer(DIALOG, result);
    }
    Close();
    m_hDevMode = record.hDevMode;
    m_hDevNames = record.hDevNames;
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
    const CCUString sName(pszName);  // may go with the printer
    SetLastError(NO_ERROR);
    if (PrintDocument(sName, pages))
        return 1;
    const CCUKeepLastError keepLastError;
    CUDump("Unable to print %s, gle: %lu\n", sName.GetString(), keepLastError.Error());
    return 0;
}

bool CCUIPrinter::PrintDocument(const char *pszName, CCUIPages &pages)
{
    const CRun run(this);
    const int nCount = pages.GetPageCount();
    const DOCINFOA document = {sizeof document, pszName, nullptr, nullptr, 0};
    if (!run.IsOver()) {
        const HDC hDC = m_hDC;
        const int nEnd = CUISmaller(m_nEnd, nCount);
        int nPage = m_nFirst;
        if (nPage >= nEnd)
            return true;
        if (!IsDone(StartDocA(hDC, &document)))
            return false;
        while (nPage < nEnd && PrintPage(run, hDC, pages, nPage))
            ++nPage;
        if (nPage == nEnd && IsDone(EndDoc(hDC)))
            return true;
        if (!run.IsOver()) {
            const CCUKeepLastError keepLastError;
            AbortDoc(hDC);
            return false;
        }
    }
    SetLastError(ERROR_CANCELLED);
    return false;
}

bool CCUIPrinter::PrintPage(const CRun &run, HDC hDC, CCUIPages &pages, int nPage)
{
    if (!IsDone(StartPage(hDC)))
        return false;
    const int nSaved = SaveDC(hDC);
    SetMapMode(hDC, MM_ANISOTROPIC);
    SetWindowExtEx(hDC, CUI_PAPER_INCH, CUI_PAPER_INCH, nullptr);
    SetViewportExtEx(hDC, GetDeviceCaps(hDC, LOGPIXELSX), GetDeviceCaps(hDC, LOGPIXELSY), nullptr);
    // The DC begins where the printer can print, not at the paper's edge.
    SetViewportOrgEx(hDC, -GetDeviceCaps(hDC, PHYSICALOFFSETX),
                     -GetDeviceCaps(hDC, PHYSICALOFFSETY), nullptr);
    pages.DrawPage(hDC, nPage);
    if (run.IsOver())
        return false;
    RestoreDC(hDC, nSaved);
    SetLastError(NO_ERROR);  // what the drawing left
    return IsDone(EndPage(hDC));
}
