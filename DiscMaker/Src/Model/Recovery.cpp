#include "Model/Recovery.h"

#include <string.h>

#include "Base/Handle.h"
#include "CU/Dump.h"
#include "CU/ErrorText.h"
#include "Model/SkinBytes.h"
#include "Model/TempFolder.h"

namespace {

const char *const FILES = "DiscMaker-*.recovery";
// No skin that is larger was kept.
const DWORD MOST_BYTES = 256 * 1024 * 1024;

enum KeptState
{
    KeptWhole,
    KeptCut,     // the program crashed while it wrote; what it had written before is there
    KeptUnknown  // it cannot be read now, or is of another program or version
};

bool Write(HANDLE hFile, const void *p, size_t nSize)
{
    const DWORD nBytes = static_cast<DWORD>(nSize);
    DWORD nDone = 0;
    SetLastError(ERROR_DISK_FULL);  // of a write that ends early
    return WriteFile(hFile, p, nBytes, &nDone, nullptr) && nDone == nBytes;
}

// With its end.
bool WriteText(HANDLE hFile, const CCUString &sText)
{
    return Write(hFile, sText.GetString(), static_cast<size_t>(sText.GetLength()) + 1);
}

// False: it has no end.
bool TakeText(const BYTE *&p, const BYTE *pEnd, CCUString &sText)
{
    const void *const pZero = memchr(p, 0, static_cast<size_t>(pEnd - p));
    if (!pZero)
        return false;
    sText = reinterpret_cast<const char *>(p);
    p = static_cast<const BYTE *>(pZero) + 1;
    return true;
}

KeptState Read(HANDLE hFile, CSkin &skin, CCUString &sPath, CCUString &sFiles)
{
    const DWORD nSize = GetFileSize(hFile, nullptr);
    if (nSize == 0)
        return KeptCut;
    if (nSize > MOST_BYTES)
        return KeptUnknown;
    std::vector<BYTE> bytes(nSize);
    DWORD nRead = 0;
    if (!ReadFile(hFile, bytes.data(), nSize, &nRead, nullptr) || nRead != nSize)
        return KeptUnknown;
    // The path, the sums and the skin. Before version 4.3 there were no sums, which do not begin as
    // a skin does.
    const BYTE *p = bytes.data();
    const BYTE *const pEnd = p + nSize;
    sFiles.Empty();
    if (!TakeText(p, pEnd, sPath) || (p < pEnd && *p != SKIN_BEGINS && !TakeText(p, pEnd, sFiles)))
        return KeptUnknown;
    const size_t nSkin = static_cast<size_t>(pEnd - p);
    if (UnpackSkin(p, nSkin, skin))
        return KeptWhole;
    return IsDamagedSkin(p, nSkin) ? KeptCut : KeptUnknown;
}

}  // namespace

bool CRecovery::Keep(const CSkin &skin, const CCUString &sPath, const CCUString &sFiles,
                     CProblems &problems)
{
    const std::vector<BYTE> bytes = PackSkin(skin);
    const CCUString sFolder = TempFolder();
    CCUString sFile;
    HANDLE hFile = INVALID_HANDLE_VALUE;
    // A program that crashed may have had the number of this process.
    for (bool bTaken = !sFolder.IsEmpty(); bTaken;) {
        sFile.Format("%sDiscMaker-%lx-%u.recovery", static_cast<const char *>(sFolder),
                     GetCurrentProcessId(), ++m_nNext);
        hFile = CreateFileA(sFile, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_TEMPORARY, nullptr);
        bTaken = hFile == INVALID_HANDLE_VALUE && GetLastError() == ERROR_FILE_EXISTS;
    }
    const bool bOpen = hFile != INVALID_HANDLE_VALUE;
    if (!bOpen || !WriteText(hFile, sPath) || !WriteText(hFile, sFiles) ||
        !Write(hFile, bytes.data(), bytes.size()) || !FlushFileBuffers(hFile))
    {
        problems.push_back({ProblemNote, 0, bOpen ? sFile : sFolder,
                            "What is not saved cannot be kept for the case of a crash: " +
                                CUErrorText(GetLastError()),
                            "Save often."});
        if (bOpen) {
            CloseHandle(hFile);
            DeleteFileA(sFile);
        }
        return false;
    }
    Forget();
    m_hFile = hFile;
    m_sFile = sFile;
    return true;
}

void CRecovery::Forget()
{
    if (m_hFile == INVALID_HANDLE_VALUE)
        return;
    Leave();
    DeleteFileA(m_sFile);
}

void CRecovery::Leave()
{
    if (m_hFile != INVALID_HANDLE_VALUE)
        CloseHandle(m_hFile);
    m_hFile = INVALID_HANDLE_VALUE;
}

bool CRecovery::Find(CSkin &skin, CCUString &sPath, CCUString &sFiles)
{
    const CCUString sFolder = TempFolder();
    WIN32_FIND_DATAA data;
    if (sFolder.IsEmpty())
        return false;
    const CCUFindHandle hFind(FindFirstFileA(sFolder + FILES, &data));
    if (!hFind)
        return false;
    KeptState state = KeptUnknown;
    do {
        const CCUString sFile = sFolder + data.cFileName;
        const HANDLE hFile = CreateFileA(sFile, GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (hFile == INVALID_HANDLE_VALUE)
            continue;  // of a program that runs
        state = Read(hFile, skin, sPath, sFiles);
        if (state == KeptUnknown) {
            CUDump("DiscMaker: %s cannot be read: error %lu\n", sFile.GetString(), GetLastError());
            CloseHandle(hFile);
            continue;
        }
        Forget();
        m_hFile = hFile;
        m_sFile = sFile;
        if (state == KeptCut)
            Forget();
    } while (state != KeptWhole && FindNextFileA(hFind, &data));
    return state == KeptWhole;
}
