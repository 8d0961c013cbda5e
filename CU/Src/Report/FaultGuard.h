#pragma once

// Calls call(argument), for code of others that must not take the program down with it. False when
// an exception left the call, one of the processor's such as an access violation among them: the
// functions that it had called have then cleaned up as the system lets them, but destructors of
// ours in there have not run. Private to the layer.
bool CUCallGuarded(void (*call)(void *), void *argument);
