#include "Disc/DiscWriter.h"

#include "CU/ErrorText.h"
#include "File/Sha256.h"

namespace {

const DWORD BUFFER = 1 << 20;

// In plain words what most people meet; else as the system says it.
CCUString Reason(DWORD nError)
{
    if (nError == ERROR_DISK_FULL || nError == ERROR_HANDLE_DISK_FULL)
        return "the disk is full.";
    if (nError == ERROR_ACCESS_DENIED || nError == ERROR_WRITE_PROTECT)
        return "writing is not allowed there.";
    // The folder was empty at first. On other systems than Windows the contents may have such
    // names.
    if (nError == ERROR_FILE_EXISTS || nError == ERROR_ALREADY_EXISTS)
        return "another name in the contents differs from it in small and capital letters alone.";
    if (nError == ERROR_SHARING_VIOLATION)
        return "another program has it open.";
    return CUErrorText(nError);
}

// The same of a file that is read.
CCUString ReadReason(DWORD nError)
{
    return nError == ERROR_ACCESS_DENIED ? CCUString("this user may not read it.") : Reason(nError);
}

}  // namespace

CCUString SumsPath(const CDiscPath &relative)
{
    CCUString sPath = relative.Utf8();
    for (int i = 0; i < sPath.GetLength(); ++i) {
        if (sPath[i] == '\\')
            sPath.SetAt(i, '/');
    }
    return sPath;
}

CCUString SumOfFile(const CDiscPath &path, const std::function<bool()> &goOn)
{
    const CCUFileHandle hFile(DiscOpen(path));
    if (!hFile)
        return "";
    CSha256 sum;
    std::vector<BYTE> buffer(BUFFER);
    DWORD nRead = 0;
    do {
        if (!goOn() || !ReadFile(hFile, buffer.data(), BUFFER, &nRead, nullptr))
            return "";
        sum.Add(buffer.data(), nRead);
    } while (nRead > 0);
    return sum.Finish();
}

CDiscWriter::CDiscWriter(const CDiscPath &folder, ULONGLONG nTotal, CDiscProgress *pProgress,
                         CProblems &problems)
    : m_folder(folder),
      m_nTotal(nTotal),
      m_nDone(0),
      m_pProgress(pProgress),
      m_problems(problems),
      m_buffer(BUFFER)
{
}

bool CDiscWriter::Fail(const CCUString &sWhere, const CCUString &sWhat)
{
    m_problems.push_back({ProblemError, 0, sWhere, sWhat, "There is no new disc."});
    return false;
}

bool CDiscWriter::FailWriting(const CDiscPath &relative)
{
    return Fail(relative.Text(), "This cannot be written to the disc: " + Reason(GetLastError()));
}

bool CDiscWriter::Report(const CDiscPath &relative)
{
    return !m_pProgress || m_pProgress->OnProgress(m_nDone, m_nTotal, relative.Text()) ||
           Fail("", WORK_STOPPED);
}

bool CDiscWriter::MakeFolder(const CDiscPath &relative)
{
    if (!DiscMakeFolder(relative.IsEmpty() ? m_folder : m_folder.Join(relative)))
        return FailWriting(relative.IsEmpty() ? m_folder : relative);
    m_folders.push_back(relative);
    return true;
}

bool CDiscWriter::WriteBytes(HANDLE hTo, const void *p, DWORD nSize, const CDiscPath &relative)
{
    DWORD nWritten = 0;
    if (!WriteFile(hTo, p, nSize, &nWritten, nullptr))
        return FailWriting(relative);
    if (nWritten < nSize) {
        SetLastError(ERROR_DISK_FULL);
        return FailWriting(relative);
    }
    m_nDone += nSize;
    return Report(relative);
}

bool CDiscWriter::CopyBytes(HANDLE hFrom, HANDLE hTo, const CDiscPath &from,
                            const CDiscPath &relative)
{
    CSha256 sum;
    for (;;) {
        DWORD nRead = 0;
        if (!ReadFile(hFrom, m_buffer.data(), BUFFER, &nRead, nullptr))
            return Fail(from.Text(), "The file cannot be read: " + ReadReason(GetLastError()));
        if (nRead == 0)
            break;
        sum.Add(m_buffer.data(), nRead);
        if (!WriteBytes(hTo, m_buffer.data(), nRead, relative))
            return false;
    }
    // The same contents make the same disc, times included.
    FILETIME time;
    if (GetFileTime(hFrom, nullptr, nullptr, &time))
        SetFileTime(hTo, nullptr, nullptr, &time);
    m_sums[SumsPath(relative)] = sum.Finish();
    return true;
}

bool CDiscWriter::Copy(const CDiscPath &from, const CDiscPath &relative)
{
    const CCUFileHandle hFrom(DiscOpen(from));
    if (!hFrom)
        return Fail(from.Text(), "The file cannot be opened: " + ReadReason(GetLastError()));
    CCUFileHandle hTo(DiscCreateNew(m_folder.Join(relative)));
    if (!hTo)
        return FailWriting(relative);
    m_files.push_back(relative);
    if (!CopyBytes(hFrom, hTo, from, relative))
        return false;
    // Some drives tell only now that they are full.
    return CloseHandle(hTo.Release()) || FailWriting(relative);
}

bool CDiscWriter::Write(const CCUString &sBytes, const CDiscPath &relative)
{
    CCUFileHandle hTo(DiscCreateNew(m_folder.Join(relative)));
    if (!hTo)
        return FailWriting(relative);
    m_files.push_back(relative);
    if (!WriteBytes(hTo, sBytes, static_cast<DWORD>(sBytes.GetLength()), relative))
        return false;
    m_sums[SumsPath(relative)] = CSha256::Of(sBytes, static_cast<size_t>(sBytes.GetLength()));
    return CloseHandle(hTo.Release()) || FailWriting(relative);
}

bool CDiscWriter::WriteSumsFile()
{
    const CDiscPath name = CDiscPath().With(SUMS_NAME);
    FILETIME written;
    if (!Write(WriteSums(m_sums), name))
        return false;
    const bool bTime = DiscGetWritten(m_folder.Join(name), written);
    for (const CDiscPath &folder : m_folders) {
        if (bTime && !folder.IsEmpty())
            DiscSetWritten(m_folder.Join(folder), written);
    }
    return true;
}

void CDiscWriter::TakeBack()
{
    for (const CDiscPath &file : m_files)
        DiscDeleteFile(m_folder.Join(file));
    for (size_t i = m_folders.size(); i > 0; --i) {
        const CDiscPath &relative = m_folders[i - 1];
        DiscRemoveFolder(relative.IsEmpty() ? m_folder : m_folder.Join(relative));
    }
}
