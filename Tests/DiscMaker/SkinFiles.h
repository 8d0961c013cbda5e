#pragma once

#include <gtest/gtest.h>

#include <string>

#include "File/FileBytes.h"
#include "File/OpenSkin.h"
#include "Model/Blob.h"
#include "Support/TemporaryDirectory.h"

// The two skins of the project: as sources, and in launchers that the tools made of them.
const char *const SKIN_FOLDERS[] = {TEST_SOURCES "/AutoRun/Skin",
                                    TEST_SOURCES "/Disc/Skins/HarbourTides"};
const char *const SKIN_LAUNCHERS[] = {TEST_LAUNCHER, TEST_OTHER_LAUNCHER};

inline std::string Lines(const CProblems &problems)
{
    std::string lines;
    for (const CProblem &problem : problems)
        lines += std::string(ProblemLine(problem)) + "\n";
    return lines;
}

inline std::string TextOf(const CSkin &skin, UINT nId, size_t nLanguage = 0)
{
    const auto entry = skin.m_texts[nLanguage].m_entries.find(nId);
    return entry == skin.m_texts[nLanguage].m_entries.end()
               ? "(none)"
               : entry->second.ToCodePage(1252).GetString();
}

inline void SetText(CSkin &skin, UINT nId, const char *psz)
{
    skin.m_texts[0].m_entries[nId] = CWideText(psz, 1252);
}

inline std::string Contents(const std::string &path)
{
    const CBlob bytes = ReadFileBytes(path.c_str());
    return bytes ? std::string(bytes->begin(), bytes->end()) : "(no file)";
}

inline void WriteFileBytes(const std::string &path, const std::string &bytes)
{
    FILE *const file = fopen(path.c_str(), "wb");
    ASSERT_TRUE(file) << path;
    fwrite(bytes.data(), 1, bytes.size(), file);
    fclose(file);
}

// A folder with copies of all files of another one.
inline std::string CopyFolder(const CTemporaryDirectory &directory, const std::string &from)
{
    std::string to = directory.Path() + "\\skin";
    CreateDirectoryA(to.c_str(), nullptr);
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((from + "/*").c_str(), &found);
    do
        CopyFileA((from + "/" + found.cFileName).c_str(), (to + "\\" + found.cFileName).c_str(),
                  TRUE);
    while (FindNextFileA(search, &found));
    FindClose(search);
    return to;
}

inline void ExpectSameSkin(const CSkin &a, const CSkin &b)
{
    ASSERT_EQ(a.m_texts.size(), b.m_texts.size());
    for (size_t i = 0; i < a.m_texts.size(); ++i) {
        EXPECT_EQ(a.m_texts[i].m_nLanguage, b.m_texts[i].m_nLanguage);
        EXPECT_TRUE(a.m_texts[i].m_entries == b.m_texts[i].m_entries);
    }
    for (int i = 0; i < PictureCount; ++i)
        EXPECT_TRUE(SameBytes(a.m_pictures[i], b.m_pictures[i])) << i;
    EXPECT_TRUE(SameBytes(a.m_icon, b.m_icon));
}
