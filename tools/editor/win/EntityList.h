// The list of the level's entities in the editor's window, where the user selects them.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "tools/editor/win/OpenLevel.h"
#include "tools/editor/win/ReportList.h"

namespace zoka {

class EntityList {
public:
    // [editor thread], like everything here. `level` must outlive the list.
    explicit EntityList(OpenLevel& level) : m_level(level) {}

    // A child window of `parent`, which destroys it.
    void create(HWND parent, int id, HFONT font);
    HWND window() const { return m_list.window(); }
    void place(int x, int y, int width, int height) const { m_list.place(x, y, width, height); }

    // Shows the level's entities and which of them are selected.
    void show();
    // The same where an entity has changed since.
    void refresh();

    // Whether takeSelection() is to be called once the list has told of all: a click changes several rows one after
    // the other. `change` is what it told.
    bool isSelectionChange(const NMLISTVIEW& change);
    // The level's selection becomes what the user has selected in the list since the last time.
    void takeSelection();
    void select(const std::vector<std::string>& names);
    void eraseSelected();

private:
    OpenLevel& m_level;
    ReportList m_list;
    bool m_filling = false;           // the rows are being made anew
    bool m_selectionChanged = false;  // by the user, and not yet looked at
    unsigned m_shownChanges = 0;
};

}  // namespace zoka
