#include "Base/Multimedia.h"

#include "Base/Module.h"
#include "Base/SystemLibrary.h"
#include "Process/ThreadExit.h"

namespace {

MMRESULT WINAPI NoSetEvent(UINT, UINT, LPTIMECALLBACK, DWORD_PTR, UINT)
{
    return 0;
}

MMRESULT WINAPI NoKillEvent(UINT)
{
    return TIMERR_NOCANDO;
}

BOOL WINAPI NoPlaySound(LPCSTR, HMODULE, DWORD)
{
    return FALSE;
}

HMODULE s_hLibrary = nullptr;

template <typename F>
void Find(HMODULE hLibrary, const char *name, F *&function, F *substitute)
{
    F *const found = CUFindFunction<F>(hLibrary, name);
    function = found ? found : substitute;
}

// Not by CUOnce: a thread that waited here could hold the loader's lock, which the one that loads
// needs. Threads that meet find the same. The time comes last: who finds it in place uses the
// others.
void Load()
{
    const HMODULE hLibrary = CULoadSystemLibrary("winmm.dll");
    s_hLibrary = hLibrary;
    Find(hLibrary, "timeSetEvent", g_multimedia.setEvent, NoSetEvent);
    Find(hLibrary, "timeKillEvent", g_multimedia.killEvent, NoKillEvent);
    Find(hLibrary, "PlaySoundA", g_multimedia.playSound, NoPlaySound);
    Find(hLibrary, "timeGetTime", g_multimedia.getTime, GetTickCount);
}

DWORD WINAPI FirstGetTime()
{
    // At a thread's end no library may be loaded; the clock is the same within a tick.
    if (CUIsAtThreadEnd())
        return GetTickCount();
    Load();
    return g_multimedia.getTime();
}

BOOL WINAPI FirstPlaySound(LPCSTR pszSound, HMODULE hModule, DWORD nFlags)
{
    if (CUIsAtThreadEnd())
        return FALSE;
    Load();
    return g_multimedia.playSound(pszSound, hModule, nFlags);
}

}  // namespace

bool g_bMultimediaInUse = false;
CCUMultimedia g_multimedia = {FirstGetTime, NoSetEvent, NoKillEvent, FirstPlaySound};

// Once a timer was set the system's timer thread may be at work in the library, which then stays.
void CUUnloadMultimedia()
{
    if (s_hLibrary && !g_bMultimediaInUse)
        FreeLibrary(s_hLibrary);
}
