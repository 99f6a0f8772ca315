#include "templates/win/RemovePage.h"

#include <algorithm>

namespace zoka {

namespace {

enum { kList = 1301, kNote, kRemove };
constexpr ListColumn kColumns[] = {{"Script", 100, true}, {"File", 80, true}, {"Needed by", 100, true}};

// The column's title says "Needed by" already.
std::string withoutPrefix(const std::string& text) {
    constexpr std::string_view kPrefix = "needed by ";
    return text.starts_with(kPrefix) ? text.substr(kPrefix.size()) : text;
}

}  // namespace

void RemovePage::createControls() {
    m_label = label("");
    m_list.create(window(), kList, fonts(), fonts().text(), kColumns,
                  [this](int row, int column) -> std::string {
                      const auto& included = session().included();
                      const auto index = static_cast<size_t>(row);
                      if (row < 0 || index >= included.size()) return {};
                      return column == 0   ? included[index].text
                             : column == 1 ? included[index].fileName
                                           : withoutPrefix(session().neededBy(index));
                  });
    m_note = makeControl(window(), "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, kNote, fonts().text());
    m_remove = button("&Remove", kRemove, true);
}

void RemovePage::layout(int width, int height) {
    const int gap = fonts().y(kGapUnits), labelHeight = fonts().y(kLabelHeightUnits);
    const int button = fonts().x(kButtonWidthUnits), field = fonts().y(kButtonHeightUnits);
    place(m_label, 0, 0, width, labelHeight);
    m_list.place(0, labelHeight, width, height - labelHeight - gap - field);
    place(m_note, 0, height - field + (field - labelHeight) / 2, width - button - fonts().x(kGapUnits),
          labelHeight);
    place(m_remove, width - button, height - field, button, field);
}

void RemovePage::refresh() {
    const int selected = m_list.selected();
    const int count = static_cast<int>(session().included().size());
    setText(m_label, "&Included scripts: " + std::to_string(count));
    m_list.setCount(count);
    // After a removal the next script is at hand.
    m_list.select(std::min(std::max(selected, 0), count - 1));
    showSelection();
}

void RemovePage::showSelection() {
    const int row = m_list.selected();
    enable(m_remove, row >= 0);
    const std::string needed = row < 0 ? "" : session().neededBy(static_cast<size_t>(row));
    setText(m_note, row < 0           ? "The main script includes no scripts."
                    : !needed.empty() ? "Can't go yet: " + needed
                                      : "Takes the include line out. The script file stays where it is.");
}

void RemovePage::mainAction() {
    if (m_list.selected() < 0) return;
    session().remove(m_list.selected());
    m_frame.sessionChanged();
}

void RemovePage::command(int id, int code) {
    if (id == kRemove && code == BN_CLICKED) mainAction();
}

LRESULT RemovePage::notified(NMHDR& header) {
    if (header.idFrom != kList) return 0;
    if (m_list.userMayHaveSelected(header)) settleSoon();
    if (header.code == static_cast<UINT>(LVN_KEYDOWN) &&
        reinterpret_cast<NMLVKEYDOWN&>(header).wVKey == VK_DELETE)
        mainAction();
    return m_list.notified(header);
}

}  // namespace zoka
