// Entities that record every call and fail as a test asks.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <map>

#include "plugin/host/EntityAccess.h"
#include "tests/support/EventLog.h"

namespace zoka::test {

struct FakeEntity {
    std::optional<ActionPlace> action = {};
    std::array<float, kEntitySkills> skills{};
    std::array<bool, kEntityFlags> flags{};
};

// Entities and selection are plain members; whoever changes them counts `count` up. Each call is recorded as
// "setSkill(guard, 3, 2.5)". An operation fails when its entity is gone, and where `fails` says so.
class FakeEntities : public EntityAccess {
public:
    std::map<std::string, FakeEntity> entities;
    std::vector<std::string> selection;
    bool follows = true, counts = true;
    std::uint32_t count = 0;
    std::function<bool(const std::string& call)> fails;
    std::function<void()> beforeChanges;  // called where changes() is asked for

    std::vector<std::string> takeCalls() { return m_calls.take(); }

    bool followsSelection() const override { return follows; }
    std::vector<std::string> selected() override { return selection; }
    std::optional<std::uint32_t> changes() override {
        if (beforeChanges) {
            beforeChanges();
        }
        return counts ? std::optional(count) : std::nullopt;
    }

    std::optional<ActionPlace> action(const std::string& entity) override {
        FakeEntity* const one = use("action(" + entity + ")", entity);
        return one ? one->action : std::nullopt;
    }
    std::optional<float> skill(const std::string& entity, int number) override {
        FakeEntity* const one = use("skill(" + entity + ", " + std::to_string(number) + ")", entity);
        return one && isOne(number, kEntitySkills) ? std::optional(one->skills[at(number)]) : std::nullopt;
    }
    bool setSkill(const std::string& entity, int number, float value) override {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%g", static_cast<double>(value));
        FakeEntity* const one =
            use("setSkill(" + entity + ", " + std::to_string(number) + ", " + digits + ")", entity);
        if (!one || !isOne(number, kEntitySkills)) {
            return false;
        }
        one->skills[at(number)] = value;
        ++count;
        return true;
    }
    std::optional<bool> flag(const std::string& entity, int number) override {
        FakeEntity* const one = use("flag(" + entity + ", " + std::to_string(number) + ")", entity);
        return one && isOne(number, kEntityFlags) ? std::optional(one->flags[at(number)]) : std::nullopt;
    }
    bool setFlag(const std::string& entity, int number, bool on) override {
        FakeEntity* const one =
            use("setFlag(" + entity + ", " + std::to_string(number) + ", " + (on ? "1" : "0") + ")", entity);
        if (!one || !isOne(number, kEntityFlags)) {
            return false;
        }
        one->flags[at(number)] = on;
        ++count;
        return true;
    }

private:
    static bool isOne(int number, int last) { return number >= 1 && number <= last; }
    static size_t at(int number) { return static_cast<size_t>(number - 1); }
    FakeEntity* use(const std::string& call, const std::string& entity) {
        m_calls.add(call);
        const auto found = entities.find(entity);
        return found == entities.end() || (fails && fails(call)) ? nullptr : &found->second;
    }

    EventLog m_calls;
};

}  // namespace zoka::test
