#pragma once

/// @file
/// Printing: paper, pages and printers. CUI/PrintPreview.h shows the same pages on the screen.

#include "CUI/Platform.h"

class CCUIWindow;

/// How many units of paper an inch has: twentieths of a point.
const int CUI_PAPER_INCH = 1440;

/// A sheet of paper, in units of CUI_PAPER_INCH.
struct CUIPaper
{
    SIZE size;     ///< as it lies in the printer
    RECT margins;  ///< widths, at each edge, of what is to stay empty
};

/// What is printed: one page after the other, on any device.
class CCUIPages
{
public:
    /// How many there are.
    virtual int GetPageCount() = 0;
    /// Draws a page, from 0. The DC has units of CUI_PAPER_INCH, and the paper's top left corner as
    /// its origin; what is done to it is undone. Texts are as wide on all devices where they are
    /// drawn with the widths of their characters (ExtTextOut), measured in a large size. For a
    /// preview it runs while a window is painted: it takes no messages then and shows no window.
    virtual void DrawPage(HDC hDC, int nPage) = 0;

protected:
    ~CCUIPages() = default;
};

/// A printer of the system, with the user's choices for it.
///
///     CCUIPrinter printer;
///     if (printer.Choose(&frame) && !printer.Print("Letter", pages))
///         ...CUErrorText(GetLastError())
///
/// comdlg32.dll is loaded by the first use. For the user-interface thread.
class CCUIPrinter
{
public:
    /// None.
    CUI_API CCUIPrinter();
    CUI_API ~CCUIPrinter();
    CCUIPrinter(const CCUIPrinter &) = delete;
    CCUIPrinter &operator=(const CCUIPrinter &) = delete;

    /// Opens the user's usual printer, without a question, unless one is open. 1; or 0, and
    /// GetLastError tells why: ERROR_INVALID_PRINTER_NAME, that there is none.
    CUI_API int OpenDefault();
    /// Lets the user choose printer, paper, copies and pages in the system's dialog, which begins
    /// with what was chosen before. nPages: how many there are; 0: not known yet. 1; or 0, as
    /// CUIChooseFont says, without a printer as OpenDefault, of which the system says nothing to
    /// the user: what is open stays.
    CUI_API int Choose(CCUIWindow *pParent, int nPages = 0);
    /// Forgets it, with all choices. What is being printed or chosen meanwhile is given up, as it
    /// is when the object is deleted.
    CUI_API void Close();

    /// The printer's DC; the object's. Null: none is open.
    HDC GetDC() const { return m_hDC; }
    /// The paper in the printer; without one A4, or Letter where the user measures in inches. The
    /// margins are as wide as said, and wider where the printer cannot reach.
    CUI_API CUIPaper GetPaper(int nMargin = CUI_PAPER_INCH * 4 / 5) const;

    /// Prints the pages that the user has chosen, as a document of that name; none of them there:
    /// nothing. 1; or 0, with the system's error, ERROR_CANCELLED when somebody has given it up,
    /// and nothing is printed that had not been sent.
    CUI_API int Print(const char *pszName, CCUIPages &pages);

private:
    class CRun;
    bool PrintDocument(const char *pszName, CCUIPages &pages);
    static bool PrintPage(const CRun &run, HDC hDC, CCUIPages &pages, int nPage);

    HDC m_hDC;
    HGLOBAL m_hDevMode;
    HGLOBAL m_hDevNames;
    int m_nFirst;  // of the pages, from 0
    int m_nEnd;    // the one behind the last
    CRun *m_pRun;  // the innermost of the calls that go on
};
