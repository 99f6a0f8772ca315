// The rows of a project, a level or an entity as a panel shows them, on the values of a ProjectSession.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "J8ProjectManager/ProjectSession.h"
#include "controls/RowEditing.h"

namespace zoka {

// Between the texts of a project, which are UTF-8, and those of its window.
struct ProjectTexts {
    std::string (*shown)(const std::string& utf8);
    std::string (*stored)(const std::string& shown);
    TextSet set = TextSet::System;  // of those shown
};

// A value of the row, as a panel shows it, and the row with its value: a value of the entity's own counts as changed
// where its parent gives another.
std::string shownForm(const ProjectRow& row, const std::string& stored, const ProjectTexts& texts);
EntryModel rowModel(const ProjectRow& row, const ProjectTexts& texts);
// The type of a property or a skill, and where a property is declared; may be empty.
std::string rowDetails(const ProjectSession& session, const ProjectRow& row, const ProjectTexts& texts);

// Undo is the session's, over all pages. A row that its parent gives a value counts as changed while the entity says
// otherwise, and is reset to the parent's: then the entity's own value goes. The session outlives the object.
// [thread of the window]
class ProjectPanel : public RowEditing {
public:
    // `undoOrRedo` takes an edit of the project back (true) or makes it again, and shows where.
    ProjectPanel(ProjectSession& session, ProjectTexts texts, std::function<void(bool undo)> undoOrRedo)
        : m_session(session), m_texts(texts), m_undoOrRedo(std::move(undoOrRedo)) {}

    void showProject() { show(Shown::Project, 0, 0); }
    void showLevel(size_t level) { show(Shown::Level, level, 0); }
    void showEntity(size_t level, size_t entity) { show(Shown::Entity, level, entity); }
    void showComponent(size_t component) { show(Shown::Component, component, 0); }
    void showNothing() { show(Shown::Nothing, 0, 0); }
    // The same rows from the project as it is now.
    void refresh() { show(m_shown, m_level, m_entity); }
    // An edit has changed which rows there are: they are to be shown anew, though not while it is being made.
    bool takeOtherRows();
    // The row of a field; nothing when it is not among those shown.
    std::optional<size_t> rowOf(const ProjectField& field) const;
    // The field of a row; nothing for headings and for rows that aren't there.
    std::optional<ProjectField> fieldOf(std::optional<size_t> row) const;

    std::string subject() const override;
    std::optional<std::string> defaultOf(size_t i) const override;
    const char* defaultName() const override { return "the parent's &value"; }
    const char* loadedName(size_t i) const override;
    // The rows are shown anew so often that only undo leads back.
    bool resetsToLoaded() const override { return false; }
    std::string details(size_t i) const override;
    std::string emptyText() const override;
    std::optional<std::string> browse(size_t i) override;
    void leaveField() override;
    bool canUndo() const override { return m_session.canUndo(); }
    bool canRedo() const override { return m_session.canRedo(); }
    Result<size_t> undo() override;
    Result<size_t> redo() override;

protected:
    Outcome store(size_t i, const std::string& value) override;
    void stepBegins(bool typing) override;
    void stepEnds() override;

private:
    enum class Shown { Nothing, Project, Level, Entity, Component };
    void show(Shown shown, size_t level, size_t entity);
    EntryModel modelOf(const ProjectRow& row) const;
    std::string wholePath(size_t i) const;

    ProjectSession& m_session;
    ProjectTexts m_texts;
    std::function<void(bool undo)> m_undoOrRedo;
    std::vector<ProjectRow> m_source;
    std::vector<EntryModel> m_models;
    Shown m_shown = Shown::Nothing;
    size_t m_level = 0, m_entity = 0;  // of a component `m_level` is its place
    bool m_otherRows = false, m_typing = false;
};

}  // namespace zoka
