#pragma once

// Waits until every thread of this process has begun to run. Wine 8's ExitProcess crashes (exit
// code 139) when it ends a thread that is only just being born, and GoogleTest and the system start
// threads of their own. So whoever is about to end a process of the tests calls this before.
void WaitForThreadBirths();
