#include <string.h>

#include "File/FileBytes.h"
#include "Model/IsAmong.h"
#include "Problems/Checks.h"
#include "Problems/CommandLine.h"

namespace {

const char *const NOTHING_HAPPENS = "A click on the line does nothing.";

// What the launcher can start.
const char *const EXTENSIONS[] = {"exe", "com", "bat", "cmd", "pif"};
// Of every Windows; they need not be on the disc.
const char *const SYSTEM_PROGRAMS[] = {"notepad.exe", "write.exe",    "explorer.exe",
                                       "control.exe", "rundll32.exe", "winhlp32.exe",
                                       "regedit.exe"};

int Count(const CCUString &sText, char ch)
{
    int nCount = 0;
    for (const char *p = sText; *p; ++p)
        nCount += *p == ch;
    return nCount;
}

bool HasControlCharacter(const CCUString &sText)
{
    for (const char *p = sText; *p; ++p) {
        if (static_cast<BYTE>(*p) < 0x20)
            return true;
    }
    return false;
}

// Whether a relative path goes up beyond where it began.
bool GoesUp(const CCUString &sProgram)
{
    int nDepth = 0;
    for (CCUString sRest = sProgram; !sRest.IsEmpty();) {
        const CCUString sPart = sRest.SpanExcluding("\\/");
        nDepth += sPart == ".." ? -1 : sPart == "." || sPart.IsEmpty() ? 0 : 1;
        if (nDepth < 0)
            return true;
        sRest = sRest.Mid(sPart.GetLength() + (sPart.GetLength() < sRest.GetLength()));
    }
    return false;
}

// Of one line's command: what is wrong with it, one after the other.
class CCommandCheck
{
public:
    CCommandCheck(CSkinCheck &check, const SkinEntry &entry, const CCUString &sContents)
        : m_check(check),
          m_entry(entry),
          m_sContents(sContents),
          m_sCommand(check.m_strings.Read(entry.m_nID)),
          m_sProgram(ProgramOf(m_sCommand))
    {
    }
    void Run()
    {
        if (m_sCommand.IsEmpty())
            return;
        // What Windows makes of a path with mistakes in it need not be looked for.
        if (IsWritten() && StaysOnDisc() && CanBeStarted() && !m_sContents.IsEmpty())
            CheckPresence();
    }

private:
    bool Fail(const CCUString &sWhat, const CCUString &sEffect = NOTHING_HAPPENS)
    {
        m_check.Fail(m_entry.m_nID, CCUString(m_entry.m_pszCaption) + ": " + sWhat, sEffect);
        return false;
    }
    void Warn(const CCUString &sWhat, const CCUString &sEffect)
    {
        m_check.Warn(m_entry.m_nID, CCUString(m_entry.m_pszCaption) + ": " + sWhat, sEffect);
    }
    CCUString Name() const { return "\"" + m_sProgram + "\""; }

    bool IsWritten();
    bool StaysOnDisc();
    bool CanBeStarted();
    void CheckPresence();
    bool IsFile(const CCUString &sProgram) const;
    bool IsUnquotedPath() const;

    CSkinCheck &m_check;
    const SkinEntry &m_entry;
    const CCUString m_sContents;
    const CCUString m_sCommand;
    const CCUString m_sProgram;
};

bool CCommandCheck::IsWritten()
{
    if (HasControlCharacter(m_sCommand))
        return Fail(
            "there is a tab or a line break in the command. In Skin.rc a backslash is "
            "written twice: \"Tools\\\\Setup.exe\".");
    if (Count(m_sCommand, '"') % 2 != 0)
        return Fail("a quote has no partner. In Skin.rc a quote is written twice.");
    if (m_sProgram.IsEmpty())
        return Fail("the command names no program.");
    if (m_sProgram.Find('/') >= 0)
        return Fail("Windows divides folders by \"\\\", not by \"/\".",
                    "Some systems do not find the program.");
    if (m_sProgram.Mid(1).Find("\\\\") >= 0)
        Warn("two backslashes stand side by side.", "Some systems do not find the program.");
    return true;
}

bool CCommandCheck::StaysOnDisc()
{
    const char *const pszNoDisc = "The program is looked for elsewhere than on the disc.";
    if (m_sProgram.Mid(1, 1) == ":")
        return Fail(Name() + " names a drive; the disc has another letter on each computer.",
                    pszNoDisc);
    if (m_sProgram.Left(2) == "\\\\")
        return Fail(Name() + " is on a network.", pszNoDisc);
    if (m_sProgram.Left(1) == "\\")
        return Fail(Name() + " begins with a backslash, which need not be the disc's.", pszNoDisc);
    if (GoesUp(m_sProgram))
        return Fail(Name() + " leaves the disc by \"..\".", pszNoDisc);
    return true;
}

bool CCommandCheck::CanBeStarted()
{
    if (m_sProgram.FindOneOf("*?<>|:") >= 0)
        return Fail(Name() + " has a character that no file name has.");
    const CCUString sExtension = ExtensionOf(WithExtension(m_sProgram));
    // "My Setup.exe" ends at its space; that is told when the file is looked for.
    if (IsAmong(sExtension, EXTENSIONS) || IsUnquotedPath())
        return true;
    return Fail(Name() + " is no program: the launcher cannot open documents.");
}

bool CCommandCheck::IsFile(const CCUString &sProgram) const
{
    return FileExists(JoinPath(m_sContents, WithExtension(sProgram)));
}

// Whether a longer part of the command is a file on the disc.
bool CCommandCheck::IsUnquotedPath() const
{
    if (m_sContents.IsEmpty() || m_sCommand.Find('"') >= 0)
        return false;
    for (int i = m_sProgram.GetLength(); i <= m_sCommand.GetLength(); ++i) {
        const CCUString sLonger = m_sCommand.Left(i);
        if (i > m_sProgram.GetLength() && IsFile(sLonger))
            return true;
    }
    return false;
}

void CCommandCheck::CheckPresence()
{
    if (IsFile(m_sProgram))
        return;
    if (IsUnquotedPath())
        Warn("a name with spaces stands in no quotes.", "Some systems do not find the program.");
    else if (!IsAmong(WithExtension(m_sProgram), SYSTEM_PROGRAMS))
        Fail(Name() + " is not among the disc's contents.");
}

}  // namespace

void CheckCommands(CSkinCheck &check, const CCUString &sContents)
{
    for (const SkinEntry &entry : SKIN_ENTRIES) {
        if (entry.m_kind == EntryCommand)
            CCommandCheck(check, entry, sContents).Run();
    }
}
