#pragma once

#include "CU/Prober.h"

// What the variables of the list say, and how they are set: all that knows their kinds.
class CCUProberValues
{
public:
    static bool Describe(unsigned long nID, CUProberEntry &entry);
    // For who has the list's lock once, and wants many values. A function is called without it.
    static void GetLocked(unsigned long nID, CUProberValue &value);
    // bOutside: in the name of another process.
    static CUProberResult Set(unsigned long nID, const char *pszText, bool bOutside);

private:
    // All of these under the list's lock.
    static CCUString DefaultOf(const CCUProberVariable &variable);
    static void Read(const CCUProberVariable &variable, CUProberValue &value);
    static bool Store(CCUProberVariable &variable, const char *pszText);
    // Gives the lock away meanwhile.
    static void Compute(const CCUProberFunction &variable, CUProberValue &value);
};
