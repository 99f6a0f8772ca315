// zoka catalogue, zoka help-pages: make, check and show a template catalogue.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "templates/CatalogueCheck.h"
#include "templates/CatalogueText.h"
#include "templates/CatalogueXml.h"
#include "templates/HelpPages.h"
#include "templates/ScriptNeeds.h"
#include "templates/ScriptSearch.h"
#include "tools/cli/Command.h"
#include "tools/cli/Json.h"
#include "tools/cli/SuitePath.h"
#include "util/Doors.h"
#include "util/KeyedHash.h"
#include "util/LineDiff.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"
#include "xml/XMLConvert.h"
#include "xml/XMLEncoding.h"
#include "xml/XMLRead.h"

namespace zoka::cli {

ExitStatus loadCatalogueOrComplain(CTemplateData& catalogue, const std::string& path) {
    const auto entry = isStandardStream(path) ? std::nullopt : osFiles().search(suitePath(path));
    if (isStandardStream(path) || (entry && entry->isFolder)) {
        complain(path +
                 (entry ? " is a folder: name its catalogue file" : " is no file: name the catalogue file"));
        return ExitStatus::Usage;
    }
    XMLResults results;
    workOn(path);
    if (loadCatalogue(catalogue, suitePath(path), &results)) {
        return ExitStatus::Done;
    }
    if (results.outOfMemory) {
        complain(outOfMemoryText(path));
        return ExitStatus::Failed;
    }
    if (results.code == kXmlFileNotFound) {
        complainUnreadable(path, XMLNode::errorText(results.code));
        return ExitStatus::Failed;
    }
    printShown(path + ":" + std::to_string(results.line > 0 ? results.line : 1) + ":" +
               std::to_string(results.column > 0 ? results.column : 1) + ": " +
               XMLNode::errorText(results.code) + "\n");
    return ExitStatus::Findings;
}

namespace {

ExitStatus report(const std::string& where, const std::vector<CatalogueFinding>& findings, bool json) {
    if (json) {
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const CatalogueFinding& finding : findings) {
            list.push_back({{"script", jsonText(finding.script)}, {"text", jsonText(finding.text)}});
        }
        printJson({{"findings", list}});
    } else {
        for (const CatalogueFinding& finding : findings) {
            printShown(where + ": " + (finding.script.empty() ? "" : finding.script + ": ") + finding.text +
                       "\n");
        }
    }
    return findings.empty() ? ExitStatus::Done : ExitStatus::Findings;
}

// What a file holds that is to be written, nothing of a new one. Without a value when it can't be read; why was said.
std::optional<std::string> currentText(const std::string& path, const std::string& shown) {
    auto text = osFiles().readWhole(path);
    if (!text && osFiles().exists(path)) {
        complainUnreadable(shown, osFiles().lastError());
        return std::nullopt;
    }
    return text ? text : std::optional(std::string());
}

struct BuildOptions {
    std::string folder, output;
    std::optional<std::string> name, type, version, engineReq;  // where not given, those of the old catalogue
    bool dryRun = false, json = false;
};

// The engine that a catalogue asks for, with the edition, which loading it leaves out.
std::string engineOf(const std::string& path) {
    XMLResults ignored;
    const XMLNode engine =
        XMLNode::parseFileInItsSet(path.c_str(), kCatalogueRoot, &ignored, {}).getChild("EngineReq");
    return CEngineReq{xmlAttribute(engine, "vers"), xmlAttribute(engine, "edition")}.AsText();
}

// Gives the catalogue its own header: the old one's, but for what is asked for.
void setHeader(CTemplateData& catalogue, const CTemplateData* earlier, const std::string& earlierEngine,
               const BuildOptions& options, const std::string& folder) {
    catalogue.SetName(options.name.value_or(earlier ? earlier->GetName() : "Templates"));
    catalogue.SetType(options.type.value_or(earlier ? earlier->GetType() : "full"));
    catalogue.SetVers(options.version.value_or(earlier ? earlier->GetVers() : "1"));
    catalogue.SetEngReq(options.engineReq.value_or(earlierEngine));
    if (earlier) {
        for (const auto& [type, path] : earlier->directories()) {
            catalogue.AddDirectory(type, path);
        }
    }
    if (!catalogue.findDirectory("code")) {
        catalogue.AddDirectory("code", ".\\" + std::string(fileNameOf(folder)));
    }
}

ExitStatus build(const BuildOptions& options) {
    const std::string folder = suitePath(options.folder);
    const std::string output =
        options.output.empty() ? joinPath(folder, kCatalogueFile) : suitePath(options.output);
    const std::string shown = givenPath(output);
    CTemplateData catalogue, old;
    const bool exists = osFiles().exists(output);
    const bool known = exists && loadCatalogue(old, output, nullptr);
    if (exists && !known) {
        complain(shown + " can't be read as a catalogue: its name, version and directories are not kept");
    }
    setHeader(catalogue, known ? &old : nullptr, known ? engineOf(output) : "", options, folder);
    std::vector<CatalogueFinding> findings;
    std::vector<Unreadable> unreadable;
    OsListing left;
    const bool any = buildCatalogue(catalogue, folder, known ? &old : nullptr, findings, unreadable, &left);
    tellSkipped(left, options.folder);
    if (!left.error.empty()) {
        complainUnreadable(options.folder, left.error + ". Nothing was written.");
        return ExitStatus::Failed;
    }
    if (!any) {
        complain("there is no KEZ script in " + options.folder);
        return ExitStatus::Failed;
    }
    const std::string text = inTextMode(catalogueText(catalogue, CTemplateData::GetCurDate()));
    ExitStatus status = report(options.folder, findings, options.json);
    for (const auto& [name, reason] : unreadable) {
        const bool stays = known && old.recordByFilenameNoCase(name);
        complainUnreadable(joinPath(folder, name),
                           reason + (stays ? "; it stays as it was" : "; it is left out"));
        status = ExitStatus::Failed;
    }
    if (catalogue.rows().empty()) {
        complain("no script of " + options.folder + " can be read. Nothing was written.");
        return status;
    }
    // What Add Script could not read would end the editor.
    XMLResults results;
    const XMLCharset charset = isUtf8(text.c_str()) ? XMLCharset::Utf8 : XMLCharset::Platform;
    setXmlCharset(charset);
    if (XMLNode::parseBytes(text, kCatalogueRoot, &results).isEmpty()) {
        if (results.outOfMemory) {
            complain(outOfMemoryText(shown) + " Nothing was written.");
            return ExitStatus::Failed;
        }
        if (const auto script = findUnreadable(catalogue, charset)) {
            complain(joinPath(folder, script->script) + ": " + script->text + ". Nothing was written.");
            return ExitStatus::Failed;
        }
        complain(shown + ":" + std::to_string(results.line) + ":" + std::to_string(results.column) + ": " +
                 XMLNode::errorText(results.code) + ". Nothing was written.");
        return ExitStatus::Failed;
    }
    if (options.dryRun) {
        const std::optional<std::string> before = currentText(output, shown);
        if (before && !options.json) {
            printPatch(unifiedDifference(*before, text, shown, shown));
        }
        return before ? status : ExitStatus::Failed;
    }
    return writeOutput(output, text, FileKind::Generated) ? status : ExitStatus::Failed;
}

nlohmann::ordered_json asJson(const CScriptElm& script) {
    nlohmann::ordered_json json = {
        {"id", jsonText(script.m_id)},
        {"filename", jsonText(script.m_filename)},
        {"name", jsonText(script.m_name)},
        {"class", jsonText(script.m_class)},
        {"type", jsonText(script.m_type)},
        {"version", jsonText(script.m_vers)},
        {"date", jsonText(script.m_date)},
        {"engine", jsonText(script.m_engreq.AsText())},
        {"directory", jsonText(script.m_directory)},
        {"description", jsonText(script.m_desc)},
        {"needs", jsonTexts(script.m_needs)},
    };
    nlohmann::ordered_json actions = nlohmann::ordered_json::array();
    for (const CScriptSection& section : script.m_sections) {
        for (const CScriptAction& action : section.m_actions) {
            actions.push_back({{"name", jsonText(action.m_name)},
                               {"filename", jsonText(action.m_filename)},
                               {"description", jsonText(action.m_desc)}});
        }
    }
    json["actions"] = actions;
    return json;
}

struct CatalogueOptions {
    std::string file;
    std::string className = "<ALL>", type, query;  // of `list`
    std::string script;                            // of `show`
    std::string templates;                         // of `check`
    bool json = false;
};

ExitStatus list(const CatalogueOptions& options) {
    CTemplateData catalogue;
    const ExitStatus loaded = loadCatalogueOrComplain(catalogue, options.file);
    if (loaded != ExitStatus::Done) {
        return loaded;
    }
    nlohmann::ordered_json scripts = nlohmann::ordered_json::array();
    ScriptSearch search(catalogue);
    for (const std::uint32_t record : search.find(options.className, options.query)) {
        const CScriptElm& script = catalogue.scripts()[record];
        if (!options.type.empty() && !equalNoCase(script.m_type, options.type)) {
            continue;
        }
        if (options.json) {
            scripts.push_back(asJson(script));
        } else {
            printShown(script.m_filename + "\t" + script.m_vers + "\t" + script.m_date + "\t" +
                       script.m_class + "\t" + script.m_name + "\n");
        }
    }
    if (options.json) {
        printJson({{"scripts", scripts}});
    }
    return ExitStatus::Done;
}

ExitStatus show(const CatalogueOptions& options) {
    CTemplateData catalogue;
    const ExitStatus loaded = loadCatalogueOrComplain(catalogue, options.file);
    if (loaded != ExitStatus::Done) {
        return loaded;
    }
    std::optional<CScriptElm> script = catalogue.findByName(options.script);
    if (!script) {
        script = catalogue.findByFilenameNoCase(options.script);
    }
    if (!script) {
        complain("the catalogue has no script " + options.script);
        return ExitStatus::Usage;
    }
    if (options.json) {
        printJson(asJson(*script));
        return ExitStatus::Done;
    }
    printShown("Name:     " + script->m_name + "\nFile:     " + script->m_filename + "\nClass:    " +
               script->m_class + "\nType:     " + script->m_type + "\nVersion:  " + script->m_vers +
               "\nDate:     " + script->m_date + "\nEngine:   " + script->m_engreq.AsText() +
               "\nNeeds:    " + joined(script->m_needs) + "\n\n" + script->m_desc + "\n");
    for (const CScriptSection& section : script->m_sections) {
        for (const CScriptAction& action : section.m_actions) {
            printShown("\naction " + action.m_name + "\n" + action.m_desc + "\n");
        }
    }
    return ExitStatus::Done;
}

ExitStatus check(const CatalogueOptions& options) {
    CTemplateData catalogue;
    const ExitStatus loaded = loadCatalogueOrComplain(catalogue, options.file);
    if (loaded != ExitStatus::Done) {
        return loaded;
    }
    const std::string folder = options.templates.empty() ? "" : suitePath(options.templates);
    return report(options.file, checkCatalogue(catalogue, folder), options.json);
}

struct PagesOptions {
    std::string file, output = "docs";
    bool dryRun = false, prune = false;
};

ExitStatus writePages(const PagesOptions& options) {
    CTemplateData catalogue;
    const ExitStatus loaded = loadCatalogueOrComplain(catalogue, options.file);
    if (loaded != ExitStatus::Done) {
        return loaded;
    }
    const std::string folder = suitePath(options.output) + "\\";
    KeyedSet<std::string> names;
    bool readable = true;
    const auto look = [&](const std::string& name, const std::string& text) {
        names.insert(lowered(name));
        if (options.dryRun) {
            const std::string path = folder + name, shown = givenPath(path);
            if (isUsersStyle(path, text)) {
                return Outcome();
            }
            const std::optional<std::string> before = currentText(path, shown);
            readable = readable && before;
            if (before) {
                printPatch(unifiedDifference(*before, text, shown, shown));
            }
        }
        return Outcome();
    };
    if (!makeHelp(catalogue, look)) {
        return ExitStatus::Failed;
    }
    const std::vector<std::string> gone = pagesOfOthers(folder, names);
    if (options.dryRun) {
        for (const std::string& page : gone) {
            printShown((options.prune ? "delete " : "of a script that is gone: ") + page + "\n");
        }
        return readable ? ExitStatus::Done : ExitStatus::Failed;
    }
    osFiles().makeFolders(suitePath(options.output));  // where it can't, the first page says so
    if (const Outcome written = writeHelp(catalogue, folder); !written) {
        complain(written.why());
        return ExitStatus::Failed;
    }
    if (!options.prune && !gone.empty()) {
        complain(
            std::to_string(gone.size()) +
            (gone.size() == 1 ? " page is of a script that is gone" : " pages are of scripts that are gone") +
            "; --prune deletes them");
    }
    for (const std::string& page : gone) {
        if (options.prune && !osFiles().deleteFile(folder + page)) {
            complain("Can't delete '" + page + "': " + osFiles().lastError());
            return ExitStatus::Failed;
        }
    }
    return ExitStatus::Done;
}

}  // namespace

void addCatalogueCommands(const Command& app, Work& chosen) {
    const Command group = app.add("catalogue", "Make, check and show template catalogues",
                                  "zoka catalogue list templates/template_6.xml");
    const auto file = [](const Command& command, auto& options) {
        command.option("FILE", options.file, "The catalogue file").required();
    };
    addCommand<BuildOptions>(
        group,
        {"build", "Make the catalogue of a folder from its scripts' headers",
         "zoka catalogue build templates --name \"Harbour Lights\" --vers 6.2"},
        chosen, build,
        [](const Command& command, BuildOptions& options) {
            command.option("FOLDER", options.folder, "The template folder").required();
            command.option("-o,--output", options.output, "The catalogue file [FOLDER/template_6.xml]");
            command.option("--name", options.name, "The template set's name [that of the old catalogue]");
            command.option("--type", options.type, "Its type [that of the old catalogue]");
            command.option("--vers", options.version, "Its version [that of the old catalogue]");
            command.option("--enginereq", options.engineReq, "The engine it needs, as in \"6.1 PRO\"");
        },
        kDryRun,
        [](const Command& command, BuildOptions& options) {
            command.flag("--json", options.json, "Print the findings as JSON, without the lines");
        });
    addCommand<CatalogueOptions>(
        group,
        {"check", "Tell what is wrong with a catalogue, and where",
         "zoka catalogue check templates/template_6.xml --templates templates"},
        chosen, check, file,
        [](const Command& command, CatalogueOptions& options) {
            command.option("--templates", options.templates, "Compare it with the scripts of this folder");
        },
        kJson);
    addCommand<CatalogueOptions>(
        group,
        {"list", "List a catalogue's scripts",
         "zoka catalogue list templates/template_6.xml --class Camera --search \"fov\""},
        chosen, list, file,
        [](const Command& command, CatalogueOptions& options) {
            command.option("--class", options.className, "Only this class").showDefault();
            command.option("--type", options.type, "Only this type");
            command.option("--search", options.query, "Only scripts that hold all these words");
        },
        kJson);
    addCommand<CatalogueOptions>(
        group,
        {"show", "Show one script of a catalogue", "zoka catalogue show templates/template_6.xml fog.kez"},
        chosen, show, file,
        [](const Command& command, CatalogueOptions& options) {
            command.option("NAME", options.script, "The script's title or file name").required();
        },
        kJson);
    addCommand<PagesOptions>(
        app,
        {"help-pages", "Write HTML help about a catalogue's scripts",
         "zoka help-pages templates/template_6.xml -o docs"},
        chosen, writePages, file,
        [](const Command& command, PagesOptions& options) {
            command.option("-o,--output", options.output, "The folder for the pages").showDefault();
            command.flag("--prune", options.prune, "Delete the pages of scripts that are gone");
        },
        kDryRun);
}

}  // namespace zoka::cli
