// The text of the notes page: the template set, and every script that the project includes.
#pragma once

#include <string>

#include "plugin/host/ZunEditorInterface.h"
#include "templates/TemplateData.h"
#include "util/JobProgress.h"

namespace zoka {

// The plug-in's version as the report names it.
inline constexpr const char* kReportVersion = "2.1";

// The last line of a report that was stopped.
inline constexpr const char* kStoppedText = "Stopped: the scripts below this line were not looked at.";

// Builds the report, lines ended with CR LF. A script that is found nowhere is marked with "!", one that
// isn't a template with "(USER)", one whose copy differs from the template with the template's version and
// date. `mainScriptPath` is empty when the project has none; the report then says so and the result is false.
// Each script file is read once. False too, with the report cut there, when `progress` stopped it.
bool BuildNotesReport(std::string& text, ZunEditorInterface& host, const CTemplateData& catalogue,
                      const std::string& mainScriptPath, JobProgress* progress = nullptr);

}  // namespace zoka
