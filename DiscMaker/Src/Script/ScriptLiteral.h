#pragma once

#include "Model/WideText.h"
#include "Script/ScriptText.h"

// Whether bytes are UTF-8 through and through; pMany, if not null, gets whether any is beyond
// ASCII.
bool IsUtf8(const CByteView &bytes, bool *pMany = nullptr);

// What a text between two places of a script says, quotation marks and all, as resource compilers
// read it.
CWideText DecodeLiteral(const CScriptText &script, size_t nStart, size_t nEnd, UINT nCodePage);
// How a script of that form and code page says a text. What the code page lacks is written as
// numbers.
CScriptChars EncodeLiteral(const CWideText &sText, bool bWideScript, UINT nCodePage);
