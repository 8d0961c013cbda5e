#pragma once

#include <stdlib.h>
#include <string.h>

#include "CU/Platform.h"

// Puts a function of the test in the place of one that this program, or the library named, imports,
// for as long as the object lives: a clock that stands where the test wants it, a system call that
// fails. The code under test pays nothing for it. The name is the system's, such as "GetTickCount";
// a name that the program does not import ends the test.
class CImportHook
{
public:
    template <typename F>
    CImportHook(const char *name, F *function, const char *module = nullptr)
        : m_base(reinterpret_cast<char *>(GetModuleHandleA(module))),
          m_slot(Find(name)),
          m_old(nullptr)
    {
        if (!m_slot)
            abort();
        m_old = *m_slot;
        Set(reinterpret_cast<void *>(function));
    }
    ~CImportHook() { Set(m_old); }
    CImportHook(const CImportHook &) = delete;
    CImportHook &operator=(const CImportHook &) = delete;

    // What the program really imports, for the test's function to go on to.
    template <typename F>
    F *Original() const
    {
        return reinterpret_cast<F *>(m_old);
    }

private:
    template <typename T>
    T *At(DWORD nOffset) const
    {
        return reinterpret_cast<T *>(m_base + nOffset);
    }
    void **Find(const char *name) const
    {
        const IMAGE_NT_HEADERS *headers =
            At<IMAGE_NT_HEADERS>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
        const IMAGE_DATA_DIRECTORY &directory =
            headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        for (const IMAGE_IMPORT_DESCRIPTOR *library =
                 At<IMAGE_IMPORT_DESCRIPTOR>(directory.VirtualAddress);
             library->Name; ++library)
        {
            const DWORD *names = At<DWORD>(library->OriginalFirstThunk);
            for (DWORD i = 0; names[i]; ++i) {
                if (names[i] & IMAGE_ORDINAL_FLAG32)
                    continue;
                const IMAGE_IMPORT_BY_NAME *entry = At<IMAGE_IMPORT_BY_NAME>(names[i]);
                if (strcmp(reinterpret_cast<const char *>(entry->Name), name) == 0)
                    return At<void *>(library->FirstThunk) + i;
            }
        }
        return nullptr;
    }
    void Set(void *function)
    {
        DWORD old = 0;
        VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &old);
        *m_slot = function;
        VirtualProtect(m_slot, sizeof *m_slot, old, &old);
    }

    char *m_base;
    void **m_slot;
    void *m_old;
};
