#pragma once

#include <vector>

#include "Support/ImportHook.h"

// Bytes that stand for every resource while the object lives. Under a CHeapWatch they end where
// nobody may read. The system's own loaders don't see them.
class CFakeResource
{
public:
    explicit CFakeResource(const std::vector<BYTE> &bytes) : m_bytes(bytes) {}

private:
    std::vector<BYTE> m_bytes;
    CFakeCall<HRSRC(HINSTANCE, const char *, const char *)> m_find{
        "FindResourceA", [this](auto...) { return reinterpret_cast<HRSRC>(m_bytes.data()); }};
    CFakeCall<HGLOBAL(HINSTANCE, HRSRC)> m_load{"LoadResource",
                                                [this](auto...) { return m_bytes.data(); }};
    CFakeCall<DWORD(HINSTANCE, HRSRC)> m_size{"SizeofResource",
                                              [this](auto...) { return m_bytes.size(); }};
    CFakeCall<void *(HGLOBAL)> m_lock{"LockResource", [](HGLOBAL hGlobal) { return hGlobal; }};
    CFakeCall<BOOL(HGLOBAL)> m_free{"FreeResource", [](auto...) { return FALSE; }};
};
