#pragma once

/// @file
/// A program that runs once.

#include "CU/String.h"
#include "CUI/Window.h"

struct CUIHandedOver;

/// Lets a program run once for each user and desktop: a later run hands its command line and folder
/// to the first one, which comes to the front, and ends.
///
///     CCUISingleInstance instance;
///     if (instance.Start("Viewer") == CCUISingleInstance::HandedOver)
///         return 0;
///
/// A mutex tells who is the first, so two runs that start at once never both are. The first has a
/// hidden window from Start to the object's end, and serves it with its message loop. One object a
/// process. For the user-interface thread only.
class CCUISingleInstance : private CCUIWindowHook
{
public:
    /// What Start has found.
    enum Outcome
    {
        First,       ///< this is the only run of the program, or the first
        HandedOver,  ///< the first has taken the command line
        Unreachable  ///< the first did not answer in time, or must not be reached: it may hang
    };

    /// Nothing is started.
    CUI_API CCUISingleInstance();
    /// The next run that starts will be the first.
    CUI_API ~CCUISingleInstance();
    CCUISingleInstance(const CCUISingleInstance &) = delete;
    CCUISingleInstance &operator=(const CCUISingleInstance &) = delete;

    /// Finds out. The name tells the program from all others. A first run that has not got so far
    /// yet, or is busy, is waited for, nTimeout milliseconds at most; one that ends meanwhile gives
    /// this run its place. Where the system has no mutex to give, which is traced, this is a first
    /// run that no later one finds.
    CUI_API Outcome Start(const char *pszName, DWORD nTimeout = 5000);

protected:
    /// A later run has handed over its command line, as GetCommandLine has it, and its current
    /// folder. The base brings the main frame to the front and passes them on to its OnCommandLine;
    /// without a main frame they are lost, which is traced.
    CUI_API virtual void OnLaterRun(const CCUString &sCommandLine, const CCUString &sFolder);

private:
    CUI_API int OnHookMessage(UINT message, WPARAM wParam, LPARAM lParam, long &result) override;
    bool Receive(const COPYDATASTRUCT &data);
    void HandleReceived();
    void GiveUpPlace();

    CCUIWindow m_window;
    HANDLE m_hMutex;  // held by the first run
    CUIHandedOver *m_pReceived;
};
