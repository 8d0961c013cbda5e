// Stands for a program of the disc: adds a line with its own path and the current directory to the
// file that PROBE_LOG names, and ends.
#include <windows.h>

#include <stdio.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR commandLine, int)
{
    char log[MAX_PATH] = "", path[MAX_PATH] = "", directory[MAX_PATH] = "";
    GetEnvironmentVariableA("PROBE_LOG", log, sizeof log);
    GetModuleFileNameA(nullptr, path, sizeof path);
    GetCurrentDirectoryA(sizeof directory, directory);
    FILE *file = fopen(log, "a");
    if (!file)
        return 1;
    fprintf(file, "%s|%s|%s\n", path, commandLine, directory);
    return fclose(file);
}
