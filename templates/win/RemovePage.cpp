#include "templates/win/RemovePage.h"

namespace zoka {

const IncludedPage::Look& RemovePage::look() const {
    static constexpr Look kLook{
        1301, 1302, 1303, {{"Script", 100, true}, {"File", 80, true}, {"Needed by", 100, true}}, "&Remove"};
    return kLook;
}

std::string RemovePage::lastColumn(size_t index) const {
    // The column's title says "Needed by" already.
    constexpr std::string_view kPrefix = "needed by ";
    std::string text = session().neededBy(index);
    if (text.starts_with(kPrefix)) {
        text.erase(0, kPrefix.size());
    }
    return text;
}

std::string RemovePage::note(size_t index) const {
    const std::string needed = session().neededBy(index);
    if (needed.empty() && !session().included()[index].script) {
        return "Not a template script: take its include line out by hand.";
    }
    return needed.empty() ? "Takes the include line out. The script file stays where it is."
                          : "Can't go yet: " + needed;
}

void RemovePage::mainAction() {
    if (list().selected() < 0) {
        return;
    }
    session().remove(list().selected());
    m_frame.sessionChanged();
}

LRESULT RemovePage::notified(NMHDR& header) {
    if (header.idFrom == static_cast<UINT_PTR>(look().list) &&
        header.code == static_cast<UINT>(LVN_KEYDOWN) &&
        reinterpret_cast<NMLVKEYDOWN&>(header).wVKey == VK_DELETE) {
        mainAction();
    }
    return IncludedPage::notified(header);
}

}  // namespace zoka
