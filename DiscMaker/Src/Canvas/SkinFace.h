#pragma once

#include "LauncherFace.h"
#include "Model/Document.h"
#include "SkinSource.h"

// The launcher's face with the looks of a document.
class CSkinFace : private CSkinSource
{
public:
    // The document must outlive it. Nothing is read yet.
    explicit CSkinFace(const CDocument &document) : m_document(document) {}

    void ReadAll();
    // Reads again what that part brings along.
    void Read(const SkinPart &part);

    CLauncherFace &Face() { return m_face; }
    const CLauncherFace &Face() const { return m_face; }

private:
    CCUString ReadText(UINT nID) const override { return m_document.Entry(nID); }
    CCUIBitmap ReadBitmap(UINT nID) const override;
    bool ReportsBadEntries() const override { return false; }

    void ReadPlaces();
    void ReadFontsAndColors();

    const CDocument &m_document;
    CLauncherFace m_face;
};
