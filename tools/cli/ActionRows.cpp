#include "tools/cli/ActionRows.h"

#include "controls/EntryModel.h"
#include "tools/cli/Json.h"

namespace zoka::cli {

bool isValue(const CustomEntry& row) {
    return skillNumber(row) > 0 || flagNumber(row) > 0;
}

std::string nameOf(const CustomEntry& row) {
    return fieldName(row) + (row.label.empty() ? "" : ' ' + row.label);
}

nlohmann::ordered_json jsonOf(const CustomEntry& row) {
    nlohmann::ordered_json one;
    one["line"] = row.line;
    one["kind"] = customKeywordName(row.kind);
    if (isValue(row)) {
        one["field"] = fieldName(row);
        one["default"] = jsonText(row.value);
    }
    one["label"] = jsonText(row.label);
    if (!row.help.empty()) {
        one["help"] = jsonText(row.help);
    }
    addAllowed(one, behaviorFacts(row));
    return one;
}

std::string inParentheses(const std::string& text) {
    return text.empty() ? "" : "\t(" + text + ')';
}

}  // namespace zoka::cli
