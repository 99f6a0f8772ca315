// Values as lines of text: copied from one entity and pasted to others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/customize/BehaviorFixture.h"

namespace zoka {
namespace {

using test::BehaviorSessionTest;
using testing::ElementsAre;
using testing::HasSubstr;

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
    give("a", "list.kez", "// skill1: Form 1\n// cntl: drop 1 2.0 3\n// skill2: Any 1\n// cntl: drop\n");
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

TEST_F(BehaviorSessionTest, pastesNamesThatLookLikeFields) {
    give("a", "c.kez",
         "// skill1: flag\n// skill2: skill\n// skill3: Many\n"
         "// cntl: drop 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22\n");
    m_session.refresh(true);
    const PasteResult result = m_session.paste("flag = 7\nskill = 8\nMany = 23");
    EXPECT_EQ(result.taken, 2U);
    EXPECT_THAT(result.refused, ElementsAre(HasSubstr("18, 19, 20 and 2 more))")));
    EXPECT_THAT(shown(), ElementsAre("flag=7 changed", "skill=8 changed", "Many=0"));
}

TEST_F(BehaviorSessionTest, pastesNoLineOfANameThatSeveralValuesHave) {
    give("a", "b.kez", "// skill1: Light\n// skill2: Power\n// flag1: Light\n// flag2: Power\n");
    m_session.refresh(true);
    const PasteResult result = m_session.paste("Light = 1\nflag1 = 1\nflag2 Power = 1");
    EXPECT_EQ(result.taken, 2U);
    EXPECT_THAT(result.refused, ElementsAre("Light = 1  (several values are called that)"));
    EXPECT_THAT(shown(), ElementsAre("Light=3", "Power=0", "Light=1 changed", "Power=1 changed"));
}

TEST_F(BehaviorSessionTest, pastesWhatItCopiedOfNamesThatHoldTheSign) {
    give("a", "sign.kez", "// skill1: a=b\n// skill3: a\n// skill4: a=b=c\n");
    m_session.refresh(true);
    const std::vector<std::string> before = shown();
    const std::string lines = m_session.copyText(0, m_session.size());
    for (size_t i = 0; i < m_session.size(); ++i) {
        EXPECT_TRUE(m_session.setValue(i, "9"));
    }
    EXPECT_EQ(m_session.paste(lines).taken, 3U) << lines;
    EXPECT_EQ(shown(), before);
    EXPECT_EQ(m_session.paste("a=b=5\na=6\nA=B=C=7\n").taken, 3U);
    EXPECT_THAT(shown(), ElementsAre("a=b=5 changed", "a=6 changed", "a=b=c=7 changed"));
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

}  // namespace
}  // namespace zoka
