// Entity Behavior without its window: the skills and flags of the selected entities as rows, and in its panel form the
// components that a project gives them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/RowEditing.h"
#include "customize/BehaviorLines.h"
#include "customize/EntityComponents.h"
#include "customize/EntityProject.h"
#include "customize/EntitySelection.h"
#include "customize/EntityValues.h"
#include "plugin/host/EntityAccess.h"
#include "plugin/host/ZunEditorInterface.h"
#include "util/UserPrompt.h"

namespace zoka {

// An edit reaches the entities at once, all that are shown or none; undo gives each its own value back. What the
// host refuses is told, and its row takes nothing until the values are read again. [panel thread]
class BehaviorSession : public RowEditing {
public:
    // `entities` is null where the host has none. Both outlive the session.
    BehaviorSession(EntityAccess* entities, ZunEditorInterface& host);
    // The panel form: with the components of a project, which open() reads. `entity` is shown where the host has no
    // operations on entities. Without `openProject` the project stays the same.
    BehaviorSession(EntityAccess* entities, ZunEditorInterface& host,
                    std::unique_ptr<EntityComponents> components, std::string entity,
                    OpenProject openProject = {});

    // Shows the entities that are selected now.
    void open();
    // Looks at the host again: at the selection, if it's followed, at the actions, at the values. Unless `always`,
    // only when the host says that something has changed. Rows are made anew when they must be; history goes then.
    // Within another of these, or an edit, it is put off until the next one: a host may show a box of its own, and the
    // panel becomes the active window again before the call ends.
    void refresh(bool always);

    // Where the host can tell of the selection, the rows follow it as long as the user wants that.
    bool canFollow() const { return m_entities.canFollow(); }
    bool follows() const { return m_entities.follows(); }
    void setFollowing(bool follows);

    const std::vector<std::string>& entities() const { return m_entities.shown(); }
    // The title that the action's markup gives the window, in UTF-8; empty when there is none or they differ.
    std::string title() const { return m_entities.actions().title(); }
    // Which entities the rows are of, and what is the matter with them.
    std::string status() const;

    // --- The project of the panel form, which holds the components. Nothing is unsaved in the plain form.
    bool hasPanelForm() const { return m_project.has_value(); }
    bool hasUnsaved() const { return m_project && m_project->hasUnsaved(); }
    // As the project's own window does.
    SaveResult save();
    // True when the panel may close: asks about unsaved edits of components.
    bool close();
    // Something was thrown and the panel goes: offers to keep unsaved edits of components. Only the object's end may
    // follow. Never throws.
    void offerUnsaved() noexcept {
        if (m_project) {
            m_project->components().offerUnsaved();
        }
    }
    // The window is gone, and nobody could be asked: keeps unsaved edits of components. Never throws.
    void keepUnsaved() noexcept {
        if (m_project) {
            m_project->components().keepUnsaved();
        }
    }
    // The editor has another project open than the one with the unsaved edits: its entities' components are not shown
    // before save() has asked what becomes of these. Without such edits the panel goes on to the other project.
    bool otherProjectOpen() const { return m_project && m_project->isElsewhere(); }
    // For the panel's title, in words; empty while that one is open.
    const char* whereabouts() const { return m_project ? m_project->whereabouts() : ""; }

    // Faults of the actions' markup, and values outside their limits; one line each, in UTF-8.
    size_t findingCount() const { return findings().size(); }
    std::string findingsText() const;

    // --- Copied and pasted lines, in UTF-8
    // "skill3 Speed = 2.5", a line for each value of the rows [first, last); those that differ are left out.
    std::string copyText(size_t first, size_t last) const;
    // Takes such lines, in one step of undo.
    PasteResult paste(const std::string& text);

    std::string subject() const override;
    std::string nameOf(size_t i) const override;
    std::string giveUpInput() override;
    std::string details(size_t i) const override;
    std::string picturePath(const std::string& nameInScript) const override;
    std::string emptyText() const override;
    std::string helpText(size_t i) const override;
    std::optional<std::string> defaultOf(size_t i) const override;
    const char* defaultName() const override { return m_project ? "the &default" : "the script's &default"; }
    const char* loadedName(size_t) const override { return "Before"; }

private:
    // Lives while rows are made, read or written, which must stay the same meanwhile.
    class AtWork {
    public:
        explicit AtWork(BehaviorSession& session) : m_depth(session.m_workDepth) { ++m_depth; }
        ~AtWork() { --m_depth; }
        AtWork(const AtWork&) = delete;
        AtWork& operator=(const AtWork&) = delete;

    private:
        int& m_depth;
    };

    void look(bool always);
    void stepBegins(bool typing) override;
    void stepEnds() override;
    Outcome store(size_t i, const std::string& value) override;
    std::string stateOf(size_t i) const override;
    Outcome putState(size_t i, const std::string& state) override;
    Outcome putLoaded(size_t i) override;
    Outcome told(Written written);

    // What is seen of the components, to tell whether others have taken their place.
    struct ComponentsShown {
        std::vector<std::string> names;
        size_t edits = 0;

        bool operator==(const ComponentsShown&) const = default;
    };

    void show(std::vector<std::string> entities);
    ComponentsShown componentsShown() const;
    void showComponentsAfter(const ComponentsShown& before);
    bool lookAtProject() { return m_project && m_project->look(); }
    // With a panel form.
    EntityComponents& components() { return m_project->components(); }
    const EntityComponents& components() const { return m_project->components(); }
    // Which row of theirs the panel's row is.
    std::optional<size_t> componentOf(size_t i) const;
    void addComponents(std::vector<EntryModel>& models) const;
    void block(EntryModel& component) const;
    LineName lineName(size_t i) const;
    Result<std::string> pastedValue(size_t i, std::string_view text) const;
    std::vector<std::string> findings() const;

    ZunEditorInterface& m_host;
    EntitySelection m_entities;
    std::optional<EntityProject> m_project;  // nothing: the plain form
    // The rows are those of the values, then those of the components; a line of text may stand behind them.
    EntityValues m_values{m_entities};
    std::vector<EntryModel> m_models;
    std::string m_givenUp;     // that something was, until something else is written or shown
    bool m_areOthers = false;  // the entities shown are others than those before
    int m_workDepth = 0;       // of AtWork
    bool m_isLookDue = false;  // one was put off
};

}  // namespace zoka
