#pragma once

#include "CU/Platform.h"

#include <mmsystem.h>

// What the framework uses of the system's winmm.dll. The library is not imported, for then one in
// the program's own folder would be taken: the first reading of the time or the first sound
// loads it; before, there are no timers. From then on a call costs what that of an imported
// function does. Any thread may call at any time, before main and in the last destructor too.
// Without the library the time is GetTickCount, no timer is to be had and no sound is played.
// Private to the framework and the launcher; tests put functions of their own in here.
struct CCUMultimedia
{
    decltype(&::timeGetTime) getTime;
    decltype(&::timeSetEvent) setEvent;
    decltype(&::timeKillEvent) killEvent;
    decltype(&::PlaySoundA) playSound;
};
extern CCUMultimedia g_multimedia;

// Whether a timer was ever set, with which the library may still be busy.
extern bool g_bMultimediaInUse;
