#include "tools/editor/win/EntityList.h"

#include <algorithm>
#include <cstdio>

namespace zoka {

namespace {

std::string numbersText(const LevelEntity& entity) {
    std::string text;
    char part[48];
    for (int i = 0; i < kEntitySkills; ++i) {
        const float value = entity.skills[static_cast<size_t>(i)];
        if (value == 0) {
            continue;
        }
        std::snprintf(part, sizeof part, "%s%d = %g", text.empty() ? "" : ",  ", i + 1,
                      static_cast<double>(value));
        text += part;
    }
    return text;
}

std::string flagsText(const LevelEntity& entity) {
    std::string text;
    for (int i = 0; i < kEntityFlags; ++i) {
        if (entity.flags >> i & 1U) {
            text += (text.empty() ? "" : ", ") + std::to_string(i + 1);
        }
    }
    return text;
}

std::string positionText(const LevelEntity& entity) {
    char text[100];
    std::snprintf(text, sizeof text, "%g,  %g,  %g", static_cast<double>(entity.position[0]),
                  static_cast<double>(entity.position[1]), static_cast<double>(entity.position[2]));
    return text;
}

void setCell(HWND list, int row, int column, const std::string& text) {
    ListView_SetItemText(list, row, column, const_cast<char*>(text.c_str()));
}

}  // namespace

void EntityList::create(HWND parent, int id, HFONT font) {
    m_list.create(parent, id, 0, font,
                  {{"Entity", 150}, {"Behavior", 210}, {"Position", 140}, {"Skills", 250}, {"Flags", 90}});
}

void EntityList::show() {
    m_shownChanges = m_level.changes();
    takeSelection();
    const std::vector<std::string> selected = m_level.selection();
    const LevelMap map = m_level.map();
    m_filling = true;
    SendMessageA(window(), WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(window());
    int row = 0;
    for (const LevelEntity& entity : map.entities) {
        LVITEMA item{};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.pszText = const_cast<char*>(entity.name.c_str());
        SendMessageA(window(), LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item));
        setCell(window(), row, 1, entity.action + (entity.script.empty() ? "" : "  (" + entity.script + ")"));
        setCell(window(), row, 2, positionText(entity));
        setCell(window(), row, 3, numbersText(entity));
        setCell(window(), row, 4, flagsText(entity));
        if (std::find(selected.begin(), selected.end(), entity.name) != selected.end()) {
            ListView_SetItemState(window(), row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        }
        ++row;
    }
    m_filling = false;
    SendMessageA(window(), WM_SETREDRAW, TRUE, 0);
    InvalidateRect(window(), nullptr, TRUE);
}

void EntityList::refresh() {
    if (m_level.changes() != m_shownChanges) {
        show();
    }
}

bool EntityList::isSelectionChange(const NMLISTVIEW& change) {
    if (!((change.uNewState ^ change.uOldState) & LVIS_SELECTED) || m_filling || m_selectionChanged) {
        return false;
    }
    m_selectionChanged = true;
    return true;
}

void EntityList::takeSelection() {
    if (!m_selectionChanged) {
        return;
    }
    m_selectionChanged = false;
    std::vector<std::string> names;
    for (int row = -1; (row = ListView_GetNextItem(window(), row, LVNI_SELECTED)) >= 0;) {
        char name[kHostEntityNameSize] = {};
        ListView_GetItemText(window(), row, 0, name, sizeof name);
        names.push_back(name);
    }
    m_level.select(std::move(names));
}

void EntityList::select(const std::vector<std::string>& names) {
    m_selectionChanged = false;
    m_level.select(names);
    show();
}

void EntityList::eraseSelected() {
    takeSelection();
    for (const std::string& name : m_level.selection()) {
        m_level.erase(name);
    }
    show();
}

}  // namespace zoka
