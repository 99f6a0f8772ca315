// The entities that a panel shows and the editor holds: which they are, their actions, and whether they are still
// those.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "customize/EntityActions.h"
#include "plugin/host/EntityAccess.h"

namespace zoka {

// A skill (kSkill) or a flag (kFlag) of entities, by its number from 1.
struct EntityField {
    int kind = kNoKeyword;
    int number = 0;

    bool operator==(const EntityField&) const = default;
    // "skill3".
    std::string name() const;
};

// What became of a value for all entities, and the words for it.
enum class Written { All, Refused, Outdated };
inline constexpr const char* kValueRefused = "The editor has refused the value.";
inline constexpr const char* kValueOutdated =
    "The editor has gone on to other entities; the value was not written.";

// Names are the editor's, in the system's character set. [panel thread]
class EntitySelection {
public:
    // `access` outlives the object; where the host has none it is null, no entity is shown, and the panel's components
    // are those of `named`.
    EntitySelection(EntityAccess* access, std::string named) : m_access(access), m_named(std::move(named)) {}
    bool isKnown() const { return m_access != nullptr; }

    // Where the host can tell of the selection, it's followed as long as the user wants that.
    bool canFollow() const { return m_access && m_access->followsSelection(); }
    bool follows() const { return m_follows && canFollow(); }
    void setFollowing(bool follows) { m_follows = follows; }

    // --- What is shown
    const std::vector<std::string>& shown() const { return m_shown; }
    std::vector<std::string> withComponents() const { return m_access ? m_shown : std::vector{m_named}; }
    const EntityActions& actions() const { return m_actions; }
    // The first one, when it was gone from the level at the last look; else empty.
    const std::string& gone() const { return m_gone; }
    // Which entities these are, and what is the matter with them; briefly they are only counted.
    std::string inWords(bool briefly) const;
    // Shows these, and reads their actions; `components` as there.
    void show(std::vector<std::string> entities, const EntityComponents* components);

    // --- What the host has now; for a host with entities
    std::vector<std::string> selected() const { return m_access->selected(); }
    // Takes notice of the host's count of changes. False when there were none, or it doesn't count them, unless
    // `anyway`.
    bool look(bool anyway);
    // Those to be shown: the selection, if it's followed, without what is gone.
    std::vector<std::string> now() const;
    // Whether these, or their actions, are others than those shown.
    bool areOthers(const std::vector<std::string>& now) const;
    // True when the first one has gone since it was shown.
    bool noteGone();

    // --- Values
    std::optional<float> read(const EntityField& field, const std::string& entity) const;
    // All entities get their value, or none: those already written get back what they had, `before`, unless the editor
    // has opened another level meanwhile, whose entities may have the same names.
    Written write(const EntityField& field, const std::vector<float>& before,
                  const std::vector<float>& values);
    // Around several writes that are one step of the user's.
    void stepBegins() { m_isInStep = true; }
    void stepEnds() { m_isInStep = m_isUpToDate = false; }

private:
    bool isOutdated();
    bool writeOne(const EntityField& field, const std::string& entity, float value);

    EntityAccess* m_access;
    std::string m_named;
    bool m_follows = true;
    std::vector<std::string> m_shown;
    EntityActions m_actions;
    std::string m_gone;
    std::optional<std::uint32_t> m_changes;  // at the last look
    std::optional<std::uint32_t> m_known;    // and when the entities were last found to be those shown
    bool m_isInStep = false;
    bool m_isUpToDate = false;  // a row of this step has found the entities up to date
};

// A host may hold what is no number; it is the same as itself here.
bool isSame(float one, float other);

}  // namespace zoka
