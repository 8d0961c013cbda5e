#include "Command/Command.h"

#include <set>

#include "Command/Arguments.h"
#include "Command/Output.h"
#include "Command/PictureCommand.h"
#include "Disc/MakeDisc.h"
#include "File/FileBytes.h"
#include "File/OpenSkin.h"
#include "File/SkinFolder.h"
#include "Problems/Check.h"

namespace {

enum ExitCode
{
    ExitFine,
    ExitProblems,
    ExitFailed
};

typedef std::vector<CCUString> CWords;

// What a command does: false when it could not.
typedef bool FRun(const CWords &words, CProblems &problems);

// To be written elsewhere.
std::unique_ptr<CSkinFile> OpenWhole(const CCUString &sPath, CProblems &problems)
{
    std::unique_ptr<CSkinFile> pFile = OpenSkin(sPath, problems);
    if (pFile && !pFile->IsWhole(pFile->Skin(), problems))
        pFile.reset();
    return pFile;
}

bool Fail(CProblems &problems, const CCUString &sWhere, const CCUString &sWhat)
{
    problems.push_back({ProblemError, 0, sWhere, sWhat, ""});
    return false;
}

// The launcher that came with this program.
CCUString OwnLauncher()
{
    char szPath[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, szPath, MAX_PATH - 1);
    const CCUString sPath = szPath;
    return sPath.Left(sPath.ReverseFind('\\') + 1) + "AutoRun.exe";
}

bool Check(const CWords &words, CProblems &problems)
{
    const auto pFile = OpenSkin(words[0], problems);
    if (pFile)
        CheckSkin(pFile->Skin(), words.size() > 1 ? words[1] : CCUString(), problems);
    return pFile != nullptr;
}

bool Apply(const CWords &words, CProblems &problems)
{
    const CCUString &sLauncher = words[2];
    if (words[1].CompareNoCase("/to") != 0)
        return Fail(problems, words[1], "\"/to\" is wanted here, and a launcher.");
    const auto pSkin = OpenWhole(words[0], problems);
    const auto pLauncher = pSkin ? OpenSkin(sLauncher, problems) : nullptr;
    if (!pLauncher)
        return false;
    if (pLauncher->IsFolder())
        return Fail(problems, sLauncher, "A launcher is wanted here, no skin folder.");
    return pLauncher->SaveCopy(pSkin->Skin(), sLauncher, problems);
}

bool Export(const CWords &words, CProblems &problems)
{
    const auto pFile = OpenWhole(words[0], problems);
    return pFile && CSkinFolder::Export(pFile->Skin(), words[1], problems);
}

bool Picture(const CWords &words, CProblems &problems)
{
    const auto pFile = OpenSkin(words[0], problems);
    return pFile && WriteFacePicture(pFile->Skin(), words[1], problems);
}

// The problems of the skin, then those of the disc.
bool Disc(const CWords &words, CProblems &problems)
{
    const bool bLauncherNamed = words.size() > 3;
    if (bLauncherNamed && (words.size() != 5 || words[3].CompareNoCase("/launcher") != 0))
        return Fail(problems, words[3], "\"/launcher\" is wanted here, and a launcher.");
    const auto pFile = OpenWhole(words[0], problems);
    if (!pFile)
        return false;
    // That the contents are not there is told by MakeDisc.
    CheckSkin(pFile->Skin(), FolderExists(words[1]) ? words[1] : CCUString(), problems);
    const CCUString sLauncher = bLauncherNamed      ? words[4]
                                : pFile->IsFolder() ? OwnLauncher()
                                                    : pFile->Path();
    return MakeDisc(pFile->Skin(), sLauncher, words[1], words[2], nullptr, problems);
}

const struct CCommand
{
    const char *m_pszName;
    size_t m_nLeast;  // words behind the name
    size_t m_nMost;
    FRun *m_run;
    const char *m_pszUsage;
} COMMANDS[] = {
    {"/check", 1, 2, Check, "/check FILE [CONTENTS]               tells what is wrong with a skin"},
    {"/apply", 3, 3, Apply, "/apply SKIN /to LAUNCHER             puts a skin into a launcher"},
    {"/export", 2, 2, Export,
     "/export FILE FOLDER                  writes its skin as a new folder"},
    {"/picture", 2, 2, Picture, "/picture FILE OUT.png                draws the launcher's window"},
    {"/disc", 3, 5, Disc, "/disc FILE CONTENTS OUT [/launcher LAUNCHER]   makes a disc's folder"}};

void WriteUsage(const COutput &output)
{
    output.WriteLine(
        "Disc Maker makes discs that start by themselves. Without a command it shows "
        "its window.");
    for (const CCommand &command : COMMANDS)
        output.WriteLine(CCUString("  DiscMaker ") + command.m_pszUsage);
    output.WriteLine(
        "A FILE is a launcher or a skin folder; OUT of a picture ends in .png or .bmp.");
    output.WriteLine("Exit code 0: done; 1: done, but there are problems; 2: not done.");
}

// Each line once: the disc repeats what the skin's check said of the programs.
void WriteProblems(const COutput &output, const CProblems &problems)
{
    std::set<CCUString> written;
    for (const CProblem &problem : problems) {
        const CCUString sLine = ProblemLine(problem);
        if (written.insert(sLine).second)
            output.WriteLine(sLine);
    }
}

bool HasMoreThanNotes(const CProblems &problems)
{
    for (const CProblem &problem : problems) {
        if (problem.m_weight != ProblemNote)
            return true;
    }
    return false;
}

int Run(const COutput &output, const CCommand &command, const CWords &words)
{
    if (words.size() < command.m_nLeast || words.size() > command.m_nMost) {
        output.WriteLine(CCUString("usage: DiscMaker ") + command.m_pszUsage);
        return ExitFailed;
    }
    CProblems problems;
    const bool bDone = command.m_run(words, problems);
    WriteProblems(output, problems);
    return !bDone ? ExitFailed : HasMoreThanNotes(problems) ? ExitProblems : ExitFine;
}

}  // namespace

bool RunCommand(const char *pszCommandLine, int &nExitCode)
{
    CWords words = SplitCommandLine(pszCommandLine);
    // A path begins with a letter or a backslash; anything with a slash is for us.
    if (words.empty() || words[0].Left(1) != "/")
        return false;
    const COutput output;
    const CCUString sName = words[0];
    words.erase(words.begin());
    for (const CCommand &command : COMMANDS) {
        if (sName.CompareNoCase(command.m_pszName) == 0) {
            nExitCode = Run(output, command, words);
            return true;
        }
    }
    nExitCode = sName == "/?" ? ExitFine : ExitFailed;
    if (nExitCode != ExitFine)
        output.WriteLine("error: " + sName + ": There is no such command.");
    WriteUsage(output);
    return true;
}
