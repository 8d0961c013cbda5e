// Files of text: bytes in and out, with the system's own conversions as the truth.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "CU/TextFile.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"

namespace {

struct CTexts : CTemporaryDirectory
{
    const std::string path = Path() + "\\a.txt";

    CCUTextFile Load(const std::string &bytes) const
    {
        std::ofstream(path, std::ios::binary) << bytes;
        CCUTextFile file;
        EXPECT_EQ(1, file.Load(path.c_str()));
        return file;
    }
    std::string Save(const CCUTextFile &file) const
    {
        EXPECT_EQ(1, file.Save(path.c_str())) << GetLastError();
        return Bytes();
    }
    std::string Bytes() const
    {
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return bytes.str();
    }
    int CountFiles() const
    {
        WIN32_FIND_DATAA data;
        const HANDLE hFind = FindFirstFileA((Path() + "\\*").c_str(), &data);
        int nFiles = 0;
        do
            nFiles += !(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
        while (FindNextFileA(hFind, &data));
        return FindClose(hFind), nFiles;
    }
};

}  // namespace

TEST(TextFile, WritesAFileAsItWas)
{
    const CTexts texts;
    std::string all;
    for (int i = 1; i < 256; ++i)
        all += i == '\r' || i == '\n' ? 'x' : char(i);
    const struct
    {
        std::string bytes;
        CCUTextFile::Encoding encoding;
        CCUTextFile::LineEnd lineEnd;
        std::string text;
    } FILES[] = {
        {"", CCUTextFile::Ansi, CCUTextFile::CrLf, ""},
        {all + "\n\n" + std::string("a\0b", 3), CCUTextFile::Ansi, CCUTextFile::Lf,
         all + "\r\n\r\n" + std::string("a\0b", 3)},
        {"\xC3\xB6\r\r", CCUTextFile::Utf8, CCUTextFile::Cr, "\xF6\r\n\r\n"},
        {"\xEF\xBB\xBFx\r\n\xE2\x82\xAC", CCUTextFile::Utf8Mark, CCUTextFile::CrLf, "x\r\n\x80"},
        {std::string("\xFF\xFE\xAC\x20\n\0", 6), CCUTextFile::Utf16, CCUTextFile::Lf, "\x80\r\n"}};
    for (const auto &file : FILES) {
        const CCUTextFile read = texts.Load(file.bytes);
        EXPECT_EQ(file.encoding, read.GetEncoding()) << file.text;
        EXPECT_EQ(file.lineEnd, read.GetLineEnd()) << file.text;
        EXPECT_EQ(file.text, std::string(read.GetText(), size_t(read.GetText().GetLength())));
        EXPECT_EQ(0, read.GetLostCount());
        EXPECT_EQ(file.bytes, texts.Save(read));
    }
    const CCUTextFile read = texts.Load("a\nb\r\nc\r");
    EXPECT_EQ(CCUTextFile::Differ, read.GetLineEnd());
    EXPECT_EQ("a\r\nb\r\nc\r\n", texts.Save(read));
    EXPECT_EQ(1, texts.CountFiles());
}

TEST(TextFile, KnowsUtf8AndWhatTheCodePageLacks)
{
    const CTexts texts;
    for (const char *bytes :
         {"\x80", "\xC3", "\xC0\x80", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
          "\xF8\x88\x80\x80\x80", "\xE2\x82", "\xC3\xB6\xFF"})
        EXPECT_EQ(CCUTextFile::Ansi, texts.Load(bytes).GetEncoding()) << bytes;
    EXPECT_EQ(5, texts.Load("a\xCE\xB1\xF0\x9F\x98\x80\xE2\x86\x92\xEF\xBF\xBD").GetLostCount());
    // Every character of the code page, as the system writes it.
    CCUTextFile file;
    for (int i = 1; i < 256; ++i)
        file.SetText(file.GetText() + char(i));
    file.SetEncoding(CCUTextFile::Utf8);
    wchar_t wide[256];
    char utf8[768];
    MultiByteToWideChar(CP_ACP, 0, file.GetText(), -1, wide, 256);
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, 768, nullptr, nullptr);
    EXPECT_EQ(utf8, texts.Save(file));
}

TEST(TextFile, LosesNothingWhenItCannotBeWritten)
{
    const CTexts texts;
    CCUTextFile file = texts.Load("old");
    file.SetText("new");
    const auto refused = [&](DWORD nError) {
        EXPECT_EQ(0, file.Save(texts.path.c_str()));
        EXPECT_EQ(nError, GetLastError());
        EXPECT_EQ("old", texts.Bytes());
        EXPECT_EQ(1, texts.CountFiles());
    };
    SetFileAttributesA(texts.path.c_str(), FILE_ATTRIBUTE_READONLY);
    refused(ERROR_ACCESS_DENIED);
    SetFileAttributesA(texts.path.c_str(), FILE_ATTRIBUTE_NORMAL);
    {
        const CFakeCall<BOOL(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED)> full(
            "WriteFile", [](HANDLE, LPCVOID, DWORD, LPDWORD pWritten, LPOVERLAPPED) {
                return *pWritten = 1, TRUE;
            });
        refused(ERROR_DISK_FULL);
    }
    {
        const CFakeCall<BOOL(HANDLE)> lost(
            "FlushFileBuffers", [](HANDLE) { return SetLastError(ERROR_WRITE_FAULT), FALSE; });
        refused(ERROR_WRITE_FAULT);
    }
    EXPECT_EQ(0, file.Save(nullptr));
    EXPECT_EQ(0, file.Save(""));
    {
        std::string folder;  // of the new file, until it takes its place
        const CFakeCall<UINT(LPCSTR, LPCSTR, UINT, LPSTR)> temp(
            "GetTempFileNameA", [&](LPCSTR pszFolder, auto...) { return folder = pszFolder, 0; });
        EXPECT_EQ(0, file.Save((texts.Path() + "/a.txt").c_str()));
        EXPECT_EQ(texts.Path() + "\\", folder);
    }
    // Windows 95: no step that replaces a file.
    const CFakeCall<BOOL(LPCSTR, LPCSTR, DWORD)> move("MoveFileExA", [](LPCSTR, LPCSTR, DWORD) {
        return SetLastError(ERROR_CALL_NOT_IMPLEMENTED), FALSE;
    });
    EXPECT_EQ("new", texts.Save(file));
    EXPECT_EQ(1, texts.CountFiles());
    EXPECT_EQ(0, file.Load((texts.path + "?").c_str()));
    EXPECT_STREQ("new", file.GetText());
}
