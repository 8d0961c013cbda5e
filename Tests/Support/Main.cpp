#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "CU/Platform.h"
#include "Support/ThreadBirths.h"

// False on another system than who runs the tests wants, such as "4.0.1": version and platform.
static bool IsSystemWanted()
{
    OSVERSIONINFOA version = {};
    version.dwOSVersionInfoSize = sizeof version;
    GetVersionExA(&version);
    char szSystem[64];
    sprintf(szSystem, "%lu.%lu.%lu", version.dwMajorVersion, version.dwMinorVersion,
            version.dwPlatformId);
    const char *wanted = getenv("TEST_SYSTEM");
    const bool bWanted = !wanted || strcmp(wanted, szSystem) == 0;
    if (!bWanted)
        printf("The system is %s.\n", szSystem);
    return bWanted;
}

int main(int argc, char **argv)
{
    // A crash ends the test instead of waiting in a dialog.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    testing::InitGoogleTest(&argc, argv);
    const int result = IsSystemWanted() ? RUN_ALL_TESTS() : 2;
    WaitForThreadBirths();
    return result;
}
