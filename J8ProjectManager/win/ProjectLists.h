// The pages that list what a project has, without changing it: behaviours, components, the report, the problems.
#pragma once

#include <string>
#include <vector>

#include "J8ProjectManager/win/SearchPage.h"

namespace zoka {

class BehaviorsPage : public SearchPage {
public:
    explicit BehaviorsPage(ProjectFrame& frame);
    void select(const ProjectTarget& target) override { selectRow(target.first); }

protected:
    size_t rowCount() const override { return model().m_apBehavior.size(); }
    std::string cell(size_t row, int column) const override;
    std::string searchText(size_t row) const override;
    std::string details(size_t row) const override;
};

class ComponentsPage : public SearchPage {
public:
    explicit ComponentsPage(ProjectFrame& frame);
    void select(const ProjectTarget& target) override { selectRow(target.first); }

protected:
    size_t rowCount() const override { return model().m_apComponents.size(); }
    std::string cell(size_t row, int column) const override;
    std::string searchText(size_t row) const override;
    std::string details(size_t row) const override;
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
