#pragma once

#include <deque>

#include "Model/Problem.h"
#include "Model/SkinChange.h"

// Hears of every change of a document.
class CDocumentWatcher
{
public:
    // A part has another value; null: all of the skin is another, or its language.
    virtual void OnSkinChanged(const SkinPart *pPart) = 0;

protected:
    ~CDocumentWatcher() = default;
};

// The skin that is being edited: every change can be undone, and it is known whether there is
// something to be saved.
//
// Changes are made in steps, each of which is undone as one. Steps of the same kind that follow
// each other, as typing in a field or nudging with the arrow keys makes them, become one until
// Seal.
class CDocument
{
public:
    explicit CDocument(CDocumentWatcher *pWatcher = nullptr) : m_pWatcher(pWatcher) {}
    CDocument(const CDocument &) = delete;
    CDocument &operator=(const CDocument &) = delete;

    // Begins anew: nothing can be undone. bSaved: no file lacks what is in it. A skin without any
    // language gets a neutral one, so that there is a place for what is typed.
    void Start(const CSkin &skin, bool bSaved = true);
    const CSkin &Skin() const { return m_skin; }

    // The language whose texts are shown and edited: an index of Skin().m_texts.
    size_t Language() const { return m_nLanguage; }
    void SetLanguage(size_t nLanguage);
    // Whether what it is about is shown: it is of this language, or of none.
    bool IsShown(const CProblem &problem) const
    {
        return problem.m_nTexts < 0 || static_cast<size_t>(problem.m_nTexts) == m_nLanguage;
    }

    // A text in this system's code page, as the launcher shows it here; empty where there is none.
    CCUString Entry(UINT nID) const;
    CCUString Version(const char *pszName) const;
    // The text itself, of an entry or a version text; null where there is none.
    const CWideText *Text(const SkinPart &part) const;
    // The part of an entry in the language that is shown, and of a version text.
    SkinPart EntryPart(UINT nID) const;
    static SkinPart VersionPart(const char *pszName);

    // Everything until the matching EndStep is one step; calls nest. Steps with the same nJoin (0:
    // none) become one, if no Seal, Undo or save came between.
    void BeginStep(UINT nJoin = 0);
    void EndStep();
    // Ends it, and takes back what it did.
    void CancelStep();
    void Seal() { m_bSealed = true; }

    // What is so already changes nothing. Of an edited text what was not touched stays, characters
    // that this system's code page lacks included. An empty text takes a version text away.
    void SetEntry(UINT nID, const CCUString &sText);
    void SetVersion(const char *pszName, const CCUString &sText);
    // As Text gave it; null: none.
    void SetText(const SkinPart &part, const CWideText *pText);
    void SetPicture(SkinPicture picture, const CBlob &blob);
    void SetIcon(const CBlob &blob);
    // All of another skin's values, of the languages that there are here. One without any version
    // text says nothing about them: they stay.
    void SetAll(const CSkin &skin);

    // Not while a step is open, such as a drag.
    bool CanUndo() const { return m_nDepth == 0 && m_nDone > 0; }
    bool CanRedo() const { return m_nDepth == 0 && m_nDone < m_steps.size(); }
    void Undo();
    void Redo();

    bool IsModified() const { return !m_bSavedKnown || m_nDone - IsOpenEmpty() != m_nSaved; }
    // An open step is cut in two there: what follows is not saved, and CancelStep takes that back.
    void MarkSaved();
    // Another one whenever the skin has changed.
    unsigned Revision() const { return m_nRevision; }

private:
    struct CStep
    {
        UINT m_nJoin;
        std::vector<CSkinChange> m_changes;
    };

    // The step under way has come back to where it began, and will leave none.
    bool IsOpenEmpty() const { return m_bOpen && m_steps.back().m_changes.empty(); }
    void Add(const CSkinChange &change);
    void OpenStep();
    void CutStep();
    void SetBlob(const SkinPart &part, const CBlob &blob);
    void SetVersions(const std::map<CWideText, CWideText> &texts);
    template <typename Key>
    void SetTexts(const SkinPart &kind, Key SkinPart::*pKey, const std::map<Key, CWideText> &old,
                  const std::map<Key, CWideText> &texts);
    void Tell(const SkinPart *pPart);

    CDocumentWatcher *m_pWatcher;
    CSkin m_skin;
    std::deque<CStep> m_steps;
    size_t m_nDone = 0;   // steps that are in the skin
    size_t m_nSaved = 0;  // steps that were in it when it was saved
    size_t m_nLanguage = 0;
    unsigned m_nRevision = 0;
    int m_nDepth = 0;
    UINT m_nJoin = 0;
    bool m_bSavedKnown = true;  // m_nSaved counts: what was saved can still be reached
    bool m_bSealed = true;
    bool m_bOpen = false;  // the step under way is the last one of m_steps
};

// A step for as long as it lives.
class CDocumentStep
{
public:
    explicit CDocumentStep(CDocument &document, UINT nJoin = 0) : m_document(document)
    {
        m_document.BeginStep(nJoin);
    }
    ~CDocumentStep() { m_document.EndStep(); }
    CDocumentStep(const CDocumentStep &) = delete;
    CDocumentStep &operator=(const CDocumentStep &) = delete;

private:
    CDocument &m_document;
};
