#pragma once

#include <string>

#include "CU/Dump.h"
#include "CU/String.h"

// What is traced while the object lives.
class CDumped : public CCUDumpCallback
{
public:
    CDumped() { CUDumpRegister(this); }
    ~CDumped() { CUDumpUnRegister(this); }
    CDumped(const CDumped &) = delete;
    CDumped &operator=(const CDumped &) = delete;
    void OnDump(const CCUString &sText) override { m_text += sText; }

    std::string m_text;
};
