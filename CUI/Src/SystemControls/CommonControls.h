#pragma once

// Loads the system's comctl32.dll at the first call, which makes the window classes of the common
// controls known; it stays loaded as long as the framework, for windows of them may be there.
// Private to the layer. Whether there is such a library.
bool CUILoadCommonControls();
