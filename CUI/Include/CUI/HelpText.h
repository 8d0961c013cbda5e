#pragma once

/// @file
/// Where the help texts of commands appear.

#include "CU/String.h"
#include "CUI/Platform.h"

/// Shows the help text of what the user is about to choose: a status bar, say.
class CCUIHelpText
{
public:
    /// Shows a text in the place of what is there; "" where there is nothing to say.
    virtual void ShowHelp(const CCUString &sText) = 0;
    /// Shows again what was there before the first ShowHelp.
    virtual void ClearHelp() = 0;

protected:
    ~CCUIHelpText() = default;
};
