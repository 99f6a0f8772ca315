// The project that a panel's script belongs to, also while the editor has another one open.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "customize/CustomScript.h"
#include "customize/Elsewhere.h"
#include "customize/SaveSteps.h"
#include "plugin/host/ZunEditorInterface.h"
#include "util/UserPrompt.h"

namespace zoka {

// A script stays with the project that it was opened for, until a save has put it into another one. Host and prompt
// outlive the object. [panel thread]
class ScriptProject {
public:
    ScriptProject(ZunEditorInterface& host, UserPrompt& prompt) : m_host(host), m_prompt(prompt) {}

    // The scripts that the panel offers to switch to, full paths: of the project that the editor has open now.
    void offer(std::vector<std::string> paths);
    const std::vector<std::string>& offered() const { return m_offered; }

    struct Home {
        std::string folder;  // of the script's project; empty: none was open
        Elsewhere elsewhere;
    };
    // Of a script that is to be opened now. A list of scripts may be older than the project that is open by now.
    Home homeOf(const std::string& script) const;
    // The panel shows that script now.
    void moveTo(Home home) noexcept { m_home = std::move(home); }

    // Asks the host which project is open. True when whereabouts() are others now.
    bool look();
    bool isElsewhere() const { return m_home.elsewhere.has_value(); }
    const char* whereabouts() const { return elsewhereText(m_home.elsewhere); }

    // --- Save
    // The folder of the project that the script is to be saved in. Asks where the editor has another one open by now;
    // nothing when the user wants neither.
    std::optional<std::string> askFolder() const;
    // A script straight from the template folder is never overwritten: the project's copy, which the host makes of it,
    // takes its place. `isCopied` tells whether it did.
    SaveEnd take(CustomScript& script, const std::string& folder, bool& isCopied);
    // It was saved there. The host is told of a copy in the project that it has open.
    void saved(const std::string& folder, bool isCopied);

private:
    ZunEditorInterface& m_host;
    UserPrompt& m_prompt;
    Home m_home;
    std::vector<std::string> m_offered;
    std::string m_offeredIn;  // the project that was open when they were listed
};

}  // namespace zoka
