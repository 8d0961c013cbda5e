#pragma once

/// @file
/// Those who show commands.

#include "CU/String.h"
#include "CUI/Platform.h"

class CCUICommandHandler;

/// Shows one command: a button, say. Its state, and with CUI_COMMAND_TEXT its text, are looked at
/// when the command is set and at the end of every idle pass (CCUICommandMap::IdleUpdate), whoever
/// else is to refresh the command; OnCommandChanged is called when one of them is another than
/// before. A command without a handler is a disabled one.
///
/// Views may come, go and be deleted in every operation that a pass calls, their own included. For
/// the user-interface thread only.
class CCUICommandView
{
public:
    CCUICommandView(const CCUICommandView &) = delete;
    CCUICommandView &operator=(const CCUICommandView &) = delete;

    /// Shows another command from now on, and tells how it stands; 0: none, and nothing is told.
    CUI_API void SetCommand(unsigned int nID);
    /// The command, 0 at first.
    unsigned int GetCommand() const { return m_nID; }
    /// Looks at the command now.
    CUI_API void UpdateCommand();

protected:
    /// Shows no command.
    CUI_API CCUICommandView();
    CUI_API ~CCUICommandView();

    /// The command stands otherwise than at the last call, or is another one. nState:
    /// CCUICommandState bits; sText: what it is called, empty without CUI_COMMAND_TEXT. It may
    /// delete the view.
    CUI_API virtual void OnCommandChanged(unsigned short nState, const CCUString &sText);

private:
    friend class CCUICommandViewList;

    static void Tell(int nIndex, CCUICommandHandler *pHandler, unsigned int nState);

    unsigned int m_nID;
    int m_nIndex;       // in the list of all views, while there is a command
    CCUString m_sText;  // as told
};
