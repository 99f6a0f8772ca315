#include "templates/ScriptNeeds.h"

#include <algorithm>

#include "util/LexChars.h"
#include "util/PathRules.h"

namespace zoka {

namespace {

constexpr size_t kLongestName = 255;
constexpr std::string_view kForbidden = " \t;<>:\"/\\|?*";

// A script on the way down through the needs.
struct Level {
    std::string name;
    std::vector<std::string> needs;
    size_t next = 0;
};

}  // namespace

int ReadNeeds(const std::string& scriptPath, std::vector<std::string>& names) {
    const ScriptFacts facts = readScriptFacts(scriptPath);
    names.insert(names.end(), facts.needs.begin(), facts.needs.end());
    return static_cast<int>(facts.needs.size());
}

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = lex::lower(c);
    return result;
}

bool isIncludableName(std::string_view name) {
    if (name.empty() || name.size() > kLongestName || name == "." || name == "..") return false;
    return std::none_of(name.begin(), name.end(), [](char c) {
        return static_cast<unsigned char>(c) < ' ' || kForbidden.find(c) != std::string_view::npos;
    });
}

NeededScripts collectNeeds(std::span<const std::string> scriptPaths, const std::string& mainScriptName,
                           const std::unordered_set<std::string>& included, const LocateFile& locate,
                           const std::function<ScriptFacts(const std::string&)>& read) {
    NeededScripts result;
    std::unordered_set<std::string> seen = included;
    seen.insert(lowered(mainScriptName));
    std::vector<Level> way;
    const auto enter = [&](const std::string& name, const std::string& path) {
        if (!seen.insert(lowered(name)).second) return;
        way.push_back({name, path.empty() ? std::vector<std::string>() : read(path).needs, 0});
    };
    for (const std::string& path : scriptPaths) {
        const std::string_view name = fileNameOf(path);
        if (!isIncludableName(name)) {
            result.refused.push_back({std::string(name), std::string(name)});
            continue;
        }
        enter(std::string(name), path);
        while (!way.empty()) {
            Level& level = way.back();
            if (level.next == level.needs.size()) {
                result.names.push_back(std::move(level.name));
                way.pop_back();
                continue;
            }
            const std::string need = level.needs[level.next++];
            if (!isIncludableName(need))
                result.refused.push_back({level.name, need});
            else
                enter(need, locate ? locate(need) : std::string());
        }
    }
    return result;
}

}  // namespace zoka
