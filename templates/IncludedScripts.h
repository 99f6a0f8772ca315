// The scripts that a project's main script includes, what the catalogue knows of them and who needs whom.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "plugin/host/ZunEditorInterface.h"
#include "templates/TemplateData.h"
#include "util/KeyedHash.h"
#include "util/Outcome.h"

namespace zoka {

// The catalogue's record of a file; of a numbered copy ("camera_12.kez") its template's.
std::optional<std::uint32_t> templateRecordOf(const CTemplateData& catalogue, const std::string& fileName);
// What that script needs, as the catalogue has it; of a numbered copy with its own number.
std::vector<std::string> needsOf(const CScriptElm& script, const std::string& fileName);

// A script of the include block, as the remove and customize pages list it.
struct IncludedScript {
    std::string text;  // the title; of a numbered copy with its file name; a script that is no template: its
                       // file name
    std::string fileName;
    std::optional<CScriptElm> script;  // as the catalogue has it; of a numbered copy its template
};

// The full paths of the main script and of the scripts that it includes, as far as they are found; empty where no
// level is open. [editor or panel thread]
std::vector<std::string> pathsOfIncludedScripts(ZunEditorInterface& host);

// As they were when they were read. References given must outlive the object. [editor thread]
class IncludedScripts {
public:
    IncludedScripts(ZunEditorInterface& host, const CTemplateData& catalogue)
        : m_host(host), m_catalogue(catalogue) {}

    // Reads the include block again. Refused where the main script can't be read: the list is empty then.
    Outcome read();
    const std::vector<IncludedScript>& all() const { return m_scripts; }
    // The first entry of that text.
    const IncludedScript* byText(const std::string& text) const;
    std::optional<size_t> byFile(std::string_view fileName) const;
    bool contains(std::uint32_t record) const { return m_records.contains(record); }

    // The entries that need the file of that name, in the order of the block; without `self`, and without entries
    // of its text. A template's needs are the catalogue's, those of the user's own scripts stand in their files,
    // which are read at the first call.
    std::vector<size_t> dependents(const std::string& fileName, const IncludedScript* self) const;
    std::vector<size_t> dependents(size_t index) const;

    // An entry that needs another, directly or not, and through which.
    struct Need {
        size_t script;
        size_t needs;  // the entry that it needs itself
        size_t depth;  // 1: it needs the first one itself
    };
    // All that need the entry, each once, by the shortest way, in the order in which a tree is printed.
    std::vector<Need> allThatNeed(size_t index) const;

private:
    using Needers = KeyedMap<std::string, std::vector<size_t>>;
    const Needers& needers() const;

    ZunEditorInterface& m_host;
    const CTemplateData& m_catalogue;
    std::vector<IncludedScript> m_scripts;
    KeyedMap<std::string, size_t> m_byText;
    KeyedMap<std::string, size_t> m_byFile;  // lowered names
    std::unordered_set<std::uint32_t> m_records;
    mutable std::optional<Needers> m_needers;  // file name -> entries that need it
};

}  // namespace zoka
