#pragma once

#include "CUI/CommandMap.h"
#include "CUI/ListBox.h"
#include "Resource.h"

// The pictures of a folder, of which one is selected: that is the command ID_SELECTED.
class CFolderList : public CCUIListBox
{
public:
    CCUString GetSelectedPath() const { return m_sFolder + GetItemText(GetCurSel()); }

    // Selects a picture, after it has listed its folder.
    void SelectPath(const CCUString &sPath)
    {
        const int nName = sPath.ReverseFind('\\') + 1;
        m_sFolder = sPath.Left(nName);
        ResetContent();
        Send(LB_DIR, DDL_READONLY, (m_sFolder + "*.bmp").GetString());
        Send(LB_DIR, DDL_READONLY, (m_sFolder + "*.dib").GetString());
        SetCurSel(FindStringExact(sPath.Mid(nName)));
    }

    // Selects the next picture (nBy 1) or the previous one (-1); false at the end.
    bool Step(int nBy, bool bRepeat)
    {
        const int nCount = GetCount();
        const int nItem = GetCurSel() + nBy;
        if (nCount == 0 || (!bRepeat && (nItem < 0 || nItem >= nCount)))
            return false;
        SetCurSel((nItem + nCount) % nCount);
        return OnSelChange() != 0;
    }

private:
    int OnSelChange() override { return CCUICommandMap::Execute(ID_SELECTED); }

    CCUString m_sFolder;  // with "\" at its end
};
