// The actions of the entities that a panel shows, and the rows that their markup declares for all of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "customize/BehaviorPanel.h"
#include "customize/EntityComponents.h"
#include "plugin/host/EntityAccess.h"
#include "util/FileTime.h"

namespace zoka {

// Whether the level still has the entity, as far as the host gives anything of it.
bool isThere(EntityAccess& access, const std::string& entity);

// [panel thread]
class EntityActions {
public:
    // Asks the host where the entities' actions stand, and reads these. Without `access` there is one action that
    // declares nothing. Where one declares nothing, names of `components` (may be null) stand in.
    void load(EntityAccess* access, const std::vector<std::string>& entities,
              const EntityComponents* components);
    // Whether an entity of the last load has another action now, or its action is elsewhere. One that is gone has not.
    bool haveMoved(EntityAccess& access, const std::vector<std::string>& entities) const;
    // Whether they have moved so, or one of their scripts was written since.
    bool haveChanged(EntityAccess& access, const std::vector<std::string>& entities) const;

    // Entities with one action share one.
    const std::vector<BehaviorPanel>& panels() const { return m_panels; }
    // The title that the actions' markup gives the window, in UTF-8; empty when there is none or they differ.
    std::string title() const;
    // Faults of the markup, a line each, in UTF-8.
    std::vector<std::string> findings() const;
    // The rows of the one action, or those values that several have in common, below their headings: with the limits
    // and choices that all of them take (a minimum above the maximum where there are none), and the first one's texts.
    std::vector<CustomEntry> sharedRows() const;

private:
    std::vector<std::optional<ActionPlace>> m_places;  // of the entities
    std::vector<BehaviorPanel> m_panels;
    std::vector<std::optional<FileTime>> m_scriptTimes;  // of the panels' scripts
};

}  // namespace zoka
