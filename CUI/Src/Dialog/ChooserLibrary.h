#pragma once

#include "Base/SystemLibrary.h"

// A library of the system that is loaded by its first use and stays as long as the framework. Make
// it a CCUShared; T has its name as NAME.
template <typename T>
class CCUILibrary
{
public:
    CCUILibrary() : m_hLibrary(nullptr) {}
    ~CCUILibrary()
    {
        if (m_hLibrary)
            FreeLibrary(m_hLibrary);
    }
    CCUILibrary(const CCUILibrary &) = delete;
    CCUILibrary &operator=(const CCUILibrary &) = delete;

    // Null, with the last error, when there is no such library or function.
    template <typename F>
    F *Find(const char *pszFunction)
    {
        if (!m_hLibrary)
            m_hLibrary = CULoadSystemLibrary(T::NAME);
        return reinterpret_cast<F *>(m_hLibrary ? GetProcAddress(m_hLibrary, pszFunction)
                                                : nullptr);
    }

private:
    HMODULE m_hLibrary;
};
