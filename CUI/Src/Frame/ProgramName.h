#pragma once

#include "CU/String.h"

// The name of the program's file, without folder and extension.
CCUString CUIProgramName();
