#include "J8ProjectManager/win/LevelsPage.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "controls/TextSet.h"
#include "util/Text.h"

namespace zoka {

namespace {

enum : int { kLevels = 2601, kSearch, kList, kLevelButtons = 2610, kEntityButtons = 2620, kRows = 2630 };
// Counted from the first button of either row.
enum : int { kAdd, kDuplicate, kRemove, kUp, kDown };
constexpr int kButtons = 5;
constexpr const char* kLevelTexts[] = {"&New level", "Duplica&te", "Remo&ve", "Earlier", "Later"};
constexpr const char* kEntityTexts[] = {"&Add", "&Duplicate", "Re&move", "&Up", "Do&wn"};
constexpr ListColumn kLevelColumns[] = {{nullptr, 100, true}};
constexpr ListColumn kColumns[] = {{"Entity", 62, true}, {"Parent", 52, true}, {"Own values", 54}};
constexpr UINT kRebuild = WM_APP + 20;
constexpr UINT_PTR kRebuildTimer = 20;
constexpr UINT kRebuildAfter = 50;                   // milliseconds
constexpr int kListWidth = 182, kLevelsHeight = 37;  // dialog units

}  // namespace

LevelsPage::LevelsPage(ProjectFrame& frame)
    : ProjectPage(frame),
      m_panel(frame.session(), projectTexts(), [&frame](bool undo) { frame.undoOrRedo(undo); }),
      m_view(m_panel, *this) {}

void LevelsPage::createControls() {
    m_levelLabel = label("&Levels:");
    m_levels.create(window(), kLevels, fonts(), fonts().text(), kLevelColumns, [this](int row, int) {
        const auto level = static_cast<size_t>(row);
        return row >= 0 && level < model().m_apLevels.size() ? shownText(model().m_apLevels[level].m_name)
                                                             : "";
    });
    m_levels.letMove([this](int row, int before) { return mayMoveLevel(row, before); },
                     [this](int row, int before) { moveLevel(row, before); });
    for (int i = 0; i < kButtons; ++i) {
        m_levelButtons.push_back(button(kLevelTexts[i], kLevelButtons + i));
    }
    m_searchLabel = label("&Find:");
    m_search = makeField(window(), kSearch, fonts());
    SendMessageA(m_search, EM_LIMITTEXT, 200, 0);
    m_list.takeKeysOf(m_search);
    m_count = label("");
    m_list.create(window(), kList, fonts(), fonts().text(), kColumns,
                  [this](int row, int column) { return cell(row, column); });
    m_list.letMove([this](int row, int before) { return mayMove(row, before); },
                   [this](int row, int before) { moveRow(row, before); });
    for (int i = 0; i < kButtons; ++i) {
        m_entityButtons.push_back(button(kEntityTexts[i], kEntityButtons + i));
    }
    m_view.create(window(), fonts(), kRows);
}

void LevelsPage::layout(Area page) {
    const int gapX = fonts().x(kGapUnits), gapY = fonts().y(kGapUnits);
    const auto placeButtons = [&](std::vector<HWND>& buttons, Area& row) {
        for (auto button = buttons.rbegin(); button != buttons.rend(); ++button) {
            place(*button, row.takeRight(fonts().labelWidth(textOf(*button)) + 2 * gapX, gapX));
        }
    };
    Area levels = page.takeTop(fonts().y(kLevelsHeight), gapY);
    Area head = levels;
    head.height = fonts().y(kButtonHeightUnits);
    placeButtons(m_levelButtons, head);
    placeLabel(m_levelLabel, head, fonts());
    m_levels.place({head.x, levels.y, head.width, levels.height});

    Area left = page.takeLeft(std::min(fonts().x(kListWidth), page.width * 9 / 20), 2 * gapX);
    Area search = left.takeTop(fonts().y(kFieldHeightUnits), gapY);
    placeLabel(m_searchLabel, search, fonts());
    place(m_search, search);
    placeLabelAbove(m_count, left, fonts());
    Area buttons = left.takeBottom(fonts().y(kButtonHeightUnits), gapY);
    placeButtons(m_entityButtons, buttons);
    m_list.place(left);
    m_view.place({page.x, page.y, page.width, page.height});
}

std::string LevelsPage::cell(int row, int column) const {
    if (!hasLevel() || row < 0 || static_cast<size_t>(row) > m_entities.size()) {
        return {};
    }
    const CJ8LevelData& level = model().m_apLevels[m_level];
    if (row == 0) {
        return column == 0 ? "(the level itself)" : "";
    }
    const size_t at = m_entities[static_cast<size_t>(row) - 1];
    if (at >= level.m_entities.size()) {
        return {};
    }
    const J8LevelEntity& entity = level.m_entities[at];
    switch (column) {
        case 0:
            return shownText(entity.name);
        case 1:
            return shownText(entity.parent);
        default: {
            size_t own = entity.skills.size();
            for (const J8EntityComponent& component : entity.components) {
                own += component.edits.size();
            }
            return own == 0 ? "" : std::to_string(own);
        }
    }
}

void LevelsPage::refresh() {
    m_refreshing = true;
    m_words.clear();
    std::optional<size_t> entity = selectedEntity();
    std::optional<ProjectField> keyboard = m_panel.fieldOf(m_view.focusedRow());
    bool isSameLevel = m_filled == m_level, isGone = false;
    if (const auto kept = std::exchange(m_kept, std::nullopt)) {
        isSameLevel = findKept(*kept, entity);
        isGone = !isSameLevel;
        if (keyboard) {
            keyboard->level = m_level;
            keyboard->entity = entity.value_or(0);
        }
    }
    fillLevels();
    // What was just changed may be what it was found by.
    fillEntities(isSameLevel ? entity : std::nullopt);
    selectEntity(entity);
    if (keyboard && isGone) {
        SetFocus(m_list.window());  // what is typed on was for another one's value
    } else if (keyboard) {
        focusField(*keyboard);
    }
    m_refreshing = false;
}

void LevelsPage::keepSelection() {
    if (m_kept || !hasLevel()) {
        return;  // what was kept before has not been shown since
    }
    const std::optional<size_t> entity = selectedEntity();
    m_kept = entity && *entity < model().m_apLevels[m_level].m_entities.size()
                 ? addressOfEntity(model(), m_level, *entity)
                 : addressOfLevel(model(), m_level);
}

bool LevelsPage::findKept(const std::string& address, std::optional<size_t>& entity) {
    const std::optional<size_t> level = levelAt(model(), address);
    if (!level) {
        entity.reset();
        return false;
    }
    m_level = *level;
    const Result<ProjectField> found = fieldAt(model(), address + "/name");
    if (found && entity) {
        entity = found->entity;
    }
    return bool(found);
}

bool LevelsPage::focusField(const ProjectField& field) {
    const std::optional<size_t> row = m_panel.rowOf(field);
    if (row && m_view.focusedRow() != row) {
        m_view.focusRow(*row);
    }
    return row.has_value();
}

void LevelsPage::fillLevels() {
    const std::vector<CJ8LevelData>& levels = model().m_apLevels;
    m_level = levels.empty() ? 0 : std::min(m_level, levels.size() - 1);
    m_levels.setCount(static_cast<int>(levels.size()));
    m_levels.select(levels.empty() ? -1 : static_cast<int>(m_level));
}

const std::vector<std::string>& LevelsPage::words(size_t level) {
    m_words.resize(model().m_apLevels.size());
    if (!m_words[level]) {
        std::vector<std::string>& texts = m_words[level].emplace();
        for (const J8LevelEntity& entity : model().m_apLevels[level].m_entities) {
            texts.push_back(foldedText(shownText(entity.name + "\n" + entity.parent), TextSet::System));
        }
    }
    return *m_words[level];
}

void LevelsPage::fillEntities(std::optional<size_t> kept) {
    m_searched = textOf(m_search);
    m_wanted = foldedText(m_searched, TextSet::System);
    const std::vector<std::string_view> wanted = tokensOf(m_wanted, kWhiteSpace);
    const auto isFound = [&wanted](const std::string& text) { return holdsAll(text, wanted); };
    m_filled = m_level;
    m_entities.clear();
    m_elsewhere = 0;
    size_t all = 0;
    if (hasLevel()) {
        const std::vector<std::string>& texts = words(m_level);
        all = texts.size();
        for (size_t i = 0; i < all; ++i) {
            if (i == kept || isFound(texts[i])) {
                m_entities.push_back(i);
            }
        }
    }
    for (size_t i = 0; i < model().m_apLevels.size() && !wanted.empty(); ++i) {
        m_elsewhere += i == m_level ? 0 : static_cast<size_t>(std::ranges::count_if(words(i), isFound));
    }
    m_list.setCount(hasLevel() ? static_cast<int>(m_entities.size()) + 1 : 0);
    setText(m_count,
            "&Entities: " + std::to_string(m_entities.size()) +
                (m_entities.size() == all ? "" : " of " + std::to_string(all)) +
                (m_elsewhere == 0 ? "" : ", " + std::to_string(m_elsewhere) + " in other levels (F3)"));
}

// Round through all levels, and through this one to where it began.
void LevelsPage::findNext(bool back) {
    const std::vector<std::string_view> wanted = tokensOf(m_wanted, kWhiteSpace);
    if (wanted.empty() || !hasLevel() || !m_view.commit()) {
        return;
    }
    const size_t levels = model().m_apLevels.size();
    const std::optional<size_t> start = selectedEntity();
    for (size_t step = 0; step <= levels; ++step) {
        const size_t level = (m_level + (back ? levels * 2 - step : step)) % levels;
        const std::vector<std::string>& texts = words(level);
        for (size_t n = 0; n < texts.size(); ++n) {
            const size_t i = back ? texts.size() - 1 - n : n;
            const bool isPassed = step == 0 && (back ? !start || i >= *start : start && i <= *start);
            if (isPassed || !holdsAll(texts[i], wanted)) {
                continue;
            }
            m_level = level;
            m_levels.select(static_cast<int>(level));
            fillEntities();
            return selectEntity(i);
        }
    }
    m_frame.setStatus("No entity is found");
}

std::optional<size_t> LevelsPage::selectedEntity() const {
    const int row = m_list.selected();
    return row > 0 && static_cast<size_t>(row) <= m_entities.size()
               ? std::optional(m_entities[static_cast<size_t>(row) - 1])
               : std::nullopt;
}

void LevelsPage::selectEntity(std::optional<size_t> entity) {
    selectRowOf(entity);
    showSelection();
}

void LevelsPage::selectRowOf(std::optional<size_t> entity) {
    int row = hasLevel() ? 0 : -1;
    if (entity) {
        const auto found = std::ranges::lower_bound(m_entities, *entity);
        if (found != m_entities.end()) {
            row = static_cast<int>(found - m_entities.begin()) + 1;
        } else if (!m_entities.empty()) {
            row = static_cast<int>(m_entities.size());
        }
    }
    m_list.select(row);
}

void LevelsPage::showSelection() {
    const bool before = m_refreshing;
    m_refreshing = true;
    m_shown = selectedEntity();
    if (m_shown) {
        m_panel.showEntity(m_level, *m_shown);
    } else if (hasLevel()) {
        m_panel.showLevel(m_level);
    } else {
        m_panel.showNothing();
    }
    m_refreshing = before;
    enableButtons();
}

// A text that is refused keeps its level and its entity selected.
void LevelsPage::settled() {
    const int chosen = m_levels.selected();
    const bool isOther = chosen >= 0 && static_cast<size_t>(chosen) != m_level;
    const bool isTaken = m_view.commit();
    if (isTaken && isOther && static_cast<size_t>(chosen) < model().m_apLevels.size()) {
        m_level = static_cast<size_t>(chosen);
        fillEntities();
        return selectEntity(std::nullopt);
    }
    m_levels.select(hasLevel() ? static_cast<int>(m_level) : -1);
    if (isTaken) {
        return showSelection();
    }
    const auto shown = m_shown ? std::ranges::lower_bound(m_entities, *m_shown) : m_entities.end();
    m_list.select(shown == m_entities.end() ? 0 : static_cast<int>(shown - m_entities.begin()) + 1);
}

void LevelsPage::enableButtons() {
    const size_t levels = model().m_apLevels.size();
    const auto give = [](std::vector<HWND>& buttons, bool any, size_t at, size_t count, bool mayMove) {
        enable(buttons[kDuplicate], any);
        enable(buttons[kRemove], any);
        enable(buttons[kUp], any && mayMove && at > 0);
        enable(buttons[kDown], any && mayMove && at + 1 < count);
    };
    give(m_levelButtons, hasLevel(), m_level, levels, true);
    const auto entity = selectedEntity();
    const size_t entities = hasLevel() ? model().m_apLevels[m_level].m_entities.size() : 0;
    enable(m_entityButtons[kAdd], hasLevel());
    // While a search hides entities, a place among them says little.
    give(m_entityButtons, entity.has_value(), entity.value_or(0), entities, m_entities.size() == entities);
}

void LevelsPage::rowsChanged() {
    if (m_refreshing) {
        return;
    }
    m_words.clear();
    m_list.redraw();
    m_levels.redraw();
    m_frame.edited();
    if (m_panel.takeOtherRows()) {
        PostMessageA(window(), kRebuild, 0, 0);
    }
}

// An open list stays until the user has chosen from it: with its row it would go away.
void LevelsPage::rebuild() {
    if (m_view.focusedRow() && SendMessageA(GetFocus(), CB_GETDROPPEDSTATE, 0, 0) != 0) {
        SetTimer(window(), kRebuildTimer, kRebuildAfter, nullptr);
    } else {
        refresh();
    }
}

void LevelsPage::changeLevels(int id) {
    ProjectSession& project = session();
    const size_t at = m_level;
    switch (id) {
        case kAdd:
            m_level = hasLevel() ? at + 1 : 0;
            project.addLevel(m_level, "level");
            break;
        case kDuplicate:
            project.duplicateLevel(at);
            m_level = at + 1;
            break;
        case kRemove:
            project.removeLevel(at);
            break;
        default:
            m_level = id == kUp ? at - 1 : at + 1;
            project.moveLevel(at, m_level);
            break;
    }
    refresh();
    if (id != kUp && id != kDown) {
        selectEntity(std::nullopt);
    }
    if (id == kAdd || id == kDuplicate) {
        m_view.focusFirst();
    }
}

void LevelsPage::changeEntities(int id) {
    ProjectSession& project = session();
    const std::optional<size_t> at = selectedEntity();
    std::optional<size_t> next = at;
    const std::vector<J8LevelEntity>& entities = model().m_apLevels[m_level].m_entities;
    if (id == kAdd) {
        next = at ? *at + 1 : entities.size();
        project.addEntity(m_level, *next, "entity", at ? entities[*at].parent : "");
        m_words.clear();
        SetWindowTextA(m_search, "");
    } else if (!at) {
        return;
    } else if (id == kDuplicate) {
        project.duplicateEntity(m_level, *at);
        next = *at + 1;
    } else if (id == kRemove) {
        project.removeEntity(m_level, *at);
    } else {
        next = id == kUp ? *at - 1 : *at + 1;
        project.moveEntity(m_level, *at, *next);
    }
    m_words.clear();
    fillEntities();
    selectEntity(next);
    if (id == kAdd || id == kDuplicate) {
        m_view.focusFirst();
    }
}

// The level itself stays the first row. While a search hides entities, a place among them says little.
bool LevelsPage::mayMove(int row, int before) const {
    const int end = static_cast<int>(m_entities.size()) + 1;
    return hasLevel() && row > 0 && row < end && before > 0 && before <= end &&
           m_entities.size() == model().m_apLevels[m_level].m_entities.size();
}

void LevelsPage::moveRow(int row, int before) {
    // What is committed may change the rows.
    if (!m_view.commit() || !mayMove(row, before)) {
        return;
    }
    const auto from = static_cast<size_t>(row) - 1, behind = static_cast<size_t>(before) - 1;
    const size_t to = behind > from ? behind - 1 : behind;
    session().moveEntity(m_level, from, to);
    m_words.clear();
    fillEntities();
    selectEntity(to);
    m_frame.edited();
}

bool LevelsPage::mayMoveLevel(int row, int before) const {
    const int end = static_cast<int>(model().m_apLevels.size());
    return row >= 0 && row < end && before >= 0 && before <= end;
}

void LevelsPage::moveLevel(int row, int before) {
    if (!m_view.commit() || !mayMoveLevel(row, before)) {
        return;
    }
    const auto from = static_cast<size_t>(row), behind = static_cast<size_t>(before);
    const bool isShown = from == m_level;
    const size_t to = behind > from ? behind - 1 : behind;
    session().moveLevel(from, to);
    m_level = to;
    refresh();
    if (!isShown) {
        selectEntity(std::nullopt);
    }
    m_frame.edited();
}

void LevelsPage::command(int id, int code) {
    if (m_view.command(id, code)) {
        return;
    }
    if (id == kSearch && code == EN_CHANGE && !m_refreshing && textOf(m_search) != m_searched) {
        if (!m_view.commit()) {
            SetWindowTextA(m_search, m_searched.c_str());
            return;
        }
        const auto entity = selectedEntity();
        fillEntities();
        // What is selected still is shown already.
        if (entity == m_shown && (!entity || std::ranges::binary_search(m_entities, *entity))) {
            selectRowOf(entity);
        } else {
            selectEntity(entity);
        }
    } else if (code == BN_CLICKED && id >= kLevelButtons && id < kLevelButtons + kButtons) {
        if (m_view.commit() && (hasLevel() || id == kLevelButtons + int{kAdd})) {
            changeLevels(id - kLevelButtons);
            m_frame.edited();
        }
    } else if (code == BN_CLICKED && id >= kEntityButtons && id < kEntityButtons + kButtons) {
        if (m_view.commit() && hasLevel()) {
            changeEntities(id - kEntityButtons);
            m_frame.edited();
        }
    }
}

// In the lists it goes to the values.
void LevelsPage::mainAction() {
    const HWND focus = GetFocus();
    if (focus == m_search && m_entities.empty() && m_elsewhere > 0) {
        findNext(false);
    } else if (focus == m_levels.window() || focus == m_list.window() || focus == m_search) {
        m_view.focusFirst();
    } else {
        m_view.enter();
    }
}

bool LevelsPage::takesKey(const MSG& message) {
    if (message.wParam != VK_F3 || GetKeyState(VK_CONTROL) < 0 || GetKeyState(VK_MENU) < 0) {
        return ProjectPage::takesKey(message);
    }
    findNext(GetKeyState(VK_SHIFT) < 0);
    return true;
}

bool LevelsPage::givenUp() {
    // The search that has the keyboard goes first.
    return (GetFocus() == m_search && clearSearch(m_search)) || m_view.escape() || clearSearch(m_search);
}

void LevelsPage::select(const ProjectTarget& target) {
    m_kept.reset();
    m_level = target.first;
    SetWindowTextA(m_search, "");
    refresh();
    selectEntity(target.second);
    if (target.field) {
        focusField(*target.field);
    }
}

LRESULT LevelsPage::notified(NMHDR& header) {
    if (header.idFrom != kLevels && header.idFrom != kList) {
        return 0;
    }
    RowList& list = header.idFrom == kLevels ? m_levels : m_list;
    if (list.userMayHaveSelected(header)) {
        settleSoon();
    } else if (header.code == static_cast<UINT>(NM_DBLCLK)) {
        m_view.focusFirst();
    } else if (header.code == static_cast<UINT>(LVN_KEYDOWN) &&
               reinterpret_cast<const NMLVKEYDOWN&>(header).wVKey == VK_DELETE) {
        command((header.idFrom == kLevels ? int{kLevelButtons} : int{kEntityButtons}) + int{kRemove},
                BN_CLICKED);
    }
    return list.notified(header);
}

std::optional<LRESULT> LevelsPage::message(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case kRebuild:
            rebuild();
            return 0;
        case WM_TIMER:
            if (wParam == kRebuildTimer) {
                KillTimer(window(), kRebuildTimer);
                rebuild();
                return 0;
            }
            break;
        default:
            break;
    }
    return ProjectPage::message(message, wParam, lParam);
}

}  // namespace zoka
