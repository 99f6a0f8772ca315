// Makes a catalogue record of the comment header of a KEZ template script.
#pragma once

#include <string>
#include <string_view>

#include "templates/ScriptElm.h"

namespace zoka {

// `text` is the whole script; `filename` becomes the record's file name. Never fails: an unfinished action
// and missing fields are appended to `errorText`, one line each.
//
// Beside the header's fields, the blocks further down are read. A section takes its "text", "desc" and "help"
// lines as its text and its "image" line as its picture, up to the first entry. An action takes its name from
// the definition below its comment and describes itself with the "title", "desc" and "help" lines of the
// comment; a "skill" or "flag" line starts a line of its own in the description, to which its help belongs.
// Its file name is the script's, unless a "data" line names another; "enginereq" is the action's own. "///"
// continues the text before it. A "data", "id" or other line that none of this names is passed over.
// docs/catalogue.md shows it on an example.
CScriptElm parseScriptHeader(std::string_view text, const std::string& filename, std::string& errorText);

// The same of the file at `path`. False, with both outputs untouched, when it can't be read.
bool loadScriptHeader(const std::string& path, const std::string& filename, CScriptElm& script,
                      std::string& errorText);

}  // namespace zoka
