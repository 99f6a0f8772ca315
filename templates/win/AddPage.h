// The page that finds a script in the catalogue, shows what it is and what adding it will do, and adds it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "templates/win/PageWindow.h"
#include "ui/win/RowList.h"

namespace zoka {

class AddPage : public PageWindow {
public:
    using PageWindow::PageWindow;
    void refresh() override;
    void mainAction() override;
    HWND firstField() const override { return m_search; }
    bool givenUp() override { return clearSearch(m_search); }
    void command(int id, int code) override;

protected:
    void createControls() override;
    void layout(Area page) override;
    LRESULT notified(NMHDR& header) override;
    void settled() override;
    void timer(UINT_PTR id) override;

private:
    std::string cell(int row, int column);
    void filter();
    void selectRecord(std::optional<std::uint32_t> record);
    void showSelection();
    void showPlan();
    void fillTitles(size_t atMost);
    void chooseTitle();

    HWND m_classLabel = nullptr, m_class = nullptr, m_searchLabel = nullptr, m_search = nullptr;
    HWND m_found = nullptr, m_titleLabel = nullptr, m_titles = nullptr, m_add = nullptr;
    HWND m_planLabel = nullptr, m_plan = nullptr, m_detailsLabel = nullptr, m_details = nullptr;
    RowList m_list;
    std::vector<std::string> m_classes;                  // as the drop list shows them
    const std::vector<std::uint32_t>* m_rows = nullptr;  // records, ascending; the session's
    std::optional<std::uint32_t> m_record;
    std::optional<std::uint32_t> m_planned;  // the record whose plan is shown
                                             // the selected one
    size_t m_titlesFilled = 0;               // records that the drop list of titles holds so far
    bool m_settling = false;                 // the filter is changed by the program
};

}  // namespace zoka
