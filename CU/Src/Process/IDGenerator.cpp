#include "CU/IDGenerator.h"

static volatile LONG s_nLastID = 9999;

unsigned int CCUIIDGenerator::GetNextID()
{
    return static_cast<unsigned int>(InterlockedIncrement(&s_nLastID));
}
