// What a script's author should know about the markup.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zoka {

// A text of the script as findings name it: in quotes, cut where it is long.
std::string quotedBeginning(std::string_view text);

struct MarkupFinding {
    int line = 0;          // counts from 1
    std::string what;      // what can't be right, and what was done
    bool ofValue = false;  // about a value, and settled when the value changes
};

// Keeps the first thousand, so that a text full of faults doesn't become a list larger than itself.
class MarkupFindings {
public:
    static constexpr size_t kKept = 1000;

    void add(int line, std::string what, bool ofValue = false) {
        ++m_count;
        if (m_kept.size() < kKept) {
            m_kept.push_back({line, std::move(what), ofValue});
        }
    }
    bool wantsMore() const { return m_kept.size() < kKept; }
    size_t count() const { return m_count; }  // of all, kept or not
    const std::vector<MarkupFinding>& kept() const { return m_kept; }
    void sortByLine();
    // Only while all are kept.
    void forgetThoseOfValues() {
        m_count -= std::erase_if(m_kept, [](const MarkupFinding& one) { return one.ofValue; });
    }

private:
    std::vector<MarkupFinding> m_kept;
    size_t m_count = 0;
};

}  // namespace zoka
