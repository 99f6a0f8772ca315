#include "templates/win/RemovePage.h"

namespace zoka {

const IncludedPage::Look& RemovePage::look() const {
    static constexpr Look kLook{
        1301,      1302, 1303, {{"Script", 100, true}, {"File", 80, true}, {"Needed by", 100, true}},
        "&Remove", false};
    return kLook;
}

std::string RemovePage::lastColumn(size_t index) const {
    return session().neededBy(index);
}

std::string RemovePage::note(size_t index) const {
    const std::string problem = session().removalProblem(index);
    return problem.empty() ? "Takes the include line out. The script file stays where it is." : problem;
}

// A script that others need can be asked for: the answer names them.
bool RemovePage::canDo(size_t index) const {
    return session().included()[index].script.has_value();
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
