#pragma once

/// @file
/// The way from a command's identifier to its handler.

#include "CUI/Platform.h"

class CCUICommandHandler;
class CCUICommandViewList;

/// The process's map from command identifiers to their handlers: two dense tables, one for
/// 1,000 to 9,999 and one for 10,000 and above. It is made by its first use and deleted when the
/// process exits; it owns no handler. Identifier 0 is never mapped; one from 1 to 999 belongs to no
/// table and is reported as "0". For the user-interface thread only.
///
/// A window that routes commands (CCUIWindow::RouteCommands) brings those of its menus,
/// accelerators and controls here, so that a program has no more to do than to make handlers and
/// give menu items and controls their identifiers, which are below 65,536 then, as the system has
/// it.
///
/// Handlers may add, remove, override and delete handlers, themselves included, from any of their
/// operations that the map calls.
class CUI_API CCUICommandMap
{
public:
    /// Enters the handler for every identifier of its range; the table that holds the first one
    /// takes them all and grows in steps of 64. A slot in use is reported as
    /// "m_pMap[nMap][nIndex + nI] == NULL" and overwritten. Returns 1; or 0 for null (reported as
    /// "pCmdHandler"), for a first identifier in no table (reported as "nIndex >= 0"), and when
    /// there is no memory.
    static int Add(CCUICommandHandler *pCmdHandler);

    /// Empties the slots of the handler's range, whoever is in them, and every other slot that the
    /// handler is in. Returns 1; or 0 for null (reported as "pCmdHandler") and when the range does
    /// not lie within a table. Once the map is deleted there is nothing to remove: 1.
    static int Remove(CCUICommandHandler *pCmdHandler);

    /// The identifier's handler, or null.
    static CCUICommandHandler *Lookup(unsigned int nID) { return s_this._Lookup(nID); }

    /// Puts the handler (null: none) into the identifier's slot and returns the one that was there,
    /// for the caller to put back later if it still exists then. Outside the tables' present
    /// length: null, and nothing changes. A handler of identifier -1, which serves none, does not
    /// take itself out of the slot when it is destroyed: another one must be put there before.
    static CCUICommandHandler *Override(unsigned int nID, CCUICommandHandler *pCmdHandler);

    /// Refreshes the commands: calls HandleUpdate for every identifier with a handler, in ascending
    /// order, but not where GetState has a bit of 0x3D (all but CUI_COMMAND_ACTIVE). Entries that a
    /// pass appends by growing the table that it walks are left to the next pass. Then looks at all
    /// that show a command (CCUICommandView), whatever the bits of its state.
    static void IdleUpdate();

    /// Carries out a command: asks its handler for the state and, where that has
    /// CUI_COMMAND_ACTIVE, calls HandleCommand. Returns 1 when the identifier has a handler, also
    /// when the command is disabled; else 0, without a report whatever the identifier is.
    static int Execute(unsigned int nID);

    /// Refreshes the items of a menu that have a handler, not those of its submenus: calls
    /// HandleUpdate, unless others are to refresh the command (CCUICommandState), then sets the
    /// item as GetState says: enabled, checked, the kind of its mark and, with CUI_COMMAND_TEXT,
    /// its text, which keeps the shortcut behind the tab unless it brings one of its own. Mark and
    /// text of bitmaps and of owner-drawn items stay. What is right already is not set again. Items
    /// that handlers append meanwhile are left as they are.
    static void UpdateMenu(HMENU hMenu);

    /// Writes all entries to the trace.
    static void Dump();

private:
    friend class CCUICommandViewList;
    friend CCUICommandHandler *CUIFindCommand(unsigned int nID);
    enum
    {
        GROWTH_STEP = 64,
        TABLES = 2,
        FIRST_BASE = 1000,
        SECOND_BASE = 10000
    };

    // Not yet made: no step and no tables. Nothing of it runs at start-up.
    constexpr CCUICommandMap() : m_nGrowBy(0), m_nLength(), m_nEnd(), m_pMap() {}

    CCUICommandMap(const CCUICommandMap &) = delete;
    CCUICommandMap &operator=(const CCUICommandMap &) = default;

    static CCUICommandMap &This();
    void Make();
    static void Delete();

    static unsigned int Base(int nMap) { return nMap ? SECOND_BASE : FIRST_BASE; }
    static int Table(unsigned int nID);
    static CCUICommandHandler *Find(unsigned int nID);
    static CCUICommandHandler *Refresh(unsigned int nID);

    // NOLINTBEGIN(readability-identifier-naming): the static operations' counterparts
    int _Add(CCUICommandHandler *pCmdHandler);
    int _Remove(CCUICommandHandler *pCmdHandler);
    CCUICommandHandler *_Lookup(unsigned int nID) const
    {
        // An identifier of no table wraps round to an index that no table has.
        const bool bSecond = nID >= SECOND_BASE;
        const unsigned int nIndex = bSecond ? nID - SECOND_BASE : nID - FIRST_BASE;
        if (bSecond) {
            if (nIndex < static_cast<unsigned int>(m_nLength[1]))
                return m_pMap[1][nIndex];
        } else if (nIndex < static_cast<unsigned int>(m_nLength[0])) {
            return m_pMap[0][nIndex];
        } else {
            Table(nID);  // reports it
        }
        return nullptr;
    }
    CCUICommandHandler *_Override(unsigned int nID, CCUICommandHandler *pCmdHandler);
    void _IdleUpdate();
    void _Dump();
    // NOLINTEND(readability-identifier-naming)

    void DumpEntry(int nMap, int nIndex);
    void UseUpTo(int nMap, int nEnd);
    bool Cover(int nMap, int nIndex, unsigned int nRange);

    static CCUICommandMap s_this;
    static bool s_bDeleted;
    static unsigned int s_nChange;  // another one whenever a slot gets another handler

    int m_nGrowBy;
    int m_nLength[TABLES];
    int m_nEnd[TABLES];  // behind the last slot in use, or further
    CCUICommandHandler **m_pMap[TABLES];
};
