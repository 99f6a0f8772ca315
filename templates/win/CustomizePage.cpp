#include "templates/win/CustomizePage.h"

#include <algorithm>

namespace zoka {

namespace {

enum { kList = 1201, kNote, kCustomize };
constexpr ListColumn kColumns[] = {{"Script", 100, true}, {"File", 80, true}, {"Class", 100, true}};

}  // namespace

void CustomizePage::createControls() {
    m_label = label("");
    m_list.create(window(), kList, fonts(), fonts().text(), kColumns,
                  [this](int row, int column) -> std::string {
                      const auto& included = session().included();
                      if (row < 0 || static_cast<size_t>(row) >= included.size()) return {};
                      const IncludedScript& entry = included[static_cast<size_t>(row)];
                      return column == 0    ? entry.text
                             : column == 1  ? entry.fileName
                             : entry.script ? entry.script->m_class
                                            : "";
                  });
    m_note = makeControl(window(), "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, kNote, fonts().text());
    m_customize = button("Cu&stomize...", kCustomize, true);
}

void CustomizePage::layout(int width, int height) {
    const int gap = fonts().y(kGapUnits), labelHeight = fonts().y(kLabelHeightUnits);
    const int button = fonts().x(kButtonWidthUnits), field = fonts().y(kButtonHeightUnits);
    place(m_label, 0, 0, width, labelHeight);
    m_list.place(0, labelHeight, width, height - labelHeight - gap - field);
    place(m_note, 0, height - field + (field - labelHeight) / 2, width - button - fonts().x(kGapUnits),
          labelHeight);
    place(m_customize, width - button, height - field, button, field);
}

void CustomizePage::refresh() {
    const int selected = m_list.selected();
    const int count = static_cast<int>(session().included().size());
    setText(m_label, "&Included scripts: " + std::to_string(count));
    m_list.setCount(count);
    m_list.select(std::min(std::max(selected, 0), count - 1));
    showSelection();
}

void CustomizePage::showSelection() {
    const int row = m_list.selected();
    const bool found = row >= 0 && session().pathOf(static_cast<size_t>(row));
    enable(m_customize, m_frame.canCustomize() && found);
    setText(m_note, row < 0  ? "The main script includes no scripts."
                    : !found ? "The script file is in neither the project nor the template folder."
                    : !m_frame.canCustomize()
                        ? "This version of the plug-in has no panel that changes a script's values."
                        : "Opens the panel that changes the script's values.");
}

void CustomizePage::mainAction() {
    const int row = m_list.selected();
    if (row < 0 || !m_frame.canCustomize()) return;
    const auto path = session().pathOf(static_cast<size_t>(row));
    if (!path) return;
    m_frame.customize(*path);
    m_frame.sessionChanged();
}

void CustomizePage::command(int id, int code) {
    if (id == kCustomize && code == BN_CLICKED) mainAction();
}

LRESULT CustomizePage::notified(NMHDR& header) {
    if (header.idFrom != kList) return 0;
    if (m_list.userMayHaveSelected(header)) settleSoon();
    if (header.code == static_cast<UINT>(NM_DBLCLK)) mainAction();
    return m_list.notified(header);
}

}  // namespace zoka
