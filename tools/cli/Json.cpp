#include "tools/cli/Json.h"

#include <cstdio>
#include <cstring>

#include "controls/EntryModel.h"
#include "xml/XMLConvert.h"

namespace zoka::cli {

namespace {

// Also behind zeros, where a C string would end.
bool isUtf8Throughout(const std::string& text) {
    for (size_t at = 0; at < text.size(); at += std::strlen(text.c_str() + at) + 1) {
        if (!isUtf8(text.c_str() + at)) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string jsonText(const std::string& text) {
    if (isUtf8Throughout(text)) {
        return text;
    }
    std::string result;
    for (const char c : text) {
        appendUtf8(result, windows1252(static_cast<unsigned char>(c)));
    }
    return result;
}

nlohmann::ordered_json jsonTexts(const std::vector<std::string>& texts) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const std::string& text : texts) {
        list.push_back(jsonText(text));
    }
    return list;
}

void addAllowed(nlohmann::ordered_json& one, const EntryFacts& facts) {
    if (isNumber(facts.field) && facts.limited) {
        one["minimum"] = facts.minimum;
        one["maximum"] = facts.maximum;
        one["step"] = EntryModel(facts).step();
    }
    if (!facts.options.empty()) {
        one["options"] = jsonTexts(facts.options);
    }
}

void printJson(const nlohmann::ordered_json& json) {
    const std::string text =
        json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    std::fwrite(text.data(), 1, text.size(), stdout);
}

}  // namespace zoka::cli
