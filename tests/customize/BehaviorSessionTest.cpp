#include "customize/BehaviorSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "tests/customize/BehaviorFixture.h"

namespace zoka {
namespace {

using test::BehaviorSessionTest;
using test::kTwoActions;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// How often the editor was asked about its entities' actions since the last time.
auto questions(test::FakeEntities& entities) {
    const std::vector<std::string> calls = entities.takeCalls();
    return std::ranges::count_if(calls, [](const std::string& one) { return one.starts_with("action("); });
}

TEST_F(BehaviorSessionTest, showsAndWritesTheEntitysValuesAtOnce) {
    EXPECT_EQ(m_session.title(), "Walker");
    EXPECT_EQ(m_session.status(), "a");
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=3", "Lit=0"));
    EXPECT_TRUE(m_session.setValue(1, "4.5"));
    EXPECT_TRUE(m_session.setValue(2, "1"));
    EXPECT_EQ(skill("a", 1), 4.5F);
    EXPECT_TRUE(m_entities.entities["a"].flags[0]);
    for (const char* bad : {"11", "", "x", "1e3", "-"}) {
        EXPECT_NE(m_session.setValue(1, bad).why(), "") << bad;
        EXPECT_EQ(skill("a", 1), 4.5F);
    }
    EXPECT_TRUE(m_session.undo());
    EXPECT_TRUE(m_session.undo());
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=3", "Lit=0"));
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_TRUE(m_session.redo());
    EXPECT_EQ(skill("a", 1), 4.5F);
    EXPECT_EQ(m_session.resetAll(ResetTo::Default), 2U);
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=2 changed", "Lit=1 changed"));
    EXPECT_EQ(m_session.resetAll(ResetTo::Loaded), 2U);
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_THAT(m_session.tooltip(1), HasSubstr("skill1; a.kez, line 4"));
}

TEST_F(BehaviorSessionTest, showsWhatSeveralEntitiesShareAndRestoresEachOnesOwn) {
    follow({"a", "b"});
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=(different)", "Lit=0"));
    EXPECT_TRUE(m_session.setValue(1, "7"));
    EXPECT_EQ(skill("a", 1) + skill("b", 1), 14.0F);
    EXPECT_TRUE(m_session.undo());
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_EQ(skill("b", 1), 4.25F);
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=(different)", "Lit=0"));
    EXPECT_TRUE(m_session.setValue(1, "0"));
    EXPECT_EQ(skill("a", 1) + skill("b", 1), 0.0F);
    EXPECT_TRUE(m_session.undo());
    // Of two actions: the value that both have, within both limits.
    follow({"a", "c"});
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=(different)"));
    EXPECT_FALSE(m_session.setValue(1, "0.5"));
    EXPECT_FALSE(m_session.setValue(1, "11"));
    EXPECT_TRUE(m_session.setValue(1, "6"));
    EXPECT_EQ(skill("c", 1), 6.0F);
    EXPECT_EQ(m_session.title(), "");
    follow({"a", "boat"});
    EXPECT_THAT(shown(), IsEmpty());
    EXPECT_THAT(m_session.emptyText(), HasSubstr("in common"));
}

TEST_F(BehaviorSessionTest, writesAllOrNoneAndBlocksWhatIsRefused) {
    follow({"a", "b"});
    m_entities.fails = [](const std::string& call) { return call == "setSkill(b, 1, 7)"; };
    EXPECT_FALSE(m_session.setValue(1, "7").why().empty());
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_EQ(skill("b", 1), 4.25F);
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=(different) blocked", "Lit=0"));
    m_entities.fails = nullptr;
    m_session.refresh(true);
    EXPECT_TRUE(m_session.setValue(1, "7"));
}

// The panel has not looked yet when the editor goes on; what is typed then is for the entities that are shown.
TEST_F(BehaviorSessionTest, writesNothingToWhatItDoesNotShow) {
    select({"b"});
    EXPECT_THAT(m_session.setValue(1, "7").why(), HasSubstr("gone on to other entities"));
    EXPECT_FALSE(m_session.undo());
    select({"a"});
    EXPECT_TRUE(m_session.setValue(1, "8"));
    EXPECT_TRUE(m_session.setValue(1, "9"));
    // Another level has an entity of that name.
    m_entities.entities["a"].action->script += "x";
    ++m_entities.count;
    EXPECT_FALSE(m_session.undo());
    EXPECT_EQ(skill("a", 1), 9.0F);
    EXPECT_EQ(skill("b", 1), 4.25F);
    m_session.refresh(false);
    EXPECT_THAT(shown(), IsEmpty());
}

// Whether they are still the editor's entities is asked once for all rows of a step, also of a host that does not count
// its changes.
TEST_F(BehaviorSessionTest, looksAtTheEditorsEntitiesOncePerStep) {
    m_entities.counts = false;
    follow({"a", "b"});
    m_session.refresh(true);
    questions(m_entities);
    ASSERT_TRUE(m_session.setValue(1, "7"));
    const auto once = questions(m_entities);
    EXPECT_GT(once, 0);
    EXPECT_EQ(m_session.resetAll(ResetTo::Default), 2U);
    EXPECT_EQ(questions(m_entities), once);
    EXPECT_EQ(m_session.paste("skill1 = 3\nflag1 = 0\n").taken, 2U);
    EXPECT_EQ(questions(m_entities), once);
    EXPECT_TRUE(m_session.undo());
    EXPECT_EQ(questions(m_entities), once);
    EXPECT_TRUE(m_session.redo());
    EXPECT_EQ(questions(m_entities), once);
    select({"b"});
    EXPECT_EQ(m_session.resetAll(ResetTo::Default), 0U);
    EXPECT_EQ(skill("a", 1), 3.0F);
}

// The editor opens a level with entities of those names between two writes of one row: what was written then can't be
// taken back, and nothing more is.
TEST_F(BehaviorSessionTest, writesNothingMoreOnceALevelOpensAmongItsOwnWrites) {
    for (const bool refuses : {false, true}) {
        SCOPED_TRACE(refuses);
        follow({"a", "b"});
        ASSERT_TRUE(m_session.setValue(2, refuses ? "0" : "1"));
        m_entities.fails = [&](const std::string& call) {
            if (call == "setSkill(b, 1, 7)") {
                for (const char* const name : {"a", "b"}) {
                    m_entities.entities[name].action->script += "x";
                    m_entities.entities[name].skills[0] = 1;  // of the other level's entities
                }
                ++m_entities.count;
                return refuses;
            }
            return false;
        };
        EXPECT_THAT(m_session.setValue(1, "7").why(), HasSubstr("gone on to other entities"));
        m_entities.fails = nullptr;
        EXPECT_EQ(skill("a", 1), 1.0F) << "the old level's value in the new one";
        EXPECT_THAT(m_session.setValue(1, "8").why(), HasSubstr("gone on to other entities"));
        EXPECT_THAT(m_session.undo().why(), HasSubstr("gone on to other entities"));
        EXPECT_EQ(skill("a", 1), 1.0F);
        EXPECT_EQ(m_entities.entities["a"].flags[0], !refuses);
        m_session.refresh(false);
        EXPECT_THAT(shown(), IsEmpty());
        for (const char* const name : {"a", "b"}) {
            m_entities.entities[name].action->script.pop_back();
        }
    }
}

// The user selects something else among them: all of it is written and can be undone, and nothing more is written until
// the panel has looked. That it does later where it's asked to in the middle of them: a host that shows a box of its own
// gives the panel the keyboard back before its call ends.
TEST_F(BehaviorSessionTest, hasWrittenWhereOnlyTheSelectionChangesAmongItsOwnWrites) {
    for (const bool looks : {false, true}) {
        SCOPED_TRACE(looks);
        follow({"a", "b"});
        m_entities.fails = [&](const std::string& call) {
            if (call == "setSkill(b, 1, 7)") {
                select({"c"});
                if (looks) {
                    m_session.refresh(true);
                }
            }
            return false;
        };
        const Outcome written = m_session.setValue(1, "7");
        EXPECT_TRUE(written) << written.why();
        EXPECT_EQ(shown()[1], "Speed=7 changed");
        EXPECT_THAT(m_session.setValue(1, "8").why(), HasSubstr("gone on to other entities"));
        EXPECT_EQ(skill("a", 1), 7.0F);
        EXPECT_EQ(skill("b", 1), 7.0F);
        m_entities.fails = nullptr;
        select({"a", "b"});
        EXPECT_TRUE(m_session.undo());
        EXPECT_EQ(skill("a", 1), 3.0F);
        EXPECT_EQ(skill("b", 1), 4.25F);
        m_entities.counts = !looks;
        select({"c"});
        m_session.refresh(false);
        EXPECT_EQ(shown()[1], "Time=0");
        m_entities.counts = true;
    }
}

// Of a host that counts its changes one by one, the panel's own are no reason to ask about the entities again; where
// another hand's change or a count of another kind is among them, it asks.
TEST_F(BehaviorSessionTest, asksAboutTheEntitiesOnlyWhereTheCountIsNotItsOwn) {
    follow({"a", "b"});
    ASSERT_TRUE(m_session.setValue(1, "7"));
    questions(m_entities);
    ASSERT_TRUE(m_session.setValue(1, "8"));
    EXPECT_EQ(questions(m_entities), 0);
    m_entities.fails = [this](const std::string& call) {
        m_entities.count += call == "setSkill(b, 1, 9)" ? 1U : 0U;
        return false;
    };
    ASSERT_TRUE(m_session.setValue(1, "9"));
    EXPECT_GT(questions(m_entities), 0);
}

TEST_F(BehaviorSessionTest, followsSelectionValuesAndEntitiesThatGo) {
    m_entities.entities["a"].skills[0] = 9;
    m_session.refresh(false);
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=3", "Lit=0"));  // nothing was said to have changed
    ++m_entities.count;
    m_session.refresh(false);
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=9 changed", "Lit=0"));
    // Another hand's change is seen although an edit came between.
    m_entities.entities["a"].flags[0] = true;
    ++m_entities.count;
    EXPECT_TRUE(m_session.setValue(1, "8"));
    m_session.refresh(false);
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=8 changed", "Lit=1 changed"));
    m_session.setFollowing(false);
    follow({"c"});
    EXPECT_EQ(m_session.status(), "a");
    m_session.setFollowing(true);
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=0"));
    m_entities.entities.erase("c");
    follow({});
    EXPECT_THAT(shown(), ElementsAre("Speed=5 blocked", "Time=0 blocked"));
    EXPECT_THAT(m_session.status(), HasSubstr("c is gone"));
    follow({"boat"});
    EXPECT_EQ(m_session.row(0).facts().label, "No Behavior Panel Defined.");
    follow({});
    EXPECT_EQ(m_session.status(), "No entity is selected.");
    // The script is another one now.
    follow({"a"});
    m_folder.write("a.kez", "// flag2: New 1\n" + std::string(kTwoActions));
    m_entities.entities["a"].action->start = 0;
    m_entities.entities["a"].action->length = 15;
    m_session.refresh(true);
    EXPECT_THAT(shown(), ElementsAre("New=0"));
}

// Places as a level may hold them after its script has changed.
TEST_F(BehaviorSessionTest, bearsPlacesThatSuitNoAction) {
    const std::string path = m_entities.entities["a"].action->script;
    const auto size = static_cast<std::int32_t>(std::string(kTwoActions).size());
    const auto second = m_entities.entities["c"].action->start;
    const struct {
        std::int32_t start, length;
        std::vector<std::string> rows;
        size_t shared;  // beside an entity whose action lies in the same bytes
    } rows[] = {
        {0, size, {"Legs", "Speed=3", "Lit=0", "Speed=3", "Time=0"}, 4},
        {second - 8, 20, {"No Behavior Panel Defined.", "Use \"Properties\" to change values."}, 0},
        {second + 15, size - second - 15, {"Time=0"}, 1},  // from the middle of a line on
        {-1, 5, {}, 0},
        {0, -1, {}, 0},
        {size, 1, {}, 0},
        {0, size + 1, {}, 0},
        {INT32_MAX, INT32_MAX, {}, 0},
        {INT32_MIN, INT32_MIN, {}, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.start) + '+' + std::to_string(row.length));
        m_entities.entities["a"].action = ActionPlace{path, row.start, row.length};
        follow({"a"});
        EXPECT_EQ(shown(), row.rows);
        follow({"a", "c"});
        EXPECT_EQ(m_session.size(), row.shared);
    }
}

TEST_F(BehaviorSessionTest, tellsOfValuesOutsideTheirLimits) {
    EXPECT_EQ(m_session.findingCount(), 0U);
    m_entities.entities["c"].skills[1] = std::numeric_limits<float>::quiet_NaN();
    follow({"c"});
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=nan"));
    EXPECT_TRUE(m_session.setValue(1, "4"));
    EXPECT_TRUE(m_session.undo());
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=nan"));
    EXPECT_EQ(m_session.changedCount(), 0U);
    m_entities.entities["b"].skills[0] = 12;
    follow({"a", "b"});
    EXPECT_EQ(m_session.findingsText(), "b: Speed is 12; allowed: 0 to 10\r\n");
}

TEST_F(BehaviorSessionTest, offersWhatTheActionsOfAllEntitiesTake) {
    const struct {
        const char *one, *other;  // controls of skill1
        std::vector<const char*> taken, refused;
        std::vector<std::string> options;
    } rows[] = {
        {"", "slider 0 5 1", {"0", "5"}, {"-1", "6"}, {}},
        {"spin 0 5 1", "slider 2 x 1", {"2", "5"}, {"1", "6"}, {}},
        {"spin 0 5 1", "spin 6 9 1", {}, {"3", "7"}, {}},
        {"drop 1 2 3", "drop 4 3.0 2", {"2", "3"}, {}, {"2", "3"}},
        {"drop 1 2 3", "drop 4 5", {}, {"1", "4"}, {}},
        {"drop_list 1 2 3", "spin 2 9 1", {"2"}, {}, {"2", "3"}},
        {"slider 1 9 1", "drop_pair", {"1"}, {}, {"1"}},
        {"drop a b", "", {}, {"1"}, {}},
        {"slider 9 1 1", "spin 1 9 1", {}, {"1", "5", "9"}, {}},
        {"drop 1 2 3", "spin 3 1 1", {}, {"1", "2", "3"}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.one) + " | " + row.other);
        for (const auto& [name, control] : {std::pair("a", row.one), {"b", row.other}}) {
            give(name, std::string(name) + "1.kez",
                 "// skill1: V 1\n// cntl: " + std::string(control) + "\n");
        }
        select({"a", "b"});
        m_session.open();
        ASSERT_EQ(m_session.size(), 1U);
        EXPECT_EQ(m_session.row(0).facts().options, row.options);
        for (const char* value : row.taken) {
            EXPECT_TRUE(m_session.setValue(0, value)) << value;
        }
        for (const char* value : row.refused) {
            EXPECT_FALSE(m_session.setValue(0, value)) << value;
        }
        m_session.refresh(true);
        EXPECT_EQ(m_session.row(0).blocked().empty(), !row.taken.empty());
    }
}

// Of two scripts, one in UTF-8 and one in the system's set.
TEST_F(BehaviorSessionTest, readsEachScriptInItsOwnCharacterSet) {
    give("a", "utf8.kez",
         "// title: T\xC3\xBCr\n// skill1: Gr\xC3\xBC\xC3\x9F 20\n// cntl: spin 0 9\n"
         "// help: f\xC3\xBCr \xCE\xA9\n// skil2: \xC3\xBC\n");
    give("b", "system.kez", "// title: T\xFCr\n// skill1: GR\xDC\xDF 1\n// skill2: T\xFCr\n");
    give("c", "other.kez", "// title: T\xFCr\n// skill2: T\xDCR\n");
    m_session.refresh(true);
    EXPECT_EQ(m_session.title(), "T\xC3\xBCr");
    EXPECT_EQ(m_session.row(0).facts().set, TextSet::Utf8);
    for (const char* search : {"GR\xC3\x9C", "gr\xFC", "F\xC3\x9CR", "\xCF\x89"}) {
        m_session.filter.search = search;
        EXPECT_TRUE(m_session.visibleRows()[0]) << search;
    }
    m_session.filter.search.clear();
    const std::string line = "skill1 Gr\xC3\xBC\xC3\x9F = 3\r\n";
    EXPECT_EQ(m_session.copyText(0, 1), line);
    EXPECT_THAT(m_session.findingsText(), HasSubstr("the default 20 of \"Gr\xC3\xBC\xC3\x9F\" lies"));
    // In the system's set.
    follow({"b"});
    EXPECT_EQ(m_session.title(), "T\xC3\xBCr");
    EXPECT_EQ(m_session.copyText(1, 2), "skill2 T\xC3\xBCr = 0\r\n");
    const PasteResult result = m_session.paste("T\xC3\x9CR = 4\r\nT\xFCr = 5\r\n");
    EXPECT_EQ(result.taken, 1U);
    EXPECT_EQ(result.refused.size(), 1U);
    EXPECT_EQ(skill("b", 2), 4.0F);
    // Names are compared as characters, the numbers' own texts as bytes.
    follow({"a", "b"});
    EXPECT_EQ(m_session.title(), "T\xC3\xBCr");
    EXPECT_THAT(shown(), ElementsAre("Gr\xC3\xBC\xC3\x9F=(different)"));
    follow({"b", "c"});
    EXPECT_THAT(shown(), ElementsAre("T\xFCr=(different)"));
}

TEST_F(BehaviorSessionTest, isPlainWhereTheHostHasNoEntities) {
    BehaviorSession plain(nullptr, m_host);
    plain.open();
    plain.refresh(true);
    ASSERT_EQ(plain.size(), 2U);
    EXPECT_EQ(plain.row(0).facts().label, "No Behavior Panel Defined.");
    EXPECT_FALSE(plain.canFollow());
}

// What could not be read when the rows were made is nothing to go back to.
TEST_F(BehaviorSessionTest, resetsToWhatWasReadLater) {
    m_entities.fails = [](const std::string& call) { return call.starts_with("skill("); };
    m_session.open();
    EXPECT_THAT(shown()[1], HasSubstr("blocked"));
    m_entities.fails = nullptr;
    m_session.refresh(true);
    EXPECT_EQ(shown()[1], "Speed=3");
    EXPECT_TRUE(m_session.setValue(1, "7"));
    m_session.resetRow(1, ResetTo::Loaded);
    EXPECT_EQ(skill("a", 1), 3.0F);
}

}  // namespace
}  // namespace zoka
