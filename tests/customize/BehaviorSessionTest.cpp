#include "customize/BehaviorSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "plugin/host/FolderHost.h"
#include "tests/support/FakeEntities.h"
#include "tests/support/TempFolder.h"

namespace zoka {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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
    std::string why;
    for (const char* bad : {"11", "", "x", "1e3", "-"}) {
        EXPECT_FALSE(m_session.setValue(1, bad, &why)) << bad;
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
    std::string why;
    EXPECT_FALSE(m_session.setValue(1, "7", &why));
    EXPECT_FALSE(why.empty());
    EXPECT_EQ(skill("a", 1), 3.0F);
    EXPECT_EQ(skill("b", 1), 4.25F);
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=(different) blocked", "Lit=0"));
    m_entities.fails = nullptr;
    m_session.refresh(true);
    EXPECT_TRUE(m_session.setValue(1, "7"));
}

TEST_F(BehaviorSessionTest, followsSelectionValuesAndEntitiesThatGo) {
    m_entities.entities["a"].skills[0] = 9;
    m_session.refresh(false);
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=3", "Lit=0"));  // nothing was said to have changed
    ++m_entities.count;
    m_session.refresh(false);
    EXPECT_THAT(shown(), ElementsAre("Legs=", "Speed=9", "Lit=0"));
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
    m_entities.entities["b"].skills[0] = 12;
    follow({"a", "b"});
    EXPECT_EQ(m_session.findingsText(), "b: Speed is 12; allowed: 0 to 10\r\n");
}

TEST_F(BehaviorSessionTest, isPlainWhereTheHostHasNoEntities) {
    BehaviorSession plain(nullptr, m_host);
    plain.open();
    plain.refresh(true);
    ASSERT_EQ(plain.size(), 2U);
    EXPECT_EQ(plain.row(0).facts().label, "No Behavior Panel Defined.");
    EXPECT_FALSE(plain.canFollow());
}

// Whatever the host refuses, what it holds and what the panel shows agree once the panel has looked again.
TEST_F(BehaviorSessionTest, agreesWithAHostThatFailsAtRandom) {
    follow({"a", "b", "c"});
    std::mt19937 random(20260301);
    const auto below = [&](unsigned end) { return static_cast<unsigned>(random() % end); };
    bool failing = true;
    m_entities.fails = [&](const std::string& call) {
        return failing && call.starts_with("set") && below(5) == 0;
    };
    for (int round = 0; round < 3000; ++round) {
        const size_t row = below(static_cast<unsigned>(m_session.size()));
        switch (below(6)) {
            case 0:
                m_session.undo();
                break;
            case 1:
                m_session.redo();
                break;
            case 2:
                m_session.resetRow(row, ResetTo::Default);
                break;
            default:
                m_session.setValue(row, std::to_string(below(12)), nullptr, below(2) == 0);
                break;
        }
        if (below(10) == 0) {
            m_session.refresh(true);
        }
        if (below(40) == 0) {
            std::vector<std::string> names = {"a", "b", "c"};
            std::shuffle(names.begin(), names.end(), random);
            names.resize(1 + below(3));
            follow(names);
        }
    }
    failing = false;
    m_session.refresh(true);
    const std::vector<std::string> before = shown();
    m_session.open();
    EXPECT_EQ(shown(), before);
}

}  // namespace
}  // namespace zoka
