#include "Disc/DiscLayout.h"

#include <string.h>

#include <map>
#include <set>

#include "CU/ErrorText.h"
#include "Disc/DiscName.h"
#include "Disc/DiscWriter.h"
#include "Disc/Label.h"
#include "File/FileBytes.h"
#include "File/FileProblem.h"

namespace {

const char *const LAUNCHER_NAME = "AutoRun.exe";
const char *const INF_NAME = "autorun.inf";
// Windows programs, and image makers, go no further.
const size_t MAX_DISC_PATH = 240;
const char *const NO_DISC = "There is no new disc.";

void Add(CProblems &problems, ProblemWeight weight, const CDiscPath &where, const CCUString &sWhat,
         const CCUString &sEffect)
{
    problems.push_back({weight, 0, where.Text(), sWhat, sEffect});
}

CDiscPath Relative(const char *pszName)
{
    return CDiscPath().With(pszName);
}

// Empty when there is no such file, and when it is not to the byte one that we write for a disc:
// others keep such sums of their own files, too.
CSums ReadSumsFile(const CDiscPath &path)
{
    const CBlob list = ReadFileBytes(path.Text());
    if (!list || list->empty())
        return CSums();
    const CCUString sText(reinterpret_cast<const char *>(list->data()),
                          static_cast<int>(list->size()));
    const CSums sums = ReadSums(sText);
    const bool bOurs =
        sums.count(LAUNCHER_NAME) && sums.count(INF_NAME) && sText == WriteSums(sums);
    return bOurs ? sums : CSums();
}

// One disc that is being made.
class CDiscLayout
{
public:
    CDiscLayout(const CCUString &sContents, const CCUString &sOut, CDiscProgress *pProgress,
                CProblems &problems)
        : m_contents(sContents), m_out(sOut), m_pProgress(pProgress), m_problems(problems)
    {
    }
    bool Run(const CDiscPath &launcher, const CCUString &sAutorunInf);

private:
    bool Fail(const CDiscPath &where, const CCUString &sWhat);
    bool PlacesAreGood();
    bool ReadContents();
    bool CheckName(const CDiscPath &path);
    bool IsNameGood(const CDiscPath &path);
    bool MayReplaceOld();
    bool IsAsWritten(const CSums &sums);
    bool AreFoldersOurs(const CSums &sums);
    bool HasSpace();
    bool WriteAll(CDiscWriter &writer, const CDiscPath &launcher, const CCUString &sAutorunInf);
    bool TakePlace();
    void RemoveOld(const CDiscPath &old);
    CDiscPath FreeName(const char *pszSuffix) const;

    const CDiscPath m_contents;
    const CDiscPath m_out;
    CDiscProgress *const m_pProgress;
    CProblems &m_problems;
    CDiscTree m_tree;        // of the contents
    CDiscTree m_old;         // of the disc that is there
    CDiscPath m_unfinished;  // where the new one grows
};

bool CDiscLayout::Fail(const CDiscPath &where, const CCUString &sWhat)
{
    Add(m_problems, ProblemError, where, sWhat, NO_DISC);
    return false;
}

bool CDiscLayout::PlacesAreGood()
{
    for (const CDiscPath *const pPath : {&m_contents, &m_out}) {
        const CCUString sLost = LostNameText(pPath->Text());
        if (!sLost.IsEmpty())
            return Fail(*pPath, "The folder cannot be found: " + sLost + ".");
    }
    if (!DiscIsFolder(m_contents))
        return Fail(m_contents, "The folder with the disc's contents is not there.");
    if (m_out.IsEmpty() || m_out.Parent().IsEmpty())
        return Fail(m_out, "The disc needs a folder of its own, not a whole drive.");
    if (DiscIsSameFolder(m_contents, m_out))
        return Fail(m_out, "The contents and the disc are the same folder.");
    if (DiscIsInside(m_out, m_contents))
        return Fail(m_out, "The disc lies in the folder of its own contents.");
    if (DiscIsInside(m_contents, m_out))
        return Fail(m_out, "The contents lie in the folder of the disc.");
    if (!DiscIsFolder(m_out.Parent()))
        return Fail(m_out.Parent(), "The folder in which the disc is to be made is not there.");
    return true;
}

bool CDiscLayout::ReadContents()
{
    CDiscPath failed;
    if (!DiscReadTree(m_contents, m_tree, failed)) {
        const CCUString sError = CUErrorText(GetLastError());
        return IsNameGood(failed) && Fail(failed, "The folder cannot be read: " + sError);
    }
    for (const CDiscPath &link : m_tree.m_links)
        Add(m_problems, ProblemWarning, link, "This folder is a link to another place.",
            "It is not on the disc.");
    bool bGood = true;
    for (const CDiscPath &path : m_tree.m_folders)
        bGood = CheckName(path) && bGood;
    for (const CDiscTree::CFile &file : m_tree.m_files)
        bGood = CheckName(file.m_path) && bGood;
    return bGood;
}

// Whether there can be a disc with it.
bool CDiscLayout::CheckName(const CDiscPath &path)
{
    for (const char *const pszName : {LAUNCHER_NAME, INF_NAME, SUMS_NAME}) {
        if (path.IsSame(Relative(pszName)))
            return Fail(path,
                        "The contents have a file of the name that the disc's own "
                        "has. Take it out or give it another name.");
    }
    if (path.Length() > MAX_DISC_PATH)
        Add(m_problems, ProblemWarning, path, "This path is too long for a disc.",
            "On the disc it may be cut, and programs may not find it.");
    return IsNameGood(path);
}

// The last one of a path.
bool CDiscLayout::IsNameGood(const CDiscPath &path)
{
    const CDiscNameFault *const pFault = FindDiscNameFault(path.Name());
    if (pFault)
        Add(m_problems, pFault->m_weight, path, pFault->m_pszWhat, pFault->m_pszEffect);
    return !pFault || pFault->m_weight != ProblemError;
}

bool CDiscLayout::MayReplaceOld()
{
    if (!DiscExists(m_out))
        return true;
    CDiscPath failed;
    if (!DiscIsFolder(m_out))
        return Fail(m_out, "A file has the name of the disc's folder.");
    if (!DiscReadTree(m_out, m_old, failed))
        return Fail(failed, "The folder cannot be read: " + CUErrorText(GetLastError()));
    // The contents' path may lead there by a link.
    for (const CDiscPath &folder : m_old.m_folders) {
        if (DiscIsSameFolder(m_out.Join(folder), m_contents))
            return Fail(m_out, "The contents lie in the folder of the disc.");
    }
    if (!m_old.m_links.empty())
        return Fail(m_out.Join(m_old.m_links[0]), "This was not written by Disc Maker.");
    const CSums sums = ReadSumsFile(m_out.Join(Relative(SUMS_NAME)));
    return IsAsWritten(sums) && AreFoldersOurs(sums);
}

// Every file in the folder was written by us and is as we wrote it.
bool CDiscLayout::IsAsWritten(const CSums &sums)
{
    for (const CDiscTree::CFile &file : m_old.m_files) {
        if (lstrcmpA(file.m_path.Text(), SUMS_NAME) == 0 && !sums.empty())
            continue;
        const auto at = sums.find(SumsPath(file.m_path));
        if (at == sums.end())
            return Fail(m_out.Join(file.m_path),
                        "This file was not written by Disc Maker. Choose an empty folder for the "
                        "disc, or take the file away.");
        bool bStop = false;
        const CCUString sSum = SumOfFile(m_out.Join(file.m_path), [&] {
            bStop = m_pProgress && !m_pProgress->OnProgress(0, m_tree.Size(), file.m_path.Text());
            return !bStop;
        });
        if (bStop)
            return Fail(CDiscPath(), WORK_STOPPED);
        if (at->second != sSum)
            return Fail(m_out.Join(file.m_path),
                        "Somebody has changed this file since the disc was made. Choose another "
                        "folder for the disc, or take the file away.");
    }
    return true;
}

// All folders, too: they hold something of the list, or come again with the contents, or nobody has
// changed them since the list was written.
bool CDiscLayout::AreFoldersOurs(const CSums &sums)
{
    const std::set<CDiscPath> contents(m_tree.m_folders.begin(), m_tree.m_folders.end());
    FILETIME list = {};
    const bool bList = !sums.empty() && DiscGetWritten(m_out.Join(Relative(SUMS_NAME)), list);
    for (const CDiscPath &folder : m_old.m_folders) {
        const CCUString sStart = SumsPath(folder) + "/";
        const auto at = sums.lower_bound(sStart);
        FILETIME written = {};
        const bool bOurs =
            contents.count(folder) ||
            (at != sums.end() &&
             strncmp(at->first, sStart, static_cast<size_t>(sStart.GetLength())) == 0) ||
            (bList && DiscGetWritten(m_out.Join(folder), written) &&
             CompareFileTime(&written, &list) == 0);
        if (!bOurs)
            return Fail(m_out.Join(folder),
                        "Disc Maker does not know this empty folder. Choose an empty folder for "
                        "the disc, or take this one away.");
    }
    return true;
}

bool CDiscLayout::HasSpace()
{
    ULONGLONG nFree = 0;
    const ULONGLONG nSize = m_tree.Size();
    if (!DiscFreeSpace(m_out.Parent(), nFree) || nFree >= nSize)
        return true;
    const int nMissing = static_cast<int>((nSize - nFree) / 1024 / 1024) + 1;
    CCUString sWhat;
    sWhat.Format("The disk is too full for this disc: %d MiB more are needed.", nMissing);
    return Fail(m_out, sWhat);
}

CDiscPath CDiscLayout::FreeName(const char *pszSuffix) const
{
    CDiscPath path = m_out.With(pszSuffix);
    for (int i = 2; DiscExists(path); ++i) {
        CCUString sSuffix;
        sSuffix.Format("%s-%d", pszSuffix, i);
        path = m_out.With(sSuffix);
    }
    return path;
}

bool CDiscLayout::WriteAll(CDiscWriter &writer, const CDiscPath &launcher,
                           const CCUString &sAutorunInf)
{
    if (!writer.MakeFolder(CDiscPath()) || !writer.Copy(launcher, Relative(LAUNCHER_NAME)) ||
        !writer.Write(sAutorunInf, Relative(INF_NAME)))
        return false;
    for (const CDiscPath &folder : m_tree.m_folders) {
        if (!writer.MakeFolder(folder))
            return false;
    }
    for (const CDiscTree::CFile &file : m_tree.m_files) {
        if (!writer.Copy(m_contents.Join(file.m_path), file.m_path))
            return false;
    }
    return writer.WriteSumsFile();
}

// What somebody has put there or changed meanwhile stays, in a folder that is told.
void CDiscLayout::RemoveOld(const CDiscPath &old)
{
    std::map<CDiscPath, const CDiscTree::CFile *> before;
    for (const CDiscTree::CFile &file : m_old.m_files)
        before[file.m_path] = &file;
    CDiscTree now;
    CDiscPath failed;
    DiscReadTree(old, now, failed);  // of what it cannot read nothing is deleted
    for (const CDiscTree::CFile &file : now.m_files) {
        const auto at = before.find(file.m_path);
        if (at != before.end() && file.m_nSize == at->second->m_nSize &&
            CompareFileTime(&file.m_written, &at->second->m_written) == 0)
            DiscDeleteFile(old.Join(file.m_path));
    }
    for (size_t i = m_old.m_folders.size(); i > 0; --i)
        DiscRemoveFolder(old.Join(m_old.m_folders[i - 1]));
    if (!DiscRemoveFolder(old))
        Add(m_problems, ProblemNote, old, "Some of the old disc could not be deleted.",
            "The new disc is whole.");
}

bool CDiscLayout::TakePlace()
{
    if (!DiscExists(m_out))
        return DiscMove(m_unfinished, m_out) ||
               Fail(m_out, "The disc cannot get its name: " + CUErrorText(GetLastError()));
    const CDiscPath old = FreeName(".old");
    if (!DiscMove(m_out, old))
        return Fail(m_out, "The old disc cannot be replaced; a program may have it open: " +
                               CUErrorText(GetLastError()));
    if (!DiscMove(m_unfinished, m_out)) {
        const CCUString sWhat = "The disc cannot get its name: " + CUErrorText(GetLastError());
        if (!DiscMove(old, m_out))
            Add(m_problems, ProblemWarning, old, "The old disc is in this folder now.",
                "Give it its name again.");
        return Fail(m_out, sWhat);
    }
    RemoveOld(old);
    return true;
}

bool CDiscLayout::Run(const CDiscPath &launcher, const CCUString &sAutorunInf)
{
    if (!PlacesAreGood() || !ReadContents() || !MayReplaceOld() || !HasSpace())
        return false;
    if (DiscExists(m_out.With(".unfinished")))
        Add(m_problems, ProblemNote, m_out.With(".unfinished"),
            "A disc that was not finished has left this folder; its maker was ended, or still "
            "runs.",
            "It is not needed for this disc.");
    m_unfinished = FreeName(".unfinished");
    CDiscWriter writer(m_unfinished, m_tree.Size(), m_pProgress, m_problems);
    if (WriteAll(writer, launcher, sAutorunInf) && TakePlace())
        return true;
    writer.TakeBack();
    return false;
}

}  // namespace

CCUString MakeAutorunInf(const CSkin &skin)
{
    CCUString sText = "[autorun]\r\n";
    sText += CCUString("open=") + LAUNCHER_NAME + "\r\n";
    sText += CCUString("icon=") + LAUNCHER_NAME + ",0\r\n";
    const CCUString sLabel = LabelOf(skin);
    if (!sLabel.IsEmpty())
        sText += "label=" + sLabel + "\r\n";
    return sText;
}

bool LayOutDisc(const CCUString &sLauncher, const CCUString &sAutorunInf,
                const CCUString &sContents, const CCUString &sOut, CDiscProgress *pProgress,
                CProblems &problems)
{
    return CDiscLayout(sContents, sOut, pProgress, problems).Run(CDiscPath(sLauncher), sAutorunInf);
}
