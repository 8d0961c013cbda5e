#pragma once

#include <memory>

#include "File/SumsFile.h"
#include "Model/Problem.h"
#include "Model/Skin.h"

// Where a skin lives: a launcher, or a skin folder (Skin.rc and the pictures that it names). It
// keeps what it read, so that saving changes only what was edited. OpenSkin.h makes one.
class CSkinFile
{
public:
    virtual ~CSkinFile() {}
    CSkinFile(const CSkinFile &) = delete;
    CSkinFile &operator=(const CSkinFile &) = delete;

    // As it was read, or saved last.
    const CSkin &Skin() const { return m_skin; }
    const CCUString &Path() const { return m_sPath; }
    virtual bool IsFolder() const = 0;

    // Writes the file that it was read from anew with these looks, to `sPath`, which may be the
    // same or another: everything else in it stays to the byte. Under a new name first, then
    // renamed: when it fails, what was at `sPath` is whole, the reason is among the problems. Then
    // `sPath` is this file's place, and `skin` what it holds.
    virtual bool Save(const CSkin &skin, const CCUString &sPath, CProblems &problems) = 0;
    // The same for a copy: this file's place and skin stay. A launcher's own place, too, if it was
    // read just now: what is there is not held against what was read.
    virtual bool SaveCopy(const CSkin &skin, const CCUString &sPath, CProblems &problems) const = 0;
    // Whether `skin` has all that the file holds, or something else in its place. One that lacks a
    // picture because that could not be read is not to be put into a launcher, a disc or a new
    // folder: it would take it away there. Which, and why, is told then.
    virtual bool IsWhole(const CSkin &skin, CProblems &problems) const;

    // Save refuses while what it would replace is not what was read there: somebody else has
    // changed it, says IsOutdated from then on. OverwriteChanges makes the next Save go on all the
    // same.
    bool IsOutdated() const { return m_bOutdated; }
    void OverwriteChanges(bool bOverwrite)
    {
        m_bOverwrite = bOverwrite;
        m_bOutdated = false;
    }

    // What Save holds against what it would replace, for who keeps a skin that is not saved: sums
    // of the files. Empty: it is not known.
    CCUString KnownFiles() const { return WriteSums(m_bRecalled ? m_recalled : Sums()); }
    // The skin that will be saved is not that which was just read, but one that was kept with
    // these. Until it is saved Save refuses, too, while they are not those of what is there; of
    // empty ones always.
    void RecallFiles(const CCUString &sKnown)
    {
        m_recalled = ReadSums(sKnown);
        m_bRecalled = true;
    }

protected:
    CSkinFile() : m_bOverwrite(false) {}

    // Of all that was read.
    virtual CSums Sums() const = 0;
    static CCUString SumOf(const CBlob &bytes);

    // Whether both paths lead to the same place, as far as their names say.
    static bool IsSamePath(const CCUString &sPath, const CCUString &sOther);
    // Whether somebody has changed the file since; told as a problem, but for the case that the
    // file is to be overwritten.
    bool IsChanged(const CCUString &sPath, const CBlob &bytes, CProblems &problems) const;
    // From here on the file is `skin`, at its path.
    void BeSaved(const CSkin &skin);

    CCUString m_sPath;
    CSkin m_skin;
    bool m_bOverwrite;

private:
    bool IsRecalled(const CCUString &sPath, const CBlob &bytes) const;

    mutable bool m_bOutdated = false;
    bool m_bRecalled = false;
    CSums m_recalled;
};
