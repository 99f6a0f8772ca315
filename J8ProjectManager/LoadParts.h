// What properties and skills have in common in their files. Internal to this folder.
#pragma once

#include <vector>

#include "J8ProjectManager/J8Types.h"
#include "xml/XMLRead.h"

namespace zoka {

// Reads the Constraint and Enum children. Those without a type or name are passed over; the two functions get
// those without a value.
template <class BadConstraint, class BadEnum>
void readLimits(const XMLNode& node, std::vector<J8Constraint>& constraints, std::vector<J8Enum>& enums,
                const BadConstraint& badConstraint, const BadEnum& badEnum) {
    for (XMLNode child = node.firstChild("Constraint"); !child.isEmpty();
         child = child.nextSibling("Constraint")) {
        const char* const type = child.getAttribute("type");
        const char* const value = child.getAttribute("value");
        if (type && value) {
            constraints.push_back({type, value});
        } else if (type) {
            badConstraint(child);
        }
    }
    for (XMLNode child = node.firstChild("Enum"); !child.isEmpty(); child = child.nextSibling("Enum")) {
        const char* const name = child.getAttribute("name");
        const char* const value = child.getAttribute("value");
        if (name && value) {
            enums.push_back({name, value, xmlAllText(child.firstChild("Doc"))});
        } else if (name) {
            badEnum(child);
        }
    }
}

}  // namespace zoka
