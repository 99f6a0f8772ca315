// Numbers of records by their names.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zoka {

// Names are compared to the letter. Searching takes a few steps however the names were chosen, so a file can't
// be written that makes it slow.
class NameIndex {
public:
    void clear() { m_numbers.clear(); }
    // False, with the first one's number kept, when the name is there already.
    bool add(std::string_view name, std::uint32_t number) {
        return m_numbers.try_emplace(std::string(name), number).second;
    }
    std::optional<std::uint32_t> find(std::string_view name) const {
        const auto found = m_numbers.find(name);
        return found == m_numbers.end() ? std::nullopt : std::optional(found->second);
    }

private:
    std::map<std::string, std::uint32_t, std::less<>> m_numbers;
};

}  // namespace zoka
