// What the plug-in's windows say about what is loaded, a line each.
#pragma once

#include <string>
#include <vector>

#include "plugin/PluginSeams.h"

namespace zoka {

using StatusLines = std::vector<std::string>;

// Main script and project folder as the host answers them at this moment. [editor or panel thread]
StatusLines projectStatus(ZunEditorInterface& editor);

}  // namespace zoka
