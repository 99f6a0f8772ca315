// A folder with two actions and the entities that they are attached to.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "customize/BehaviorSession.h"
#include "plugin/host/FolderHost.h"
#include "tests/support/FakeEntities.h"
#include "tests/support/TempFolder.h"

namespace zoka::test {

inline constexpr char kTwoActions[] =
    "action walk {\n// title: Walker\n// section: Legs\n// skill1: Speed 2\n// cntl: slider 0 10 0.5\n"
    "// flag1: Lit 1\n}\naction wait {\n// skill1: Speed 1\n// cntl: spin 1 20 1\n// skill2: Time 5\n}\n";

class BehaviorSessionTest : public testing::Test {
protected:
    BehaviorSessionTest() {
        const std::string path = m_folder.write("a.kez", kTwoActions);
        const std::string text = kTwoActions;
        const auto second = static_cast<std::int32_t>(text.find("action wait"));
        const ActionPlace walk{path, 0, second};
        const ActionPlace wait{path, second, static_cast<std::int32_t>(text.size()) - second};
        m_entities.entities["a"] = {.action = walk};
        m_entities.entities["b"] = {.action = walk};
        m_entities.entities["c"] = {.action = wait};
        m_entities.entities["boat"] = {};
        m_entities.entities["a"].skills[0] = 3;
        m_entities.entities["b"].skills[0] = 4.25F;
        m_entities.entities["c"].skills[0] = 5;
        select({"a"});
        m_session.open();
    }

    // The entity's action is all of a script.
    void give(const std::string& entity, const std::string& file, const std::string& text) {
        m_entities.entities[entity].action =
            ActionPlace{m_folder.write(file, text), 0, static_cast<std::int32_t>(text.size())};
    }
    void select(std::vector<std::string> names) {
        m_entities.selection = std::move(names);
        ++m_entities.count;
    }
    // The panel that is tested.
    virtual BehaviorSession& panel() { return m_session; }
    void follow(std::vector<std::string> names) {
        select(std::move(names));
        panel().refresh(false);
    }
    std::vector<std::string> shown() {
        std::vector<std::string> rows;
        for (size_t i = 0; i < panel().size(); ++i) {
            const EntryModel& row = panel().row(i);
            const bool hasNoValue = !hasValue(row.facts().field);
            rows.push_back(row.facts().label +
                           (hasNoValue          ? ""
                            : row.isDifferent() ? "=(different)"
                                                : '=' + row.value()) +
                           (row.HasChanged() ? " changed" : "") + (row.blocked().empty() ? "" : " blocked"));
        }
        return rows;
    }
    float skill(const std::string& entity, size_t number) {
        return m_entities.entities[entity].skills[number - 1];
    }

    TempFolder m_folder;
    FolderHost m_host{{.project = m_folder.path(), .suite = m_folder.path()}};
    FakeEntities m_entities;
    BehaviorSession m_session{&m_entities, m_host};
};

// A user who edits, pastes, resets, undoes and does again at random; `look` is called after each.
template <class Look>
void wander(BehaviorSession& panel, unsigned seed, int rounds, const Look& look) {
    std::mt19937 random(seed);
    const auto below = [&](size_t end) { return static_cast<size_t>(random() % end); };
    for (int round = 0; round < rounds; ++round) {
        const size_t row = below(panel.size());
        const std::string value = std::to_string(below(12));
        switch (below(8)) {
            case 0:
                static_cast<void>(panel.undo());
                break;
            case 1:
                static_cast<void>(panel.redo());
                break;
            case 2:
                panel.resetRow(row, below(2) == 0 ? ResetTo::Default : ResetTo::Loaded);
                break;
            case 3:
                panel.paste("skill1 = " + value + "\nflag1 = 1\nbody.mass = " + value +
                            "\nlight.color = #00000" + value);
                break;
            default:
                static_cast<void>(panel.setValue(row, value, below(2) == 0));
                break;
        }
        look(random);
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

}  // namespace zoka::test
