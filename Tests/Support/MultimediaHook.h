#pragma once

#include "Base/Multimedia.h"

// The time that the framework reads.
inline DWORD MultimediaTime()
{
    return g_multimedia.getTime();
}

// Puts a function of the test in the place of one of winmm.dll, for as long as the object lives.
template <typename F>
class CMultimediaHook
{
public:
    CMultimediaHook(F CCUMultimedia::*member, F function) : m_member(member)
    {
        MultimediaTime();  // loads the library, which would write over what stands there
        m_old = g_multimedia.*member;
        g_multimedia.*member = function;
    }
    ~CMultimediaHook() { g_multimedia.*m_member = m_old; }
    CMultimediaHook(const CMultimediaHook &) = delete;
    CMultimediaHook &operator=(const CMultimediaHook &) = delete;

private:
    F CCUMultimedia::*const m_member;
    F m_old;
};
