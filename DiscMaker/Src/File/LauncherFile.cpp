#include "File/LauncherFile.h"

#include <set>
#include <utility>

#include "File/FileProblem.h"
#include "File/FileSet.h"
#include "File/IconGroup.h"
#include "File/StringBlock.h"
#include "File/VersionInfo.h"
#include "Model/Blob.h"
#include "Model/SkinEntry.h"
#include "Resource.h"

namespace {

const UINT PICTURE_IDS[PictureCount] = {IDB_BACKGROUND, IDB_PRODUCT, IDB_BULLET};
const UINT VERSION_ID = 1;

UINT TypeOf(const char *pszType)
{
    return LOWORD(pszType);
}

// The texts that the launcher would find; empty ones are as good as none.
CStringEntries TextsIn(const CSkin &skin, LANGID nLanguage)
{
    CStringEntries entries;
    for (const CSkinTexts &texts : skin.m_texts) {
        for (const auto &entry : texts.m_entries) {
            if (texts.m_nLanguage == nLanguage && !entry.second.IsEmpty())
                entries.insert(entry);
        }
    }
    return entries;
}

std::set<LANGID> LanguagesOf(const CSkin &a, const CSkin &b)
{
    std::set<LANGID> languages;
    for (const CSkinTexts &texts : a.m_texts)
        languages.insert(texts.m_nLanguage);
    for (const CSkinTexts &texts : b.m_texts)
        languages.insert(texts.m_nLanguage);
    return languages;
}

// The blocks of which an entry changed.
std::set<UINT> ChangedBlocks(const CStringEntries &before, const CStringEntries &after)
{
    std::set<UINT> blocks;
    for (const auto &entry : before) {
        const auto other = after.find(entry.first);
        if (other == after.end() || other->second != entry.second)
            blocks.insert(StringBlockOf(entry.first));
    }
    for (const auto &entry : after) {
        if (before.find(entry.first) == before.end())
            blocks.insert(StringBlockOf(entry.first));
    }
    return blocks;
}

// Whether any changed.
bool PutTexts(CResourceTree &tree, const CSkin &before, const CSkin &after)
{
    bool bChanged = false;
    for (const LANGID nLanguage : LanguagesOf(before, after)) {
        const CStringEntries entries = TextsIn(after, nLanguage);
        for (const UINT nBlock : ChangedBlocks(TextsIn(before, nLanguage), entries)) {
            const std::vector<BYTE> data = WriteStringBlock(nBlock, entries);
            if (data.empty())
                tree.Remove(TypeOf(RT_STRING), nBlock, nLanguage);
            else
                tree.Set(TypeOf(RT_STRING), nBlock, nLanguage, MakeBlob(data));
            bChanged = true;
        }
    }
    return bChanged;
}

// In which language a new picture comes.
LANGID PictureLanguage(const CSkin &skin)
{
    return skin.m_texts.empty() ? LANGID(LANG_NEUTRAL) : skin.m_texts.front().m_nLanguage;
}

void PutPicture(CResourceTree &tree, UINT nId, LANGID nLanguage, const CBlob &picture)
{
    const CResourceNode *const pOld = tree.Find(TypeOf(RT_BITMAP), nId);
    const UINT nOldLanguage = pOld ? pOld->m_name.m_nId : nLanguage;
    if (picture)
        tree.Set(TypeOf(RT_BITMAP), nId, nOldLanguage, picture);
    else
        tree.Remove(TypeOf(RT_BITMAP), nId, nOldLanguage);
}

// None when it is damaged; false then.
bool GetVersion(const CResourceTree &tree, CVersionStrings &strings)
{
    strings.clear();
    const CResourceNode *const pNode = tree.Find(TypeOf(RT_VERSION), VERSION_ID);
    if (!pNode || ReadVersionStrings(CByteView(*pNode->m_data), strings))
        return true;
    strings.clear();
    return false;
}

bool PutVersion(CResourceTree &tree, const CVersionStrings &strings)
{
    const CResourceNode *const pOld = tree.Find(TypeOf(RT_VERSION), VERSION_ID);
    if (!pOld)
        return false;
    const std::vector<BYTE> data = WriteVersionStrings(CByteView(*pOld->m_data), strings);
    if (!data.empty())
        tree.Set(TypeOf(RT_VERSION), VERSION_ID, pOld->m_name.m_nId, MakeBlob(data));
    return !data.empty();
}

// Whether a launcher can hold it.
bool IsSound(const CSkin &skin, CProblems &problems)
{
    // Without any it would not be known for a launcher again.
    bool bFit = HasTexts(skin, &problems);
    if (skin.m_icon && !IsIconFile(CByteView(*skin.m_icon))) {
        problems.push_back(CProblem{ProblemError, PROBLEM_ICON, "",
                                    "The icon is no whole .ico file.", "it cannot be saved"});
        bFit = false;
    }
    for (const CSkinTexts &texts : skin.m_texts) {
        for (const auto &entry : texts.m_entries) {
            if (entry.second.Length() <= STRING_LIMIT && entry.first <= 0xFFFF)
                continue;
            problems.push_back(CProblem{ProblemError, entry.first, "",
                                        "The text is too long for a launcher.",
                                        "it cannot be saved"});
            bFit = false;
        }
    }
    return bFit;
}

}  // namespace

std::unique_ptr<CLauncherFile> CLauncherFile::Read(const CCUString &sPath, const CBlob &bytes,
                                                   CProblems &problems)
{
    std::unique_ptr<CLauncherFile> file(new CLauncherFile);
    file->m_sPath = sPath;
    if (!file->ReadBytes(bytes, problems))
        return nullptr;
    return file;
}

bool CLauncherFile::ReadBytes(const CBlob &bytes, CProblems &problems)
{
    m_bytes = bytes;
    CCUString sWhat;
    if (!m_image.Read(bytes, sWhat)) {
        AddProblem(problems, ProblemError, m_sPath, sWhat, "it cannot be opened");
        return false;
    }
    if (!m_resources.Read(m_image.Resources(), m_image.ResourcesAddress())) {
        AddProblem(problems, ProblemError, m_sPath,
                   "The part of the program that has its pictures and texts is cut off or damaged.",
                   "it cannot be opened; use another copy of the launcher");
        return false;
    }
    ReadTexts(problems);
    const bool bDialog = m_resources.Find(TypeOf(RT_DIALOG), IDD_AUTORUN) != nullptr;
    if (!bDialog || !HasTexts(m_skin)) {
        AddProblem(problems, ProblemError, m_sPath,
                   bDialog ? "This program has none of a launcher's texts."
                           : "This program is no launcher of discs.",
                   "it cannot be opened");
        return false;
    }
    ReadPictures(problems);
    ReadVersion(problems);
    return true;
}

void CLauncherFile::ReadTexts(CProblems &problems)
{
    const CResourceNode *const pType = m_resources.Root().Find(TypeOf(RT_STRING));
    for (const CResourceNode &block : pType ? pType->m_children : std::vector<CResourceNode>()) {
        for (const CResourceNode &language : block.m_children) {
            if (block.m_name.m_bText || language.m_name.m_bText || !block.m_name.m_nId)
                continue;
            CSkinTexts *pTexts = nullptr;
            for (CSkinTexts &texts : m_skin.m_texts) {
                if (texts.m_nLanguage == language.m_name.m_nId)
                    pTexts = &texts;
            }
            if (!pTexts) {
                m_skin.m_texts.push_back(
                    CSkinTexts{static_cast<LANGID>(language.m_name.m_nId), CStringEntries()});
                pTexts = &m_skin.m_texts.back();
            }
            if (!ReadStringBlock(CByteView(*language.m_data), block.m_name.m_nId,
                                 pTexts->m_entries))
                AddProblem(problems, ProblemWarning, m_sPath,
                           "A part of the texts is cut off in the file.", "they are missing");
        }
    }
    if (m_skin.m_texts.empty())
        m_skin.m_texts.push_back(CSkinTexts{LANG_NEUTRAL, CStringEntries()});
}

void CLauncherFile::ReadPictures(CProblems &problems)
{
    for (int i = 0; i < PictureCount; ++i) {
        const CResourceNode *const pType = m_resources.Root().Find(TypeOf(RT_BITMAP));
        const CResourceNode *const pName = pType ? pType->Find(PICTURE_IDS[i]) : nullptr;
        if (const CResourceNode *const pNode = m_resources.Find(TypeOf(RT_BITMAP), PICTURE_IDS[i]))
            m_skin.m_pictures[i] = pNode->m_data;
        if (pName && pName->m_children.size() > 1)
            problems.push_back(CProblem{ProblemNote, PICTURE_IDS[i], m_sPath,
                                        "The picture is there in several languages.",
                                        "only one of them is shown and changed here"});
    }
    if (!ReadIcon(m_resources, IDI_AUTORUN, m_skin.m_icon))
        problems.push_back(CProblem{ProblemWarning, PROBLEM_ICON, m_sPath, "The icon is damaged.",
                                    "the disc has none"});
}

void CLauncherFile::ReadVersion(CProblems &problems)
{
    if (!GetVersion(m_resources, m_skin.m_version))
        AddProblem(problems, ProblemWarning, m_sPath, "The version information is damaged.",
                   "Windows does not show it; it cannot be changed here");
}

bool CLauncherFile::PutSkin(CResourceTree &tree, CSkin &skin, CProblems &problems) const
{
    bool bChanged = PutTexts(tree, m_skin, skin);
    for (int i = 0; i < PictureCount; ++i) {
        if (SameBytes(skin.m_pictures[i], m_skin.m_pictures[i]))
            continue;
        PutPicture(tree, PICTURE_IDS[i], PictureLanguage(skin), skin.m_pictures[i]);
        bChanged = true;
    }
    if (!SameBytes(skin.m_icon, m_skin.m_icon)) {
        WriteIcon(tree, IDI_AUTORUN, PictureLanguage(skin), skin.m_icon);
        bChanged = true;
    }
    // A skin without any says nothing about them.
    const bool bVersion = !skin.m_version.empty() && skin.m_version != m_skin.m_version;
    if (bVersion && PutVersion(tree, skin.m_version))
        return true;
    if (bVersion)
        AddProblem(problems, ProblemWarning, m_sPath,
                   "This launcher has no place for version information.", "it is left out");
    GetVersion(m_resources, skin.m_version);
    return bChanged;
}

bool CLauncherFile::HasSkin(const CSkin &skin) const
{
    for (const LANGID nLanguage : LanguagesOf(m_skin, skin)) {
        if (TextsIn(m_skin, nLanguage) != TextsIn(skin, nLanguage))
            return false;
    }
    for (int i = 0; i < PictureCount; ++i) {
        if (!SameBytes(m_skin.m_pictures[i], skin.m_pictures[i]))
            return false;
    }
    return IsSameIcon(m_skin.m_icon, skin.m_icon) && m_skin.m_version == skin.m_version;
}

std::unique_ptr<CLauncherFile> CLauncherFile::Changed(const CSkin &skin, CProblems &problems) const
{
    if (!IsSound(skin, problems))
        return nullptr;
    CProblems unused;
    CResourceTree tree = m_resources;
    CSkin meant = skin;
    if (!PutSkin(tree, meant, problems))
        return Read(m_sPath, m_bytes, unused);
    std::unique_ptr<CLauncherFile> file =
        Read(m_sPath, MakeBlob(m_image.WithResources(tree)), unused);
    if (!file || !file->HasSkin(meant)) {
        AddProblem(problems, ProblemError, m_sPath,
                   "The launcher's file has no room for these pictures and texts.",
                   "they cannot be saved; use another launcher");
        return nullptr;
    }
    if (m_image.IsSigned())
        AddProblem(problems, ProblemNote, m_sPath, "The launcher was signed.",
                   "the signature is taken out: it holds for the file as it was");
    return file;
}

CBlob CLauncherFile::WithSkin(const CSkin &skin, CProblems &problems) const
{
    const auto file = Changed(skin, problems);
    return file ? file->m_bytes : nullptr;
}

bool CLauncherFile::SaveCopy(const CSkin &skin, const CCUString &sPath, CProblems &problems) const
{
    const CBlob bytes = WithSkin(skin, problems);
    if (!bytes)
        return false;
    CFileSet files;
    if (bytes != m_bytes || !IsSamePath(sPath, m_sPath))
        files.Add(sPath, bytes);
    return files.Commit(problems);
}

bool CLauncherFile::Save(const CSkin &skin, const CCUString &sPath, CProblems &problems)
{
    if (IsSamePath(sPath, m_sPath) && IsChanged(m_sPath, m_bytes, problems))
        return false;
    const auto changed = Changed(skin, problems);
    if (!changed)
        return false;
    const CBlob &bytes = changed->m_bytes;
    CFileSet files;
    // What is there was held against the old bytes a moment ago and need not be read once more.
    const bool bKnown = !m_bOverwrite && IsSamePath(sPath, m_sPath);
    if ((bKnown && !SameBytes(bytes, m_bytes)) || !SameBytes(ReadFileBytes(sPath), bytes))
        files.Add(sPath, bytes);
    if (!files.Commit(problems))
        return false;
    m_sPath = sPath;
    m_bytes = bytes;
    m_image = std::move(changed->m_image);
    m_resources = std::move(changed->m_resources);
    BeSaved(skin);
    return true;
}
