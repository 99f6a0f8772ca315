#include "plugin/host/EntityAccess.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include "plugin/host/HostCall.h"

namespace zoka {
namespace {

// More than any level holds: a host that answers nonsense doesn't fill the memory.
constexpr std::int32_t kMostSelected = 100000;

// A text filled by the host, which may leave it without a terminator.
template <size_t Size>
std::string textOf(std::array<char, Size>& bytes) {
    bytes.back() = '\0';
    return bytes.data();
}

template <size_t Size>
constexpr std::int32_t sizeOf(const std::array<char, Size>&) {
    return static_cast<std::int32_t>(Size);
}

// Whether the host's table reaches up to the member that begins at `offset`.
bool reaches(const HostEntityOperations& host, size_t offset) {
    return host.size >= 0 && static_cast<size_t>(host.size) >= offset;
}

bool knowsOneEntity(const HostEntityOperations& host) {
    return reaches(host, offsetof(HostEntityOperations, countSelected)) && host.getActionBlock &&
           host.getSkill && host.setSkill && host.getFlag && host.setFlag;
}

bool knowsEntities(const HostEntityOperations& host) {
    return reaches(host, offsetof(HostEntityOperations, getChangeCount)) && host.countSelected &&
           host.getSelectedName && host.getActionBlockOf && host.getSkillOf && host.setSkillOf &&
           host.getFlagOf && host.setFlagOf;
}

bool countsChanges(const HostEntityOperations& host) {
    return reaches(host, sizeof host) && host.getChangeCount;
}

class HostEntities : public EntityAccess {
public:
    // With `single` the host knows that one entity alone.
    HostEntities(HostEntityOperations& host, std::optional<std::string> single)
        : m_host(host), m_single(std::move(single)) {}

    bool followsSelection() const override { return !m_single; }

    std::vector<std::string> selected() override {
        const HostCall underWay;
        if (m_single) {
            return {*m_single};
        }
        std::vector<std::string> names;
        const std::int32_t count = m_host.countSelected(&m_host);
        for (std::int32_t i = 0; i < count && i < kMostSelected; ++i) {
            std::array<char, kHostEntityNameSize> name{};
            if (!m_host.getSelectedName(&m_host, i, name.data(), sizeOf(name))) {
                break;  // the selection has shrunk meanwhile
            }
            names.push_back(textOf(name));
        }
        return names;
    }

    std::optional<std::uint32_t> changes() override {
        const HostCall underWay;
        std::uint32_t count = 0;
        const bool done = countsChanges(m_host) && m_host.getChangeCount(&m_host, &count);
        return done ? std::optional(count) : std::nullopt;
    }

    std::optional<ActionPlace> action(const std::string& entity) override {
        const HostCall underWay;
        std::array<char, kHostPathSize> path{};
        ActionPlace place;
        const bool done = m_single
                              ? isOurs(entity) && m_host.getActionBlock(&m_host, path.data(), sizeOf(path),
                                                                        &place.start, &place.length)
                              : m_host.getActionBlockOf(&m_host, entity.c_str(), path.data(), sizeOf(path),
                                                        &place.start, &place.length) != 0;
        place.script = textOf(path);
        return done ? std::optional(std::move(place)) : std::nullopt;
    }

    std::optional<float> skill(const std::string& entity, int number) override {
        const HostCall underWay;
        float value = 0;
        const bool done = m_single ? isOurs(entity) && m_host.getSkill(&m_host, number, &value)
                                   : m_host.getSkillOf(&m_host, entity.c_str(), number, &value) != 0;
        return done ? std::optional(value) : std::nullopt;
    }

    bool setSkill(const std::string& entity, int number, float value) override {
        const HostCall underWay;
        return std::isfinite(value) &&
               (m_single ? isOurs(entity) && m_host.setSkill(&m_host, number, value)
                         : m_host.setSkillOf(&m_host, entity.c_str(), number, value) != 0);
    }

    std::optional<bool> flag(const std::string& entity, int number) override {
        const HostCall underWay;
        std::int32_t value = 0;
        const bool done = m_single ? isOurs(entity) && m_host.getFlag(&m_host, number, &value)
                                   : m_host.getFlagOf(&m_host, entity.c_str(), number, &value) != 0;
        return done ? std::optional(value != 0) : std::nullopt;
    }

    bool setFlag(const std::string& entity, int number, bool on) override {
        const HostCall underWay;
        return m_single ? isOurs(entity) && m_host.setFlag(&m_host, number, on ? 1 : 0)
                        : m_host.setFlagOf(&m_host, entity.c_str(), number, on ? 1 : 0) != 0;
    }

private:
    bool isOurs(const std::string& entity) const { return entity == *m_single; }

    HostEntityOperations& m_host;
    std::optional<std::string> m_single;
};

}  // namespace

std::unique_ptr<EntityAccess> makeEntityAccess(const HostContext* context) {
    HostEntityOperations* const host = context ? context->operations : nullptr;
    if (!host) {
        return nullptr;
    }
    if (knowsEntities(*host)) {
        return std::make_unique<HostEntities>(*host, std::nullopt);
    }
    if (!knowsOneEntity(*host) || !context->entityName) {
        return nullptr;
    }
    return std::make_unique<HostEntities>(*host, context->entityName);
}

}  // namespace zoka
