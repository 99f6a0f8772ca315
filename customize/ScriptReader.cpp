#include "customize/ScriptReader.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "util/KeyedHash.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

constexpr int kMostHostNames = 10000;  // a host that never ends its list doesn't hang the panel

}  // namespace

Outcome ScriptReader::read(const std::string& path, ScriptRows& rows, JobProgress* progress) {
    const auto mayGoOn = [&] { return mayContinue(progress, 0, 1, path); };
    if (!mayGoOn()) {
        return Refusal{};
    }
    if (const Outcome loaded = LoadCustomScript(path, rows.script, progress); !loaded) {
        const bool isStopped = loaded.why().empty();
        return Refusal{isStopped      ? ""
                       : path.empty() ? "There is no script."
                                      : "Can't read '" + path + "': " + loaded.why()};
    }
    checkPictures(rows.script, [&](const std::string& name) { return picturePath(rows.script, name); });
    const HostNames names = hostNames(rows.script, progress);
    if (!mayGoOn()) {
        return Refusal{};
    }
    rows.makeRows(names);
    return mayGoOn() ? Outcome() : Refusal{};
}

HostNames ScriptReader::hostNames(const CustomScript& script, JobProgress* progress) {
    const std::vector<CustomEntry>& entries = script.entries;
    if (std::none_of(entries.begin(), entries.end(),
                     [](const CustomEntry& e) { return e.kind == kEntryEntity || e.kind == kEntryPath; })) {
        return nullptr;
    }
    std::vector<std::string> names;
    KeyedSet<std::string> seen;
    for (int i = 0; i < kMostHostNames && mayContinue(progress, 0, 1, script.scriptPath); ++i) {
        const auto name = m_host.GetListItemName(i);
        if (!name) {
            break;
        }
        if (!name->empty() && seen.insert(*name).second) {
            names.push_back(*name);
        }
    }
    m_host.EndListUpdate();
    return std::make_shared<const std::vector<std::string>>(std::move(names));
}

std::string ScriptReader::picturePath(const CustomScript& script, const std::string& name) const {
    const std::string own = joinPath(folderOf(script.scriptPath), name);
    return osFiles().search(own) ? own : m_host.TemplatePath(name);
}

}  // namespace zoka
