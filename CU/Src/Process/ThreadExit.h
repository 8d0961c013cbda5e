#pragma once

// Whether the system is telling the calling thread's end. It holds locks that the holder of the
// loader's lock may wait for: no call that takes the loader's lock may be made.
bool CUIsAtThreadEnd();
