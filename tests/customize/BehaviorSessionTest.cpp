#include "customize/BehaviorSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>

#include "tests/customize/BehaviorFixture.h"

namespace zoka {
namespace {

using test::BehaviorSessionTest;
using test::kTwoActions;
using test::wander;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

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

// Whether they are still the editor's entities is asked once for all rows of a step, also of a host that does not count its
// changes.
TEST_F(BehaviorSessionTest, looksAtTheEditorsEntitiesOncePerStep) {
    m_entities.counts = false;
    follow({"a", "b"});
    m_session.refresh(true);
    const auto questions = [this] {
        const std::vector<std::string> calls = m_entities.takeCalls();
        return std::ranges::count_if(calls,
                                     [](const std::string& one) { return one.starts_with("action("); });
    };
    questions();
    ASSERT_TRUE(m_session.setValue(1, "7"));
    const auto once = questions();
    EXPECT_GT(once, 0);
    EXPECT_EQ(m_session.resetAll(ResetTo::Default), 2U);
    EXPECT_EQ(questions(), once);
    EXPECT_EQ(m_session.paste("skill1 = 3\nflag1 = 0\n").taken, 2U);
    EXPECT_EQ(questions(), once);
    EXPECT_TRUE(m_session.undo());
    EXPECT_EQ(questions(), once);
    EXPECT_TRUE(m_session.redo());
    EXPECT_EQ(questions(), once);
    select({"b"});
    EXPECT_EQ(m_session.resetAll(ResetTo::Default), 0U);
    EXPECT_EQ(skill("a", 1), 3.0F);
}

// The editor opens a level with an entity of that name while several rows are being pasted.
TEST_F(BehaviorSessionTest, writesNoMoreRowsOfAStepToAnotherLevel) {
    int asked = 0;  // since the first row was written
    m_entities.beforeChanges = [&] {
        if (skill("a", 1) == 7.0F && ++asked == 2) {  // after its own change has been counted
            m_entities.entities["a"].action->script += "x";
            ++m_entities.count;
        }
    };
    const PasteResult result = m_session.paste("skill1 = 7\nflag1 = 1\n");
    EXPECT_GE(asked, 2);
    EXPECT_EQ(result.taken, 1U);
    EXPECT_THAT(result.refused, ElementsAre(HasSubstr("gone on to other entities")));
    EXPECT_FALSE(m_entities.entities["a"].flags[0]);
}

// The same between two writes of one row: what was written then can't be taken back, and nothing more is.
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

// The user selects something else among them: all of it is written and can be undone, and nothing more is written until the
// panel has looked.
TEST_F(BehaviorSessionTest, hasWrittenWhereOnlyTheSelectionChangesAmongItsOwnWrites) {
    follow({"a", "b"});
    m_entities.fails = [this](const std::string& call) {
        if (call == "setSkill(b, 1, 7)") {
            select({"c"});
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
    select({"c"});
    m_session.refresh(false);
    EXPECT_EQ(shown()[1], "Time=0");
}

// Of a host that counts its changes one by one, the panel's own are no reason to ask about the entities again; where another hand's
// change or a count of another kind is among them, it asks.
TEST_F(BehaviorSessionTest, asksAboutTheEntitiesOnlyWhereTheCountIsNotItsOwn) {
    follow({"a", "b"});
    const auto questions = [this] {
        const std::vector<std::string> calls = m_entities.takeCalls();
        return std::ranges::count_if(calls,
                                     [](const std::string& one) { return one.starts_with("action("); });
    };
    ASSERT_TRUE(m_session.setValue(1, "7"));
    questions();
    ASSERT_TRUE(m_session.setValue(1, "8"));
    EXPECT_EQ(questions(), 0);
    m_entities.fails = [this](const std::string& call) {
        m_entities.count += call == "setSkill(b, 1, 9)" ? 1U : 0U;
        return false;
    };
    ASSERT_TRUE(m_session.setValue(1, "9"));
    EXPECT_GT(questions(), 0);
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

TEST_F(BehaviorSessionTest, copiesLinesAndPastesThoseThatFit) {
    EXPECT_EQ(m_session.copyText(0, m_session.size()), "skill1 Speed = 3\r\nflag1 Lit = 0\r\n");
    follow({"c"});
    const PasteResult result = m_session.paste(
        "skill1 Speed = 8\r\nflag1 Lit = 1\r\nTime=4\r\nskill2 Health = 3\r\n\r\nSpeed\r\nskill1 = 30");
    EXPECT_EQ(result.taken, 2U);
    EXPECT_THAT(result.refused,
                ElementsAre(HasSubstr("flag1 Lit = 1  (there is no such value here)"),
                            HasSubstr("skill2 Health = 3  ("), HasSubstr("Speed  (it is not of the form"),
                            HasSubstr("skill1 = 30  (30 is too large")));
    EXPECT_EQ(skill("c", 1), 8.0F);
    EXPECT_EQ(skill("c", 2), 4.0F);
    EXPECT_TRUE(m_session.undo());
    EXPECT_EQ(skill("c", 1), 5.0F);
    EXPECT_EQ(skill("c", 2), 0.0F);
}

TEST_F(BehaviorSessionTest, pastesWhatAListOffers) {
    const std::string text = "// skill1: Form 1\n// cntl: drop 1 2.0 3\n// skill2: Any 1\n// cntl: drop\n";
    const std::string path = m_folder.write("list.kez", text);
    m_entities.entities["a"].action = ActionPlace{path, 0, static_cast<std::int32_t>(text.size())};
    m_entities.entities["a"].skills[0] = 7;
    m_session.refresh(true);
    EXPECT_THAT(shown(), ElementsAre("Form=7", "Any=0"));
    const struct {
        const char* line;
        float value;
        const char* refused;  // null: it isn't
    } rows[] = {
        {"skill1 Form = 7", 7, nullptr},  // as it is
        {"skill1 Form = 2", 2, nullptr},
        {"skill1 Form = 7", 2, "(\"7\" is not among its choices (1, 2.0, 3))"},
        {"skill1 Form = 3.000", 3, nullptr},
        {"skill1 Form = wide", 3, "(Only a number fits here"},
        {"skill2 Any = 9", 3, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const PasteResult result = m_session.paste(row.line);
        EXPECT_EQ(skill("a", 1), row.value);
        ASSERT_EQ(result.refused.size(), row.refused ? 1U : 0U);
        if (row.refused) {
            EXPECT_THAT(result.refused[0], HasSubstr(row.refused));
        }
    }
    EXPECT_THAT(shown(), ElementsAre("Form=3 changed", "Any=9 changed"));
    m_session.paste("Form = 2");
    EXPECT_THAT(shown(), ElementsAre("Form=2.0 changed", "Any=9 changed"));
}

TEST_F(BehaviorSessionTest, pastesNoLineOfANameThatSeveralValuesHave) {
    const std::string script =
        "action a {\n// skill1: Light\n// skill2: Power\n// flag1: Light\n// flag2: Power\n}";
    m_entities.entities["a"].action = {m_folder.write("b.kez", script), 0,
                                       static_cast<std::int32_t>(script.size())};
    m_session.refresh(true);
    const PasteResult result = m_session.paste("Light = 1\nflag1 = 1\nflag2 Power = 1");
    EXPECT_EQ(result.taken, 2U);
    EXPECT_THAT(result.refused, ElementsAre("Light = 1  (several values are called that)"));
    EXPECT_THAT(shown(), ElementsAre("Light=3", "Power=0", "Light=1 changed", "Power=1 changed"));
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
            const std::string text = "// skill1: V 1\n// cntl: " + std::string(control) + "\n";
            const std::string path = m_folder.write(std::string(name) + "1.kez", text);
            m_entities.entities[name].action = ActionPlace{path, 0, static_cast<std::int32_t>(text.size())};
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
    const auto give = [this](const char* entity, const std::string& file, const std::string& text) {
        const std::string path = m_folder.write(file, text);
        m_entities.entities[entity].action = ActionPlace{path, 0, static_cast<std::int32_t>(text.size())};
    };
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

class BehaviorAtRandomTest : public BehaviorSessionTest {
protected:
    BehaviorAtRandomTest() {
        const char* const one = "// skill1: Speed 2\n// flag1: Lit\n// skill1: Pace\n// skill3: Reach\n";
        give({one, one, one});
    }
    // An action for each of three entities, which are shown then.
    void give(const std::vector<const char*>& texts) {
        const char* name = "a";
        for (const char* const text : texts) {
            const bool isShared = std::string_view(text) == texts.front();
            const std::string path =
                m_folder.write(isShared ? "at-random.kez" : std::string(name) + "-at-random.kez", text);
            m_entities.entities[name].action =
                ActionPlace{path, 0, static_cast<std::int32_t>(std::string_view(text).size())};
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

// Whatever the host refuses, the panel shows what the host holds, or says that it can't tell; and what it shows at the end is
// what a panel shows that is opened then. Entities with one action, which declares a number twice, and with three:
// rows that not all have, narrower limits, choices, limits that are the wrong way round.
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
            give(level.actions);
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
