#include "Window/ProgramPath.h"

CCUString ProgramFolder()
{
    char szPath[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, szPath, MAX_PATH - 1);
    const CCUString sPath = szPath;
    return sPath.Left(sPath.ReverseFind('\\') + 1);
}

CCUString CommandOfProgram(const CCUString &sPath, const CCUString &sContents)
{
    CCUString sFolder = sContents;
    if (!sFolder.IsEmpty() && sFolder[sFolder.GetLength() - 1] != '\\')
        sFolder += "\\";
    const int nFolder = sFolder.GetLength();
    if (nFolder == 0 || sPath.Left(nFolder).CompareNoCase(sFolder) != 0)
        return CCUString();
    const CCUString sName = sPath.Mid(nFolder);
    return sName.Find(" ") < 0 ? sName : "\"" + sName + "\"";
}
