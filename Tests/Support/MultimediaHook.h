#pragma once

#include "Base/Multimedia.h"
#include "Support/ImportHook.h"

// The time that the framework reads.
inline DWORD MultimediaTime()
{
    return g_multimedia.getTime();
}

// Puts a function of the test in the place of one of winmm.dll, for as long as the object lives.
template <typename F>
class CMultimediaHook : public CFunctionHook
{
public:
    CMultimediaHook(F &slot, F function) : CFunctionHook(Loaded(slot), function) {}

private:
    // The library writes over what stands there when it is loaded.
    static void **Loaded(F &slot)
    {
        MultimediaTime();
        return reinterpret_cast<void **>(&slot);
    }
};
