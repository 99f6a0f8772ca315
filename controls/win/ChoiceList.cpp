#include "controls/win/ChoiceList.h"

#include <algorithm>
#include <vector>

#include "controls/EntryRules.h"
#include "controls/win/ControlClasses.h"
#include "ui/win/WindowKit.h"

namespace zoka {

void ChoiceList::fill(HWND list, const EntryFacts& facts) {
    m_list = list;
    m_foreign = false;
    const auto add = [&](const std::vector<std::string>& choices) {
        for (const std::string& choice : choices) {
            SendMessageW(m_list, CB_ADDSTRING, 0,
                         reinterpret_cast<LPARAM>(wideText(choice, codePageOf(facts.set)).c_str()));
        }
    };
    add(facts.options);
    if (facts.hostNames) {
        add(*facts.hostNames);
    }
}

void ChoiceList::refill(const EntryFacts& before, const EntryFacts& facts) {
    if (before.options != facts.options || before.hostNames != facts.hostNames) {
        SendMessageA(m_list, CB_RESETCONTENT, 0, 0);
        fill(m_list, facts);
    } else if (m_foreign) {
        SendMessageA(m_list, CB_DELETESTRING, 0, 0);
        m_foreign = false;
    }
}

void ChoiceList::show(const std::string& value, const EntryFacts& facts) {
    // Compared to the letter, which the list's own search doesn't do.
    const auto find = [&](const std::vector<std::string>& choices) {
        const auto same = [&](const std::string& choice) { return isSameChoice(facts, choice, value); };
        return static_cast<size_t>(std::ranges::find_if(choices, same) - choices.begin());
    };
    const size_t own = facts.options.size();
    const size_t named = facts.hostNames ? facts.hostNames->size() : 0;
    size_t place = find(facts.options);
    if (place == own && named > 0) {
        place += find(*facts.hostNames);
    }
    if (place < own + named) {
        place += m_foreign ? 1 : 0;
    } else {
        if (m_foreign) {
            SendMessageA(m_list, CB_DELETESTRING, 0, 0);
        }
        SendMessageW(m_list, CB_INSERTSTRING, 0,
                     reinterpret_cast<LPARAM>(wideText(value, codePageOf(facts.set)).c_str()));
        m_foreign = true;
        place = 0;
    }
    SendMessageA(m_list, CB_SETCURSEL, place, 0);
}

std::optional<std::string> ChoiceList::chosen(const EntryFacts& facts) const {
    auto place = static_cast<size_t>(std::max<LRESULT>(SendMessageA(m_list, CB_GETCURSEL, 0, 0), 0));
    if (m_foreign && place-- == 0) {
        return std::nullopt;
    }
    if (place < facts.options.size()) {
        return facts.options[place];
    }
    place -= facts.options.size();
    return facts.hostNames && place < facts.hostNames->size() ? std::optional((*facts.hostNames)[place])
                                                              : std::nullopt;
}

}  // namespace zoka
