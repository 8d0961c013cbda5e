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
    SetRedraw(false);
    for (const char *const pszColumn : {"", "Where", "Problem", "On the disc"})
        InsertColumn(m_nColumns++, pszColumn, 0);
    SetRedraw(true);
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
    const int cxProblem = cxRest * 11 / 20;
    const int widths[] = {cxWeight, cxWhere, cxProblem, cxRest - cxProblem};
    // Each change of a width has the list place its header and bars a dozen times.
    SetRedraw(false);
    for (int i = 0; i < m_nColumns; ++i)
        SetColumnWidth(i, widths[i]);
    SetRedraw(true);
}
