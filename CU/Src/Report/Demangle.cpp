#include "Report/Demangle.h"

#include <stdlib.h>
#include <string.h>

#include "CU/Platform.h"

namespace {

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Reads the written parts of a compiled name: "_ZN5Scope3RunEi" gives "Scope::Run". What follows
// them, the types of the arguments, is left out.
class CDemangler
{
public:
    CDemangler(char *name, unsigned int size) : m_name(name), m_nSize(size), m_nLength(0) {}

    // False when there is anything else among the parts, such as a template's arguments.
    bool Run(const char *mangled)
    {
        if (strncmp(mangled, "_ZN", 3) != 0)
            return strncmp(mangled, "_Z", 2) == 0 && AddPart(mangled + 2, "");
        const char *rest = mangled + 3;
        if (*rest == 'K')  // a const function
            ++rest;
        while (rest && *rest != 'E') {
            if (*rest == 'C' || *rest == 'D')
                rest = AddStructor(rest);
            else
                rest = AddPart(rest, m_nLength ? "::" : "");
        }
        return rest && m_nLength > 0;
    }

private:
    void Add(const char *text, unsigned int nLength)
    {
        for (unsigned int i = 0; i < nLength && m_nLength + 1 < m_nSize; ++i)
            m_name[m_nLength++] = text[i];
        m_name[m_nLength] = '\0';
    }
    // Adds what the part names, its length and then its text, such as "3Run". Returns what follows
    // it, null when it is no such part.
    const char *AddPart(const char *part, const char *separator)
    {
        char *text = nullptr;
        const unsigned long nLength = IsDigit(*part) ? strtoul(part, &text, 10) : 0;
        if (nLength == 0 || nLength > strlen(text))
            return nullptr;
        m_pLast = part;
        Add(separator, static_cast<unsigned int>(strlen(separator)));
        Add(text, nLength);
        return text + nLength;
    }
    // A constructor ("C1") or destructor ("D1") has the name of its class, the part before it.
    const char *AddStructor(const char *rest)
    {
        const bool bKnown = m_pLast && rest[1] >= '0' && rest[1] <= '5';
        return bKnown && AddPart(m_pLast, *rest == 'D' ? "::~" : "::") ? rest + 2 : nullptr;
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
