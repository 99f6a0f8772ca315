// Entities of a level for the benchmarks of Entity Behavior: a host that takes next to no time of its own.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "plugin/host/EntityAccess.h"

namespace zoka::bench {

// 20 skills, each with a control of its own kind in turn, and 8 flags.
inline constexpr int kActionRows = kEntitySkills + kEntityFlags;
inline std::string actionText() {
    static const char* const kControls[] = {"// cntl: spin 0 500 0.5\r\n", "// cntl: slider 0 100 1\r\n", "",
                                            "// cntl: drop_list 0 1 2 3\r\n"};
    std::string text = "action measured\r\n{\r\n";
    for (int i = 1; i <= kEntitySkills; ++i) {
        const std::string n = std::to_string(i);
        text += "    // skill" + n + ": Value_" + n + " 1\r\n    " + kControls[i % 4] + "    // help: What " +
                n + " does.\r\n";
    }
    for (int i = 1; i <= kEntityFlags; ++i) {
        const std::string n = std::to_string(i);
        text += "    // flag" + n + ": Switch_" + n + " 1\r\n";
    }
    return text + "    wait(1);\r\n}\r\n";
}

// Entities "e0", "e1" and so on, all with one action and with values of their own; all are selected.
class Entities : public EntityAccess {
public:
    Entities(int entities, const std::string& script)
        : m_action{script, 0, static_cast<int>(actionText().size())} {
        for (int i = 0; i < entities; ++i) {
            m_names.push_back("e" + std::to_string(i));
            Entity& one = m_entities[m_names.back()];
            for (size_t n = 0; n < one.skills.size(); ++n) {
                one.skills[n] = static_cast<float>((static_cast<size_t>(i) + n) % 4);
            }
            one.flags[0] = i % 2 == 0;
        }
    }
    bool followsSelection() const override { return true; }
    std::vector<std::string> selected() override { return m_names; }
    std::optional<std::uint32_t> changes() override { return m_changes; }
    std::optional<ActionPlace> action(const std::string&) override { return m_action; }
    std::optional<float> skill(const std::string& entity, int number) override {
        return m_entities[entity].skills[static_cast<size_t>(number - 1)];
    }
    bool setSkill(const std::string& entity, int number, float value) override {
        m_entities[entity].skills[static_cast<size_t>(number - 1)] = value;
        ++m_changes;
        return true;
    }
    std::optional<bool> flag(const std::string& entity, int number) override {
        return m_entities[entity].flags[static_cast<size_t>(number - 1)];
    }
    bool setFlag(const std::string& entity, int number, bool on) override {
        m_entities[entity].flags[static_cast<size_t>(number - 1)] = on;
        ++m_changes;
        return true;
    }

private:
    struct Entity {
        std::array<float, kEntitySkills> skills{};
        std::array<bool, kEntityFlags> flags{};
    };
    ActionPlace m_action;
    std::vector<std::string> m_names;
    std::map<std::string, Entity> m_entities;
    std::uint32_t m_changes = 0;
};

}  // namespace zoka::bench
