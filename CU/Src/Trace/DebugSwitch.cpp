#include "CU/DebugSwitch.h"

#include <stdlib.h>
#include <string.h>

#include "Probe/ProberList.h"
#include "Text/Characters.h"

namespace {

const char VARIABLE[] = "CU_DEBUG";

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
    text = SkipName(CUSkipBlanks(text), path, name);
    if (!text)
        return;
    text = CUSkipBlanks(text);
    long nRead = 1;
    if (*text == '=') {
        const char *number = CUSkipBlanks(text + 1);
        const char *digits = number + (*number == '-' || *number == '+');
        const bool bHex = digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
        char *end = nullptr;
        // Flags may take the sign's place.
        nRead = bHex ? static_cast<long>(strtoul(number, &end, 16)) : strtol(number, &end, 10);
        if (end == number)
            return;
        text = CUSkipBlanks(end);
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

CCUDebugSwitch::CCUDebugSwitch(const char *path, const char *name, const char *description,
                               const char *unit)
    : CCUProberLong(CSwitch(), path, name, description, unit)
{
}

void CCUDebugSwitch::ReadSetting()
{
    const CCULockGuard guard(CCUProberList::s_lock);
    if (!(m_nNotice & UNREAD))
        return;
    m_nValue = ReadEnvironment(GetPath(), GetName());
    InterlockedAnd(&m_nNotice, ~UNREAD);
}

CCUDebugSwitch *CCUDebugSwitch::GetFirst()
{
    return CCUProberList::NextSwitch(nullptr);
}

CCUDebugSwitch *CCUDebugSwitch::GetNext() const
{
    return CCUProberList::NextSwitch(this);
}

CCUDebugSwitch *CCUDebugSwitch::Find(const char *path, const char *name)
{
    if (!name)
        return nullptr;
    for (CCUDebugSwitch *pSwitch = GetFirst(); pSwitch; pSwitch = pSwitch->GetNext()) {
        if (_stricmp(pSwitch->GetName(), name) == 0 &&
            (!path || _stricmp(pSwitch->GetPath(), path) == 0))
            return pSwitch;
    }
    return nullptr;
}
