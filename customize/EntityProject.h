// The project whose components a panel shows of the selected entities, also while the editor has another one open.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "customize/Elsewhere.h"
#include "customize/EntityComponents.h"
#include "plugin/host/ZunEditorInterface.h"

namespace zoka {

// The project file of what the editor has open, empty where none stands beside the main script; nothing where the host
// names no main script.
using OpenProject = std::function<std::optional<std::string>()>;

// Unsaved edits stay with the project that they were made in, until the user has said what becomes of them; without
// such edits it goes on to the project that is open. [panel thread]
class EntityProject {
public:
    // Without `open` the project stays the same. The host outlives the object.
    EntityProject(std::unique_ptr<EntityComponents> components, ZunEditorInterface& host, OpenProject open)
        : m_components(std::move(components)), m_host(host), m_open(std::move(open)) {}

    void load();
    // Asks the host which project is open. True when rows of components are others now: show() them again.
    bool look();
    // The editor has another project open than the one with the unsaved edits.
    bool isElsewhere() const { return m_elsewhere.has_value(); }
    const char* whereabouts() const { return elsewhereText(m_elsewhere); }

    EntityComponents& components() { return *m_components; }
    const EntityComponents& components() const { return *m_components; }
    // Null while those of the open project are not known.
    const EntityComponents* shownComponents() const { return isElsewhere() ? nullptr : m_components.get(); }
    // Makes the rows of these entities, none while the project is not the open one.
    void show(std::vector<std::string> entities);

    bool hasUnsaved() const { return m_components->hasChanges(); }
    // Asks, while isElsewhere(): into the project of the edits, or nowhere.
    SaveResult saveElsewhere();
    // True when the panel may close: asks about unsaved edits. Without a call to the editor, which may be waiting for
    // the panel to go.
    bool close();

private:
    void moveTo(std::string projectFile);
    PromptAnswer ask() const;

    std::unique_ptr<EntityComponents> m_components;
    ZunEditorInterface& m_host;
    OpenProject m_open;     // may be empty
    std::string m_folder;   // of the project, as the host names it
    Elsewhere m_elsewhere;  // of unsaved edits alone
};

}  // namespace zoka
