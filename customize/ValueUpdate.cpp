#include "customize/ValueUpdate.h"

#include <utility>

#include "customize/ValueFile.h"
#include "customize/WriteBack.h"
#include "util/LexChars.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"

namespace zoka {
namespace {

constexpr std::string_view kNumberMark = "%_%";

// What stands between "_" and the extension, when that is a number: "3" of "lift_3.kez".
std::string_view copyNumberOf(std::string_view name) {
    size_t digits = 0;
    while (digits < name.size() && lex::isDecimal(name[name.size() - digits - 1])) {
        ++digits;
    }
    const bool numbered = digits > 0 && digits < name.size() && name[name.size() - digits - 1] == '_';
    return numbered ? name.substr(name.size() - digits) : std::string_view();
}

std::string withNumber(const std::string& text, const std::string& replacement) {
    std::string made;
    size_t at = 0;
    for (size_t mark; (mark = text.find(kNumberMark, at)) != text.npos; at = mark + kNumberMark.size()) {
        made.append(text, at, mark - at).append(replacement);
    }
    return made.append(text, at);
}

// The edits that put the panel's values into its script. Values that would not read back are taken out.
std::vector<ScriptEdit> soundEdits(ScriptPanel& panel, std::vector<UnplacedValue>& unplaced) {
    for (bool again = true; again;) {
        std::vector<ScriptEdit> edits = editsOf(panel.script);
        CustomScript saved;
        takeCustomText(editedText(panel.script.fileText(), edits), saved);
        again = false;
        for (const size_t i : notReadBack(panel.script, saved)) {
            EntryModel& row = panel.row(i);
            if (!row.HasChanged()) {
                continue;
            }
            const CustomEntry& entry = panel.script.entries[i];
            unplaced.push_back({{entry.id, entry.kind, entry.label, row.value()},
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

std::string numberedTemplateOf(const std::string& scriptPath) {
    const PathParts parts = splitPath(scriptPath);
    const std::string_view number = copyNumberOf(parts.name);
    if (number.empty()) {
        return {};
    }
    return std::string(parts.name.substr(0, parts.name.size() - number.size())) + std::string(parts.ext);
}

std::optional<std::string> templateTextFor(const std::string& scriptPath, const std::string& templatePath) {
    auto text = osFiles().readWhole(templatePath);
    const std::string_view number = copyNumberOf(splitPath(scriptPath).name);
    if (text && !number.empty() && equalNoCase(numberedTemplateOf(scriptPath), fileNameOf(templatePath))) {
        return withNumber(*text, "_" + std::string(number));
    }
    return text;
}

std::optional<ValueUpdatePlan> planValueUpdate(const std::string& scriptPath, const std::string& templatePath,
                                               std::string& why) {
    ValueUpdatePlan plan;
    if (!LoadCustomScript(scriptPath, plan.old.script)) {
        why = cantRead(scriptPath);
        return std::nullopt;
    }
    auto text = templateTextFor(scriptPath, templatePath);
    if (!text) {
        why = cantRead(templatePath);
        return std::nullopt;
    }
    plan.old.makeRows();
    plan.before = plan.old.script.fileText();
    ScriptPanel updated;
    updated.script.scriptPath = scriptPath;
    takeCustomText(std::move(*text), updated.script);
    updated.makeRows();
    plan.unplaced = carryValues(valuesToKeep(plan.old, false), updated);
    for (UnplacedValue& lost : lostWithoutId(plan.old, updated)) {
        plan.unplaced.push_back(std::move(lost));
    }
    const std::vector<ScriptEdit> edits = soundEdits(updated, plan.unplaced);
    plan.kept = edits.size();
    plan.after = editedText(updated.script.fileText(), edits);
    return plan;
}

bool updateKeepingValues(const std::string& scriptPath, const std::string& templatePath, std::string& why,
                         std::vector<UnplacedValue>* unplaced) {
    auto plan = planValueUpdate(scriptPath, templatePath, why);
    if (!plan) {
        return false;
    }
    const std::string valueFile = scriptPath + kValueFileEnding;
    // What the script holds is safe in the value file before anything is replaced.
    SafeWriteResult written = safeWrite(valueFile, valueFileText(plan->old.script, false));
    if (written && !keepOldValues(plan->old.script, plan->unplaced, why)) {
        return false;
    }
    if (written) {
        written = safeWrite(scriptPath, plan->after);
    }
    if (!written) {
        why = written.error;
        return false;
    }
    CustomScript updated;
    takeCustomText(std::move(plan->after), updated);
    // The script has the values; a value file that can't be brought up to date still holds the same ones.
    safeWrite(valueFile, valueFileText(updated, false));
    if (unplaced) {
        *unplaced = std::move(plan->unplaced);
    }
    return true;
}

}  // namespace zoka
