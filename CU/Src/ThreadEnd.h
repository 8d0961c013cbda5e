#pragma once

// Has the system call the framework when the calling thread ends, and when the process does.
void CUWatchThreadEnd();

// Names the function to be called when the process ends and the calling thread is the last one:
// after the destructors of all statics, during which other threads still run.
void CUSetLastThreadCall(void (*function)());
