#pragma once

/// @file
/// What a dialog template says.

#include "CU/String.h"
#include "CUI/Platform.h"
#include "CUI/ResourceName.h"

/// A dialog template resource, in either form (DLGTEMPLATE, DLGTEMPLATEEX). It stays in its module:
/// an object is a reference that copies freely and is good while the module is loaded.
///
/// Of a resource that is missing, cut short or of an unknown kind, whatever cannot be read counts
/// as absent: the operations answer 0 and empty what they were to fill. Nothing reads behind the
/// resource's end.
class CUI_API CCUIDialogTemplate
{
public:
    /// Locates the template by name, or by MAKEINTRESOURCE(id), here and only once: a template that
    /// appears later is not seen. A null instance is the program.
    /// @{
    CCUIDialogTemplate(HINSTANCE hInstance, const char *pszName);
    template <typename Wide>
    CCUIDialogTemplate(HINSTANCE hInstance, const Wide *pszName)
        : CCUIDialogTemplate(hInstance, CUIResourceName(pszName))
    {
    }
    /// @}

    /// The template as the system wants it (an extended one too), or null unless all of it, down to
    /// the last control, is there. An odd count of creation data counts as not there: systems do
    /// not agree where the next control begins then.
    const DLGTEMPLATE *GetTemplate() const;

    /// The window styles of either form.
    /// @{
    unsigned long GetStyle() const;
    unsigned long GetExStyle() const;
    /// @}

    /// 1 when the template names a font (DS_SETFONT), else 0.
    int HasFontStyle() const;
    /// 1 with the font that the template names: for the size 0x7FFF, the system's message font.
    int GetFont(CCUString &sFace, unsigned short &nPoints) const;

    /// 1 with the size of the dialog's client area; in pixels, as the template's font makes it, or
    /// the system font where it names none.
    /// @{
    int GetSizeInDialogUnits(SIZE &size) const;
    int GetSizeInPixels(SIZE &size) const;
    /// @}

    /// 1 with the caption, which may be empty.
    int GetCaption(CCUString &sCaption) const;

private:
    const DLGTEMPLATE *m_pTemplate;  // null: none
    unsigned long m_nSize;           // in bytes
};
