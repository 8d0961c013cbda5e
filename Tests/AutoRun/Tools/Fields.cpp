// Prints what the fields of the dialog with a caption say, and closes it. Usage: Fields CAPTION
#include <windows.h>

#include <stdio.h>
#include <string.h>

static BOOL CALLBACK Print(HWND hWnd, LPARAM)
{
    char szClass[16] = "", szText[MAX_PATH] = "";
    GetClassNameA(hWnd, szClass, sizeof szClass);
    SendMessageA(hWnd, WM_GETTEXT, sizeof szText, reinterpret_cast<LPARAM>(szText));
    if (strcmp(szClass, "Edit") == 0)
        puts(szText);
    return TRUE;
}

int main(int, char **argv)
{
    const HWND hWnd = FindWindowA("#32770", argv[1]);
    if (!hWnd)
        return 1;
    EnumChildWindows(hWnd, Print, 0);
    return !PostMessageA(hWnd, WM_COMMAND, IDCANCEL, 0);
}
