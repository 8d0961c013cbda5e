#pragma once

#include <stdlib.h>
#include <string.h>

#include <functional>
#include <utility>

#include "CU/Platform.h"

// Puts a function of the test in the place of the one that a pointer of the program leads to, for
// as long as the object lives: a clock that stands where the test wants it, a system call that
// fails. The code under test pays nothing for it.
class CFunctionHook
{
public:
    template <typename F>
    CFunctionHook(void **slot, F *function) : m_slot(slot), m_old(*slot)
    {
        Set(reinterpret_cast<void *>(function));
    }
    ~CFunctionHook() { Set(m_old); }
    CFunctionHook(const CFunctionHook &) = delete;
    CFunctionHook &operator=(const CFunctionHook &) = delete;

    // What really stands there, for the test's function to go on to.
    template <typename F>
    F *Original() const
    {
        return reinterpret_cast<F *>(m_old);
    }

private:
    void Set(void *function)
    {
        DWORD old = 0;
        VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &old);
        *m_slot = function;
        VirtualProtect(m_slot, sizeof *m_slot, old, &old);
    }

    void **m_slot, *m_old;
};

// The same for a function that the program, or the library named, imports. The function's name is
// the system's, such as "GetTickCount"; one that is not imported ends the test.
class CImportHook : public CFunctionHook
{
public:
    template <typename F>
    CImportHook(const char *name, F *function, const char *module = nullptr)
        : CFunctionHook(Find(name, reinterpret_cast<char *>(GetModuleHandleA(module))), function)
    {
    }

private:
    template <typename T>
    static T *At(char *base, DWORD nOffset)
    {
        return reinterpret_cast<T *>(base + nOffset);
    }
    static void **Find(const char *name, char *base)
    {
        const auto &optional =
            At<IMAGE_NT_HEADERS>(base, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(base, 0)->e_lfanew))
                ->OptionalHeader;
        const DWORD nImports = optional.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
        for (auto *library = At<IMAGE_IMPORT_DESCRIPTOR>(base, nImports); library->Name; ++library)
        {
            const DWORD *names = At<DWORD>(base, library->OriginalFirstThunk);
            for (DWORD i = 0; names[i]; ++i) {
                if (!(names[i] & IMAGE_ORDINAL_FLAG32) &&
                    strcmp(At<IMAGE_IMPORT_BY_NAME>(base, names[i])->Name, name) == 0)
                    return At<void *>(base, library->FirstThunk) + i;
            }
        }
        abort();
    }
};

// Has a function of the test answer the calls of an imported one. The type is the function's
// without its calling convention; no two of one type at a time.
template <typename Function>
class CFakeCall;
template <typename Result, typename... Arguments>
class CFakeCall<Result(Arguments...)>
{
public:
    CFakeCall(const char *name, std::function<Result(Arguments...)> answer) : m_hook(name, Call)
    {
        s_answer = std::move(answer);
    }
    // What the system answers.
    Result Original(Arguments... arguments) const
    {
        return m_hook.template Original<Result WINAPI(Arguments...)>()(arguments...);
    }

private:
    static Result WINAPI Call(Arguments... arguments) { return s_answer(arguments...); }

    inline static std::function<Result(Arguments...)> s_answer;
    CImportHook m_hook;
};
