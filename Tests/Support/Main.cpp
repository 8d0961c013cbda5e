#include <gtest/gtest.h>

#include "CU/Platform.h"

int main(int argc, char **argv)
{
    // A crash ends the test instead of waiting in a dialog.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
