// Files of text: bytes in and out, with the system's own conversions as the truth.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>

#include "CU/TextFile.h"
#include "Support/ImportHook.h"
#include "Support/TemporaryDirectory.h"

using namespace std::string_literals;

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

BOOL WINAPI BreakOff(LPCSTR pszPath, LPCSTR, LPCSTR pszOld, DWORD, void *, void *)
{
    return DeleteFileA(pszOld) && MoveFileA(pszPath, pszOld) && FALSE;
}

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
        {std::string("\xFF\xFE\xAC\x20\n\0", 6), CCUTextFile::Utf16, CCUTextFile::Lf, "\x80\r\n"},
        {std::string("\xFE\xFF\x20\xAC\0\n", 6), CCUTextFile::Utf16Big, CCUTextFile::Lf,
         "\x80\r\n"},
        {"\xFE\xFFx", CCUTextFile::Ansi, CCUTextFile::CrLf, "\xFE\xFFx"}};
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
    // More than is converted at a time; half a pair at the end.
    std::string units = "\xFF\xFE"s;
    for (int i = 0; i < 2000; ++i)
        units += "A\0\xB1\x03"s;
    const CCUTextFile greek = texts.Load(units + "\x3D\xD8"s);
    EXPECT_TRUE(greek.GetLostCount() == 2001 && greek.GetText().GetLength() == 4001);
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
        const std::ifstream open(texts.path);
        refused(ERROR_ACCESS_DENIED);
    }
    {
        const CFakeCall<BOOL(HANDLE)> flush(
            "FlushFileBuffers", [](HANDLE) { return SetLastError(ERROR_HANDLE_DISK_FULL), 0; });
        refused(ERROR_HANDLE_DISK_FULL);
    }
    // A system's call that has moved the old file away when the new one cannot be moved.
    {
        const CFakeCall<FARPROC(HMODULE, LPCSTR)> find(
            "GetProcAddress", [](HMODULE, LPCSTR) { return reinterpret_cast<FARPROC>(BreakOff); });
        const CFakeCall<BOOL(LPCSTR, LPCSTR, DWORD)> move("MoveFileExA", [](LPCSTR, LPCSTR, DWORD) {
            return SetLastError(ERROR_ACCESS_DENIED), FALSE;
        });
        refused(ERROR_ACCESS_DENIED);
    }
    {
        const CFakeCall<BOOL(HANDLE, LPCVOID, DWORD, LPDWORD, LPOVERLAPPED)> full(
            "WriteFile", [](HANDLE, LPCVOID, DWORD, LPDWORD pWritten, LPOVERLAPPED) {
                return *pWritten = 1, TRUE;
            });
        refused(ERROR_DISK_FULL);
    }
    // Windows 95: no step that replaces a file.
    const CFakeCall<BOOL(LPCSTR, LPCSTR, DWORD)> move("MoveFileExA", [](LPCSTR, LPCSTR, DWORD) {
        return SetLastError(ERROR_CALL_NOT_IMPLEMENTED), FALSE;
    });
    SetFileAttributesA(texts.path.c_str(), FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ("new", texts.Save(file));
    EXPECT_TRUE(GetFileAttributesA(texts.path.c_str()) & FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(1, texts.CountFiles());
    // However the path is written, what is new is made beside it. Longer than all memory.
    std::string slashes = texts.path, folder;
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    const CFakeCall<UINT(LPCSTR, LPCSTR, UINT, LPSTR)> temp(
        "GetTempFileNameA", [&](LPCSTR pszFolder, LPCSTR pszPrefix, UINT nUnique, LPSTR pszNew) {
            return folder = pszFolder, temp.Original(pszFolder, pszPrefix, nUnique, pszNew);
        });
    EXPECT_EQ(1, file.Save(slashes.c_str())) << GetLastError();
    EXPECT_EQ(texts.Path() + "\\", folder);
    std::ofstream(texts.path, std::ios::binary).seekp(0x100000000) << "x";
    EXPECT_EQ(0, file.Load(texts.path.c_str()));
    EXPECT_EQ(DWORD(ERROR_NOT_ENOUGH_MEMORY), GetLastError());
    EXPECT_EQ(0, file.Load((texts.path + "?").c_str()));
    EXPECT_STREQ("new", file.GetText());
}
