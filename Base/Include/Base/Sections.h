#pragma once

// What the linker collects in sections of the program's file, for whom the program or the loader
// calls. Both stand outside of namespaces and name a function of the same source.
//
// CU_BEFORE_STATICS(name, function): void function() runs before the constructors of all statics.
// CU_LOADER_CALLBACK(name, function): the loader calls it at the start and end of threads and of
// the process. `name` is the program's only one of its kind.
// CU_EXPORT_BY_HAND(name): the linker exports what has that decorated name, a text.

#if defined(_MSC_VER)

#pragma section(".CRT$XCB", read)
#pragma section(".CRT$XLD", read)
#define CU_BEFORE_STATICS(name, function)                                        \
    __pragma(comment(linker, "/include:_" #name)) extern "C"                     \
    {                                                                            \
        extern void(__cdecl *const name)();                                      \
        __declspec(allocate(".CRT$XCB")) void(__cdecl *const name)() = function; \
    }
#define CU_LOADER_CALLBACK(name, function)                                          \
    __pragma(comment(linker, "/include:__tls_used"))                                \
        __pragma(comment(linker, "/include:_" #name)) extern "C"                    \
    {                                                                               \
        extern const PIMAGE_TLS_CALLBACK name;                                      \
        __declspec(allocate(".CRT$XLD")) const PIMAGE_TLS_CALLBACK name = function; \
    }
#define CU_EXPORT_BY_HAND(name) __pragma(comment(linker, "/export:" name))

#else

#define CU_BEFORE_STATICS(name, function)                \
    __attribute__((constructor(101))) static void name() \
    {                                                    \
        function();                                      \
    }
#define CU_LOADER_CALLBACK(name, function)                                                \
    extern "C" {                                                                          \
    extern const PIMAGE_TLS_CALLBACK name;                                                \
    __attribute__((section(".CRT$XLD"), used)) const PIMAGE_TLS_CALLBACK name = function; \
    }
#define CU_EXPORT_BY_HAND(name) \
    asm(".section .drectve\n.ascii \" -export:\\\"" name "\\\"\"\n.text");

#endif
