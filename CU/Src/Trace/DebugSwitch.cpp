#include "CU/DebugSwitch.h"

#include <stdlib.h>
#include <string.h>

#include "Base/Atomic.h"
#include "Base/Lock.h"

namespace {

const char VARIABLE[] = "CU_DEBUG";
CCULazyLock s_lock;  // the first reading and the setting of a value
CCUDebugSwitch *volatile s_pFirst = nullptr;

const char *SkipSpaces(const char *text)
{
    while (*text == ' ' || *text == '\t')
        ++text;
    return text;
}

// Steps over an expected word; null when something else stands there.
const char *SkipWord(const char *text, const char *word)
{
    const size_t nLength = strlen(word);
    return _strnicmp(text, word, nLength) == 0 ? text + nLength : nullptr;
}

const char *SkipName(const char *text, const char *path, const char *name)
{
    if (*text == '\\') {
        text = SkipWord(text, path);
        if (!text || *text++ != '\\')
            return nullptr;
    }
    return SkipWord(text, name);
}

// Reads one setting, up to ';' or the end, into `value` if it is for that switch and well formed.
void ReadSetting(const char *text, const char *path, const char *name, long *value)
{
    text = SkipName(SkipSpaces(text), path, name);
    if (!text)
        return;
    text = SkipSpaces(text);
    long nRead = 1;
    if (*text == '=') {
        const char *number = SkipSpaces(text + 1);
        const char *digits = number + (*number == '-' || *number == '+');
        const bool bHex = digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
        char *end = nullptr;
        // Flags may take the sign's place.
        nRead = bHex ? static_cast<long>(strtoul(number, &end, 16)) : strtol(number, &end, 10);
        if (end == number)
            return;
        text = SkipSpaces(end);
    }
    if (*text == ';' || *text == '\0')
        *value = nRead;
}

// What the user has set from outside, 0 when nothing.
long ReadEnvironment(const char *path, const char *name)
{
    long nValue = 0;
    const DWORD nSize = GetEnvironmentVariableA(VARIABLE, nullptr, 0);
    char *const settings = nSize ? static_cast<char *>(malloc(nSize)) : nullptr;
    if (!settings)
        return 0;
    // Another thread may have made it longer since; then it does not count.
    if (GetEnvironmentVariableA(VARIABLE, settings, nSize) < nSize) {
        settings[nSize - 1] = '\0';
        for (const char *text = settings; text; text = strchr(text, ';')) {
            text += *text == ';';
            ReadSetting(text, path, name, &nValue);
        }
    }
    free(settings);
    return nValue;
}

}  // namespace

CCUDebugSwitch::CCUDebugSwitch(const char *path, const char *name)
    : m_pNext(nullptr), m_path(path), m_name(name), m_nValue(0), m_bKnown(FALSE)
{
    CUPushFront(s_pFirst, this, &CCUDebugSwitch::m_pNext);
}

CCUDebugSwitch::~CCUDebugSwitch()
{
    CCUDebugSwitch *volatile *link = &s_pFirst;
    while (*link && *link != this)
        link = const_cast<CCUDebugSwitch *volatile *>(&(*link)->m_pNext);
    if (*link)
        *link = m_pNext;
}

long CCUDebugSwitch::Get()
{
    if (!m_bKnown) {
        CCULockGuard guard(s_lock);
        // A static of another source may ask before this one is constructed.
        if (!m_bKnown && m_name) {
            m_nValue = ReadEnvironment(m_path, m_name);
            m_bKnown = TRUE;
        }
    }
    return m_nValue;
}

void CCUDebugSwitch::Set(long nValue)
{
    CCULockGuard guard(s_lock);
    m_nValue = nValue;
    m_bKnown = TRUE;
}

CCUDebugSwitch *CCUDebugSwitch::GetFirst()
{
    return s_pFirst;
}

CCUDebugSwitch *CCUDebugSwitch::Find(const char *path, const char *name)
{
    if (!name)
        return nullptr;
    for (CCUDebugSwitch *pSwitch = s_pFirst; pSwitch; pSwitch = pSwitch->m_pNext) {
        if (_stricmp(pSwitch->m_name, name) == 0 && (!path || _stricmp(pSwitch->m_path, path) == 0))
            return pSwitch;
    }
    return nullptr;
}
