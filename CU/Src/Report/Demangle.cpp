#include "Report/Demangle.h"

#include <stdlib.h>
#include <string.h>

#include "CU/Platform.h"

namespace {

// The written parts of a name, "Scope" or "Scope::Run". False when it holds anything else.
class CDemangler
{
public:
    CDemangler(char *name, unsigned int size) : m_name(name), m_nSize(size), m_nLength(0) {}

    bool Run(const char *mangled)
    {
        if (strncmp(mangled, "_ZN", 3) != 0)
            return strncmp(mangled, "_Z", 2) == 0 && AddPart(mangled + 2, "", "");
        const char *rest = mangled + 3;
        if (*rest == 'K')
            ++rest;
        while (rest && *rest != 'E')
            rest =
                *rest == 'C' || *rest == 'D' ? AddStructor(rest) : AddPart(rest, Separator(), "");
        return rest && m_nLength > 0;
    }

private:
    const char *Separator() const { return m_nLength ? "::" : ""; }

    void Add(const char *text, unsigned int nLength)
    {
        for (unsigned int i = 0; i < nLength && m_nLength + 1 < m_nSize; ++i)
            m_name[m_nLength++] = text[i];
        m_name[m_nLength] = '\0';
    }
    // Returns what follows "3Run"; null when it does not begin so.
    const char *AddPart(const char *part, const char *separator, const char *mark)
    {
        char *text = nullptr;
        const unsigned long nLength = *part >= '0' && *part <= '9' ? strtoul(part, &text, 10) : 0;
        if (nLength == 0 || nLength > strlen(text))
            return nullptr;
        m_pLast = part;
        Add(separator, static_cast<unsigned int>(strlen(separator)));
        Add(mark, static_cast<unsigned int>(strlen(mark)));
        Add(text, nLength);
        return text + nLength;
    }
    // "C1" and "D1" repeat the name of the class before them.
    const char *AddStructor(const char *rest)
    {
        const bool bKnown = m_pLast && rest[1] >= '0' && rest[1] <= '5';
        return bKnown && AddPart(m_pLast, "::", *rest == 'D' ? "~" : "") ? rest + 2 : nullptr;
    }

    char *m_name;
    unsigned int m_nSize;
    unsigned int m_nLength;
    const char *m_pLast = nullptr;
};

}  // namespace

void CUDemangle(const char *mangled, char *name, unsigned int size)
{
    // Symbol tables of 32-bit programs put one more underscore in front.
    const char *begin = strncmp(mangled, "__Z", 3) == 0 ? mangled + 1 : mangled;
    if (!CDemangler(name, size).Run(begin))
        lstrcpynA(name, mangled, static_cast<int>(size));
}
