#pragma once

// Whether CUShutdown has been called.
bool CUIsShutdown();
