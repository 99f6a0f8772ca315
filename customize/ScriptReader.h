// Reads a script for a panel: its entries, its pictures looked for, and a row of each with what the editor has to
// offer.
#pragma once

#include <string>

#include "customize/ScriptRows.h"
#include "plugin/host/ZunEditorInterface.h"
#include "util/JobProgress.h"
#include "util/Outcome.h"

namespace zoka {

// Holds nothing of a script. The host outlives the object. [panel thread]
class ScriptReader {
public:
    explicit ScriptReader(ZunEditorInterface& host) : m_host(host) {}

    // Reads the script and makes its rows; `rows` are new ones. Refused, without a message, when there is none or it
    // can't be read, and without a reason when `progress` (may be null) stopped it between its steps.
    Outcome read(const std::string& path, ScriptRows& rows, JobProgress* progress = nullptr);
    // What the editor's list offers for entities and paths; null for a script without any.
    HostNames hostNames(const CustomScript& script, JobProgress* progress = nullptr);
    // The full path of a picture: beside the script, or else in the template folder.
    std::string picturePath(const CustomScript& script, const std::string& name) const;

private:
    ZunEditorInterface& m_host;
};

}  // namespace zoka
