// The choices of a row in its drop list.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "controls/EntryFacts.h"

namespace zoka {

// The list shows the row's own options and behind them the host's names. The row's facts come with each call, because
// a list that is in sight goes on to the next row. [panel thread]
class ChoiceList {
public:
    // `list` stays the caller's.
    void fill(HWND list, const EntryFacts& facts);
    // The list, which shows the choices of `before`, gets those of `facts`.
    void refill(const EntryFacts& before, const EntryFacts& facts);
    // A value that is no choice is shown as one, in front of them, and stays one.
    void show(const std::string& value, const EntryFacts& facts);
    // Nothing where the value that is no choice stands chosen.
    std::optional<std::string> chosen(const EntryFacts& facts) const;

private:
    HWND m_list = nullptr;
    bool m_foreign = false;  // the list begins with a value that is no choice
};

}  // namespace zoka
