#pragma once

/// @file
/// Fonts.

#include "CUI/Data.h"
#include "CUI/Platform.h"

/// A font of the system, deleted with the object. Windows only borrow theirs: a font outlives all
/// that it was given to, or they get another one before it goes.
///
///     CCUIFont font("Courier New", 10);
///     m_edit.SetFont(font);
///     m_font = std::move(font);  // deletes the one that the control had
///
/// Fonts may be moved, not copied. For the user-interface thread.
class CCUIFont
{
public:
    CCUIFont() : m_hFont(nullptr) {}  ///< none
    /// As it is described; none when the system has no memory for it.
    explicit CCUIFont(const LOGFONTA &font) : m_hFont(CreateFontIndirectA(&font)) {}
    /// Of that face, so many points high on the screen. nWeight: FW_BOLD, say. Where the face is
    /// not installed the system takes the one most like it.
    CCUIFont(const char *pszFace, int nPoints, int nWeight = FW_NORMAL, bool bItalic = false)
    {
        LOGFONTA font = {};
        font.lfHeight = -MulDiv(nPoints, CUIGetWinData()->cyPixelsPerInch, 72);
        font.lfWeight = nWeight;
        font.lfItalic = bItalic;
        font.lfCharSet = DEFAULT_CHARSET;
        lstrcpynA(font.lfFaceName, pszFace, LF_FACESIZE);
        m_hFont = CreateFontIndirectA(&font);
    }
    /// Takes over what the other one has, which has none then.
    /// @{
    CCUIFont(CCUIFont &&other) noexcept : m_hFont(other.Detach()) {}
    CCUIFont &operator=(CCUIFont &&other) noexcept
    {
        if (this != &other)
            Attach(other.Detach());
        return *this;
    }
    /// @}
    ~CCUIFont() { Attach(nullptr); }

    operator HFONT() const { return m_hFont; }  ///< null: none

    /// Takes over a font that the program has made, in the place of its own, which is deleted.
    void Attach(HFONT hFont)
    {
        if (m_hFont && m_hFont != hFont)
            DeleteObject(m_hFont);
        m_hFont = hFont;
    }
    /// Gives the font away, which is the caller's then.
    HFONT Detach()
    {
        const HFONT hFont = m_hFont;
        m_hFont = nullptr;
        return hFont;
    }
    /// How a font is described, one of the system's (CUIData) too, to make another like it; all 0
    /// of none.
    static LOGFONTA Describe(HFONT hFont)
    {
        LOGFONTA font = {};
        GetObjectA(hFont, sizeof font, &font);
        return font;
    }

private:
    HFONT m_hFont;
};
