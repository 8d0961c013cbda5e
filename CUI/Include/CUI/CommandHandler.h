#pragma once

/// @file
/// Those who serve commands.

#include "CU/String.h"
#include "CUI/Platform.h"

/// What a command asks of those who show it: the bits of CCUICommandHandler::GetState. With any of
/// the first six but CUI_COMMAND_ACTIVE the idle pass leaves the command alone.
enum CCUICommandState : unsigned short
{
    /// Refreshed when a menu that has it opens, instead of by the idle pass.
    CUI_COMMAND_MENU = 0x01,
    /// Enabled. Without it the command is shown as disabled and not carried out.
    CUI_COMMAND_ACTIVE = 0x02,
    /// Refreshed by others than idle passes and menus.
    /// @{
    CUI_COMMAND_MINIMIZED = 0x04,
    CUI_COMMAND_TIMER = 0x08,
    CUI_COMMAND_HIDDEN = 0x10,
    CUI_COMMAND_HIDDEN_DIALOG_CONTROL = 0x20,
    /// @}
    CUI_COMMAND_CHECKED = 0x40,  ///< shown with a check mark
    CUI_COMMAND_RADIO = 0x80,  ///< its check mark is a dot: one of several that exclude each other
    CUI_COMMAND_TEXT = 0x100   ///< the text of its menu items is what GetShortTT says
};

/// What GetState answers of a command that is enabled or not, and checked or not.
constexpr unsigned short CUICommandState(bool bActive, bool bChecked = false)
{
    return static_cast<unsigned short>((bActive ? CUI_COMMAND_ACTIVE : 0) |
                                       (bChecked ? CUI_COMMAND_CHECKED : 0));
}

/// Serves one command, or a block of commands with consecutive identifiers. It is in the
/// CCUICommandMap from its construction to its destruction. For the user-interface thread only.
class CUI_API CCUICommandHandler
{
public:
    /// Serves nIDRange identifiers from nID on, none with a range of 0. An nID of 0 draws new
    /// identifiers from CCUIIDGenerator, one at least; a negative one (2^31 and above) makes a
    /// handler that serves no command and is in no map (its range must be 1, or "nIDRange == 1" is
    /// reported). A failed CCUICommandMap::Add is reported as "CCUICommandMap::Add(this)": for
    /// example with a range of 2^31 and above, which no table can hold. GetID and GetIDRange answer
    /// all the same.
    CCUICommandHandler(unsigned int nID, unsigned int nIDRange);
    CCUICommandHandler(const CCUICommandHandler &) = delete;
    CCUICommandHandler &operator=(const CCUICommandHandler &) = delete;
    /// Leaves the map. It reports "CCUICommandMap::Remove(this)" when that fails, as it does where
    /// Add failed. Not virtual: delete a handler as what it was made.
    ~CCUICommandHandler();

    /// @name Operations
    /// Here nID is one of the handler's identifiers; for the first two 0 stands for GetID(). The
    /// defaults report any other nID (except in GetState) as
    /// "nID >= m_nID && nID < m_nID + m_nIDRange".
    /// @{

    /// Carries out the command. The default does nothing.
    virtual void HandleCommand(unsigned int nID);
    /// Refreshes the look of the command. The default does nothing.
    virtual void HandleUpdate(unsigned int nID);
    /// CCUICommandState bits. The default is CUI_COMMAND_ACTIVE.
    virtual unsigned short GetState(unsigned int nID);
    /// The short tooltip. The default is "UNKNOWN!".
    virtual CCUString GetShortTT(unsigned int nID);
    /// The long help text. The default is "This command is UNKNOWN!".
    virtual CCUString GetLongTT(unsigned int nID);

    /// @}

    /// The first identifier (0: serves none) and the number of identifiers.
    /// @{
    unsigned int GetID() const { return m_nID; }
    unsigned int GetIDRange() const { return m_nIDRange; }
    /// @}

protected:
    /// What GetID and GetIDRange answer.
    /// @{
    unsigned int m_nID;
    unsigned int m_nIDRange;
    /// @}

private:
    void CheckRange(unsigned int nID) const;
};
