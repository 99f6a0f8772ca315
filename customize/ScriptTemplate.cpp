#include "customize/ScriptTemplate.h"

#include <utility>

#include "customize/NumberedScripts.h"
#include "customize/ValueUpdate.h"
#include "plugin/host/HostCopy.h"
#include "util/Backups.h"
#include "util/CopyFailure.h"
#include "util/PathRules.h"

namespace zoka {

std::optional<std::string> ScriptTemplate::valueOf(const CustomScript& script, size_t entry) const {
    if (!m_values) {
        const auto original = templatePathFor(script.scriptPath, m_host.TemplatePath(""));
        auto values = original ? templateDefaults(script, *original) : std::nullopt;
        m_values =
            values ? std::move(*values) : std::vector<std::optional<std::string>>(script.entries.size());
    }
    return (*m_values)[entry];
}

std::optional<std::string> ScriptTemplate::choose(const std::string& scriptPath) {
    return m_host.ChooseFile(m_host.TemplatePath(std::string(fileNameOf(scriptPath))));
}

bool ScriptTemplate::refuse(const std::string& text) {
    m_prompt.tell(text);
    return false;
}

bool ScriptTemplate::copyOver(const std::string& scriptPath, const std::string& chosen) {
    if (equalNoCase(chosen, scriptPath)) {
        return refuse("Same File!\nNo Update.");
    }
    const size_t from = chosen.rfind('\\'), to = scriptPath.rfind('\\');
    if (from == chosen.npos || to == scriptPath.npos) {
        return refuse("Org. filename error (1127).\nNo Update.");
    }
    if (!equalNoCase(chosen.substr(from), scriptPath.substr(to))) {
        return refuse("Script name are not the same.\nNo Update.");
    }
    // The user may have written the lines that would go. What can't be read the copying tells of.
    if (const auto plan = planValueUpdate(scriptPath, chosen); plan && plan->ownLines > 0) {
        if (const auto kept = keepBackup(scriptPath, plan->before); !kept) {
            return refuse(copyError(kept.why()));
        }
    }
    const Outcome copied = copyByHost(m_host, chosen, scriptPath);
    return copied || refuse(copyError(copied.why()));
}

}  // namespace zoka
