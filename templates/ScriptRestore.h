// Brings a script back that the project has lost, from the template folder.
#pragma once

#include <string>

#include "plugin/host/ZunEditorInterface.h"
#include "util/UserPrompt.h"

namespace zoka {

struct RestorePlan {
    std::string source;
    std::string destination;
    std::string problem;         // why nothing will be copied, as the user is told; else empty
    const char* title = "ZOKA";  // of that message
};
// A problem when the project has a copy, the template folder has none, or both folders are one. Changes nothing.
RestorePlan planRestore(ZunEditorInterface& editor, const std::string& fileName);

// Copies the template file into the project folder through the host. False, after a message, when it can't be
// restored or copying fails. [editor thread]
bool RestoreFromTemplate(ZunEditorInterface& editor, const std::string& fileName,
                         UserPrompt& prompt = userPrompt());

}  // namespace zoka
