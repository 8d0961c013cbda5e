#include <gtest/gtest.h>

#include "CU/Platform.h"
#include "Support/ThreadBirths.h"

int main(int argc, char **argv)
{
    // A crash ends the test instead of waiting in a dialog.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    WaitForThreadBirths();
    return result;
}
