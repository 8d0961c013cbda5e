#include "Model/Document.h"

#include <algorithm>

namespace {

const UINT SHOWN_CODE_PAGE = CP_ACP;

CCUString ShownText(const CWideText &text)
{
    return text.ToCodePage(SHOWN_CODE_PAGE);
}

CWideText EditedText(const CWideText *pText, const CCUString &sText)
{
    return (pText ? *pText : CWideText()).Edited(sText, SHOWN_CODE_PAGE);
}

const CSkinTexts *FindLanguage(const CSkin &skin, LANGID nLanguage)
{
    for (const CSkinTexts &texts : skin.m_texts) {
        if (texts.m_nLanguage == nLanguage)
            return &texts;
    }
    return nullptr;
}

// The texts of one skin for another's language number i; null: there are none. A language that only
// one of them has counts as the one that stands in its place.
const CSkinTexts *TextsFor(const CSkin &from, const CSkin &to, size_t i)
{
    const CSkinTexts *const pSame = FindLanguage(from, to.m_texts[i].m_nLanguage);
    if (pSame || i >= from.m_texts.size() || FindLanguage(to, from.m_texts[i].m_nLanguage))
        return pSame;
    return &from.m_texts[i];
}

}  // namespace

void CDocument::Start(const CSkin &skin, bool bSaved)
{
    m_skin = skin;
    if (m_skin.m_texts.empty())
        m_skin.m_texts.push_back({LANG_NEUTRAL, {}});
    m_bOpen = false;  // a step that is open goes on with the new skin
    m_steps.clear();
    m_nDone = m_nSaved = m_nLanguage = 0;
    m_bSavedKnown = bSaved;
    m_bSealed = true;
    Tell(nullptr);
}

void CDocument::SetLanguage(size_t nLanguage)
{
    if (nLanguage >= m_skin.m_texts.size() || nLanguage == m_nLanguage)
        return;
    m_nLanguage = nLanguage;
    Seal();
    Tell(nullptr);
}

// --- Reading ---

SkinPart CDocument::EntryPart(UINT nID) const
{
    SkinPart part;
    part.m_kind = SkinPart::Entry;
    part.m_nID = nID;
    part.m_nLanguage = m_nLanguage;
    return part;
}

SkinPart CDocument::VersionPart(const char *pszName)
{
    SkinPart part;
    part.m_kind = SkinPart::Version;
    part.m_name = CWideText(pszName, SHOWN_CODE_PAGE);
    return part;
}

CCUString CDocument::Entry(UINT nID) const
{
    const CWideText *const pText = Text(EntryPart(nID));
    return pText ? ShownText(*pText) : CCUString();
}

CCUString CDocument::Version(const char *pszName) const
{
    const CWideText *const pText = Text(VersionPart(pszName));
    return pText ? ShownText(*pText) : CCUString();
}

const CWideText *CDocument::Text(const SkinPart &part) const
{
    if (part.m_kind == SkinPart::Version) {
        const auto found = m_skin.m_version.find(part.m_name);
        return found == m_skin.m_version.end() ? nullptr : &found->second;
    }
    if (part.m_kind != SkinPart::Entry || part.m_nLanguage >= m_skin.m_texts.size())
        return nullptr;
    const auto &entries = m_skin.m_texts[part.m_nLanguage].m_entries;
    const auto found = entries.find(part.m_nID);
    return found == entries.end() ? nullptr : &found->second;
}

// --- Steps ---

void CDocument::BeginStep(UINT nJoin)
{
    if (m_nDepth++ == 0) {
        m_nJoin = nJoin;
        m_bOpen = false;
    }
}

void CDocument::EndStep()
{
    if (--m_nDepth > 0)
        return;
    CutStep();
    m_bSealed = m_nJoin == 0;
}

// What changes from here on belongs to another step.
void CDocument::CutStep()
{
    // A drag that came back to where it began leaves no step.
    if (IsOpenEmpty()) {
        m_steps.pop_back();
        m_nDone = m_steps.size();
    }
    m_bOpen = false;
}

void CDocument::CancelStep()
{
    if (m_bOpen) {
        std::vector<CSkinChange> changes;
        changes.swap(m_steps.back().m_changes);
        for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
            change->Undo(m_skin);
            Tell(&change->Part());
        }
    }
    EndStep();
}

// The step that changes go to now is the last one.
void CDocument::OpenStep()
{
    if (m_bOpen)
        return;
    m_bOpen = true;
    const bool bJoins = !m_bSealed && m_nJoin && m_nDone == m_steps.size() && m_nDone > 0 &&
                        m_steps.back().m_nJoin == m_nJoin &&
                        !(m_bSavedKnown && m_nSaved == m_nDone);
    if (bJoins)
        return;
    if (m_bSavedKnown && m_nSaved > m_nDone)
        m_bSavedKnown = false;  // what was saved cannot be reached any more
    m_steps.resize(m_nDone);
    m_steps.push_back({m_nJoin, {}});
    m_nDone = m_steps.size();
}

void CDocument::Add(const CSkinChange &change)
{
    const CDocumentStep step(*this);
    OpenStep();
    auto &changes = m_steps.back().m_changes;
    const auto same = std::find_if(changes.begin(), changes.end(), [&](const CSkinChange &other) {
        return other.Part() == change.Part();
    });
    if (same == changes.end()) {
        changes.push_back(change);
    } else {
        same->Join(m_skin, change);
        if (same->IsNothing())
            changes.erase(same);
    }
    const SkinPart part = change.Part();
    Tell(&part);
}

void CDocument::Undo()
{
    if (!CanUndo())
        return;
    Seal();
    // A copy: who is told may begin something else.
    const std::vector<CSkinChange> changes = m_steps[--m_nDone].m_changes;
    for (auto change = changes.rbegin(); change != changes.rend(); ++change)
        change->Undo(m_skin);
    for (const CSkinChange &change : changes)
        Tell(&change.Part());
}

void CDocument::Redo()
{
    if (!CanRedo())
        return;
    Seal();
    const std::vector<CSkinChange> changes = m_steps[m_nDone++].m_changes;
    for (const CSkinChange &change : changes)
        change.Redo(m_skin);
    for (const CSkinChange &change : changes)
        Tell(&change.Part());
}

void CDocument::MarkSaved()
{
    CutStep();
    m_nSaved = m_nDone;
    m_bSavedKnown = true;
    Seal();
}

// --- Writing ---

void CDocument::SetText(const SkinPart &part, const CWideText *pText)
{
    const CSkinChange change(m_skin, part, pText);
    if (!change.IsNothing())
        Add(change);
}

void CDocument::SetBlob(const SkinPart &part, const CBlob &blob)
{
    const CSkinChange change(m_skin, part, blob);
    if (!change.IsNothing())
        Add(change);
}

void CDocument::SetEntry(UINT nID, const CCUString &sText)
{
    if (m_nLanguage >= m_skin.m_texts.size() || sText == Entry(nID))
        return;
    const CWideText text = EditedText(Text(EntryPart(nID)), sText);
    SetText(EntryPart(nID), &text);
}

void CDocument::SetVersion(const char *pszName, const CCUString &sText)
{
    if (sText == Version(pszName))
        return;
    const CWideText text = EditedText(Text(VersionPart(pszName)), sText);
    SetText(VersionPart(pszName), text.IsEmpty() ? nullptr : &text);
}

void CDocument::SetPicture(SkinPicture picture, const CBlob &blob)
{
    SkinPart part;
    part.m_kind = SkinPart::Picture;
    part.m_nID = picture;
    SetBlob(part, blob);
}

void CDocument::SetIcon(const CBlob &blob)
{
    SkinPart part;
    part.m_kind = SkinPart::Icon;
    SetBlob(part, blob);
}

void CDocument::SetAll(const CSkin &skin)
{
    const CDocumentStep step(*this);
    for (size_t i = 0; i < m_skin.m_texts.size(); ++i) {
        const CSkinTexts *const pTexts = TextsFor(skin, m_skin, i);
        if (!pTexts)
            continue;
        SkinPart part = EntryPart(0);
        part.m_nLanguage = i;
        SetTexts(part, &SkinPart::m_nID, m_skin.m_texts[i].m_entries, pTexts->m_entries);
    }
    for (int i = 0; i < PictureCount; ++i)
        SetPicture(static_cast<SkinPicture>(i), skin.m_pictures[i]);
    SetIcon(skin.m_icon);
    SetVersions(skin.m_version);
}

void CDocument::SetVersions(const std::map<CWideText, CWideText> &texts)
{
    if (texts.empty())
        return;
    SkinPart part;
    part.m_kind = SkinPart::Version;
    SetTexts(part, &SkinPart::m_name, m_skin.m_version, texts);
}

// Puts these texts in the place of the old ones, which are the skin's own and change meanwhile.
template <typename Key>
void CDocument::SetTexts(const SkinPart &kind, Key SkinPart::*pKey,
                         const std::map<Key, CWideText> &old, const std::map<Key, CWideText> &texts)
{
    SkinPart part = kind;
    std::vector<Key> gone;
    for (const auto &text : old) {
        if (!texts.count(text.first))
            gone.push_back(text.first);
    }
    for (const Key &key : gone) {
        part.*pKey = key;
        SetText(part, nullptr);
    }
    for (const auto &text : texts) {
        part.*pKey = text.first;
        SetText(part, &text.second);
    }
}

void CDocument::Tell(const SkinPart *pPart)
{
    ++m_nRevision;
    if (m_pWatcher)
        m_pWatcher->OnSkinChanged(pPart);
}
