#pragma once

#include "CUI/ListView.h"
#include "Model/Problem.h"

class CProblemHost
{
public:
    // A problem was clicked twice.
    virtual void OnProblem(const CProblem &problem) = 0;

protected:
    ~CProblemHost() = default;
};

// What is wrong with the skin.
class CProblemList : public CCUIListView
{
public:
    explicit CProblemList(CProblemHost &host) : m_host(host) {}
    ~CProblemList() override;

    int CreateList(HWND hParent, UINT nID);
    // The same problems change nothing.
    void Show(const CProblems &problems);
    const CProblems &Problems() const { return m_problems; }

protected:
    int OnItemActivate(int nItem) override;
    void OnSize(UINT nType, int cx, int cy) override;

private:
    void FitColumns();

    CProblemHost &m_host;
    CProblems m_problems;
    bool m_bColumns = false;
};
