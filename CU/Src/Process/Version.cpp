#include "CU/Version.h"

CCUVersionInfo::CCUVersionInfo() : m_version()
{
    m_version.dwOSVersionInfoSize = sizeof m_version;
    GetVersionExA(&m_version);
}

CCUVersionInfo::~CCUVersionInfo() {}

bool CCUVersionInfo::IsWin32() const
{
    return m_version.dwPlatformId == VER_PLATFORM_WIN32s;
}

bool CCUVersionInfo::IsWin95() const
{
    return m_version.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS;
}

bool CCUVersionInfo::IsWinNT() const
{
    return m_version.dwPlatformId == VER_PLATFORM_WIN32_NT;
}

CCUString CCUVersionInfo::GetVerString() const
{
    return m_version.szCSDVersion;
}

int CCUVersionInfo::GetMajor() const
{
    return static_cast<int>(m_version.dwMajorVersion);
}

int CCUVersionInfo::GetMinor() const
{
    return static_cast<int>(m_version.dwMinorVersion);
}

int CCUVersionInfo::GetBuildNumber() const
{
    return static_cast<int>(m_version.dwBuildNumber);
}
