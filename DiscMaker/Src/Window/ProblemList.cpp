#include "Window/ProblemList.h"

#include <algorithm>

#include "Window/Scaled.h"

namespace {

const int COLUMNS = 4;

// Of the columns, in a list of that width: the last two share what the others leave.
struct CWidths
{
    explicit CWidths(int cx)
    {
        const int nUnit = Scaled(16);
        m_n[0] = 4 * nUnit;
        m_n[1] = 11 * nUnit;
        const int cxRest = std::max(20 * nUnit, cx - m_n[0] - m_n[1]);
        m_n[2] = cxRest * 11 / 20;
        m_n[3] = cxRest - m_n[2];
    }
    int m_n[COLUMNS];
};

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
    const char *const columns[COLUMNS] = {"", "Where", "Problem", "On the disc"};
    const CWidths widths(0);
    for (int i = 0; i < COLUMNS; ++i)
        InsertColumn(i, columns[i], widths.m_n[i]);
    SetRedraw(true);
    m_bColumns = true;
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
    if (!m_bColumns)
        return;
    RECT client;
    GetClientRect(m_hWnd, &client);
    const CWidths widths(client.right);
    bool bFit = true;
    for (int i = 0; i < COLUMNS; ++i)
        bFit = bFit && GetColumnWidth(i) == widths.m_n[i];
    if (bFit)
        return;
    // Each width that is set has the list place its header and bars several times.
    SetRedraw(false);
    for (int i = 0; i < COLUMNS; ++i) {
        if (GetColumnWidth(i) != widths.m_n[i])
            SetColumnWidth(i, widths.m_n[i]);
    }
    SetRedraw(true);
}
