// One page of the project's window, and what the window offers to its pages.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "J8ProjectManager/ProjectPanel.h"
#include "J8ProjectManager/ProjectSession.h"
#include "J8ProjectManager/ProjectTargets.h"
#include "controls/win/RowsView.h"
#include "ui/win/PageShell.h"

namespace zoka {

class ProjectFrame {
public:
    virtual ~ProjectFrame() = default;
    virtual ProjectSession& session() = 0;
    virtual const WindowFonts& fonts() const = 0;
    // After an edit: title, buttons and what other pages show.
    virtual void edited() = 0;
    virtual void setStatus(const std::string& text) = 0;
    virtual void undoOrRedo(bool undo) = 0;
    // Shows the page of that thing, and the thing selected in it.
    virtual void goTo(const ProjectTarget& target) = 0;
};

class ProjectPage : public Page {
public:
    explicit ProjectPage(ProjectFrame& frame) : Page(frame.fonts()), m_frame(frame) {}

    // The project is about to be loaded anew: the next refresh() finds by its name what is selected now.
    virtual void keepSelection() {}
    // Takes the keyboard, which `last` of its controls had before; it may be gone, or of another page.
    void takeKeyboard(HWND last) {
        if (last && GetParent(last) == window() && IsWindowEnabled(last)) {
            SetFocus(last);
        } else if (RowsView* view = rows()) {
            view->focusLast();
        }
        if (!IsChild(window(), GetFocus())) {
            SetFocus(firstField());
        }
    }
    // Selects what the target names.
    virtual void select(const ProjectTarget&) {}
    // Gives up a refused text in the field with the keyboard; false when there is none.
    virtual bool revertDraft() { return false; }
    // Has the focused field an undo of its own, for what is typed in it?
    virtual bool undoesItself(HWND field) const { return GetParent(field) == window(); }
    void fontsChanged() override {
        if (RowsView* view = rows()) {
            view->fontsChanged();
        }
    }

protected:
    // The values that it shows as rows, if any.
    virtual RowsView* rows() { return nullptr; }
    std::optional<LRESULT> message(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (RowsView* view = rows(); view && message == WM_MOUSEWHEEL) {
            view->wheel(wParam, lParam);
            return 0;
        } else if (view && message == WM_DESTROY) {
            view->closed();
        }
        return Page::message(message, wParam, lParam);
    }
    ProjectSession& session() const { return m_frame.session(); }
    const CJ8ProjectManager& model() const { return m_frame.session().model(); }

    ProjectFrame& m_frame;
};

// The texts of a project for its window.
ProjectTexts projectTexts();
std::string shownText(const std::string& utf8);

}  // namespace zoka
