#pragma once

#include <algorithm>
#include <vector>

#include "Support/GuardedBuffer.h"
#include "Support/ImportHook.h"

// Bytes that stand for every resource while the object lives, ending where nobody may read. The
// system's own loaders don't see them.
class CFakeResource
{
public:
    // Resources begin at even words, so up to three bytes stand between the end and the guard.
    explicit CFakeResource(const std::vector<BYTE> &bytes)
        : m_buffer((bytes.size() + 3) & ~3U), m_nSize(static_cast<DWORD>(bytes.size()))
    {
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<BYTE *>(m_buffer.Data()));
    }

private:
    CGuardedBuffer m_buffer;
    DWORD m_nSize;
    CFakeCall<HRSRC(HINSTANCE, const char *, const char *)> m_find{
        "FindResourceA", [this](auto...) { return reinterpret_cast<HRSRC>(m_buffer.Data()); }};
    CFakeCall<HGLOBAL(HINSTANCE, HRSRC)> m_load{"LoadResource",
                                                [this](auto...) { return m_buffer.Data(); }};
    CFakeCall<DWORD(HINSTANCE, HRSRC)> m_size{"SizeofResource",
                                              [this](auto...) { return m_nSize; }};
    CFakeCall<void *(HGLOBAL)> m_lock{"LockResource", [](HGLOBAL hGlobal) { return hGlobal; }};
    CFakeCall<BOOL(HGLOBAL)> m_free{"FreeResource", [](auto...) { return FALSE; }};
};
