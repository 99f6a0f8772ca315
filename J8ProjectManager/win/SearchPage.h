// A page with a list that is searched by words, and texts about the selected row below it.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "J8ProjectManager/win/ProjectPage.h"
#include "ui/win/RowList.h"

namespace zoka {

class SearchPage : public ProjectPage {
public:
    // What the page is made of. Identifiers are counted from `firstId`: search, list, details, the button that copies.
    struct Look {
        int firstId;
        const char* name;  // "&Behaviors"; the count of rows follows
        std::span<const ListColumn> columns;
        const char* detailsName = nullptr;  // "&Details:"; null: the list takes the whole page
        const char* empty = "";             // in the place of rows
        bool copiesAll = false;             // with a button that copies all rows in sight
        const char* searchName = "Searc&h:";
    };
    SearchPage(ProjectFrame& frame, const Look& look) : ProjectPage(frame), m_look(look) {}

    void refresh() override;
    void mainAction() override;
    HWND firstField() const override { return m_search; }
    void command(int id, int code) override;
    bool givenUp() override;
    bool takesKey(const MSG& message) override;
    void keepSelection() override;

protected:
    virtual size_t rowCount() const = 0;
    virtual std::string cell(size_t row, int column) const = 0;
    // What it is found by when the project is loaded anew; empty: its place.
    virtual std::string nameOf(size_t) const { return {}; }
    // Where the words of a search are looked for.
    virtual std::string searchText(size_t row) const;
    virtual std::string details(size_t) const { return {}; }
    // Enter in the list, or a double click.
    virtual void opened(size_t) {}
    // What Ctrl+C copies.
    virtual std::string copied(size_t row) const;
    // Brings what is shown up to date with the project.
    virtual void collect() {}

    // Shows what is selected below the list, in the place of its texts.
    virtual void showDetails(std::optional<size_t> row);

    void selectRow(size_t row);
    std::optional<size_t> selected() const;
    HWND list() const { return m_list.window(); }
    // The search field and, below it, the list.
    void placeList(Area area);

    void createControls() override;
    void layout(Area page) override;
    LRESULT notified(NMHDR& header) override;
    void settled() override { showSelection(); }

private:
    enum { kSearch, kList, kDetails, kCopyAll };
    // A name, and how many rows of that name stand before.
    struct Kept {
        std::string name;
        size_t before = 0;
    };
    void filter(std::optional<size_t> before);
    std::optional<size_t> findKept(Kept kept) const;
    void copy(const std::string& text);
    void showSelection() { showDetails(selected()); }

    const Look m_look;
    HWND m_searchLabel = nullptr, m_search = nullptr, m_name = nullptr, m_detailsName = nullptr,
         m_details = nullptr, m_copyAll = nullptr;
    RowList m_list;
    std::vector<std::string> m_words;  // of each row, in lower case, as long as the project stays as it is
    std::vector<size_t> m_rows;        // those found
    std::optional<Kept> m_kept;        // what was selected before the project was loaded anew
};

}  // namespace zoka
