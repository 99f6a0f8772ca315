#include "customize/ValueUpdate.h"

#include <algorithm>
#include <utility>

#include "customize/NumberedScripts.h"
#include "customize/ValueFile.h"
#include "customize/WriteBack.h"
#include "util/Backups.h"
#include "util/FileLock.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"

namespace zoka {
namespace {

// The lines of `text` that count for linesLost: without their ends and the blanks before them.
template <class OnLine>
void forEachLine(std::string_view text, const OnLine& onLine) {
    while (!text.empty()) {
        const size_t length = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, length);
        onLine(line.substr(0, line.find_last_not_of(" \t\r") + 1));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
}

// "// ver: 2" and "// date: 260101".
bool isVersionLine(std::string_view line) {
    if (!line.starts_with("//")) {
        return false;
    }
    const size_t start = std::min(line.find_first_not_of("/ \t"), line.size());
    const std::string_view word = line.substr(start, line.find_first_of(":,; \t", start) - start);
    return equalNoCase(word, "ver") || equalNoCase(word, "date");
}

// The edits that put the panel's values into its script. Values that would not read back are taken out.
std::vector<ScriptEdit> soundEdits(ScriptRows& panel, std::vector<UnplacedValue>& unplaced) {
    for (bool again = true; again;) {
        std::vector<ScriptEdit> edits = editsOf(panel.script);
        CustomScript saved;
        parseCustomText(editedText(panel.script.fileText(), edits), saved);
        again = false;
        for (const size_t i : notReadBack(panel.script, saved)) {
            EntryModel& row = panel.row(i);
            if (!row.HasChanged()) {
                continue;
            }
            const CustomEntry& entry = panel.script.entries[i];
            unplaced.push_back({{entry.id, entry.kind, entry.label, row.value(), panel.script.set},
                                "the new version would not find it again"});
            row.SetValueFromText(row.loadedValue());
            again = true;
        }
        if (!again) {
            return edits;
        }
    }
    return {};
}

std::string cantRead(const std::string& path) {
    return "Can't read '" + path + "': " + osFiles().lastError();
}

}  // namespace

Result<ValueUpdatePlan> planValueUpdate(const std::string& scriptPath, const std::string& templatePath) {
    ValueUpdatePlan plan;
    if (const Outcome loaded = LoadCustomScript(scriptPath, plan.old.script); !loaded) {
        return Refusal{"Can't read '" + scriptPath + "': " + loaded.why()};
    }
    auto text = templateTextFor(scriptPath, templatePath);
    if (!text) {
        return Refusal{cantRead(templatePath)};
    }
    plan.old.makeRows();
    plan.before = plan.old.script.fileText();
    ScriptRows updated;
    updated.script.scriptPath = scriptPath;
    parseCustomText(std::move(*text), updated.script);
    updated.makeRows();
    plan.unplaced = carryValues(valuesToKeep(plan.old, ValuesToKeep::AllWithId), updated);
    for (UnplacedValue& lost : lostWithoutId(plan.old, updated)) {
        plan.unplaced.push_back(std::move(lost));
    }
    const std::vector<ScriptEdit> edits = soundEdits(updated, plan.unplaced);
    plan.kept = edits.size();
    plan.after = editedText(updated.script.fileText(), edits);
    plan.ownLines = linesLost(plan.before, plan.after);
    return plan;
}

Result<std::string> updateKeepingValues(const ValueUpdatePlan& plan, FileKind kind) {
    const std::string& path = plan.old.script.scriptPath;
    const FileLock lock(path);
    if (!lock) {
        return Refusal{lock.why()};
    }
    const std::optional<std::string> now = osFiles().readWhole(path);
    if (!now) {
        return Refusal{cantRead(path)};
    }
    if (*now != plan.before) {
        return Refusal{"'" + path + "' was changed on the disk meanwhile"};
    }
    if (plan.after == plan.before) {
        return std::string();
    }
    if (plan.ownLines > 0) {
        if (const auto kept = keepBackup(path, plan.before); !kept) {
            return Refusal{kept.why()};
        }
    }
    const std::string valueFile = path + kValueFileEnding;
    // What the script holds is safe in the value file before anything is replaced.
    const std::string values = valueFileText(plan.old.script, false);
    const FileContent valuesFile{valueFile, values, FileKind::Generated, std::nullopt, path};
    const FileContent scriptFile{path, plan.after, kind, plan.before};
    Outcome written = safeWrite({&valuesFile, 1});
    if (written) {
        written = keepOldValues(plan.old.script, plan.unplaced);
    }
    if (written) {
        written = safeWrite({&scriptFile, 1});
    }
    if (!written) {
        return Refusal{written.why()};
    }
    CustomScript updated;
    parseCustomText(plan.after, updated);
    // The script has the values; a value file that can't be brought up to date still holds the old script's.
    written = safeWrite(valueFile, valueFileText(updated, false), FileKind::Generated);
    return written ? std::string() : "the value file is still that of the old script: " + written.why();
}

std::string ownLinesQuestion(const std::vector<OwnLines>& scripts) {
    constexpr size_t kMostNamed = 15;  // a box must fit on the screen
    std::string text = "The template folder's version lacks lines that are in:\n";
    for (size_t i = 0; i < std::min(scripts.size(), kMostNamed); ++i) {
        text += "\n" + scripts[i].script + " (" + std::to_string(scripts[i].lines) +
                (scripts[i].lines == 1 ? " line)" : " lines)");
    }
    if (scripts.size() > kMostNamed) {
        text += "\nand " + std::to_string(scripts.size() - kMostNamed) + " more";
    }
    return text + (scripts.size() == 1
                       ? "\n\nReplace it all the same? It is kept beside the new one, as " +
                             scripts.front().script + ".N.bak."
                       : "\n\nReplace these too? Each is kept beside the new one, as NAME.N.bak.");
}

std::optional<std::vector<std::optional<std::string>>> templateDefaults(const CustomScript& script,
                                                                        const std::string& templatePath) {
    auto text = templateTextFor(script.scriptPath, templatePath);
    if (!text) {
        return std::nullopt;
    }
    CustomScript original;
    parseCustomText(std::move(*text), original);
    std::vector<std::optional<std::string>> values;
    for (const std::ptrdiff_t place : matchEntries(script, original)) {
        values.push_back(place < 0 ? std::nullopt
                                   : convertText(original.entries[static_cast<size_t>(place)].value,
                                                 original.set, script.set)
                                         .value());
    }
    return values;
}

size_t linesLost(std::string_view before, std::string_view after) {
    KeyedMap<std::string_view, size_t> there;
    forEachLine(after, [&there](std::string_view line) { ++there[line]; });
    size_t lost = 0;
    forEachLine(before, [&](std::string_view line) {
        if (line.empty() || isVersionLine(line)) {
            return;
        }
        const auto found = there.find(line);
        if (found != there.end() && found->second > 0) {
            --found->second;
        } else {
            ++lost;
        }
    });
    return lost;
}

}  // namespace zoka
