#pragma once

// Calls call(argument). False when an exception left it, a fault of the processor's such as an
// access violation among them: the calls below have then been unwound as far as they let the system
// do so, and everything goes on here. For code of others that may not be trusted with the program's
// life; ours has no destructors run. Private to the layer.
bool CUCallGuarded(void (*call)(void *), void *argument);
