// The template of a panel's script: its values, and its copy in the script's place.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "customize/CustomScript.h"
#include "plugin/host/ZunEditorInterface.h"
#include "util/UserPrompt.h"

namespace zoka {

// Host and prompt outlive the object. [panel thread]
class ScriptTemplate {
public:
    ScriptTemplate(ZunEditorInterface& host, UserPrompt& prompt) : m_host(host), m_prompt(prompt) {}

    // The value of an entry in the template folder's copy of the script; nothing where that has no such entry. The
    // template is read once, until forgetValues().
    std::optional<std::string> valueOf(const CustomScript& script, size_t entry) const;
    // The entries, or the template, may be others now.
    void forgetValues() { m_values.reset(); }

    // Lets the user choose the template's file; nothing when that was cancelled.
    std::optional<std::string> choose(const std::string& scriptPath);
    // Has the host put a copy of the chosen file in the script's place. A script with lines that its template lacks is
    // first kept beside it. False after a message: then the script is as it was.
    bool copyOver(const std::string& scriptPath, const std::string& chosen);

private:
    bool refuse(const std::string& text);

    ZunEditorInterface& m_host;
    UserPrompt& m_prompt;
    mutable std::optional<std::vector<std::optional<std::string>>> m_values;  // one an entry
};

}  // namespace zoka
