// Copies of scripts that the editor makes for us. Each is looked after at the disk, because a host may say that it
// copied a file and have copied none.
#pragma once

#include <span>
#include <string>
#include <utility>

#include "plugin/host/ZunEditorInterface.h"
#include "util/Outcome.h"

namespace zoka {

// As the host's operations CopyFileWithSubstitutions and CopyFileToFolder. A refusal gives the reason as far as it is
// known; it is empty where the host says no and nothing more. [thread of the panel, or editor thread]
Outcome copyByHost(ZunEditorInterface& host, const std::string& source, const std::string& destination,
                   std::span<const std::pair<std::string, std::string>> substitutions = {});
Outcome copyByHostToFolder(ZunEditorInterface& host, const std::string& source, const std::string& folder);

}  // namespace zoka
