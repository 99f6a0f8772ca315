// The pages that list what a project has, without changing it: behaviours, components, the report, the problems.
#pragma once

#include <string>
#include <vector>

#include "J8ProjectManager/win/SearchPage.h"
#include "controls/win/RowsView.h"

namespace zoka {

class BehaviorsPage : public SearchPage {
public:
    explicit BehaviorsPage(ProjectFrame& frame);
    void select(const ProjectTarget& target) override { selectRow(target.first); }

protected:
    size_t rowCount() const override { return model().m_apBehavior.size(); }
    std::string nameOf(size_t row) const override { return model().m_apBehavior[row].m_name; }
    std::string cell(size_t row, int column) const override;
    std::string searchText(size_t row) const override;
    std::string details(size_t row) const override;
};

// The list on the left, the properties of the one selected beside it.
class ComponentsPage : public SearchPage, private RowsOwner {
public:
    explicit ComponentsPage(ProjectFrame& frame);
    void refresh() override;
    void command(int id, int code) override;
    void mainAction() override;
    bool givenUp() override { return m_view.escape() || SearchPage::givenUp(); }
    bool takesKey(const MSG& message) override;
    void select(const ProjectTarget& target) override { selectRow(target.first); }

protected:
    RowsView* rows() override { return &m_view; }
    size_t rowCount() const override { return model().m_apComponents.size(); }
    std::string nameOf(size_t row) const override { return model().m_apComponents[row].m_name; }
    std::string cell(size_t row, int column) const override;
    std::string searchText(size_t row) const override;
    void showDetails(std::optional<size_t> row) override;
    void createControls() override;
    void layout(Area page) override;
    void timer(UINT_PTR id) override;

private:
    void showComponent(std::optional<size_t> row);

    ProjectPanel m_panel;
    RowsView m_view;
    HWND m_about = nullptr;         // what it is for, and where it is declared
    std::optional<size_t> m_shown;  // nothing: none, or not as it is now
};

class ReportPage : public SearchPage {
public:
    explicit ReportPage(ProjectFrame& frame);

protected:
    size_t rowCount() const override { return m_lines.size(); }
    std::string cell(size_t row, int) const override { return m_lines[row]; }
    void collect() override;

private:
    std::vector<std::string> m_lines;
};

class ProblemsPage : public SearchPage {
public:
    explicit ProblemsPage(ProjectFrame& frame);

protected:
    size_t rowCount() const override { return m_problems.size(); }
    std::string cell(size_t row, int column) const override;
    std::string details(size_t row) const override;
    std::string copied(size_t row) const override;
    void opened(size_t row) override;
    void collect() override;

private:
    std::vector<ProjectProblem> m_problems;
};

}  // namespace zoka
