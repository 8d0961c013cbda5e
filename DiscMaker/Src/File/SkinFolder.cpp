#include "File/SkinFolder.h"

#include "File/DiscFiles.h"
#include "File/FileProblem.h"
#include "File/IconGroup.h"
#include "File/PictureFile.h"
#include "Model/Blob.h"
#include "Resource.h"
#include "Script/ScriptEditor.h"

namespace {

const size_t LARGEST_SCRIPT = 0x100000;
const int ICON = PictureCount;
const UINT FILE_IDS[] = {IDB_BACKGROUND, IDB_PRODUCT, IDB_BULLET, IDI_AUTORUN};
const UINT PROBLEM_ENTRIES[] = {IDB_BACKGROUND, IDB_PRODUCT, IDB_BULLET, PROBLEM_ICON};
const char *const FILE_NAMES[] = {"Background", "Product", "Bullet", "AutoRun"};

// A new skin folder begins with these lines.
const char NEW_SCRIPT[] =
    "// The looks of a disc.\r\n\r\n"
    "#pragma code_page(65001)\r\n\r\n"
    "#include \"Resource.h\"\r\n\r\n"
    "LANGUAGE LANG_NEUTRAL, SUBLANG_NEUTRAL\r\n\r\n";

CCUString ScriptPath(const CCUString &sPath)
{
    const bool bScript = sPath.Right(3).CompareNoCase(".rc") == 0 && !FolderExists(sPath);
    return bScript ? sPath : JoinPath(sPath, SKIN_SCRIPT_NAME);
}

// Whether a file that a script names is in its folder or below: others are read, but not written.
bool IsInside(const CCUString &sName)
{
    const CCUString sPath = CCUString("\\") + sName + "\\";
    return !sName.IsEmpty() && sName[0] != '\\' && sName.Find(':') < 0 && sPath.Find("\\..\\") < 0;
}

const CBlob &PictureOf(const CSkin &skin, int nFile)
{
    return nFile == ICON ? skin.m_icon : skin.m_pictures[nFile];
}

CBlob FileOf(int nFile, const CBlob &picture)
{
    return nFile == ICON ? picture : MakeBmpFile(picture);
}

// Without what counts as none.
std::vector<CSkinTexts> Shown(const std::vector<CSkinTexts> &all)
{
    std::vector<CSkinTexts> shown;
    for (const CSkinTexts &texts : all) {
        CSkinTexts language = {texts.m_nLanguage, {}};
        for (const auto &entry : texts.m_entries) {
            if (!entry.second.IsEmpty())
                language.m_entries.insert(entry);
        }
        if (!language.m_entries.empty())
            shown.push_back(language);
    }
    return shown;
}

bool SameTexts(const std::vector<CSkinTexts> &a, const std::vector<CSkinTexts> &b)
{
    if (a.size() != b.size())
        return false;
    for (const CSkinTexts &texts : a) {
        bool bFound = false;
        for (const CSkinTexts &other : b)
            bFound = bFound ||
                     (other.m_nLanguage == texts.m_nLanguage && other.m_entries == texts.m_entries);
        if (!bFound)
            return false;
    }
    return true;
}

}  // namespace

std::unique_ptr<CSkinFolder> CSkinFolder::Read(const CCUString &sScript, CProblems &problems)
{
    DWORD nError = NO_ERROR;
    const CBlob bytes = ReadFileBytes(sScript, &nError);
    if (!bytes) {
        AddFileProblem(problems, sScript, "The skin's script cannot be read", nError);
        return nullptr;
    }
    if (bytes->size() > LARGEST_SCRIPT) {
        AddProblem(problems, ProblemError, sScript, "This is no skin's script: it is too large.");
        return nullptr;
    }
    std::unique_ptr<CSkinFolder> folder(new CSkinFolder);
    folder->m_sPath = sScript;
    if (!folder->ReadScript(bytes, FolderOf(sScript), problems))
        return nullptr;
    for (int i = 0; i < FILE_COUNT; ++i)
        folder->ReadPicture(i);
    folder->IsWhole(folder->m_skin, problems);
    return folder;
}

bool CSkinFolder::ReadScript(const CBlob &bytes, const CCUString &sFolder, CProblems &problems)
{
    m_bytes = bytes;
    if (!m_script.Read(CByteView(*bytes), NameOf(m_sPath), sFolder, problems))
        return false;
    m_skin.m_texts = m_script.Texts();
    m_skin.m_version = m_script.VersionTexts();
    return true;
}

CCUString CSkinFolder::PathOf(const CCUString &sName) const
{
    const bool bWhole = !sName.IsEmpty() && (sName[0] == '\\' || sName.Find(':') >= 0);
    return bWhole ? sName : JoinPath(FolderOf(m_sPath), sName);
}

void CSkinFolder::ReadPicture(int nFile)
{
    const CScriptPicture *const pPicture = m_script.FindPicture(nFile == ICON, FILE_IDS[nFile]);
    if (!pPicture)
        return;
    CPictureFile &file = m_files[nFile];
    file.m_sName = pPicture->m_sFile;
    DWORD nError = NO_ERROR;
    file.m_bytes = ReadFileBytes(PathOf(file.m_sName), &nError);
    CCUString sWhere;
    sWhere.Format("%s:%u", NameOf(m_sPath).GetString(), pPicture->m_nLine);
    if (!file.m_bytes) {
        AddFileProblem(file.m_unread, sWhere, "\"" + file.m_sName + "\" cannot be read", nError);
        file.m_unread.back().m_nEntry = PROBLEM_ENTRIES[nFile];
        return;
    }
    CBlob picture = nFile == ICON ? file.m_bytes : ReadBmpFile(file.m_bytes);
    if (nFile == ICON && !IsIconFile(CByteView(*picture)))
        picture = nullptr;
    (nFile == ICON ? m_skin.m_icon : m_skin.m_pictures[nFile]) = picture;
    if (picture)
        return;
    const CCUString sKind = PictureKind(file.m_bytes);
    const char *const pszWanted = nFile == ICON ? "is no .ico file" : "is no .bmp file";
    file.m_unread.push_back(
        CProblem{ProblemError, PROBLEM_ENTRIES[nFile], sWhere,
                 "\"" + file.m_sName + "\" " + pszWanted +
                     (sKind.IsEmpty() ? CCUString(".") : ": it is " + sKind + "."),
                 "the launcher cannot be made with it"});
}

bool CSkinFolder::IsWhole(const CSkin &skin, CProblems &problems) const
{
    bool bWhole = true;
    for (int i = 0; i < FILE_COUNT; ++i) {
        if (m_files[i].m_unread.empty() || PictureOf(skin, i))
            continue;
        problems.push_back(m_files[i].m_unread[0]);
        bWhole = false;
    }
    return bWhole;
}

CSums CSkinFolder::Sums() const
{
    CSums sums = {{m_sPath, SumOf(m_bytes)}};
    for (const CPictureFile &file : m_files) {
        if (file.m_bytes)
            sums[PathOf(file.m_sName)] = SumOf(file.m_bytes);
    }
    return sums;
}

// Whether anything that was read is not what is there now.
bool CSkinFolder::HasChanged(CProblems &problems) const
{
    bool bChanged = IsChanged(m_sPath, m_bytes, problems);
    for (const CPictureFile &file : m_files)
        bChanged =
            (file.m_bytes && IsChanged(PathOf(file.m_sName), file.m_bytes, problems)) || bChanged;
    return bChanged;
}

// A name for a new file in a folder; that which the script has, if it may be written.
CCUString CSkinFolder::NameFor(int nFile, const CCUString &sFolder) const
{
    const CCUString &sOld = m_files[nFile].m_sName;
    if (IsInside(sOld) && m_script.CountUses(sOld) == 1)
        return sOld;
    const char *const pszType = nFile == ICON ? ".ico" : ".bmp";
    CCUString sName = CCUString(FILE_NAMES[nFile]) + pszType;
    for (int i = 2; m_script.CountUses(sName) || FileExists(JoinPath(sFolder, sName)); ++i)
        sName.Format("%s%d%s", FILE_NAMES[nFile], i, pszType);
    return sName;
}

void CSkinFolder::AddPicture(int nFile, const CBlob &picture, const CCUString &sFolder,
                             CScriptEditor &editor, CFileSet &files) const
{
    const bool bChanged = !SameBytes(picture, PictureOf(m_skin, nFile));
    const bool bElsewhere = !IsSamePath(sFolder, FolderOf(m_sPath));
    const CPictureFile &old = m_files[nFile];
    const bool bNone = bChanged ? !picture : !old.m_bytes;
    if (bNone) {
        if (bChanged)
            editor.SetPicture(nFile == ICON, FILE_IDS[nFile], "");
        return;
    }
    // One that somebody has deleted meanwhile is written again, and one that somebody has changed
    // where that is wished.
    const CCUString sNow = PathOf(old.m_sName);
    if (!bChanged && !bElsewhere &&
        (m_bOverwrite ? SameBytes(ReadFileBytes(sNow), old.m_bytes) : FileExists(sNow)))
        return;
    // Whatever shares a file goes on sharing it until it is another picture.
    const bool bKeepsName =
        IsInside(old.m_sName) && (!bChanged || m_script.CountUses(old.m_sName) == 1);
    const CCUString sName = bKeepsName ? old.m_sName : NameFor(nFile, sFolder);
    if (sName != old.m_sName)
        editor.SetPicture(nFile == ICON, FILE_IDS[nFile], sName);
    const CCUString sPath = JoinPath(sFolder, sName);
    DiscMakeFoldersFor(CDiscPath(sPath));
    files.Add(sPath, bChanged ? FileOf(nFile, picture) : old.m_bytes);
}

// Whether a compiler will find what was meant.
bool CSkinFolder::Check(const std::vector<BYTE> &script, const CSkin &skin,
                        CProblems &problems) const
{
    CProblems known;
    CSkinScript check;
    if (check.Read(CByteView(script), NameOf(m_sPath), FolderOf(m_sPath), known) &&
        SameTexts(Shown(check.Texts()), Shown(skin.m_texts)) &&
        (skin.m_version.empty() || check.VersionTexts() == skin.m_version))
        return true;
    AddProblem(problems, ProblemError, m_sPath,
               "The script is written in a way that these changes cannot be put into.",
               "nothing was written; export the skin to a new folder instead");
    return false;
}

bool CSkinFolder::Write(const CSkin &skin, const CCUString &sScript, CProblems &problems) const
{
    const CCUString sFolder = FolderOf(sScript);
    DiscMakeFoldersFor(CDiscPath(sScript));
    CScriptEditor editor(m_script);
    CFileSet files;
    for (int i = 0; i < FILE_COUNT; ++i)
        AddPicture(i, PictureOf(skin, i), sFolder, editor, files);
    for (const CCUString &sHeader : m_script.Headers()) {
        if (!IsInside(sHeader) || FileExists(JoinPath(sFolder, sHeader)))
            continue;
        DWORD nError = NO_ERROR;
        const CBlob header = ReadFileBytes(PathOf(sHeader), &nError);
        if (!header) {
            AddFileProblem(problems, PathOf(sHeader), "The header cannot be read any more", nError);
            return false;
        }
        files.Add(JoinPath(sFolder, sHeader), header);
    }
    editor.SetTexts(skin.m_texts);
    if (!skin.m_version.empty() && skin.m_version != m_skin.m_version)
        editor.SetVersion(skin.m_version);
    const std::vector<BYTE> script = editor.Finish();
    if (!Check(script, skin, problems))
        return false;
    if (m_bOverwrite || !IsSamePath(sScript, m_sPath) || !SameBytes(MakeBlob(script), m_bytes) ||
        !FileExists(sScript))
        files.Add(sScript, MakeBlob(script));
    return files.Commit(problems);
}

bool CSkinFolder::SaveCopy(const CSkin &skin, const CCUString &sPath, CProblems &problems) const
{
    return Write(skin, ScriptPath(sPath), problems);
}

bool CSkinFolder::Save(const CSkin &skin, const CCUString &sPath, CProblems &problems)
{
    const CCUString sScript = ScriptPath(sPath);
    if ((IsSamePath(sScript, m_sPath) && HasChanged(problems)) || !Write(skin, sScript, problems))
        return false;
    CProblems known;
    const auto folder = Read(sScript, known);
    if (!folder) {
        for (CProblem &problem : known)
            problem.m_sEffect = "it was written, but cannot be read back";
        problems.insert(problems.end(), known.begin(), known.end());
        return false;
    }
    m_sPath = sScript;
    m_bytes = folder->m_bytes;
    m_script = folder->m_script;
    for (int i = 0; i < FILE_COUNT; ++i)
        m_files[i] = folder->m_files[i];
    BeSaved(skin);
    return true;
}

bool CSkinFolder::Export(const CSkin &skin, const CCUString &sFolder, CProblems &problems)
{
    const CCUString sScript = JoinPath(sFolder, SKIN_SCRIPT_NAME);
    if (FileExists(sScript)) {
        AddProblem(problems, ProblemError, sScript, "There is a skin in this folder already.",
                   "nothing was written");
        return false;
    }
    CSkinFolder folder;
    folder.m_sPath = sScript;
    const BYTE *const pScript = reinterpret_cast<const BYTE *>(NEW_SCRIPT);
    const std::vector<BYTE> lines(pScript, pScript + sizeof NEW_SCRIPT - 1);
    return folder.ReadScript(MakeBlob(lines), "", problems) &&
           folder.SaveCopy(skin, sFolder, problems);
}
