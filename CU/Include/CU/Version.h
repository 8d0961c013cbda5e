#pragma once

/// @file
/// The version of the operating system.

#include "CU/Platform.h"
#include "CU/String.h"

/// The version of the running operating system, asked for at construction. Windows 8.1 and later
/// report 6.2 to a program whose manifest does not name them.
class CU_API CCUVersionInfo
{
public:
    /// Asks the system; does not fail.
    CCUVersionInfo();
    ~CCUVersionInfo();

    /// Win32s; Windows 95 and its successors; Windows NT. On a system known to us exactly one
    /// holds.
    /// @{
    bool IsWin32() const;
    bool IsWin95() const;
    bool IsWinNT() const;
    /// @}
    /// The installed service pack, such as "Service Pack 6"; empty when there is none.
    CCUString GetVerString() const;
    /// The version: of 4.10, major is 4 and minor is 10.
    /// @{
    int GetMajor() const;
    int GetMinor() const;
    /// @}
    /// The build. On Windows 95 and its successors its upper word repeats major and minor version.
    int GetBuildNumber() const;

private:
    OSVERSIONINFOA m_version;
};
