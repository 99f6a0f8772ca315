#include "customize/BehaviorLines.h"

#include <algorithm>
#include <optional>

#include "controls/TextSet.h"
#include "customize/CustomKeywords.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

// "skill3" or "flag1" in front of a label.
bool isFieldName(std::string_view word) {
    const int keyword = LookupCustomKeyword(word);
    return keyword > kFlag && keyword < kBehavior && keyword != kSkill;
}

std::string folded(std::string_view text) {
    return foldedText(text, TextSet::Utf8);
}

}  // namespace

// A name may hold a '=' of its own: the longest name that there is counts.
Result<BehaviorLines::Place> BehaviorLines::placeOf(std::string_view line) const {
    Result<size_t> row = Refusal{"it is not of the form \"name = value\""};
    for (size_t end = line.size(), equals; end > 0 && (equals = line.rfind('=', end - 1)) != line.npos;
         end = equals) {
        std::string_view field, label = trimmed(line.substr(0, equals));
        const std::string_view word = label.substr(0, label.find_first_of(" \t"));
        if (isFieldName(word)) {
            field = word;
            label = trimmed(label.substr(word.size()));
        }
        row = rowOf(field, label);
        if (row) {
            return Place{*row, trimmed(line.substr(equals + 1))};
        }
    }
    return Refusal{row.why()};
}

Result<size_t> BehaviorLines::rowOf(std::string_view field, std::string_view label) const {
    const std::string wanted = folded(label);
    std::optional<size_t> named;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        const LineName& row = m_rows[i];
        if (row.field.empty() && row.label.empty()) {
            continue;
        }
        const bool sameLabel = folded(row.label) == wanted;
        if (row.field.empty()) {
            if (sameLabel && field.empty()) {
                return i;
            }
            continue;
        }
        if (equalNoCase(field, row.field) && (sameLabel || label.empty())) {
            return i;
        }
        if (!sameLabel) {
            continue;
        }
        if (named && m_rows[*named].field != row.field) {
            return Refusal{"several values are called that"};
        }
        named = named.value_or(i);
    }
    return named ? Result(*named) : Refusal{"there is no such value here"};
}

std::vector<std::string_view> filledLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        if (!line.empty()) {
            lines.push_back(line);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

}  // namespace zoka
