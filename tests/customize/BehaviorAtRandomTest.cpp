// What panel and host hold after long runs of edits and refusals at random.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "tests/customize/BehaviorFixture.h"

namespace zoka {
namespace {

using test::BehaviorSessionTest;
using test::wander;

class BehaviorAtRandomTest : public BehaviorSessionTest {
protected:
    BehaviorAtRandomTest() {
        const char* const one = "// skill1: Speed 2\n// flag1: Lit\n// skill1: Pace\n// skill3: Reach\n";
        giveEach({one, one, one});
    }
    // An action for each of three entities, which are shown then.
    void giveEach(const std::vector<const char*>& texts) {
        const char* name = "a";
        for (const char* const text : texts) {
            const bool isShared = std::string_view(text) == texts.front();
            give(name, isShared ? "at-random.kez" : std::string(name) + "-at-random.kez", text);
            name = *name == 'a' ? "b" : "c";
        }
        m_session.refresh(true);
        follow({"a", "b", "c"});
    }
    // What a row must show; the panel's own words for the value.
    std::string held(size_t row) const {
        const std::string details = m_session.details(row);
        const auto number = static_cast<size_t>(details[details.find_first_of("0123456789")] - '1');
        std::set<float> values;
        for (const std::string& name : m_session.entities()) {
            const test::FakeEntity& one = m_entities.entities.at(name);
            values.insert(details.starts_with("flag") ? static_cast<float>(one.flags[number])
                                                      : one.skills[number]);
        }
        return values.size() > 1 ? "(different)" : skillText(*values.begin());
    }
    void expectAgreement() const {
        for (size_t i = 0; i < m_session.size(); ++i) {
            const EntryModel& row = m_session.row(i);
            if (row.blocked().empty()) {
                EXPECT_EQ(row.isDifferent() ? "(different)" : row.value(), held(i)) << row.facts().label;
            }
        }
    }
};

// Whatever the host refuses, the panel shows what the host holds, or says that it can't tell; and what it shows at the
// end is what a panel shows that is opened then. Entities with one action, which declares a number twice, and with
// three: rows that not all have, narrower limits, choices, limits that are the wrong way round.
TEST_F(BehaviorAtRandomTest, agreesWithAHostThatFailsAtRandom) {
    const struct {
        std::vector<const char*> actions;
        std::vector<std::string> closed;  // rows of all three that no value suits
    } levels[] = {
        {{}, {}},
        {{"// skill1: Speed 2\n// cntl: slider 0 10 0.5\n// flag1: Lit\n// skill2: Form\n// cntl: drop 1 2 3 "
          "9\n"
          "// skill3: Reach 1\n// cntl: spin 9 1 1\n// skill4: Depth 1\n",
          "// skill4: Depth 4\n// cntl: slider 4 8 1\n// skill1: Speed 3\n// cntl: spin 2 20 1\n"
          "// skill2: Form 3\n// cntl: drop_list 9 2 4\n// skill3: Reach\n// flag1: Lit 1\n",
          "// flag1: Lit\n// skill1: Speed\n// skill2: Form\n// cntl: spin 2 9 1\n// skill3: Reach 3\n"
          "// cntl: slider 1 9 1\n// skill5: Width\n// skill4: Depth 5\n// cntl: spin 2 6 2\n"},
         {"Reach"}},
    };
    for (const auto& level : levels) {
        SCOPED_TRACE(level.closed.size());
        if (!level.actions.empty()) {
            giveEach(level.actions);
        }
        bool failing = true;
        size_t failures = 0;
        std::mt19937 fate(20260301);
        m_entities.fails = [&](const std::string& call) {
            const bool fails =
                failing && fate() % 5 == 0 && (call.starts_with("set") || call.starts_with("skill("));
            failures += fails ? 1 : 0;
            return fails;
        };
        wander(m_session, 20260302, 4000, [&](std::mt19937& random) {
            expectAgreement();
            if (random() % 10 == 0) {
                m_session.refresh(true);
            }
            if (random() % 40 == 0) {
                std::vector<std::string> names = {"a", "b", "c"};
                std::shuffle(names.begin(), names.end(), random);
                names.resize(1 + random() % 3);
                follow(names);
            }
            if (random() % 40 == 0) {  // another hand
                m_entities.entities["b"].skills[0] = static_cast<float>(random() % 9);
                ++m_entities.count;
                m_session.refresh(false);
            }
        });
        EXPECT_GT(failures, 500U);
        failing = false;
        m_session.refresh(true);  // which alone mends what is shown
        expectAgreement();
        follow({"a", "b", "c"});
        m_session.refresh(true);
        std::vector<std::string> closed;
        for (size_t i = 0; i < m_session.size(); ++i) {
            if (!m_session.row(i).blocked().empty()) {
                closed.push_back(m_session.row(i).facts().label);
            }
        }
        EXPECT_EQ(closed, level.closed);
        expectAgreement();
        const std::vector<std::string> before = shown();
        m_session.open();
        EXPECT_EQ(shown(), before);
        m_entities.fails = nullptr;
    }
}

// Undone to the beginning each entity has its own value; done again all is as it was.
TEST_F(BehaviorAtRandomTest, goesBackAndForthThroughAllEdits) {
    const auto held = [this] {
        std::vector<float> all;
        for (const auto& [name, one] : m_entities.entities) {
            all.insert(all.end(), one.skills.begin(), one.skills.end());
            all.insert(all.end(), one.flags.begin(), one.flags.end());
        }
        return all;
    };
    const std::vector<float> before = held();
    wander(m_session, 20260303, 2000, [&](std::mt19937&) { expectAgreement(); });
    const std::vector<float> after = held();
    EXPECT_NE(after, before);
    while (m_session.undo()) {
    }
    EXPECT_EQ(held(), before);
    expectAgreement();
    EXPECT_EQ(m_session.changedCount(), 0U);
    while (m_session.redo()) {
    }
    EXPECT_EQ(held(), after);
}

}  // namespace
}  // namespace zoka
