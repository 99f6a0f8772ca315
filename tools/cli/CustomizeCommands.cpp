// zoka customize: the values that scripts offer for editing, without the panel.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "controls/EntryRules.h"
#include "customize/CustomizeSession.h"
#include "customize/EntriesText.h"
#include "customize/NumberedScripts.h"
#include "customize/ValueFile.h"
#include "customize/ValueUpdate.h"
#include "tools/cli/Command.h"
#include "tools/cli/Json.h"
#include "tools/cli/OpenScript.h"
#include "tools/cli/SuitePath.h"
#include "util/FileLock.h"
#include "util/KeyedHash.h"
#include "util/LineDiff.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka::cli {
namespace {

using Json = nlohmann::ordered_json;

struct CustomizeOptions {
    std::string file, other;
    std::vector<std::string> words;  // files, names of entries, or name=value
    bool json = false, dryRun = false, full = false, force = false;
};

constexpr std::string_view kLineEndShown = "\\n";

// The template of a script, from its own file name or the folder that it lies in.
std::string templateFile(const std::string& script, const std::string& given) {
    const std::string path = osFiles().fullPath(suitePath(given));
    const auto entry = osFiles().search(path);
    if (!entry || !entry->isFolder) {
        return path;
    }
    return templatePathFor(script, joinPath(path, "")).value_or(joinPath(path, fileNameOf(script)));
}

// False after a complaint: `original` is another script's template.
bool isTemplateOf(const std::string& script, const std::string& original, const char* notDone) {
    if (equalNoCase(fileNameOf(script), fileNameOf(original)) ||
        equalNoCase(numberedTemplateOf(script), fileNameOf(original))) {
        return true;
    }
    complain((osFiles().exists(original) ? original + " is another script's template: the names differ"
                                         : "there is no template " + original) +
             "; not " + notDone);
    return false;
}

Json jsonOf(const CustomScript& script, const CustomEntry& entry) {
    Json one;
    one["line"] = entry.line;
    one["kind"] = customKeywordName(entry.kind);
    one["label"] = jsonText(entry.label);
    if (!entry.help.empty()) {
        one["help"] = jsonText(entry.help);
    }
    if (!entry.hasValue()) {
        return one;
    }
    if (entry.id >= 1) {
        one["id"] = entry.id;
    }
    one["value"] = jsonText(entry.value);
    addAllowed(one, factsOf(script, entry));
    return one;
}

ExitStatus list(const CustomizeOptions& options) {
    OpenScript open(options.file, false);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    const CustomScript& script = open.session().script();
    if (options.json) {
        Json all;
        all["script"] = jsonText(options.file);
        all["version"] = script.version;
        all["date"] = script.date;
        all["entries"] = Json::array();
        for (const CustomEntry& entry : script.entries) {
            all["entries"].push_back(jsonOf(script, entry));
        }
        printJson(all);
    } else if (options.full) {
        printShown(entriesText(script));
    } else {
        const std::vector<int> lines = valueLines(script);
        for (size_t i = 0; i < script.entries.size(); ++i) {
            const CustomEntry& entry = script.entries[i];
            if (entry.kind == kSection) {
                printShown("\n" + onOneLine(entry.label, kLineEndShown) + "\n");
            }
            if (!entry.hasValue()) {
                continue;
            }
            const std::string range = allowedRange(open.session().row(i).facts());
            printShown(nameOf(entry, lines[i]) + "\t" +
                       onOneLine(open.session().row(i).facts().label, kLineEndShown) + " = " +
                       onOneLine(entry.value, kLineEndShown) + (range.empty() ? "" : "\t(" + range + ")") +
                       "\n");
        }
    }
    return ExitStatus::Done;
}

ExitStatus get(const CustomizeOptions& options) {
    OpenScript open(options.file, false);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    std::vector<int> found;
    for (const std::string& name : options.words) {
        if (found.push_back(open.find(name)); found.back() < 0) {
            return ExitStatus::Usage;
        }
    }
    Json all = Json::array();
    for (const int i : found) {
        const CustomEntry& entry = open.session().entry(static_cast<size_t>(i));
        if (options.json) {
            all.push_back(jsonOf(open.session().script(), entry));
        } else {
            printShown(entry.value + "\n");
        }
    }
    if (options.json) {
        printJson(all);
    }
    return ExitStatus::Done;
}

ExitStatus set(const CustomizeOptions& options) {
    OpenScript open(options.file, !options.dryRun);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    for (const std::string& word : options.words) {
        const size_t equals = word.find('=');
        if (equals == word.npos) {
            complain("\"" + word + "\" is not of the form name=value");
            return ExitStatus::Usage;
        }
        const int i = open.find(word.substr(0, equals));
        if (i < 0) {
            return ExitStatus::Usage;
        }
        const auto row = static_cast<size_t>(i);
        const std::string given = word.substr(equals + 1);
        const auto value = open.inScript(given, textSetOf(given));
        Outcome set = value ? Outcome() : Refusal{value.why()};
        if (set && !options.force) {
            set = Outcome::unless(notOffered(open.session().row(row), *value));
        }
        if (set) {
            set = open.session().setValue(row, *value);
        }
        if (!set) {
            complain("\"" + open.session().entry(row).label + "\": " + set.why() + " Nothing was changed.");
            return ExitStatus::Findings;
        }
    }
    return open.finish(options.dryRun);
}

// The value in the template of each entry that has one there.
std::optional<std::vector<std::optional<std::string>>> templateValues(OpenScript& open,
                                                                      const std::string& given) {
    const std::string path = templateFile(open.path(), given);
    auto values = templateDefaults(open.session().script(), path);
    if (!values) {
        complainUnreadable(path, osFiles().lastError());
    }
    return values;
}

ExitStatus reset(const CustomizeOptions& options) {
    OpenScript open(options.file, !options.dryRun);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    if (!isTemplateOf(open.path(), templateFile(open.path(), options.other), "reset")) {
        return ExitStatus::Usage;
    }
    const auto values = templateValues(open, options.other);
    if (!values) {
        return ExitStatus::Failed;
    }
    std::vector<bool> chosen(values->size(), options.words.empty());
    for (const std::string& name : options.words) {
        const int i = open.find(name);
        if (i < 0) {
            return ExitStatus::Usage;
        }
        chosen[static_cast<size_t>(i)] = true;
    }
    ExitStatus status = ExitStatus::Done;
    for (size_t i = 0; i < values->size(); ++i) {
        const auto& value = (*values)[i];
        const CustomEntry& entry = open.session().entry(i);
        if (!chosen[i] || !entry.hasValue()) {
            continue;
        }
        const Outcome put =
            value ? open.session().putValue(i, *value) : Refusal{"the template has no such entry."};
        if (!put) {
            complain("\"" + entry.label + "\": " + put.why());
            status = ExitStatus::Findings;
        }
    }
    return worse(status, open.finish(options.dryRun));
}

ExitStatus diff(const CustomizeOptions& options) {
    OpenScript open(options.file, false);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    const auto values = templateValues(open, options.other);
    if (!values) {
        return ExitStatus::Failed;
    }
    Json all = Json::array();
    const std::vector<int> lines = valueLines(open.session().script());
    for (size_t i = 0; i < values->size(); ++i) {
        const CustomEntry& entry = open.session().entry(i);
        const auto& other = (*values)[i];
        if (!entry.hasValue() || (other && *other == entry.value)) {
            continue;
        }
        Json one{{"label", jsonText(entry.label)}, {"value", jsonText(entry.value)}};
        if (entry.id >= 1) {
            one["id"] = entry.id;
        }
        if (other) {
            one["other"] = jsonText(*other);
        }
        all.push_back(one);
        if (!options.json) {
            printShown(nameOf(entry, lines[i]) + "\t" +
                       onOneLine(open.session().row(i).facts().label, kLineEndShown) + ": " +
                       onOneLine(entry.value, kLineEndShown) +
                       (other ? " (there " + onOneLine(*other, kLineEndShown) + ")" : " (missing there)") +
                       "\n");
        }
    }
    if (options.json) {
        printJson(all);
    }
    return all.empty() ? ExitStatus::Done : ExitStatus::Findings;
}

ExitStatus update(const CustomizeOptions& options) {
    const std::string path = osFiles().fullPath(suitePath(options.file));
    const std::string original = templateFile(path, options.other);
    if (equalNoCase(path, original)) {
        complain("the script is its own template; not updated");
        return ExitStatus::Failed;
    }
    if (!isTemplateOf(path, original, "updated")) {
        return ExitStatus::Usage;
    }
    std::optional<FileLock> lock;
    if (!options.dryRun) {
        lock.emplace(path);
        if (!*lock) {
            complain(lock->why());
            return ExitStatus::Failed;
        }
    }
    const auto plan = planValueUpdate(path, original);
    if (!plan) {
        complain(plan.why());
        return ExitStatus::Failed;
    }
    bool halfDone = false;
    if (options.dryRun) {
        printPatch(unifiedDifference(plan->before, plan->after, options.file, options.file));
    } else if (const auto updated = updateKeepingValues(*plan); !updated) {
        complain(updated.why() + "; not updated");
        return ExitStatus::Failed;
    } else if (!updated->empty()) {
        halfDone = true;
        complain("updated, but " + *updated);
    }
    for (const UnplacedValue& lost : plan->unplaced) {
        const std::string line = unplacedText({lost});
        complain("no place for " + line.substr(0, std::min<size_t>(line.find('\r'), 300)));
    }
    return halfDone ? ExitStatus::Failed : plan->unplaced.empty() ? ExitStatus::Done : ExitStatus::Findings;
}

ExitStatus exportValues(const CustomizeOptions& options) {
    OpenScript open(options.file, false);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    const std::string target = options.other.empty()             ? open.path() + kValueFileEnding
                               : isStandardStream(options.other) ? options.other
                                                                 : suitePath(options.other);
    if (!isStandardStream(target) && equalNoCase(osFiles().fullPath(target), open.path())) {
        complain("the value file would overwrite the script; nothing was written");
        return ExitStatus::Usage;
    }
    const CustomScript& script = open.session().script();
    if (!writeOutput(target, valueFileText(script, false), FileKind::Generated)) {
        return ExitStatus::Failed;
    }
    const std::vector<NotCarried> lost = notCarried(script, false);
    for (const NotCarried& one : lost) {
        const CustomEntry& entry = script.entries[one.entry];
        complain("\"" + onOneLine(entry.label, kLineEndShown) + "\" (line " + std::to_string(entry.line) +
                 ") can't be read back from the value file: " + one.why);
    }
    return lost.empty() ? ExitStatus::Done : ExitStatus::Findings;
}

ExitStatus import(const CustomizeOptions& options) {
    OpenScript open(options.file, !options.dryRun);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    const auto bytes = readInput(options.other.empty()             ? open.path() + kValueFileEnding
                                 : isStandardStream(options.other) ? options.other
                                                                   : suitePath(options.other));
    if (!bytes) {
        return ExitStatus::Failed;
    }
    const ValueRecords stored = parseValueFile(*bytes);
    ExitStatus status = ExitStatus::Done;
    if (!stored.whole || !bytes->starts_with('1')) {
        complain(stored.whole ? "that is no value file; nothing was changed"
                              : "the value file ends too soon; nothing was changed");
        return ExitStatus::Findings;
    }
    if (stored.longLine > 0) {
        complain("line " + std::to_string(stored.longLine) + " of the value file is longer than " +
                 std::to_string(kValueFileLine - 1) + " bytes, as much as is read; nothing was changed");
        return ExitStatus::Findings;
    }
    CustomizeSession& session = open.session();
    const TextSet set = textSetOf(*bytes);
    KeyedMap<int, size_t> firstOf;
    for (size_t i = 0; i < session.size(); ++i) {
        if (session.entry(i).hasValue()) {
            firstOf.try_emplace(session.entry(i).id, i);
        }
    }
    for (const ValueRecord& record : stored.records) {
        const auto found = firstOf.find(record.id);
        std::string value = record.value;
        if (value.ends_with('\r')) {
            value.pop_back();
        }
        Outcome put = Refusal{"the script has no such entry."};
        if (found != firstOf.end()) {
            const auto converted = open.inScript(value, set);
            put = converted ? session.putValue(found->second, *converted) : Refusal{converted.why()};
        }
        if (!put) {
            complain("id " + std::to_string(record.id) + (value.empty() ? "" : " (" + value + ")") + ": " +
                     put.why());
            status = ExitStatus::Findings;
        }
    }
    return worse(status, open.finish(options.dryRun));
}

// `shown`: the path as the user gave it.
ExitStatus checkFile(const std::string& path, const std::string& shown, Json* json) {
    workOn(shown);
    CustomScript script;
    if (const Outcome loaded = LoadCustomScript(path, script); !loaded) {
        complainUnreadable(shown, loaded.why());
        return ExitStatus::Failed;
    }
    if (!hasUtf16Mark(script.text) && script.text.find('\0') != std::string::npos) {
        complain(shown + kNoScript);
        return ExitStatus::Failed;
    }
    const auto besideIt = [&path](const std::string& name) { return joinPath(folderOf(path), name); };
    checkPictures(script, besideIt);
    for (const MarkupFinding& finding : script.findings.kept()) {
        if (json) {
            json->push_back(
                {{"file", jsonText(shown)}, {"line", finding.line}, {"finding", jsonText(finding.what)}});
        } else {
            printShown(onOneLine(findingText(shown, finding), kLineEndShown) + "\n");
        }
    }
    const size_t left = script.findings.count() - script.findings.kept().size();
    if (left > 0) {
        complain(shown + ": " + std::to_string(left) + " more findings are not listed");
    }
    return script.findings.count() > 0 ? ExitStatus::Findings : ExitStatus::Done;
}

ExitStatus check(const CustomizeOptions& options) {
    ExitStatus status = ExitStatus::Done;
    Json all = Json::array();
    Json* const json = options.json ? &all : nullptr;
    for (const std::string& word : options.words) {
        const std::string path = suitePath(word);
        const auto entry = osFiles().search(path);
        if (!entry || !entry->isFolder) {
            status = worse(status, checkFile(path, word, json));
            continue;
        }
        OsListing left;
        for (const OsEntry& file : osFiles().list(joinPath(path, "*.kez"), &left)) {
            if (!file.isFolder) {
                status = worse(
                    status, checkFile(joinPath(path, file.name), givenPath(joinPath(path, file.name)), json));
            }
        }
        tellSkipped(left, word);
        if (!left.error.empty()) {
            complainUnreadable(word, left.error);
            status = ExitStatus::Failed;
        }
    }
    if (json) {
        printJson(all);
    }
    return status;
}

}  // namespace

void addCustomizeCommands(const Command& app, Work& chosen) {
    const Command group =
        app.add("customize", "The values that scripts offer for editing", "zoka customize list fog.kez");
    const auto add = [&](const char* name, const char* what, const char* example,
                         ExitStatus (*work)(const CustomizeOptions&), const auto&... more) {
        addCommand<CustomizeOptions>(group,
                                     {name, what, std::string("zoka customize ") + name + ' ' + example},
                                     chosen, work, more...);
    };
    const auto file = [](const Command& command, CustomizeOptions& options) {
        command.option("FILE", options.file, "The script").required();
    };
    const auto original = [](const Command& command, CustomizeOptions& options) {
        command.option("-t,--template", options.other, "The template, or the folder that it lies in")
            .required();
    };
    const auto words = [](const char* name, const char* what, bool required) {
        return [=](const Command& command, CustomizeOptions& options) {
            command.option(name, options.words, what).required(required);
        };
    };
    const auto values = [](const char* option, const char* what) {
        return [=](const Command& command, CustomizeOptions& options) {
            command.option(option, options.other, what);
        };
    };
    add(
        "list", "List a script's values", "fog.kez", list, file,
        [](const Command& command, CustomizeOptions& options) {
            command.flag("--full", options.full, "Everything that was read from the markup");
        },
        kJson);
    add("get", "Print values by id or label", "fog.kez 4 \"Far end\"", get, file,
        words("NAME", "Ids or labels of entries", true), kJson);
    add("set", "Change values by id or label", "fog.kez 4=12 \"Far end=300\"", set, file,
        words("NAME=VALUE", "What to change", true), kDryRun, kForce);
    add("reset", "Set values back to those of the template", "fog.kez 4 -t templates", reset, file,
        words("NAME", "Ids or labels of entries; none: all", false), original, kDryRun);
    add("diff", "List the values that differ from the template's", "fog.kez -t templates", diff, file,
        original, kJson);
    add("update", "Replace a script by its template and keep its values", "fog.kez -t templates", update,
        file, original, kDryRun);
    add("export", "Write a script's values into a value file", "fog.kez", exportValues, file,
        values("-o,--output",
               "The value file; without it the one beside the script; - is the standard output"));
    add("import", "Take the values of a value file into a script", "fog.kez", import, file,
        values("-i,--input", "The value file; without it the one beside the script; - is the standard input"),
        kDryRun);
    add("check", "Tell what can't be right in the markup of scripts", "templates fog.kez", check,
        words("PATH", "Scripts, or folders of scripts", true), kJson);
}

}  // namespace zoka::cli
