#pragma once

#include <string.h>
#include <vector>

#include "Support/GuardedBuffer.h"
#include "Support/ImportHook.h"

// Bytes that stand for every resource while the object lives, ending where nobody may read. The
// system's own loaders don't see them.
class CFakeResource
{
public:
    // Resources begin at even words, so up to three bytes stand between the end and the guard.
    explicit CFakeResource(const std::vector<BYTE> &bytes) : m_buffer((bytes.size() + 3) & ~3U)
    {
        memcpy(m_buffer.Data(), bytes.data(), bytes.size());
        s_data = m_buffer.Data();
        s_nSize = static_cast<DWORD>(bytes.size());
    }

private:
    static HRSRC WINAPI Find(HINSTANCE, const char *, const char *)
    {
        return reinterpret_cast<HRSRC>(s_data);
    }
    static HGLOBAL WINAPI Load(HINSTANCE, HRSRC) { return s_data; }
    static DWORD WINAPI Size(HINSTANCE, HRSRC) { return s_nSize; }
    static void *WINAPI Lock(HGLOBAL hGlobal) { return hGlobal; }
    static BOOL WINAPI Free(HGLOBAL) { return FALSE; }

    inline static char *s_data;
    inline static DWORD s_nSize;
    CGuardedBuffer m_buffer;
    CImportHook m_find{"FindResourceA", Find};
    CImportHook m_load{"LoadResource", Load};
    CImportHook m_size{"SizeofResource", Size};
    CImportHook m_lock{"LockResource", Lock};
    CImportHook m_free{"FreeResource", Free};
};
