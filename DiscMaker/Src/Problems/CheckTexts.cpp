#include "Problems/Checks.h"
#include "Resource.h"
#include "Script/ScriptLiteral.h"

namespace {

CCUString CaptionOf(const SkinEntry &entry)
{
    return CCUString(entry.m_pszCaption) + ": ";
}

// The first character that the code page lacks, as Unicode's charts call it.
CCUString FirstLost(const CWideText &text, UINT nCodePage)
{
    for (size_t i = 0; i < text.Length(); ++i) {
        bool bLost = false;
        CWideText(text.Data() + i, 1).ToCodePage(nCodePage, &bLost);
        if (bLost)
            return WithNumber("U+%04X", text.Data()[i]);
    }
    return "";
}

void CheckCodePage(CSkinCheck &check, const SkinEntry &entry, const CWideText &text)
{
    bool bLost = false;
    text.ToCodePage(check.m_strings.CodePage(), &bLost);
    if (!bLost)
        return;
    const int nCodePage = static_cast<int>(check.m_strings.CodePage());
    check.Warn(entry.m_nID,
               CaptionOf(entry) + "the character " + FirstLost(text, check.m_strings.CodePage()) +
                   WithNumber(" is not in the disc's code page %d.", nCodePage),
               "A question mark or a similar character is shown.");
}

// Whether it has characters beyond ASCII which, as bytes, are UTF-8 throughout. Hardly any text
// that was meant as it stands is.
bool LooksLikeUtf8(const CCUString &sBytes)
{
    const BYTE *const pBytes = reinterpret_cast<const BYTE *>(sBytes.GetString());
    bool bBeyond = false;
    return IsUtf8(CByteView(pBytes, static_cast<size_t>(sBytes.GetLength())), &bBeyond) && bBeyond;
}

void CheckEncoding(CSkinCheck &check, const SkinEntry &entry, const CWideText &text)
{
    bool bLost = false;
    const CCUString sBytes = text.ToCodePage(check.m_strings.CodePage(), &bLost);
    if (!bLost && LooksLikeUtf8(sBytes))
        check.Warn(entry.m_nID,
                   CaptionOf(entry) +
                       "this looks like UTF-8 that was read as something else. Add "
                       "#pragma code_page(65001) to Skin.rc, or save it in the "
                       "disc's code page.",
                   "\"" + sBytes + "\" is shown just so.");
}

// Pairs of "&" and single ones.
struct CAmpersands
{
    int m_nSingle = 0;
    int m_nDouble = 0;

    explicit CAmpersands(const CCUString &sText)
    {
        for (const char *p = sText; *p; ++p) {
            if (*p != '&')
                continue;
            const bool bDouble = p[1] == '&';
            ++(bDouble ? m_nDouble : m_nSingle);
            p += bDouble;
        }
    }
};

// The description is drawn with mnemonics; the title and the lines are not, but the lines are
// measured with them.
void CheckAmpersands(CSkinCheck &check, const SkinEntry &entry, const CCUString &sText)
{
    const CAmpersands found(sText);
    if (entry.m_nID == IDS_ABOUT) {
        if (found.m_nSingle > 0)
            check.Warn(entry.m_nID, "Description: a single \"&\" is swallowed; write \"&&\".",
                       "It is not shown, and the next character is underlined.");
        return;
    }
    if (found.m_nDouble > 0)
        check.Warn(entry.m_nID,
                   CaptionOf(entry) + "\"&&\" stands for one \"&\" in the description only.",
                   "Both are shown.");
    else if (found.m_nSingle > 0 && entry.m_nID != IDS_TITLE && entry.m_nID != IDS_CAPTION)
        check.Note(entry.m_nID, CaptionOf(entry) + "has \"&\" in it.",
                   "The zone for the mouse ends a little before the text does.");
}

void CheckLineBreaks(CSkinCheck &check, const SkinEntry &entry, const CCUString &sText)
{
    const bool bDescription = entry.m_nID == IDS_ABOUT;
    for (const char *p = sText; *p; ++p) {
        const BYTE n = static_cast<BYTE>(*p);
        if (n >= 0x20 || (bDescription && (*p == '\n' || *p == '\r')))
            continue;
        check.Warn(entry.m_nID,
                   CaptionOf(entry) + (*p == '\n' || *p == '\r'
                                           ? "only the description can have several lines."
                                           : "there is a character in it that cannot be shown."),
                   "A box or nothing is shown in its place.");
        return;
    }
}

}  // namespace

void CheckTexts(CSkinCheck &check)
{
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        const CWideText *const pText = check.m_strings.Find(entry.m_nID);
        if (!pText)
            continue;
        CheckCodePage(check, entry, *pText);
        CheckEncoding(check, entry, *pText);
        if (entry.m_kind != EntryText)
            continue;
        const CCUString sText = check.m_strings.Read(entry.m_nID);
        CheckAmpersands(check, entry, sText);
        CheckLineBreaks(check, entry, sText);
    }
}
