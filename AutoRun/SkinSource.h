#pragma once

#include "CU/String.h"
#include "CUI/Bitmap.h"
#include "CUI/Platform.h"

// Where a launcher's looks come from: its own resources, or a skin that somebody is just making.
class CSkinSource
{
public:
    // An entry of the string table; empty where there is none.
    virtual CCUString ReadText(UINT nID) const = 0;
    // A picture; null where there is none.
    virtual CCUIBitmap ReadBitmap(UINT nID) const = 0;
    // Whether an entry that does not parse is a failed check. Else it is passed over.
    virtual bool ReportsBadEntries() const = 0;

protected:
    ~CSkinSource() = default;
};
