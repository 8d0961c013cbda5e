#pragma once

#include "CU/Platform.h"

// Owners of the system's handles: they close what they were given, at the end of a block or when
// they are given another one. (Public classes such as CCUFile have plain handles instead: their
// headers cannot show these. Libraries are not here: what the framework loads stays until the
// module ends.)
//
// A traits class says which value means "none" and how a handle is closed.
template <typename Traits>
class CCUHandle
{
public:
    typedef typename Traits::Handle Handle;

    explicit CCUHandle(Handle h = Traits::None()) : m_h(h) {}
    ~CCUHandle() { Close(); }
    CCUHandle(const CCUHandle &) = delete;
    CCUHandle &operator=(const CCUHandle &) = delete;

    explicit operator bool() const { return m_h != Traits::None(); }
    operator Handle() const { return m_h; }

    void Close()
    {
        if (m_h != Traits::None())
            Traits::Close(m_h);
        m_h = Traits::None();
    }
    // Gives the handle away: it is the caller's to close.
    Handle Release()
    {
        const Handle h = m_h;
        m_h = Traits::None();
        return h;
    }
    // For functions that write a handle to where they are told; closes the old one.
    Handle *Receive()
    {
        Close();
        return &m_h;
    }

private:
    Handle m_h;
};

// Threads, tokens, events: null is none.
struct CCUObjectTraits
{
    typedef HANDLE Handle;
    static Handle None() { return nullptr; }
    static void Close(Handle h) { CloseHandle(h); }
};
typedef CCUHandle<CCUObjectTraits> CCUObjectHandle;

// Files: CreateFile answers INVALID_HANDLE_VALUE for none.
struct CCUFileTraits : CCUObjectTraits
{
    static Handle None() { return INVALID_HANDLE_VALUE; }
};
typedef CCUHandle<CCUFileTraits> CCUFileHandle;

// Searches of a folder, by FindFirstFile.
struct CCUFindTraits : CCUFileTraits
{
    static void Close(Handle h) { FindClose(h); }
};
typedef CCUHandle<CCUFindTraits> CCUFindHandle;

// Keys of the registry.
struct CCUKeyTraits
{
    typedef HKEY Handle;
    static Handle None() { return nullptr; }
    static void Close(Handle h) { RegCloseKey(h); }
};
typedef CCUHandle<CCUKeyTraits> CCUKeyHandle;
