#include "templates/win/IncludedPage.h"

#include <algorithm>

namespace zoka {

void IncludedPage::createControls() {
    m_label = label("");
    m_list.create(window(), look().list, fonts(), fonts().text(), look().columns,
                  [this](int row, int column) -> std::string {
                      const auto& included = session().included();
                      const auto index = static_cast<size_t>(row);
                      if (row < 0 || index >= included.size()) {
                          return {};
                      }
                      return column == 0   ? included[index].text
                             : column == 1 ? included[index].fileName
                                           : lastColumn(index);
                  });
    m_note =
        makeControl(window(), "STATIC", "", SS_NOPREFIX | SS_ENDELLIPSIS, 0, look().note, fonts().text());
    if (look().otherText) {
        m_other = button(look().otherText, look().otherButton);
    }
    m_button = button(look().buttonText, look().button, true);
}

void IncludedPage::layout(Area page) {
    Area foot = page.takeBottom(fonts().y(kButtonHeightUnits), fonts().y(kGapUnits));
    placeButtonsRight({m_button}, foot, fonts());
    if (m_other) {
        const int width = fonts().labelWidth(look().otherText) + 4 * fonts().x(kGapUnits);
        place(m_other, foot.takeRight(width, fonts().x(kGapUnits)));
    }
    place(m_note, foot.middle(fonts().y(kLabelHeightUnits)));
    placeLabelAbove(m_label, page, fonts());
    m_list.place(page);
}

void IncludedPage::refresh() {
    const int selected = m_list.selected();
    const int count = static_cast<int>(session().included().size());
    setText(m_label, "&Included scripts: " + std::to_string(count));
    m_list.setCount(count);
    // Where the selected script is gone, the next one is at hand.
    m_list.select(std::min(std::max(selected, 0), count - 1));
    showSelection();
}

void IncludedPage::showSelection() {
    const int row = m_list.selected();
    const auto index = static_cast<size_t>(row);
    enable(m_button, row >= 0 && canDo(index));
    if (m_other) {
        enable(m_other, row >= 0 && canDoOther(index));
    }
    setReport(m_note, row < 0 ? "The main script includes no scripts." : note(index));
}

void IncludedPage::command(int id, int code) {
    if (id == look().button && code == BN_CLICKED) {
        mainAction();
    } else if (m_other && id == look().otherButton && code == BN_CLICKED && m_list.selected() >= 0) {
        otherAction(static_cast<size_t>(m_list.selected()));
    }
}

LRESULT IncludedPage::notified(NMHDR& header) {
    return static_cast<int>(header.idFrom) == look().list
               ? answerList(m_list, header, look().actsOnDoubleClick)
               : 0;
}

}  // namespace zoka
