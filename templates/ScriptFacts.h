// What a script's comments say about it to the project: the scripts it needs, its version and its date.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "util/KeyedHash.h"

namespace zoka {

struct ScriptFacts {
    bool readable = false;  // the file could be opened
    std::vector<std::string> needs;
    std::string version = "-1";
    std::string date = "-1";
};

// Every line whose first token begins with "//" is looked at; its next token, with ':', ',' and ';' as
// separators too, tells what it is. "needs": every further token is a name; several such lines add up. "ver":
// the version is the first token from the 5th character after the keyword's start on. Any word of four
// letters that begins with "dat": the date, from the 6th character on. Of several versions or dates the last
// one counts.
ScriptFacts parseScriptFacts(std::string_view text);
// Of a file; not readable: the facts of no script.
ScriptFacts readScriptFacts(const std::string& path);

// Reads each file once, however often it is asked for.
class ScriptFactsReader {
public:
    const ScriptFacts& of(const std::string& path);

private:
    KeyedMap<std::string, ScriptFacts> m_facts;
};

}  // namespace zoka
