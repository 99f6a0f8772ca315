// zoka project: J8 projects, without the dialog.
#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "J8ProjectManager/ProjectCheck.h"
#include "J8ProjectManager/ProjectSession.h"
#include "tools/cli/Command.h"
#include "tools/cli/Json.h"
#include "tools/cli/SuitePath.h"
#include "util/DebugLog.h"
#include "util/Doors.h"
#include "util/LineDiff.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLRead.h"

namespace zoka::cli {
namespace {

using Json = nlohmann::ordered_json;

struct ProjectOptions {
    std::string file;
    std::vector<std::string> words;  // files, addresses, or address=value
    std::vector<std::string> unset;
    bool json = false, dryRun = false, undeclared = false;
};

// Texts of a project are UTF-8; the terminal and the command line have the system's characters.
void print(const std::string& text) {
    printShown(pathFromXml(text));
}

std::string oneLine(const std::string& text) {
    return onOneLine(text, "\\n");
}

// A path that a project names, as this system's other programs take it.
std::string nativeText(std::string path) {
#ifndef _WIN32
    std::ranges::replace(path, '\\', '/');
    if (path.size() > 2 && path[1] == ':' && path[2] == '/') {
        path.erase(0, 2);
    }
#endif
    return path;
}

// A project opened as the dialog opens it, but for the logs, which a run of a tool does not leave behind.
class OpenProject {
public:
    // `given` is the file as the user named it. What is wrong with a file that could be read is not told where
    // `findsDamage`: it is among the session's problems then.
    OpenProject(const std::string& path, std::string given, bool findsDamage = false)
        : m_session(m_model, userPrompt()) {
        debugLogFileName().clear();
        m_session.writesStepReport = false;
        m_session.asksAboutOthersChanges = false;
        const Outcome opened = m_session.open(path);
        m_open = bool(opened);
        m_given = std::move(given);
        if (!opened && !(findsDamage && m_session.wasRead())) {
            complain(opened.why());
        }
    }
    explicit OpenProject(const std::string& given) : OpenProject(suitePath(given), given) {}

    // With the files' names as the user writes them.
    std::vector<ProjectProblem> shown(std::vector<ProjectProblem> problems) const {
        const std::string own = xmlFromPath(m_session.path());
        for (ProjectProblem& problem : problems) {
            problem.file = problem.file == own ? xmlFromPath(m_given) : nativeText(std::move(problem.file));
        }
        return problems;
    }

    bool isOpen() const { return m_open; }
    ProjectSession& session() { return m_session; }
    const CJ8ProjectManager& model() const { return m_model; }

    Result<ProjectField> find(const std::string& address) {
        auto field = fieldAt(m_model, xmlFromPath(address));
        if (!field) {
            complain(pathFromXml(field.why()));
        }
        return field;
    }

    ExitStatus finish(bool dryRun, bool force) {
        if (dryRun) {
            // For `patch`: with the byte order mark that the dialog's difference passes over.
            printPatch(unifiedDifference(m_session.bytes(), m_session.text(), m_given, m_given));
            return ExitStatus::Done;
        }
        return statusOf(m_session.save(force));
    }

private:
    CJ8ProjectManager m_model;
    ProjectSession m_session;
    std::string m_given;
    bool m_open = false;
};

const char* kindWord(const CJ8File& file) {
    switch (file.m_type) {
        case CJ8File::kFile:
            return "local";
        case CJ8File::kProjFile:
            return "proj";
        case CJ8File::kJ8File:
            return "j8";
        default:
            return file.isNamed() ? "missing" : "none";
    }
}

Json jsonOf(const ProjectProblem& problem) {
    Json one{{"file", jsonText(problem.file)}};
    if (problem.line > 0) {
        one["line"] = problem.line;
        one["column"] = problem.column;
    }
    one["severity"] = problem.severity == kReportError     ? "error"
                      : problem.severity == kReportWarning ? "warning"
                                                           : "note";
    one["text"] = jsonText(problem.text);
    return one;
}

// Whether the file is a project, or a damaged one.
bool isProject(const std::string& path) {
    XMLResults results;
    if (!XMLNode::parseFile(path.c_str(), "Project", &results, {}, XMLCharset::Utf8).isEmpty()) {
        return true;
    }
    if (results.outOfMemory) {
        return true;  // opening it says so
    }
    const std::string bytes = osFiles().readWhole(path).value_or("");
    for (size_t at = 0; results.code != kXmlFirstTagNotFound && at < bytes.size(); ++at) {
        at = bytes.find("<Project", at);
        if (at == bytes.npos || at + 8 >= bytes.size() ||
            std::string_view(" \t\r\n/>").find(bytes[at + 8]) != std::string_view::npos) {
            return at != bytes.npos;
        }
    }
    return false;
}

// The XML files of a folder that are projects.
std::vector<std::string> projectsIn(const std::string& folder) {
    std::vector<std::string> found;
    for (const OsEntry& entry : osFiles().list(joinPath(folder, "*.xml"))) {
        const std::string path = joinPath(folder, entry.name);
        if (!entry.isFolder && isProject(path)) {
            found.push_back(path);
        }
    }
    return found;
}

ExitStatus check(const ProjectOptions& options) {
    ExitStatus status = ExitStatus::Done;
    Json all = Json::array();
    for (const std::string& word : options.words) {
        const std::string path = suitePath(word);
        const auto entry = osFiles().search(path);
        std::vector<std::string> files = {path};
        if (entry && entry->isFolder) {
            files = projectsIn(path);
            if (files.empty()) {
                complain("there is no project file in " + path);
                status = worse(status, ExitStatus::Failed);
            }
        }
        for (const std::string& file : files) {
            OpenProject open(file, givenPath(file), true);
            if (!open.isOpen() && !open.session().wasRead()) {
                status = worse(status, ExitStatus::Failed);
                continue;
            }
            const std::vector<ProjectProblem> problems = open.shown(open.session().problems());
            for (const ProjectProblem& problem : problems) {
                if (problem.severity <= kReportWarning) {
                    status = worse(status, ExitStatus::Findings);
                }
                all.push_back(options.json ? jsonOf(problem) : Json());
            }
            if (!options.json) {
                print(ProjectSession::problemsText(problems));
            }
        }
    }
    if (options.json) {
        printJson(all);
    }
    return status;
}

ExitStatus report(const ProjectOptions& options) {
    OpenProject open(options.file);
    print(onOneLine(open.model().m_report, "\n"));
    return open.isOpen() ? ExitStatus::Done : ExitStatus::Failed;
}

Json jsonOf(const CJ8File& file) {
    return {{"file", jsonText(file.m_path)}, {"kind", kindWord(file)}};
}

Json overview(const CJ8ProjectManager& model) {
    Json all{{"name", jsonText(model.m_name)},
             {"version", jsonText(model.m_vers)},
             {"date", jsonText(model.m_date)},
             {"project folder", jsonText(model.m_roots.project())},
             {"data folder", jsonText(model.m_roots.data())}};
    for (int i = 0; i < kJ8Sections; ++i) {
        all["sections"][sectionTag(static_cast<J8Section>(i))] = jsonOf(model.m_sections[i]);
    }
    all["behavior files"] = Json::array();
    for (const CJ8File& file : model.m_apBehaviorFiles) {
        all["behavior files"].push_back(jsonOf(file));
    }
    all["behavior files not loaded"] = Json::array();
    for (const CJ8File& file : model.m_apLostBehaviorFiles) {
        all["behavior files not loaded"].push_back(jsonOf(file));
    }
    all["behaviors"] = Json::array();
    for (const CJ8BehaviorData& behavior : model.m_apBehavior) {
        all["behaviors"].push_back({{"name", jsonText(behavior.m_name)},
                                    {"class", jsonText(behavior.m_class)},
                                    {"group", jsonText(behavior.m_group)},
                                    {"skills", behavior.m_apSkillEdits.size()},
                                    {"components", jsonTexts(behavior.m_apCMPNames)}});
    }
    all["components"] = Json::array();
    for (const CJ8CMPData& component : model.m_apComponents) {
        all["components"].push_back(
            {{"name", jsonText(component.m_name)}, {"properties", component.m_properties.size()}});
    }
    all["levels"] = Json::array();
    for (const CJ8LevelData& level : model.m_apLevels) {
        all["levels"].push_back({{"name", jsonText(level.m_name)},
                                 {"mapfile", jsonText(level.m_mapFile.m_path)},
                                 {"entities", level.m_entities.size()}});
    }
    return all;
}

ExitStatus show(const ProjectOptions& options) {
    OpenProject open(options.file);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    const Json all = overview(open.model());
    if (options.json) {
        printJson(all);
        return ExitStatus::Done;
    }
    // The same, a line a value; what a list holds is indented below its name.
    for (const auto& [name, value] : all.items()) {
        if (value.is_string()) {
            print(name + ": " + oneLine(value.get<std::string>()) + "\n");
            continue;
        }
        print(name + ":" + (value.empty() ? " none" : "") + "\n");
        for (const auto& [key, entry] : value.items()) {
            std::string line = value.is_object() ? key + ":" : "";
            for (const auto& [what, part] : entry.items()) {
                const std::string text = part.is_string()  ? part.get<std::string>()
                                         : part.is_array() ? std::to_string(part.size())
                                                           : part.dump();
                const bool first = what == "name" || what == "file" || what == "kind";
                line += (line.empty() ? "" : "  ") + (first ? text : what + " " + text);
            }
            print("  " + oneLine(line) + "\n");
        }
    }
    return ExitStatus::Done;
}

ExitStatus list(const ProjectOptions& options) {
    OpenProject open(options.file);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    std::vector<std::string> words;
    for (const std::string& word : options.words) {
        words.push_back(xmlFromPath(word));
    }
    std::vector<bool> found(words.size());
    Json all = Json::array();
    forEachField(open.model(), [&](const ProjectField&, const std::string& address,
                                   const std::optional<std::string>& value) {
        bool wanted = words.empty();
        for (size_t i = 0; i < words.size(); ++i) {
            if (address == words[i] || address.starts_with(words[i] + "/")) {
                wanted = found[i] = true;
            }
        }
        if (!wanted || !value) {
            return;
        }
        if (options.json) {
            all.push_back({{"address", jsonText(address)}, {"value", jsonText(*value)}});
        } else {
            print(address + " = " + oneLine(*value) + "\n");
        }
    });
    if (options.json) {
        printJson(all);
    }
    ExitStatus status = ExitStatus::Done;
    for (size_t i = 0; i < words.size(); ++i) {
        if (!found[i] && !fieldAt(open.model(), words[i])) {
            complain("there is nothing at \"" + options.words[i] + "\"");
            status = ExitStatus::Usage;
        }
    }
    return status;
}

// What holds for the field: its own value or what the parent gives.
std::string valueThatHolds(OpenProject& open, const ProjectField& field) {
    if (const auto own = fieldValue(open.model(), field)) {
        return *own;
    }
    if (field.kind >= ProjectField::Kind::EntitySkill) {
        for (const ProjectRow& row : open.session().entityRows(field.level, field.entity)) {
            if (row.hasField && row.field == field) {
                return row.current;
            }
        }
    }
    return {};
}

ExitStatus get(const ProjectOptions& options) {
    OpenProject open(options.file);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    std::vector<ProjectField> fields;
    for (const std::string& word : options.words) {
        const auto field = open.find(word);
        if (!field) {
            return ExitStatus::Usage;
        }
        fields.push_back(*field);
    }
    Json all = Json::array();
    for (const ProjectField& field : fields) {
        const std::string value = valueThatHolds(open, field);
        if (options.json) {
            all.push_back({{"address", jsonText(addressOf(open.model(), field))},
                           {"value", jsonText(value)},
                           {"own", fieldValue(open.model(), field).has_value()}});
        } else {
            print(value + "\n");
        }
    }
    if (options.json) {
        printJson(all);
    }
    return ExitStatus::Done;
}

ExitStatus set(const ProjectOptions& options) {
    if (options.words.empty() && options.unset.empty()) {
        complain("there is nothing to change: name an address=value, or an address with --unset");
        return ExitStatus::Usage;
    }
    OpenProject open(options.file);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    struct Change {
        std::string address;
        std::optional<std::string> value;
        ProjectField field = {};
    };
    std::vector<Change> changes;
    for (const std::string& word : options.words) {
        const size_t equals = word.find('=');
        if (equals == word.npos) {
            complain("\"" + word + "\" is not of the form address=value");
            return ExitStatus::Usage;
        }
        changes.push_back({word.substr(0, equals), xmlFromPath(word.substr(equals + 1))});
    }
    for (const std::string& address : options.unset) {
        changes.push_back({address, std::nullopt});
    }
    // All addresses are those of the project as it is, also where one of the changes is a name.
    for (Change& change : changes) {
        const auto field = open.find(change.address);
        if (!field) {
            return ExitStatus::Usage;
        }
        change.field = *field;
    }
    // Where a file is looked for elsewhere than before, what is missing then is news.
    const bool movesFiles = std::ranges::any_of(changes, [](const Change& change) {
        using Kind = ProjectField::Kind;
        const Kind kind = change.field.kind;
        return kind == Kind::ProjectRoot || kind == Kind::DataRoot || kind == Kind::Section ||
               kind == Kind::LevelMap;
    });
    std::set<std::string> known;
    for (const ProjectProblem& problem :
         movesFiles ? open.session().problems() : std::vector<ProjectProblem>()) {
        known.insert(problem.text);
    }
    for (const auto& [address, value, field] : changes) {
        if (!value && !fieldValue(open.model(), field)) {
            complain(address + " has no value of its own");
            continue;
        }
        std::string why =
            value && !options.undeclared ? undeclaredRefusal(open.model(), field, *value) : std::string();
        if (!why.empty()) {
            why += "; --undeclared sets it all the same";
        } else if (const Outcome set = open.session().setValue(field, value); set) {
            continue;
        } else {
            why = set.why();
        }
        complain(address + ": " + pathFromXml(why) + " (nothing was changed)");
        return ExitStatus::Findings;
    }
    for (const auto& [address, value, field] : changes) {
        if (const std::string taken = takenRefusal(open.model(), field, value.value_or("")); !taken.empty()) {
            complain("warning: " + address + ": " + taken);
        }
    }
    for (const ProjectProblem& problem :
         movesFiles ? open.session().problems() : std::vector<ProjectProblem>()) {
        if (known.insert(problem.text).second) {
            complain("warning: " + pathFromXml(problem.text));
        }
    }
    return open.finish(options.dryRun, false);
}

ExitStatus save(const ProjectOptions& options) {
    OpenProject open(options.file);
    return open.isOpen() ? open.finish(options.dryRun, true) : ExitStatus::Failed;
}

ExitStatus format(const ProjectOptions& options) {
    OpenProject open(options.file);
    if (!open.isOpen()) {
        return ExitStatus::Failed;
    }
    const std::vector<ProjectProblem> losses = open.shown(open.session().losses());
    if (!losses.empty()) {
        print(ProjectSession::problemsText(losses));
        complain("not formatted: something would be lost (save keeps a copy)");
        return ExitStatus::Findings;
    }
    const std::string path = open.session().path();
    const std::string& before = open.session().bytes();
    const XMLText after = open.model().fileText({}, open.model().m_date);
    if (!after) {
        complain(outOfMemoryText(options.file));
        return ExitStatus::Failed;
    }
    if (options.dryRun) {
        printPatch(unifiedDifference(before, after.view(), options.file, options.file));
        return ExitStatus::Done;
    }
    return rewriteFile(path, before, after.view(), [&] { return format(options); });
}

}  // namespace

void addProjectCommands(const Command& app, Work& chosen) {
    const Command group = app.add("project", "Check, list and change J8 projects",
                                  "zoka project set game.xml level/harbour/entity/guard/skill/3=40");
    const auto add = [&](const char* name, const char* what, const char* example,
                         ExitStatus (*work)(const ProjectOptions&), const auto&... more) {
        addCommand<ProjectOptions>(group, {name, what, std::string("zoka project ") + name + ' ' + example},
                                   chosen, work, more...);
    };
    const auto file = [](const Command& command, ProjectOptions& options) {
        command.option("PROJECT", options.file, "The project file").required();
    };
    const auto words = [](const char* name, const char* what, bool required) {
        return [=](const Command& command, ProjectOptions& options) {
            command.option(name, options.words, what).required(required);
        };
    };

    add("check", "Print what is wrong in projects", "game.xml", check,
        words("PATH", "Project files, or folders of them", true), kJson);
    add("report", "Print the report of loading a project", "game.xml", report, file);
    add("show", "Print what a project consists of", "game.xml", show, file, kJson);
    add("list", "Print addresses and values", "game.xml level/harbour", list, file,
        words("ADDRESS", "Only what lies there or below", false), kJson);
    add("get", "Print values", "game.xml level/harbour/entity/guard/skill/3", get, file,
        words("ADDRESS", "Which values", true), kJson);
    add(
        "set", "Change values, all of them or none", "game.xml level/harbour/entity/guard/skill/3=40", set,
        file, words("ADDRESS=VALUE", "What to change", false),
        [](const Command& command, ProjectOptions& options) {
            command.option("-u,--unset", options.unset,
                           "Take an entity's own value away: its parent's holds");
            command.flag("--undeclared", options.undeclared,
                         "Also values that no behaviors or components file declares");
        },
        kDryRun);
    add("save", "Load a project and write it again", "game.xml", save, file, kDryRun);
    add("format", "Lay a project file out as a save does, when nothing is lost by that", "game.xml", format,
        file, kDryRun);
}

}  // namespace zoka::cli
