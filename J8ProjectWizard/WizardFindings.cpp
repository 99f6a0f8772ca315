#include "J8ProjectWizard/WizardFindings.h"

#include <algorithm>
#include <map>

#include "J8ProjectWizard/CreationPlan.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLErrorText.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

class Finder {
public:
    Finder(std::string bytes, std::vector<WizardFinding>& found)
        : m_places(std::move(bytes)), m_found(found) {}

    void add(std::uint32_t place, const std::string& text) {
        // The root may have no place of its own.
        const XMLPlace at = m_places.at(place);
        m_found.push_back({std::max(at.line, 1), std::max(at.column, 1), text});
    }
    void source(const PlannedFile& file, bool isCopied) {
        const OsKind kind = osFiles().kindOf(file.source);
        if (kind == OsKind::Missing) {
            add(file.place, "Missing file: " + file.source);
        } else if (kind == OsKind::Unknown) {
            add(file.place, file.source + " can't be looked at: " + osFiles().lastError());
        } else if (kind != OsKind::File && isCopied) {
            add(file.place, file.source + " is no file");
        }
    }
    // A file that a folder names.
    void file(const PlannedFile& file, bool isCopied) {
        if (file.source.empty()) {
            add(file.place, "Empty filename.");
        } else if (!file.refusal.empty()) {
            add(file.place, file.refusal);
        } else {
            if (!file.hasFolder) {
                add(file.place, "Empty foldername.");
            }
            madeBefore(file);
            if (file.lacksFolder) {
                add(file.place, lacksFolderText(file.target));
            }
            source(file, isCopied);
        }
    }
    void madeBefore(const PlannedFile& file) {
        if (file.isRepeated) {
            add(file.place, "Something of that name is made before: " + file.target);
        } else if (file.isTaken) {
            add(file.place, takenText(false, file.target));
        }
    }
    // `needed` is the one of its files that a project can't do without.
    void set(const PlannedSet& set, const char* needed) {
        if (!set.isDeclared) {
            return;
        }
        if (set.files.empty()) {
            add(set.place, "Nothing is copied: there is no File with a name.");
        } else if (!set.refusal.empty()) {
            add(set.place, set.refusal);
        } else {
            for (const PlannedFile& file : set.files) {
                madeBefore(file);
                if (file.target.ends_with(needed)) {
                    source(file, true);
                }
            }
        }
    }

    // Elements that no wizard has: a slip of the pen takes the level, or a file, without a word.
    void unknown(const XMLNode& element) {
        using Names = std::vector<std::string>;
        static const std::map<std::string, Names> kKnown = {
            {"wizard", {"title", "desc", "defaults", "folder", "level", "j8projectfiles"}},
            {"defaults", {"name", "docs", "levelname", "levelmap", "leveldocs"}},
            {"folder", {"check", "file"}},
            {"level", {"file"}},
            {"j8projectfiles", {"file"}},
        };
        const auto known = kKnown.find(lowered(element.getName()));
        if (known == kKnown.end()) {
            return;
        }
        for (XMLNode child = element.firstChild(); !child.isEmpty(); child = child.nextSibling()) {
            if (std::ranges::find(known->second, lowered(child.getName())) == known->second.end()) {
                add(child.place(), std::string("Unknown element ") + child.getName() + " in " +
                                       element.getName() + ": it is passed over.");
            } else {
                unknown(child);
            }
        }
    }

private:
    XMLPlaces m_places;
    std::vector<WizardFinding>& m_found;
};

// Whether one of the folders' files becomes `target`.
bool copies(const CreationPlan& plan, const std::string& target) {
    return std::ranges::any_of(plan.folders, [&](const PlannedFolder& folder) {
        return std::ranges::any_of(folder.files, [&](const PlannedFile& file) {
            return equalNoCase(normalizePath(file.target), target);
        });
    });
}

}  // namespace

std::vector<WizardFinding> wizardFindings(const std::string& path) {
    std::vector<WizardFinding> found;
    auto bytes = osFiles().readWhole(path);
    if (!bytes) {
        return {{0, 0, "The file can't be read: " + osFiles().lastError()}};
    }
    XMLResults results;
    const XMLNode wizard = XMLNode::parseBytes(*bytes, "Wizard", &results, {}, XMLCharset::Utf8);
    if (wizard.isEmpty()) {
        const XMLPlace place = xmlErrorPlace(results);
        return {{place.line, place.column, xmlErrorMessage(results, "Wizard", path)}};
    }
    Finder finder(std::move(*bytes), found);
    if (xmlAllText(wizard.getChild("Title")).empty()) {
        finder.add(wizard.place(), "There is no Title: the wizard is listed under its path.");
    }
    const XMLNode defaults = wizard.getChild("Defaults");
    if (wizard.getChild("Desc").isEmpty()) {
        finder.add(wizard.place(), "There is no Desc, and without it the dialog takes no Defaults.");
    }
    const std::string map = xmlAllText(defaults.getChild("LevelMap"));
    if (map.empty()) {
        finder.add(defaults.isEmpty() ? wizard.place() : defaults.place(),
                   "There is no Defaults/LevelMap, so the dialog refuses the wizard.");
    }
    const CreationPlan plan = planCreation(wizard, map);
    if (!plan.levelRefusal.empty()) {
        finder.add(defaults.getChild("LevelMap").place(), plan.levelRefusal);
    }
    for (const PlannedFolder& folder : plan.folders) {
        if (folder.isNameless) {
            finder.add(folder.place, "Empty folder name!");
        } else if (!folder.refusal.empty()) {
            finder.add(folder.place, folder.refusal);
        } else if (folder.isTaken) {
            finder.add(folder.place, takenText(true, folder.name));
        }
        for (const auto* files : {&folder.checked, &folder.files}) {
            for (const PlannedFile& file : *files) {
                finder.file(file, files == &folder.files);
            }
        }
    }
    if (!plan.level.isDeclared && !copies(plan, plan.map + ".zlm")) {
        finder.add(wizard.place(), "There is no Level: no map is copied that the editor could open.");
    }
    finder.set(plan.level, ".zlm");
    finder.set(plan.projectFiles, ".xml");
    if (!plan.loadsProjectFile && plan.isProjectFileTaken) {
        finder.add(wizard.place(), takenText(false, plan.projectFile));
    }
    finder.unknown(wizard);
    std::ranges::stable_sort(found, [](const WizardFinding& a, const WizardFinding& b) {
        return a.line != b.line ? a.line < b.line : a.column < b.column;
    });
    return found;
}

}  // namespace zoka
