#include "Window/ProblemList.h"

#include <algorithm>

#include "Window/Scaled.h"

namespace {

const char *WeightText(ProblemWeight weight)
{
    return weight == ProblemError ? "Error" : weight == ProblemWarning ? "Warning" : "Note";
}

bool IsSame(const CProblem &a, const CProblem &b)
{
    return a.m_weight == b.m_weight && a.m_nEntry == b.m_nEntry && a.m_sWhere == b.m_sWhere &&
           a.m_sWhat == b.m_sWhat && a.m_sEffect == b.m_sEffect && a.m_nTexts == b.m_nTexts;
}

}  // namespace

CProblemList::~CProblemList() = default;

int CProblemList::CreateList(HWND hParent, UINT nID)
{
    if (!CreateControl(hParent, nID, nullptr, STYLE | LVS_SINGLESEL | LVS_NOSORTHEADER))
        return 0;
    SetExtendedStyle(LVS_EX_FULLROWSELECT);
    for (const char *const pszColumn : {"", "Where", "Problem", "On the disc"})
        InsertColumn(static_cast<int>(SendMessageA(reinterpret_cast<HWND>(Send(LVM_GETHEADER)),
                                                   HDM_GETITEMCOUNT, 0, 0)),
                     pszColumn, 60);
    return 1;
}

void CProblemList::Show(const CProblems &problems)
{
    if (problems.size() == m_problems.size() &&
        std::equal(problems.begin(), problems.end(), m_problems.begin(), IsSame))
        return;
    m_problems = problems;
    SetRedraw(false);
    DeleteAllItems();
    for (const CProblem &problem : problems) {
        const int nItem = AddItem(WeightText(problem.m_weight));
        SetItemText(nItem, 1, ProblemPlace(problem));
        SetItemText(nItem, 2, ProblemWhat(problem));
        SetItemText(nItem, 3, ProblemEffect(problem));
    }
    SetRedraw(true);
}

int CProblemList::OnItemActivate(int nItem)
{
    if (static_cast<size_t>(nItem) >= m_problems.size())
        return 0;
    const CProblem problem = m_problems[static_cast<size_t>(nItem)];
    m_host.OnProblem(problem);
    return 1;
}

void CProblemList::OnSize(UINT nType, int cx, int cy)
{
    CCUIListView::OnSize(nType, cx, cy);
    FitColumns();
}

void CProblemList::FitColumns()
{
    RECT client;
    GetClientRect(m_hWnd, &client);
    const int nUnit = Scaled(16);
    const int cxWeight = 4 * nUnit, cxWhere = 11 * nUnit;
    const int cxRest = std::max<int>(20 * nUnit, client.right - cxWeight - cxWhere);
    SetColumnWidth(0, cxWeight);
    SetColumnWidth(1, cxWhere);
    SetColumnWidth(2, cxRest * 11 / 20);
    SetColumnWidth(3, cxRest - cxRest * 11 / 20);
}
