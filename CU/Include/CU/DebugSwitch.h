#pragma once

/// @file
/// Switches that turn diagnostics on.

#include "CU/Prober.h"

/// A variable of the tree (Prober.h), 0 by default, that turns diagnostics on: a static object of
/// the framework or the program. The user sets switches from outside through the environment
/// variable CU_DEBUG, read at the first use of a switch: settings divided by ';', each
/// "name=number" or
/// "\path\name=number", such as "TimerDebug=1;\Debug\Timer\TimeOutThreshold=250". Letter case does
/// not matter, nor do spaces around names and numbers; numbers are decimal, or hexadecimal after
/// 0x; a name alone means 1; the last setting of a switch counts. A number that does not fit into
/// 32 bits becomes the nearest that does: the nearest signed one if it is decimal, the nearest
/// unsigned one (whose bits are taken) if it is hexadecimal. What the program sets holds from then
/// on, whatever the environment says. Any thread.
class CCUDebugSwitch : public CCUProberLong
{
public:
    /// The texts must outlive the object. The path begins with a backslash: "\Debug\Timer".
    CU_API CCUDebugSwitch(const char *path, const char *name, const char *description = "",
                          const char *unit = "");

    /// The value that was set last, by the program or from outside.
    /// @{
    long Get() const
    {
        if (m_nNotice & UNREAD)
            const_cast<CCUDebugSwitch *>(this)->ReadSetting();
        return CCUProberLong::Get();
    }
    operator long() const { return Get(); }
    /// @}
    /// Adds to the value, what the user has set included.
    void Add(long nMore)
    {
        Get();
        CCUProberLong::Add(nMore);
    }

    /// The list of all switches, in the order in which they were constructed; null at the end. Not
    /// while another thread may destroy one.
    /// @{
    CU_API static CCUDebugSwitch *GetFirst();
    CU_API CCUDebugSwitch *GetNext() const;
    /// @}
    /// The switch of that name, or null. A null path means any. Not while another thread may
    /// destroy one.
    CU_API static CCUDebugSwitch *Find(const char *path, const char *name);

private:
    CU_API void ReadSetting();
};
