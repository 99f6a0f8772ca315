// One row of a panel, as the logic sees it: a value held as text.
#pragma once

#include <string>

namespace zoka {

// The order of the operations is fixed. [panel thread]
class EntryControl {
public:
    // False, with the value as it was, for a text that this control can't hold. A CR at the end is dropped.
    virtual bool SetValueFromText(const std::string& text) = 0;
    virtual std::string GetValueText() const = 0;
    // Whether the value differs from the one loaded.
    virtual bool HasChanged() const = 0;
    // In pixels at 96 dpi.
    virtual int GetHeight() const = 0;

    virtual ~EntryControl() = default;
};

}  // namespace zoka
