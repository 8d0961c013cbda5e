#pragma once

#include <string>

#include "CU/Platform.h"

// A program as the system maps it, without running it.
class CProgramFile
{
public:
    explicit CProgramFile(const std::string &path)
        : m_hModule(LoadLibraryExA(path.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES))
    {
    }
    ~CProgramFile() { FreeLibrary(m_hModule); }
    CProgramFile(const CProgramFile &) = delete;
    CProgramFile &operator=(const CProgramFile &) = delete;

    HMODULE Module() const { return m_hModule; }
    const BYTE *At(DWORD nOffset) const
    {
        return reinterpret_cast<const BYTE *>(m_hModule) + nOffset;
    }
    const IMAGE_NT_HEADERS &Headers() const
    {
        const auto *pDos = reinterpret_cast<const IMAGE_DOS_HEADER *>(At(0));
        return *reinterpret_cast<const IMAGE_NT_HEADERS *>(At(static_cast<DWORD>(pDos->e_lfanew)));
    }
    std::string Resource(int nID, const char *type) const
    {
        const HRSRC hResource = FindResourceA(m_hModule, MAKEINTRESOURCEA(nID), type);
        if (!hResource)
            return "";
        return std::string(
            static_cast<const char *>(LockResource(LoadResource(m_hModule, hResource))),
            SizeofResource(m_hModule, hResource));
    }

private:
    HMODULE m_hModule;
};
