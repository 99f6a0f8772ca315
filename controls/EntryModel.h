// The value of one row: what was loaded, what it is now, which texts it takes.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "controls/EntryControl.h"
#include "controls/EntryFacts.h"
#include "util/Outcome.h"

namespace zoka {

// A row without a window: windows exist for the rows in sight alone and show what this holds. [panel thread]
class EntryModel final : public EntryControl {
public:
    explicit EntryModel(EntryFacts facts);

    // Values outside the limits are taken: an entity or a script may hold them.
    bool SetValueFromText(const std::string& text) override;
    std::string GetValueText() const override { return m_value; }
    bool HasChanged() const override {
        return m_value != m_facts.value || m_different != m_facts.different || m_others;
    }
    int GetHeight() const override;

    const EntryFacts& facts() const { return m_facts; }
    const std::string& value() const { return m_value; }
    const std::string& loadedValue() const { return m_facts.value; }

    // Puts a value there that was there before, or that comes from outside: whatever it is.
    void putBack(std::string value);
    // The row stands for several values, which are not equal, until it's given one.
    bool isDifferent() const { return m_different; }
    // With `others` they are not those that were loaded.
    void setDifferent(bool others = false);
    // What the row shows is what was loaded: it could not be read before.
    void takeAsLoaded();
    // Why the value can't be changed now, in words for the user; empty when it can.
    const std::string& blocked() const;
    void setBlocked(const std::string& reason);
    // Why the value is only to be looked at: it can be reached, and says so where it is edited; empty: it isn't.
    const std::string& readOnly() const;
    void setReadOnly(const std::string& reason);

    // What a user typed or chose, in the form in which it will be written: the loaded text where the number
    // is the same, ".0" where the number must keep its point, the script's own line ends, brackets where they are a
    // part of the value.
    std::string asWritten(const std::string& typed) const;
    // Why the row doesn't take that form of it; empty when it does.
    std::string refusalOf(const std::string& value) const;
    // Takes what a user typed or chose. When it's refused the value stays as it was; the reason tells the allowed
    // range.
    Outcome edit(const std::string& typed);

    bool isOn() const { return m_value != "0"; }  // of a switch

    // Of numbers: the step of the spin buttons and the slider, never 0.
    double step() const { return m_step; }
    // The value after so many steps up (or down), held at the limits.
    std::string stepped(int steps) const;

    // Of a slider: its positions run from 0 to sliderRange().
    int sliderRange() const;
    // Where the value lies; values outside the limits lie at the end.
    int sliderPosition() const;
    std::string textAt(int position) const;

private:
    double number() const;
    std::string numberAsText(double value) const;

    EntryFacts m_facts;
    std::string m_value;
    double m_step = 1;
    bool m_different = false, m_others = false;
    bool m_reachable = false;                      // though blocked
    std::shared_ptr<const std::string> m_blocked;  // null: it isn't
};

}  // namespace zoka
