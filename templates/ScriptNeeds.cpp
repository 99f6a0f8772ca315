#include "templates/ScriptNeeds.h"

#include <algorithm>

#include "util/DeviceNames.h"
#include "util/KeyedHash.h"
#include "util/LexChars.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {

namespace {

constexpr size_t kLongestName = 255;
constexpr std::string_view kNotInFileNames = ":/\\*?\"|";
constexpr std::string_view kNotInIncludes = " ;<>";

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

bool isPlainFileName(std::string_view name) {
    if (name.empty() || name.size() > kLongestName || name.ends_with('.') || name.ends_with(' ') ||
        isDeviceName(name)) {
        return false;
    }
    return std::none_of(name.begin(), name.end(), [](char c) {
        return static_cast<unsigned char>(c) < ' ' || kNotInFileNames.find(c) != std::string_view::npos;
    });
}

bool staysInFolder(std::string_view name) {
    for (;;) {
        const size_t length = std::min(name.find_first_of("\\/"), name.size());
        const std::string_view part = name.substr(0, length);
        if (length == name.size()) {
            return isPlainFileName(part);
        }
        if (part != "." && !isPlainFileName(part)) {
            return false;
        }
        name.remove_prefix(length + 1);
    }
}

bool isIncludableName(std::string_view name) {
    return staysInFolder(name) && name.find_first_of(kNotInIncludes) == std::string_view::npos;
}

std::string describe(std::span<const RefusedNeed> refused) {
    std::string text;
    for (const auto& [script, need] : refused) {
        if (!text.empty()) {
            text += '\n';
        }
        if (script != need) {
            text += script + " needs ";
        }
        text += "\"" + need + "\": this is not a file name that can be included.";
    }
    return text;
}

NeededScripts collectNeeds(std::span<const std::string> scriptPaths, const std::string& mainScriptName,
                           const KeyedSet<std::string>& included, const LocateFile& locate,
                           const std::function<ScriptFacts(const std::string&)>& read) {
    NeededScripts result;
    KeyedSet<std::string> seen = included;
    seen.insert(lowered(mainScriptName));
    KeyedSet<std::string> listed;
    std::vector<Level> way;
    const auto open = [&](const std::string& name, const std::string& path) {
        way.push_back({name, path.empty() ? std::vector<std::string>() : read(path).needs, 0});
    };
    const auto enter = [&](const std::string& name, const std::string& path) {
        const std::string key = lowered(name);
        if (seen.insert(key).second) {
            open(name, path);
        } else if (included.contains(key) && listed.insert(key).second) {
            result.present.push_back(name);
        }
    };
    for (const std::string& path : scriptPaths) {
        const std::string_view name = fileNameOf(path);
        if (!isIncludableName(name)) {
            result.refused.push_back({std::string(name), std::string(name)});
            continue;
        }
        const std::string key = lowered(name);
        enter(std::string(name), path);
        if (included.contains(key) && key != lowered(fileNameOf(mainScriptName))) {
            open(std::string(name), path);  // of one that is there already the needs may be missing
        }
        while (!way.empty()) {
            Level& level = way.back();
            if (level.next == level.needs.size()) {
                if (!included.contains(lowered(level.name))) {
                    result.names.push_back(std::move(level.name));
                }
                way.pop_back();
                continue;
            }
            const std::string need = level.needs[level.next++];
            if (!isIncludableName(need)) {
                result.refused.push_back({level.name, need});
            } else {
                enter(need, locate ? locate(need) : std::string());
            }
        }
    }
    return result;
}

}  // namespace zoka
