#include "Model/Recovery.h"

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

// The path, its end, and the skin.
bool Write(HANDLE hFile, const CSkin &skin, const CCUString &sPath)
{
    const std::vector<BYTE> bytes = PackSkin(skin);
    const DWORD nPath = static_cast<DWORD>(sPath.GetLength()) + 1;
    const DWORD nBytes = static_cast<DWORD>(bytes.size());
    DWORD nDone = 0;
    SetLastError(ERROR_DISK_FULL);  // of a write that ends early
    return WriteFile(hFile, static_cast<const char *>(sPath), nPath, &nDone, nullptr) &&
           nDone == nPath && WriteFile(hFile, bytes.data(), nBytes, &nDone, nullptr) &&
           nDone == nBytes && FlushFileBuffers(hFile);
}

KeptState Read(HANDLE hFile, CSkin &skin, CCUString &sPath)
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
    size_t nPath = 0;
    while (nPath < nSize && bytes[nPath])
        ++nPath;
    if (nPath == nSize)
        return KeptUnknown;
    const BYTE *const pSkin = bytes.data() + nPath + 1;
    const size_t nSkin = nSize - nPath - 1;
    if (!UnpackSkin(pSkin, nSkin, skin))
        return IsDamagedSkin(pSkin, nSkin) ? KeptCut : KeptUnknown;
    sPath = reinterpret_cast<const char *>(bytes.data());
    return KeptWhole;
}

}  // namespace

bool CRecovery::Keep(const CSkin &skin, const CCUString &sPath, CProblems &problems)
{
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
    if (!bOpen || !Write(hFile, skin, sPath)) {
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

bool CRecovery::Find(CSkin &skin, CCUString &sPath)
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
        state = Read(hFile, skin, sPath);
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
