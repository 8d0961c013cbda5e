#pragma once

// Has the system call the framework when the calling thread ends, and when the process does.
void CUWatchThreadEnd();

// Whether the system is telling the calling thread's end. It holds locks that the holder of the
// loader's lock may wait for: no call that takes the loader's lock may be made.
bool CUIsAtThreadEnd();

// Names the function to be called when the process ends and the calling thread is the last one:
// after the destructors of all statics, during which other threads still run.
void CUSetLastThreadCall(void (*function)());
