#pragma once

// What the two programs of the group Frame show.

#define IDR_FRAME 100
#define ID_FRAME_FIRST 1000

#define FRAME_TITLE "Measured frame"
#define FRAME_BUTTONS 12
#define FRAME_READY "Ready"
