#pragma once

#include "CU/Platform.h"

// Gives the thread's last error back at the end of a scope: whoever reports or traces must not
// change what its caller reads afterwards.
class CCUKeepLastError
{
public:
    CCUKeepLastError() : m_nError(GetLastError()) {}
    ~CCUKeepLastError() { SetLastError(m_nError); }
    CCUKeepLastError(const CCUKeepLastError &) = delete;
    CCUKeepLastError &operator=(const CCUKeepLastError &) = delete;

    // As it was when the scope began.
    DWORD Error() const { return m_nError; }

private:
    DWORD m_nError;
};
