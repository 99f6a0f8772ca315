#include "templates/win/CustomizePage.h"

namespace zoka {

const IncludedPage::Look& CustomizePage::look() const {
    static constexpr Look kLook{1201,
                                1202,
                                1203,
                                {{"Script", 100, true}, {"File", 80, true}, {"Class", 100, true}},
                                "Cu&stomize...",
                                true,
                                1204,
                                "Cop&y into project"};
    return kLook;
}

std::string CustomizePage::lastColumn(size_t index) const {
    const auto& script = session().included()[index].script;
    return script ? script->m_class : "";
}

std::string CustomizePage::note(size_t index) const {
    if (!session().pathOf(index)) {
        return placeProblem(session().included()[index].fileName);
    }
    if (session().isUsedFromTemplates(index)) {
        return "Used from the template folder: the project has no copy of its own.";
    }
    return m_frame.canCustomize()
               ? "Opens the panel that changes the script's values."
               : "This version of the plug-in has no panel that changes a script's values.";
}

bool CustomizePage::canDo(size_t index) const {
    return m_frame.canCustomize() && session().pathOf(index);
}

void CustomizePage::mainAction() {
    const int row = list().selected();
    if (row < 0 || !m_frame.canCustomize()) {
        return;
    }
    const auto path = session().pathOf(static_cast<size_t>(row));
    if (!path) {
        return;
    }
    m_frame.customize(*path);
    m_frame.sessionChanged();
}

void CustomizePage::otherAction(size_t index) {
    session().copyIntoProject(index);
    m_frame.sessionChanged();
}

}  // namespace zoka
