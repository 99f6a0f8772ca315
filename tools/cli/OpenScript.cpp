#include "tools/cli/OpenScript.h"

#include <algorithm>
#include <stdexcept>

#include "customize/WriteBack.h"
#include "tools/cli/SuitePath.h"
#include "util/Doors.h"
#include "util/LineDiff.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka::cli {

std::vector<int> valueLines(const CustomScript& script) {
    std::vector<int> lines;
    size_t counted = 0;
    int line = 1;
    for (const CustomEntry& entry : script.entries) {
        if (entry.hasValue() && entry.valueStart >= counted) {
            line += static_cast<int>(
                std::count(script.text.begin() + static_cast<ptrdiff_t>(counted),
                           script.text.begin() + static_cast<ptrdiff_t>(entry.valueStart), '\n'));
            counted = entry.valueStart;
        }
        lines.push_back(line);
    }
    return lines;
}

std::string nameOf(const CustomEntry& entry, int line) {
    return entry.id >= 1 ? std::to_string(entry.id) : '@' + std::to_string(line);
}

OpenScript::OpenScript(const std::string& file, bool changes)
    : m_given(file),
      m_path(osFiles().fullPath(suitePath(file))),
      m_host({.project = std::string(folderOf(m_path)), .suite = std::string(folderOf(m_path))}),
      m_session(m_host, userPrompt()) {
    workOn(file);
    if (changes) {
        m_lock.emplace(m_path);
        if (!*m_lock) {
            complain(m_lock->why());
            return;
        }
    }
    Outcome opened;
    try {
        opened = m_session.open(m_path);
    } catch (const OutOfMemory&) {
        complain(outOfMemoryText(file));  // the session names the whole path
        return;
    }
    m_open = bool(opened);
    if (!m_open) {
        const std::string& problem = opened.why();
        const std::string given = "Can't read '" + m_path + "': ";
        complainUnreadable(file, problem.starts_with(given) ? problem.substr(given.size()) : problem);
    } else if (hasUtf16Mark(m_session.script().text)) {
        complain(file + ": " + kUtf16ToCustomize);
        m_open = false;
    } else if (m_session.script().text.find('\0') != std::string::npos) {
        complain(file + kNoScript);
        m_open = false;
    } else if (std::ranges::none_of(m_session.script().entries, &CustomEntry::hasValue)) {
        complain(file + " offers no values: no comment of it declares one");
    }
}

int OpenScript::find(const std::string& name) {
    const CustomScript& script = m_session.script();
    const std::string label = foldedText(name, textSetOf(name));
    const std::string line = name.starts_with('@') ? name.substr(1) : std::string();
    const auto matching = [&](const auto& matches) {
        std::vector<int> found;
        for (size_t i = 0; i < m_session.size(); ++i) {
            if (script.entries[i].hasValue() && matches(i)) {
                found.push_back(static_cast<int>(i));
            }
        }
        return found;
    };
    const auto isLine = [&line](int number) { return std::to_string(number) == line; };
    std::vector<int> found = matching(
        [&](size_t i) { return script.entries[i].id >= 1 && std::to_string(script.entries[i].id) == name; });
    if (found.empty() && !line.empty()) {
        found = matching([&](size_t i) { return isLine(script.entries[i].line); });
    }
    if (found.size() != 1 && !line.empty()) {  // lines below one switch
        const std::vector<int> lines = valueLines(script);
        const std::vector<int> byValue = matching([&](size_t i) { return isLine(lines[i]); });
        found = byValue.empty() ? found : byValue;
    }
    if (found.empty()) {
        found = matching([&](size_t i) {
            return foldedText(script.entries[i].label, script.set) == label ||
                   foldedText(m_session.row(i).facts().label, script.set) == label;
        });
    }
    if (found.size() == 1) {
        return found.front();
    }
    if (found.empty()) {
        complain("no entry has the id, label or line \"" + name + "\"");
        return -1;
    }
    const std::vector<int> lines = valueLines(script);
    std::string names;
    for (const int i : found) {
        names += (names.empty() ? "@" : ", @") + std::to_string(lines[static_cast<size_t>(i)]);
    }
    complain("several entries are called \"" + name + "\"; name it by its line: " + names);
    return -1;
}

Result<std::string> OpenScript::inScript(const std::string& text, TextSet set) const {
    return convertText(text, set, m_session.script().set);
}

ExitStatus OpenScript::finish(bool dryRun) {
    if (dryRun) {
        const std::vector<ScriptEdit> edits = editsOf(m_session.script());
        printPatch(unifiedDifference(m_session.script().fileText(),
                                     editedText(m_session.script().fileText(), edits), m_given, m_given));
        return ExitStatus::Done;
    }
    const SaveResult saved = m_session.save();
    if (!saved.notTold().empty()) {
        complain(saved.notTold());
    }
    return statusOf(saved);
}

}  // namespace zoka::cli
