// The page with the levels, their entities, and the values of the one selected.
#pragma once

#include <string>
#include <vector>

#include "J8ProjectManager/win/ProjectPage.h"
#include "controls/win/RowsView.h"
#include "ui/win/RowList.h"

namespace zoka {

class LevelsPage : public ProjectPage, private RowsOwner {
public:
    explicit LevelsPage(ProjectFrame& frame);

    void refresh() override;
    void mainAction() override;
    HWND firstField() const override { return m_search; }
    void command(int id, int code) override;
    bool commit() override { return m_view.commit(); }
    bool revertDraft() override { return m_view.revertDraft(); }
    bool givenUp() override;
    bool takesKey(const MSG& message) override;
    void keepSelection() override;
    void select(const ProjectTarget& target) override;

protected:
    RowsView* rows() override { return &m_view; }
    void createControls() override;
    void layout(Area page) override;
    LRESULT notified(NMHDR& header) override;
    void settled() override;
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void rowsChanged() override;
    std::string cell(int row, int column) const;
    void fillLevels();
    // With those that the search finds, and the one of that place.
    void fillEntities(std::optional<size_t> kept = {});
    // What is searched of each entity of a level, in lower case; kept until something changes.
    const std::vector<std::string>& words(size_t level);
    // Selects the next entity that the search finds, or the one before, in whichever level.
    void findNext(bool back);
    // Of the list's rows the first is the level itself.
    std::optional<size_t> selectedEntity() const;
    void selectEntity(std::optional<size_t> entity);
    void selectRowOf(std::optional<size_t> entity);
    void showSelection();
    // Finds again what keepSelection() named, in whichever place; false where it is gone, and its neighbour is left.
    bool findKept(const std::string& address, std::optional<size_t>& entity);
    // False when it is not among the rows.
    bool focusField(const ProjectField& field);
    void rebuild();
    void enableButtons();
    void changeLevels(int id);
    void changeEntities(int id);
    // By rows of the list: see RowMoving.
    bool mayMove(int row, int before) const;
    void moveRow(int row, int before);
    bool mayMoveLevel(int row, int before) const;
    void moveLevel(int row, int before);
    bool hasLevel() const { return m_level < model().m_apLevels.size(); }

    ProjectPanel m_panel;
    RowsView m_view;
    RowList m_levels, m_list;
    size_t m_level = 0;
    std::vector<size_t> m_entities;     // those found, by place
    std::optional<size_t> m_shown;      // the entity whose rows are shown; none: the level's
    std::optional<std::string> m_kept;  // the address of what was selected before the project was loaded anew
    std::string m_searched;             // what the entities are found by
    std::string m_wanted;               // the same in lower case, words between blanks
    size_t m_filled = 0;                // the level whose entities are listed
    size_t m_elsewhere = 0;             // how many it finds in other levels
    std::vector<std::optional<std::vector<std::string>>> m_words;  // by level; see words()
    HWND m_levelLabel = nullptr, m_searchLabel = nullptr, m_search = nullptr, m_count = nullptr;
    std::vector<HWND> m_levelButtons, m_entityButtons;
    bool m_refreshing = false;
};

}  // namespace zoka
