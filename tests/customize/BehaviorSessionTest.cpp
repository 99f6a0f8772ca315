#include "customize/BehaviorSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <random>
#include <set>

#include "plugin/host/FolderHost.h"
#include "tests/support/FakeEntities.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"

namespace zoka {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char kScript[] =
    "action walk {\n// title: Walker\n// section: Legs\n// skill1: Speed 2\n// cntl: slider 0 10 0.5\n"
    "// flag1: Lit 1\n}\naction wait {\n// skill1: Speed 1\n// cntl: spin 1 20 1\n// skill2: Time 5\n}\n";

class BehaviorSessionTest : public testing::Test {
protected:
    BehaviorSessionTest() {
        const std::string path = m_folder.write("a.kez", kScript);
        const std::string text = kScript;
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

    void select(std::vector<std::string> names) {
        m_entities.selection = std::move(names);
        ++m_entities.count;
    }
    void follow(std::vector<std::string> names) {
        select(std::move(names));
        m_session.refresh(false);
    }
    std::vector<std::string> shown() const {
        std::vector<std::string> rows;
        for (size_t i = 0; i < m_session.size(); ++i) {
            const EntryModel& row = m_session.row(i);
            rows.push_back(row.facts().label + '=' + (row.isDifferent() ? "(different)" : row.value()) +
                           (row.blocked().empty() ? "" : " blocked"));
        }
        return rows;
    }
    float skill(const std::string& entity, size_t number) {
        return m_entities.entities[entity].skills[number - 1];
    }

    test::TempFolder m_folder;
    FolderHost m_host{{.project = m_folder.path(), .suite = m_folder.path()}};
    test::FakeEntities m_entities;
    BehaviorSession m_session{&m_entities, m_host};
};

TEST_F(BehaviorSessionTest, showsAndWritesTheEntitysValuesAtOnce) {
    EXPECT_EQ(m_session.title(), "Walker");
    EXPECT_EQ(m_session.status(), "a");
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=3", "Lit=0"));
    EXPECT_TRUE(m_session.setValue(1, "4.5"));
    EXPECT_TRUE(m_session.setValue(2, "1"));
    EXPECT_EQ(skill("a", 1), 4.5F);
    EXPECT_TRUE(m_entities.entities["a"].flags[0]);
    for (const char* bad : {"11", "", "x", "1e3", "-"}) {
        EXPECT_NE(m_session.setValue(1, bad).why(), "") << bad;
        EXPECT_EQ(skill("a", 1), 4.5F);
    }
    m_session.undo();
    m_session.undo();
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=3", "Lit=0"));
    EXPECT_EQ(skill("a", 1), 3.0F);
    m_session.redo();
    EXPECT_EQ(skill("a", 1), 4.5F);
    EXPECT_EQ(m_session.resetAll(ResetTo::Default), 2U);
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=2", "Lit=1"));
    EXPECT_EQ(m_session.resetAll(ResetTo::Loaded), 2U);
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_THAT(m_session.tooltip(1), HasSubstr("skill1; a.kez, line 4"));
}

TEST_F(BehaviorSessionTest, showsWhatSeveralEntitiesShareAndRestoresEachOnesOwn) {
    follow({"a", "b"});
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=(different)", "Lit=0"));
    EXPECT_TRUE(m_session.setValue(1, "7"));
    EXPECT_EQ(skill("a", 1) + skill("b", 1), 14.0F);
    m_session.undo();
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_EQ(skill("b", 1), 4.25F);
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=(different)", "Lit=0"));
    EXPECT_TRUE(m_session.setValue(1, "0"));
    EXPECT_EQ(skill("a", 1) + skill("b", 1), 0.0F);
    m_session.undo();
    // Of two actions: the value that both have, within both limits.
    follow({"a", "c"});
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=(different)"));
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
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=(different) blocked", "Lit=0"));
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

TEST_F(BehaviorSessionTest, followsSelectionValuesAndEntitiesThatGo) {
    m_entities.entities["a"].skills[0] = 9;
    m_session.refresh(false);
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=3", "Lit=0"));  // nothing was said to have changed
    ++m_entities.count;
    m_session.refresh(false);
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=9", "Lit=0"));
    // Another hand's change is seen although an edit came between.
    m_entities.entities["a"].flags[0] = true;
    ++m_entities.count;
    EXPECT_TRUE(m_session.setValue(1, "8"));
    m_session.refresh(false);
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=8", "Lit=1"));
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
    m_folder.write("a.kez", "// flag2: New 1\n" + std::string(kScript));
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
    m_session.undo();
    EXPECT_EQ(skill("c", 1), 5.0F);
    EXPECT_EQ(skill("c", 2), 0.0F);
}

TEST_F(BehaviorSessionTest, tellsOfValuesOutsideTheirLimits) {
    EXPECT_EQ(m_session.findingCount(), 0U);
    m_entities.entities["c"].skills[1] = std::numeric_limits<float>::quiet_NaN();
    follow({"c"});
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=nan"));
    EXPECT_TRUE(m_session.setValue(1, "4"));
    m_session.undo();
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
                panel.undo();
                break;
            case 1:
                panel.redo();
                break;
            case 2:
                panel.resetRow(row, below(2) == 0 ? ResetTo::Default : ResetTo::Loaded);
                break;
            case 3:
                panel.paste("skill1 = " + value + "\nflag1 = 1\nbody.mass = " + value +
                            "\nlight.color = #00000" + value);
                break;
            default:
                panel.setValue(row, value, below(2) == 0);
                break;
        }
        look(random);
        if (testing::Test::HasFailure()) {
            return;
        }
    }
}

class BehaviorAtRandomTest : public BehaviorSessionTest {
protected:
    BehaviorAtRandomTest() {
        const std::string text = "// skill1: Speed 2\n// flag1: Lit\n// skill1: Pace\n// skill3: Reach\n";
        const std::string path = m_folder.write("twice.kez", text);
        for (const char* name : {"a", "b", "c"}) {
            m_entities.entities[name].action = ActionPlace{path, 0, static_cast<std::int32_t>(text.size())};
        }
        m_session.refresh(true);
        follow({"a", "b", "c"});
    }
    // What a row must show; the panel's own words for the value.
    std::string held(size_t row) const {
        const std::string details = m_session.details(row);
        std::set<float> values;
        for (const std::string& name : m_session.entities()) {
            const test::FakeEntity& one = m_entities.entities.at(name);
            values.insert(details.starts_with("flag1")    ? static_cast<float>(one.flags[0])
                          : details.starts_with("skill1") ? one.skills[0]
                                                          : one.skills[2]);
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

// Whatever the host refuses, the panel shows what the host holds, or says that it can't tell.
TEST_F(BehaviorAtRandomTest, agreesWithAHostThatFailsAtRandom) {
    bool failing = true;
    std::mt19937 fate(20260301);
    m_entities.fails = [&](const std::string& call) {
        return failing && fate() % 5 == 0 && (call.starts_with("set") || call.starts_with("skill("));
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
    failing = false;
    m_session.refresh(true);
    for (const std::string& row : shown()) {
        EXPECT_THAT(row, Not(HasSubstr("blocked")));
    }
    expectAgreement();
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

// --- The panel form.

constexpr char kComponents[] =
    "<Components><Component name='body'><Property name='mass' type='float' value='75' edit='true'>"
    "<Constraint type='min' value='0'/><Constraint type='max' value='100'/></Property>"
    "<Property name='solid' type='bool' value='true' edit='true'/>"
    "<Property name='stuff' type='string' value='wool'/></Component>"
    "<Component name='light'><Property name='color' type='color' value='#ffffff' edit='true'/></Component>"
    "</Components>";
constexpr char kBehaviors[] =
    "<Behaviors><Component proj_file='c.xml'/>"
    "<Behavior name='walker'><Skill num='2' name='Health'/><Skill num='30' name='None'/>"
    "<Component name='body'><Edit name='mass' value='80'/></Component><Component name='light'/></Behavior>"
    "<Behavior name='boat'><Skill num='7' name='Draught'/><Component name='body'/></Behavior></Behaviors>";
constexpr char kLevels[] =
    "<Level name='other' mapfile='other.zlb'><Entity name='a' parent='boat'/><Entity name='far' "
    "parent='boat'/>"
    "</Level><Level name='open' mapfile='MAIN.zlb'>"
    "<Entity name='a' parent='walker'><Component name='body'><Edit name='mass' "
    "value='90'/></Component></Entity>"
    "<Entity name='b' parent='walker'/>"
    "<Entity name='c'><Component name='body'/><Component name='sail'><Edit name='size' "
    "value='3'/></Component>"
    "</Entity><Entity name='boat' parent='boat'/><Entity name='lost' parent='nobody'/></Level>";

class BehaviorComponentsTest : public BehaviorSessionTest {
protected:
    BehaviorComponentsTest() {
        closeDebugLog();
        debugLogFileName() = m_folder.path("log.xml");
        m_folder.write("c.xml", kComponents);
        m_folder.write("b.xml", kBehaviors);
        m_file = m_folder.write(
            "main.xml", "<Project name='Game' date='1' vers='8'>\n<Paths proj_file='" + m_folder.path() +
                            "' j8_file=''/>\n<Behavior proj_file='b.xml'/>" + kLevels + "</Project>\n");
        std::filesystem::current_path(m_folder.native(""));  // a save leaves its report there
        m_panel.open();
    }
    ~BehaviorComponentsTest() override {
        std::filesystem::current_path(m_before);
        closeDebugLog();
        debugLogFileName() = "debugLogOut.xml";
    }

    static std::string same(const std::string& text) { return text; }
    static std::unique_ptr<EntityComponents> components(const std::string& file, UserPrompt& prompt) {
        return std::make_unique<EntityComponents>(file, ProjectTexts{same, same}, prompt);
    }
    void follow(std::vector<std::string> names) {
        select(std::move(names));
        m_panel.refresh(false);
    }
    std::vector<std::string> shown() const {
        std::vector<std::string> rows;
        for (size_t i = 0; i < m_panel.size(); ++i) {
            const EntryModel& row = m_panel.row(i);
            const bool hasNoValue = !hasValue(row.facts().field);
            rows.push_back(row.facts().label +
                           (hasNoValue          ? ""
                            : row.isDifferent() ? "=(different)"
                                                : '=' + row.value()) +
                           (row.HasChanged() ? " changed" : "") + (row.blocked().empty() ? "" : " blocked"));
        }
        return rows;
    }
    size_t rowOf(const std::string& label) const {
        for (size_t i = 0; i < m_panel.size(); ++i) {
            if (m_panel.row(i).facts().label == label) {
                return i;
            }
        }
        ADD_FAILURE() << "no row " << label;
        return 0;
    }
    std::string saved() { return m_folder.read("main.xml"); }

    std::filesystem::path m_before = std::filesystem::current_path();
    std::string m_file = m_folder.path("main.xml");
    test::ScriptedPrompt m_prompt;
    BehaviorSession m_panel{&m_entities, m_host, components(m_file, m_prompt), "a"};
};

TEST_F(BehaviorComponentsTest, isDefinedForAnEntityOfTheOpenLevelWhoseParentIsLoaded) {
    const ProjectTexts texts{same, same};
    EXPECT_EQ(definedBehavior(m_file, "a", texts), "walker");
    EXPECT_EQ(definedBehavior(m_file, "boat", texts), "boat");
    for (const char* name : {"c", "lost", "far", "nobody", ""}) {
        EXPECT_EQ(definedBehavior(m_file, name, texts), std::nullopt) << name;
    }
    EXPECT_EQ(definedBehavior(m_folder.path("gone.xml"), "a", texts), std::nullopt);
    // No map of the project is the open one: the first level that has the entity.
    const std::string elsewhere = m_folder.write("street.xml", saved());
    EXPECT_EQ(definedBehavior(elsewhere, "a", texts), "boat");
    EXPECT_EQ(definedBehavior(elsewhere, "b", texts), "walker");
}

TEST_F(BehaviorComponentsTest, showsTheEntitysEditsOverTheBehaviorsOverTheDefaults) {
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=3", "Lit=0", "body", "mass=90 changed", "solid=1",
                                     "stuff=wool blocked", "light", "color=#ffffff"));
    EXPECT_THAT(m_panel.tooltip(4), HasSubstr("Value from the entity"));
    EXPECT_THAT(m_panel.tooltip(4), HasSubstr("Default: 75\r\nBefore: 80"));
    follow({"b"});
    EXPECT_THAT(shown()[4], "mass=80");
    EXPECT_THAT(m_panel.tooltip(4), HasSubstr("Value from the behavior walker"));
    EXPECT_THAT(m_panel.helpText(5), HasSubstr("Value from the component's default."));
    // What can't be shown says so.
    follow({"c"});
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=0", "No Parent Behavior", "body", "mass=75", "solid=1",
                                     "stuff=wool blocked", "sail", "COULD NOT FIND CMP DATA!", "size=3"));
    m_entities.entities["lost"] = m_entities.entities["stranger"] = m_entities.entities["c"];
    follow({"lost"});
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=0", "No Parent Behavior"));
    follow({"stranger"});
    EXPECT_THAT(shown(), ElementsAre("Speed=5", "Time=0", "COULD NOT FIND CMP DATA!"));
    // Names that stand in for those which the action does not declare.
    follow({"boat"});
    EXPECT_THAT(shown(), ElementsAre("Draught=0", "body", "mass=75", "solid=1", "stuff=wool blocked"));
}

TEST_F(BehaviorComponentsTest, editsReachTheProjectAndGoBackInTheirOrder) {
    EXPECT_NE(m_panel.setValue(4, "101").why(), "");
    EXPECT_TRUE(m_panel.setValue(4, "9", true));
    EXPECT_TRUE(m_panel.setValue(4, "95", true));
    EXPECT_TRUE(m_panel.setValue(1, "7"));
    EXPECT_TRUE(m_panel.setValue(5, "0"));
    EXPECT_TRUE(m_panel.hasUnsaved());
    const std::vector<std::string> edited = shown();
    EXPECT_EQ(edited[4], "mass=95 changed");
    m_panel.undo();
    m_panel.undo();
    EXPECT_EQ(skill("a", 1), 3.0F);
    m_panel.undo();
    EXPECT_EQ(shown()[4], "mass=90 changed");
    EXPECT_FALSE(m_panel.hasUnsaved());
    while (m_panel.redo()) {
    }
    EXPECT_EQ(shown(), edited);
    // The behaviour's value takes the entity's own away; the component's default is one of its own.
    EXPECT_EQ(m_panel.resetRow(4, ResetTo::Loaded), 1U);
    EXPECT_EQ(shown()[4], "mass=80");
    EXPECT_EQ(m_panel.resetAll(ResetTo::Default), 4U);
    EXPECT_EQ(shown()[4], "mass=75 changed");
    m_panel.undo();
    EXPECT_EQ(shown()[4], "mass=80");
    EXPECT_EQ(m_panel.copyText(0, m_panel.size()),
              "skill1 Speed = 7\r\nflag1 Lit = 0\r\nbody.mass = 80\r\nbody.solid = 0\r\nbody.stuff = wool\r\n"
              "light.color = #ffffff\r\n");
    const PasteResult pasted = m_panel.paste("body.mass = 60\r\nlight.range = 3\r\nbody.stuff = silk");
    EXPECT_EQ(pasted.taken, 1U);
    EXPECT_THAT(pasted.refused, ElementsAre(HasSubstr("no such value"), HasSubstr("does not offer")));
}

TEST_F(BehaviorComponentsTest, severalEntitiesGetTheValueAndEachItsOwnBack) {
    follow({"a", "b", "c"});
    EXPECT_THAT(shown(), ElementsAre("Legs", "Speed=(different)", "No Parent Behavior", "body",
                                     "mass=(different) changed", "solid=1", "stuff=wool blocked"));
    EXPECT_TRUE(m_panel.setValue(4, "80"));
    EXPECT_EQ(shown()[4], "mass=80 changed");
    m_panel.undo();
    EXPECT_EQ(shown()[4], "mass=(different) changed");
    EXPECT_FALSE(m_panel.hasUnsaved());
    m_panel.redo();
    EXPECT_EQ(m_panel.save(), ProjectSave::Saved);
    // The two that inherit it have no edit of their own.
    const std::string text = saved();
    EXPECT_EQ(text.find("value=\"80\""), text.rfind("value=\"80\""));
    EXPECT_EQ(text.find("value=\"90\""), text.npos);
    follow({"a"});
    EXPECT_EQ(shown()[4], "mass=80");
}

// A row whose entities differ is marked once they are not what they were, and reset to each one's own.
TEST_F(BehaviorComponentsTest, marksAndResetsRowsThatDiffer) {
    m_entities.entities["c"].action = m_entities.entities["a"].action;
    follow({"a", "b", "c"});
    EXPECT_EQ(shown()[1], "Speed=(different)");
    m_entities.entities["b"].skills[0] = 6;
    ++m_entities.count;
    m_panel.refresh(false);
    EXPECT_EQ(shown()[1], "Speed=(different) changed");
    EXPECT_EQ(m_panel.resetRow(1, ResetTo::Loaded), 1U);
    EXPECT_EQ(shown()[1], "Speed=(different)");
    EXPECT_EQ(skill("b", 1), 4.25F);
    m_panel.undo();
    EXPECT_EQ(skill("b", 1), 6.0F);
    m_panel.setValue(1, "7");
    EXPECT_EQ(m_panel.resetRow(1, ResetTo::Loaded), 1U);
    EXPECT_EQ(skill("a", 1) + skill("b", 1) + skill("c", 1), 3 + 4.25F + 5);
    // What the behaviour gives the one and the component the other, before and after.
    const size_t mass = rowOf("mass");
    EXPECT_EQ(shown()[mass], "mass=(different) changed");
    EXPECT_EQ(m_panel.resetRow(mass, ResetTo::Loaded), 1U);
    EXPECT_EQ(shown()[mass], "mass=(different)");
    EXPECT_FALSE(m_panel.canReset(mass, mass + 1, ResetTo::Loaded));
    follow({"a"});
    EXPECT_EQ(shown()[rowOf("mass")], "mass=80");
}

TEST_F(BehaviorComponentsTest, goesBackAndForthThroughAllEditsAndSavesThem) {
    follow({"a", "b", "c"});
    const std::vector<std::string> before = shown();
    wander(m_panel, 20260304, 1000, [&](std::mt19937& random) {
        if (random() % 50 == 0) {
            EXPECT_NE(m_panel.save(), ProjectSave::Cancelled);
        }
    });
    const std::vector<std::string> after = shown();
    EXPECT_NE(after, before);
    while (m_panel.undo()) {
    }
    EXPECT_EQ(shown(), before);
    while (m_panel.redo()) {
    }
    EXPECT_EQ(shown(), after);
    m_panel.save();
    for (const char* name : {"a", "b", "c"}) {
        follow({name});
        const std::vector<std::string> own = shown();
        BehaviorSession fresh(&m_entities, m_host, components(m_file, m_prompt), name);
        fresh.open();
        ASSERT_EQ(fresh.size(), own.size());
        for (size_t i = 0; i < fresh.size(); ++i) {
            EXPECT_EQ(fresh.row(i).value(), m_panel.row(i).value()) << own[i];
        }
    }
}

TEST_F(BehaviorComponentsTest, savingKeepsUndoAndClosingAsks) {
    EXPECT_EQ(m_panel.save(), ProjectSave::NothingToSave);
    EXPECT_TRUE(m_panel.close());
    m_panel.setValue(4, "50");
    m_panel.setValue(1, "8");
    EXPECT_EQ(m_panel.save(), ProjectSave::Saved);
    EXPECT_FALSE(m_panel.hasUnsaved());
    EXPECT_THAT(saved(), HasSubstr("value=\"50\""));
    EXPECT_EQ(shown()[4], "mass=50 changed");
    m_panel.undo();
    m_panel.undo();
    EXPECT_EQ(shown()[4], "mass=90 changed");
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_TRUE(m_panel.hasUnsaved());
    m_prompt.answers.push_back(PromptAnswer::Cancel);
    EXPECT_FALSE(m_panel.close());
    m_prompt.answers.push_back(PromptAnswer::No);
    EXPECT_TRUE(m_panel.close());
    EXPECT_THAT(saved(), HasSubstr("value=\"50\""));
    m_prompt.answers.push_back(PromptAnswer::Yes);
    EXPECT_TRUE(m_panel.close());
    EXPECT_THAT(saved(), HasSubstr("value=\"90\""));
}

// Nothing of a project that is closed stands below entities of the open one, and nothing gets into a file unasked.
TEST_F(BehaviorComponentsTest, goesOnToAnotherProjectAndAsksWhatBecomesOfEdits) {
    std::string open = m_file;
    const auto panelFor = [&] {
        open = m_file;
        auto panel = std::make_unique<BehaviorSession>(&m_entities, m_host, components(m_file, m_prompt), "a",
                                                       [&open] { return open; });
        panel->open();
        return panel;
    };
    const auto lastRow = [](const BehaviorSession& panel) {
        const EntryModel& row = panel.row(panel.size() - 1);
        return row.facts().label + '=' + row.value();
    };
    std::string text = saved();
    std::filesystem::create_directories(m_folder.native("other"));
    const std::string other = m_folder.write("other/main.xml", text.replace(text.find("'90'"), 4, "'33'"));
    auto panel = panelFor();
    open = other;
    panel->refresh(false);  // whether or not the host counts it
    EXPECT_FALSE(panel->otherProjectOpen());
    EXPECT_EQ(panel->row(4).value(), "33");
    open.clear();  // none
    panel->refresh(false);
    EXPECT_EQ(lastRow(*panel), "Lit=0");
    open = m_file;
    panel->refresh(false);
    EXPECT_EQ(panel->row(4).value(), "90");

    using enum PromptAnswer;
    const struct {
        bool closes;
        PromptAnswer answer;
        bool goesOn, isWritten;
    } rows[] = {{false, Cancel, false, false}, {false, No, true, false}, {false, Yes, true, true},
                {true, Cancel, false, false},  {true, No, true, false},  {true, Yes, true, true}};
    const std::string first = saved();
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.closes) + std::to_string(static_cast<int>(row.answer)));
        m_folder.write("main.xml", first);
        panel = panelFor();
        ASSERT_TRUE(panel->setValue(4, "50"));
        open = other;
        if (!row.closes) {
            // Back in the project of the edits they are there, and nobody asks.
            panel->refresh(false);
            EXPECT_TRUE(panel->otherProjectOpen());
            EXPECT_THAT(lastRow(*panel), HasSubstr("are not saved"));
            open = m_file;
            panel->refresh(false);
            EXPECT_FALSE(panel->otherProjectOpen());
            EXPECT_EQ(panel->row(4).value(), "50");
            open = other;  // seen by save() itself
        } else {
            panel->refresh(false);
        }
        m_prompt.answers.push_back(row.answer);
        m_prompt.asked.clear();
        if (row.closes) {
            EXPECT_EQ(panel->close(), row.goesOn);
        } else {
            EXPECT_EQ(panel->save() != ProjectSave::Cancelled, row.goesOn);
            EXPECT_EQ(panel->otherProjectOpen(), !row.goesOn);
            EXPECT_EQ(panel->hasUnsaved(), !row.goesOn);
            if (row.goesOn) {
                EXPECT_EQ(panel->row(4).value(), "33");
            }
        }
        ASSERT_EQ(m_prompt.asked.size(), 1U);
        EXPECT_THAT(m_prompt.asked[0].text, HasSubstr('\'' + m_file + '\''));
        EXPECT_EQ(saved().find("value=\"50\"") != std::string::npos, row.isWritten);
        EXPECT_THAT(m_folder.read("other/main.xml"), HasSubstr("'33'"));
    }
}

TEST_F(BehaviorComponentsTest, showsWhatAnotherProgramWroteAndAsksWhereBothDid) {
    const auto writeMass = [&](const std::string& value) {
        std::string text = saved();
        const size_t at = text.find("'90'") + 1;
        m_folder.write("main.xml", text.replace(at, 2, value) + "\n");
        osFiles().setTimes(m_file, FileTime::fromTicks(130000000000000000ULL + std::stoul(value)));
    };
    writeMass("44");
    m_panel.refresh(true);
    EXPECT_EQ(shown()[4], "mass=44 changed");
    m_panel.setValue(5, "0");
    m_folder.write("main.xml", "<!-- new -->" + saved());
    m_panel.refresh(true);
    EXPECT_EQ(shown()[5], "solid=0 changed");
    m_prompt.answers.push_back(PromptAnswer::Cancel);
    EXPECT_EQ(m_panel.save(), ProjectSave::Cancelled);
    EXPECT_TRUE(m_panel.hasUnsaved());
    // An entity that is gone takes no edits.
    m_entities.entities.erase("a");
    follow({});
    EXPECT_THAT(shown()[5], HasSubstr("blocked"));
    // A project that is gone.
    BehaviorSession panel(nullptr, m_host, components(m_folder.path("gone.xml"), m_prompt), "a");
    panel.open();
    EXPECT_EQ(panel.row(panel.size() - 1).facts().label, "COULD NOT FIND CMP DATA!");
}

}  // namespace
}  // namespace zoka
