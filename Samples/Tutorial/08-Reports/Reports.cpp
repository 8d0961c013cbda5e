// A window that shows its own trace; C breaks a contract, X crashes.

#include "CU/CrashReport.h"
#include "CU/DebugSwitch.h"
#include "CU/Dump.h"
#include "CU/String.h"
#include "CUI/ListBox.h"
#include "CUI/Window.h"

// The name by which reports call this file.
#define CU_SOURCE "Reports"

//! [switch]
static CCUDebugSwitch s_verbose("\\Debug\\Tutorial", "Verbose");
//! [switch]

//! [trace]
// Shows what is dumped, by whatever part of the program, in a list.
class CTraceList : public CCUIListBox, private CCUDumpCallback
{
public:
    CTraceList() { CUDumpRegister(this); }
    ~CTraceList() override { CUDumpUnRegister(this); }

private:
    void OnDump(const CCUString &sText) override
    {
        if (Exist())
            AddString(sText.SpanExcluding("\r\n"));
    }
};
//! [trace]

class CTraceWindow : public CCUIWindow
{
protected:
    int OnCreate(CREATESTRUCTA *pCreate) override
    {
        m_list.CreateControl(*this, 1);
        CUDump("Started\n");
        return CCUIWindow::OnCreate(pCreate);
    }
    void OnSize(UINT, int cx, int cy) override { m_list.Move({0, 0, cx, cy}); }

    //! [keys]
    void OnKeyDown(UINT nKey, UINT, UINT) override
    {
        if (s_verbose.Get())
            CUDump("Key %u\n", nKey);
        if (nKey == 'C')
            Check(0);
        else if (nKey == 'X')
            *m_pNothing = 1;
    }
    //! [keys]

    //! [check]
    void Check(int nPages)
    {
        if (CU_ASSERT(nPages > 0))
            return;
        CUDump("Went on after the check\n");
    }
    //! [check]

    void OnDestroy() override
    {
        CCUIWindow::OnDestroy();
        PostQuitMessage(0);
    }

private:
    CTraceList m_list;
    volatile int *m_pNothing = nullptr;
};

//! [main]
// Stands at the end of every report.
static void OnReport(FILE *file)
{
    fputs("Tutorial: step 8\n", file);
}

int main()
{
    CUDumpSetLogFile("Tutorial logs", "Reports");
    CURegisterExceptionHandler(OnReport);
    CUStartExceptionHandler();
    CUShutdownAfterCrash(true);
    //! [main]
    CTraceWindow window;
    const RECT place = {40, 40, 360, 240};
    if (!window.Create(nullptr, "Reports", WS_OVERLAPPEDWINDOW | WS_VISIBLE, place, nullptr, 0))
        return 1;
    return CCUIWindow::RunLoop();
}
