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
    CMultimediaHook(F &slot, F function) : m_slot(slot)
    {
        MultimediaTime();  // loads the library, which would write over what stands there
        m_old = slot;
        slot = function;
    }
    ~CMultimediaHook() { m_slot = m_old; }
    CMultimediaHook(const CMultimediaHook &) = delete;
    CMultimediaHook &operator=(const CMultimediaHook &) = delete;

private:
    F &m_slot;
    F m_old;
};
