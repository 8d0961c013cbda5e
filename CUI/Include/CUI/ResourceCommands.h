#pragma once

/// @file
/// Commands whose texts stand in the program's resources.

#include "CUI/CommandHandler.h"
#include "CUI/Platform.h"

/// Serves a block of commands whose texts are those of the string table: of each identifier one,
/// the short text and, behind a line end, the long one.
///
///     ID_OPEN "Open\nOpens a picture."
///
/// A command without a text has empty ones. For the user-interface thread only.
class CCUIResourceCommands : public CCUICommandHandler
{
public:
    /// As CCUICommandHandler. A null instance is the program's.
    CUI_API CCUIResourceCommands(unsigned int nID, unsigned int nIDRange,
                                 HINSTANCE hInstance = nullptr);
    /// As CCUICommandHandler's.
    CUI_API ~CCUIResourceCommands();

    CUI_API CCUString GetShortTT(unsigned int nID) override;
    CUI_API CCUString GetLongTT(unsigned int nID) override;

protected:
    const HINSTANCE m_hInstance;  ///< of the texts
};
