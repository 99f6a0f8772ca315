#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>

#include "tests/support/FakeEntities.h"

namespace zoka {
namespace {

using testing::ElementsAre;
using Word = std::int32_t;

// A host's table over entities that a test has put in.
struct HostTable : HostEntityOperations {
    explicit HostTable(test::FakeEntities& all, std::string one)
        : HostEntityOperations{}, fake(all), named(one) {
        size = sizeof(HostEntityOperations);
        getActionBlock = [](HostEntityOperations* self, char* path, Word bytes, Word* start, Word* length) {
            return block(self, of(self).named, path, bytes, start, length);
        };
        getSkill = [](HostEntityOperations* self, Word number, float* value) {
            return give(of(self).fake.skill(of(self).named, number), value);
        };
        setSkill = [](HostEntityOperations* self, Word number, float value) -> Word {
            return of(self).fake.setSkill(of(self).named, number, value);
        };
        getFlag = [](HostEntityOperations* self, Word number, Word* value) {
            return give(of(self).fake.flag(of(self).named, number), value);
        };
        setFlag = [](HostEntityOperations* self, Word number, Word value) -> Word {
            return of(self).fake.setFlag(of(self).named, number, value != 0);
        };
        countSelected = [](HostEntityOperations* self) { return of(self).counted; };
        getSelectedName = [](HostEntityOperations* self, Word index, char* name, Word bytes) -> Word {
            const auto& names = of(self).fake.selection;
            if (index < 0 || static_cast<size_t>(index) >= names.size()) {
                return 0;
            }
            // Without a terminator where it just fits.
            std::memcpy(name, names[static_cast<size_t>(index)].c_str(),
                        std::min(static_cast<size_t>(bytes), names[static_cast<size_t>(index)].size() + 1));
            return 1;
        };
        getActionBlockOf = [](HostEntityOperations* self, const char* entity, char* path, Word bytes,
                              Word* start,
                              Word* length) { return block(self, entity, path, bytes, start, length); };
        getSkillOf = [](HostEntityOperations* self, const char* entity, Word number, float* value) {
            return give(of(self).fake.skill(entity, number), value);
        };
        setSkillOf = [](HostEntityOperations* self, const char* entity, Word number, float value) -> Word {
            return of(self).fake.setSkill(entity, number, value);
        };
        getFlagOf = [](HostEntityOperations* self, const char* entity, Word number, Word* value) {
            return give(of(self).fake.flag(entity, number), value);
        };
        setFlagOf = [](HostEntityOperations* self, const char* entity, Word number, Word value) -> Word {
            return of(self).fake.setFlag(entity, number, value != 0);
        };
        getChangeCount = [](HostEntityOperations* self, std::uint32_t* count) {
            return give(of(self).fake.changes(), count);
        };
    }

    static HostTable& of(HostEntityOperations* self) { return *static_cast<HostTable*>(self); }
    template <class Answer, class Value>
    static Word give(const std::optional<Answer>& answer, Value* value) {
        if (answer) {
            *value = *answer;
        }
        return answer.has_value();
    }
    static Word block(HostEntityOperations* self, const std::string& entity, char* path, Word bytes,
                      Word* start, Word* length) {
        const auto place = of(self).fake.action(entity);
        if (!place || static_cast<size_t>(bytes) <= place->script.size()) {
            return 0;
        }
        std::memcpy(path, place->script.c_str(), place->script.size() + 1);
        *start = place->start;
        *length = place->length;
        return 1;
    }

    test::FakeEntities& fake;
    std::string named;
    Word counted = 0;
};

class EntityAccessTest : public testing::Test {
protected:
    EntityAccessTest() {
        m_fake.entities["guard"] = {.action = ActionPlace{"C:\\p\\guard.kez", 10, 90}};
        m_fake.entities["gate"] = {};
        m_fake.selection = {"guard", "gate"};
        m_table.counted = 2;
    }

    test::FakeEntities m_fake;
    HostTable m_table{m_fake, "guard"};
    HostContext m_context{0, "guard", &m_table};
};

TEST_F(EntityAccessTest, readsAndWritesEveryEntityThatTheHostKnows) {
    const auto access = makeEntityAccess(&m_context);
    ASSERT_TRUE(access);
    EXPECT_TRUE(access->followsSelection());
    EXPECT_THAT(access->selected(), ElementsAre("guard", "gate"));
    EXPECT_EQ(access->action("guard"), (ActionPlace{"C:\\p\\guard.kez", 10, 90}));
    EXPECT_FALSE(access->action("gate"));
    EXPECT_TRUE(access->setSkill("gate", 20, 2.5F));
    EXPECT_TRUE(access->setFlag("guard", 8, true));
    EXPECT_EQ(access->skill("gate", 20), 2.5F);
    EXPECT_EQ(access->flag("guard", 8), true);
    EXPECT_EQ(access->flag("gate", 8), false);
    EXPECT_EQ(access->changes(), 2U);
    EXPECT_FALSE(access->skill("boat", 1));
    EXPECT_FALSE(access->setSkill("gate", 21, 1));
    EXPECT_FALSE(access->flag("gate", 0));
    m_fake.takeCalls();
    EXPECT_FALSE(access->setSkill("gate", 1, std::nanf("")));
    EXPECT_THAT(m_fake.takeCalls(), ElementsAre());
}

TEST_F(EntityAccessTest, isLeftWithOneEntityWhereTheHostKnowsNoMore) {
    m_table.size = offsetof(HostEntityOperations, countSelected);
    const auto access = makeEntityAccess(&m_context);
    ASSERT_TRUE(access);
    EXPECT_FALSE(access->followsSelection());
    EXPECT_THAT(access->selected(), ElementsAre("guard"));
    EXPECT_FALSE(access->changes());
    EXPECT_TRUE(access->setSkill("guard", 3, 4));
    EXPECT_EQ(access->skill("guard", 3), 4.0F);
    EXPECT_TRUE(access->setFlag("guard", 1, true));
    EXPECT_EQ(access->flag("guard", 1), true);
    EXPECT_EQ(access->action("guard")->length, 90);
    EXPECT_FALSE(access->setSkill("gate", 3, 4));
    EXPECT_EQ(m_fake.entities["gate"].skills[2], 0);
}

TEST_F(EntityAccessTest, bearsTablesThatLackSomething) {
    const struct {
        const char* what;
        void (*spoil)(HostTable& table, HostContext& context);
        bool any, follows;
    } rows[] = {
        {"no operations", [](HostTable&, HostContext& c) { c.operations = nullptr; }, false, false},
        {"a table of size 0", [](HostTable& t, HostContext&) { t.size = 0; }, false, false},
        {"a size below 0", [](HostTable& t, HostContext&) { t.size = -1; }, false, false},
        {"no writing of skills", [](HostTable& t, HostContext&) { t.setSkillOf = nullptr; }, true, false},
        {"no operations for one entity either",
         [](HostTable& t, HostContext&) {
             t.getSkillOf = nullptr;
             t.getSkill = nullptr;
         },
         false, false},
        {"no name, entities known", [](HostTable&, HostContext& c) { c.entityName = nullptr; }, true, true},
        {"no name, none known",
         [](HostTable& t, HostContext& c) {
             c.entityName = nullptr;
             t.countSelected = nullptr;
         },
         false, false},
        {"no count of changes", [](HostTable& t, HostContext&) { t.getChangeCount = nullptr; }, true, true},
    };
    for (const auto& row : rows) {
        HostTable table(m_fake, "guard");
        HostContext context{0, "guard", &table};
        row.spoil(table, context);
        const auto access = makeEntityAccess(&context);
        ASSERT_EQ(access != nullptr, row.any) << row.what;
        if (access) {
            EXPECT_EQ(access->followsSelection(), row.follows) << row.what;
            EXPECT_EQ(access->changes().has_value(), table.getChangeCount != nullptr) << row.what;
        }
    }
    EXPECT_FALSE(makeEntityAccess(nullptr));
}

TEST_F(EntityAccessTest, cutsANameWithoutAnEndAndASelectionThatShrinks) {
    m_table.counted = 1000000;
    m_fake.selection = {std::string(kHostEntityNameSize + 10, 'n'), "gate"};
    EXPECT_THAT(makeEntityAccess(&m_context)->selected(),
                ElementsAre(std::string(kHostEntityNameSize - 1, 'n'), "gate"));
    m_table.counted = -5;
    EXPECT_THAT(makeEntityAccess(&m_context)->selected(), ElementsAre());
}

}  // namespace
}  // namespace zoka
