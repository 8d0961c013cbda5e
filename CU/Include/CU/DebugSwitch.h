#pragma once

/// @file
/// Switches that turn diagnostics on.

#include "CU/Platform.h"

/// A named integer of the framework or the program, 0 by default, that turns diagnostics on: a
/// static object, listed from its construction on. The user sets switches from outside through the
/// environment variable CU_DEBUG, read once, at the first use of a switch: settings divided by ';',
/// each "name=number" or "\path\name=number", such as
/// "TimerDebug=1;\Debug\Timer\TimeOutThreshold=250". Letter case does not matter, nor do spaces
/// around names and numbers; numbers are decimal, or hexadecimal after 0x; a name alone means 1;
/// the last setting of a switch counts. A number that does not fit into 32 bits becomes the nearest
/// that does: the nearest signed one if it is decimal, the nearest unsigned one (whose bits are
/// taken) if it is hexadecimal.
/// Any thread may read and set; construct and destroy at start-up, exit, or under CUEnterMutex.
class CU_API CCUDebugSwitch
{
public:
    /// Both texts must outlive the object; neither is null. The path begins with a backslash:
    /// "\Debug\Timer".
    CCUDebugSwitch(const char *path, const char *name);
    ~CCUDebugSwitch();
    CCUDebugSwitch(const CCUDebugSwitch &) = delete;
    CCUDebugSwitch &operator=(const CCUDebugSwitch &) = delete;

    /// The pointers that were given to the constructor.
    /// @{
    const char *GetPath() const { return m_path; }
    const char *GetName() const { return m_name; }
    /// @}
    /// The value that was set last, by the program or from outside.
    long Get();
    /// Sets the value, which holds from now on, whatever the environment says.
    void Set(long nValue);

    /// The list of all switches, in no promised order; null at the end.
    /// @{
    static CCUDebugSwitch *GetFirst();
    CCUDebugSwitch *GetNext() const { return m_pNext; }
    /// @}
    /// The switch of that name, or null. A null path means any.
    static CCUDebugSwitch *Find(const char *path, const char *name);

private:
    CCUDebugSwitch *m_pNext;
    const char *m_path;
    const char *m_name;
    volatile LONG m_nValue;
    volatile LONG m_bKnown;  // m_nValue holds, the environment has been asked
};
