#pragma once

#include <string.h>

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "CU/ProberClient.h"
#include "CUI/CommandMap.h"
#include "CUI/TreeView.h"
#include "Resource.h"

// A running program and what it shows.
struct CProgram
{
    HWND m_hWindow = nullptr;
    HTREEITEM m_hItem = nullptr;
    CCUProberClient m_client;
    std::vector<unsigned long> m_ids;
    std::vector<CUProberValue> m_values;
    std::vector<HTREEITEM> m_items;
    bool m_bAnswers = false;
};

// The running programs, and in each the tree of its variables, with their values. Selecting one is
// the command ID_SELECTED.
class CProgramTree : public CCUITreeView
{
public:
    // Looks which programs run, and asks those again that have not answered.
    void FindPrograms()
    {
        std::vector<HWND> windows;
        for (HWND hWnd = nullptr; (hWnd = CCUProberClient::GetNextProgram(hWnd)) != nullptr;)
            windows.push_back(hWnd);
        for (size_t i = m_programs.size(); i-- > 0;) {
            if (std::count(windows.begin(), windows.end(), m_programs[i]->m_hWindow) == 0) {
                const std::unique_ptr<CProgram> pGone = std::move(m_programs[i]);
                m_programs.erase(m_programs.begin() + static_cast<int>(i));
                DeleteItem(pGone->m_hItem);
            }
        }
        for (const auto &pProgram : m_programs)
            pProgram->m_bAnswers = true;
        for (const HWND hWnd : windows) {
            const auto isIt = [hWnd](const auto &pProgram) { return pProgram->m_hWindow == hWnd; };
            if (std::none_of(m_programs.begin(), m_programs.end(), isIt))
                AddProgram(hWnd);
        }
    }

    // Reads all values, each program's in one request.
    void ReadValues()
    {
        for (const auto &pProgram : m_programs) {
            CProgram &program = *pProgram;
            if (!program.m_bAnswers)
                continue;
            program.m_bAnswers =
                program.m_client.Read(program.m_ids.data(), program.m_values.data(),
                                      static_cast<int>(program.m_ids.size()));
            if (program.m_client.IsTreeChanged() || program.m_ids.empty())
                ListVariables(program);
            for (size_t i = 0; i < program.m_items.size(); ++i)
                ShowValue(program, i);
        }
    }

    // The program and the variable that are selected, as an index; null where none is.
    CProgram *GetSelected(int &nIndex) const
    {
        const HTREEITEM hSelected = GetSelection();
        nIndex = hSelected ? static_cast<int>(GetItemData(hSelected)) - 1 : -1;
        HTREEITEM hRoot = hSelected;
        while (hRoot && GetParentItem(hRoot))
            hRoot = GetParentItem(hRoot);
        for (const auto &pProgram : m_programs) {
            if (nIndex >= 0 && pProgram->m_hItem == hRoot)
                return pProgram.get();
        }
        return nullptr;
    }

    // Selects a variable of this program, to begin with.
    void SelectOwn(const char *pszPath, const char *pszName)
    {
        for (const auto &pProgram : m_programs) {
            for (size_t i = 0; i < pProgram->m_items.size(); ++i) {
                const CUProberEntry &entry = pProgram->m_client.GetEntry(static_cast<int>(i));
                if (pProgram->m_client.GetProcessID() == GetCurrentProcessId() &&
                    entry.sPath == pszPath && entry.sName == pszName)
                    SelectItem(pProgram->m_items[i]);
            }
        }
    }

private:
    static constexpr DWORD PATIENCE = 300;    // ms that a program that is busy may keep us waiting
    static constexpr int MOST_EXPANDED = 50;  // variables of a program that is shown open at first

    int OnSelChange(HTREEITEM) override { return CCUICommandMap::Execute(ID_SELECTED); }

    void AddProgram(HWND hWnd)
    {
        auto pProgram = std::make_unique<CProgram>();
        if (!pProgram->m_client.Connect(hWnd, PATIENCE))
            return;
        pProgram->m_hWindow = hWnd;
        const CCUString &sPath = pProgram->m_client.GetProgram();
        CCUString sText;
        sText.Format("%s (%lu)", sPath.Mid(sPath.ReverseFind('\\') + 1).GetString(),
                     pProgram->m_client.GetProcessID());
        pProgram->m_hItem = InsertItem(nullptr, sText, 0, -1, 0, TVI_SORT);
        m_programs.push_back(std::move(pProgram));
        ListVariables(*m_programs.back());
    }

    // What was there already keeps its item, and with that the selection.
    void ListVariables(CProgram &program)
    {
        std::map<unsigned long, HTREEITEM> before;
        for (size_t i = 0; i < program.m_ids.size(); ++i)
            before[program.m_ids[i]] = program.m_items[i];
        const bool bFirst = before.empty();
        const int nCount = program.m_client.List();
        program.m_bAnswers = nCount >= 0;
        program.m_ids.clear();
        program.m_items.clear();
        program.m_values.assign(static_cast<size_t>(std::max(nCount, 0)), CUProberValue());
        for (int i = 0; i < nCount; ++i) {
            const CUProberEntry &entry = program.m_client.GetEntry(i);
            HTREEITEM &hItem = before[entry.nID];
            if (!hItem)
                hItem = InsertItem(MakeFolder(program.m_hItem, entry.sPath), entry.sName, 0, -1, 0,
                                   TVI_SORT);
            SetItemData(hItem, i + 1);
            program.m_ids.push_back(entry.nID);
            program.m_items.push_back(hItem);
            before.erase(entry.nID);
        }
        // Whichever of them gets the selection meanwhile stands for no variable any more.
        for (const auto &gone : before)
            SetItemData(gone.second, 0);
        for (const auto &gone : before)
            RemoveItem(gone.second, program.m_hItem);
        if (bFirst && nCount <= MOST_EXPANDED)
            ExpandAll(program.m_hItem);
        else if (bFirst)
            Expand(program.m_hItem);
    }

    // With the folders that it leaves empty.
    void RemoveItem(HTREEITEM hItem, HTREEITEM hRoot)
    {
        while (hItem != hRoot && !GetChildItem(hItem)) {
            const HTREEITEM hParent = GetParentItem(hItem);
            DeleteItem(hItem);
            hItem = hParent;
        }
    }

    void ExpandAll(HTREEITEM hItem)
    {
        for (HTREEITEM hChild = GetChildItem(hItem); hChild; hChild = GetNextItem(hChild))
            ExpandAll(hChild);
        Expand(hItem);
    }

    // The item of "\A\B", made where it is missing.
    HTREEITEM MakeFolder(HTREEITEM hParent, const CCUString &sPath)
    {
        int nBegin = 0;
        while (nBegin < sPath.GetLength()) {
            const char *const psz = sPath.GetString() + nBegin;
            const int nLength = static_cast<int>(strcspn(psz, "\\"));
            const CCUString sName = sPath.Mid(nBegin, nLength);
            nBegin += nLength + 1;
            if (sName.IsEmpty())
                continue;
            const HTREEITEM hThere = FindChild(hParent, sName);
            hParent = hThere ? hThere : InsertItem(hParent, sName, 0, -1, 0, TVI_SORT);
        }
        return hParent;
    }

    void ShowValue(const CProgram &program, size_t i)
    {
        const CUProberEntry &entry = program.m_client.GetEntry(static_cast<int>(i));
        const CUProberValue &value = program.m_values[i];
        CCUString sText = entry.sName + ": ";
        sText += value.nResult == CU_PROBER_DONE ? value.ToText() : CCUString("no answer");
        if (!entry.sUnit.IsEmpty())
            sText += " " + entry.sUnit;
        if (GetItemText(program.m_items[i]) != sText)
            SetItemText(program.m_items[i], sText);
    }

    std::vector<std::unique_ptr<CProgram>> m_programs;
};
