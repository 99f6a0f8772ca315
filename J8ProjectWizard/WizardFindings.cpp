#include "J8ProjectWizard/WizardFindings.h"

#include <algorithm>

#include "J8ProjectWizard/CreationPlan.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
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
            if (file.isRepeated) {
                add(file.place, "Something of that name is made before: " + file.target);
            }
            source(file, isCopied);
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
                if (file.target.ends_with(needed)) {
                    source(file, true);
                }
            }
        }
    }

private:
    XMLPlaces m_places;
    std::vector<WizardFinding>& m_found;
};

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
        return {{results.line, results.column, XMLNode::errorText(results.code)}};
    }
    Finder finder(std::move(*bytes), found);
    if (*xmlFirstText(wizard.getChild("Title")) == '\0') {
        finder.add(wizard.place(), "There is no Title: the wizard is listed under its path.");
    }
    const XMLNode defaults = wizard.getChild("Defaults");
    if (wizard.getChild("Desc").isEmpty()) {
        finder.add(wizard.place(), "There is no Desc, and without it the dialog takes no Defaults.");
    }
    const char* map = xmlFirstText(defaults.getChild("LevelMap"));
    if (*map == '\0') {
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
            finder.add(folder.place,
                       "The folder can't be made: a file of that name is copied before: " + folder.name);
        }
        for (const auto* files : {&folder.checked, &folder.files}) {
            for (const PlannedFile& file : *files) {
                finder.file(file, files == &folder.files);
            }
        }
    }
    finder.set(plan.level, ".zlm");
    finder.set(plan.projectFiles, ".xml");
    std::ranges::stable_sort(found, [](const WizardFinding& a, const WizardFinding& b) {
        return a.line != b.line ? a.line < b.line : a.column < b.column;
    });
    return found;
}

}  // namespace zoka
