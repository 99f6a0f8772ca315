#include "J8ProjectWizard/CreationPlan.h"

#include "J8ProjectWizard/WizardNames.h"
#include "util/KeyedHash.h"
#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

// As messages can show it, however long it is.
std::string shortened(const std::string& name) {
    constexpr size_t kMost = 100;
    return name.size() <= kMost ? name : name.substr(0, kMost) + "...";
}

std::string refusalOf(const char* what, const std::string& name, const std::string& why) {
    return why.empty() ? why : std::string(what) + " \"" + shortened(name) + "\" " + why + ".";
}

// A `File` or `Check` element. `folder` is its target's, with a separator; null: it is not copied.
PlannedFile planFile(const XMLNode& element, const std::string* folder) {
    PlannedFile file;
    file.place = element.place();
    const std::string name = pathFromXml(xmlAttribute(element, "name"));
    const std::string in = pathFromXml(xmlAttribute(element, "folder"));
    file.hasFolder = !in.empty();
    if (name.empty()) {
        return file;
    }
    file.source = kTemplatesRoot + (in.empty() ? in : in + "\\") + name;
    file.refusal = refusalOf("The file name", name, fileNameRefusal(name));
    if (file.refusal.empty()) {
        file.refusal = refusalOf("The folder name", in, nameRefusal(in));
    }
    if (folder) {
        file.target = *folder + name;
    }
    return file;
}

// The files of `element`, which may be missing, under the name `target`, or their own where that is null.
PlannedSet planSet(const XMLNode& element, const std::string* target,
                   std::initializer_list<const char*> extensions) {
    PlannedSet set;
    set.isDeclared = !element.isEmpty();
    const XMLNode first = element.getChild("File");
    const PlannedFile base = planFile(first, nullptr);
    set.place = first.isEmpty() ? element.place() : first.place();
    if (base.source.empty()) {
        return set;
    }
    set.target = target ? *target : std::string(fileNameOf(base.source));
    set.refusal = base.refusal;
    for (const char* extension : extensions) {
        PlannedFile file = base;
        file.source += extension;
        file.target = set.target + extension;
        set.files.push_back(std::move(file));
    }
    return set;
}

// Finds targets that are there already when it is their turn, and those whose folder is not.
class TargetCheck {
public:
    void folder(PlannedFolder& folder) {
        const std::string name = keyOf(folder.name);
        for (size_t end = 0; end != name.npos && !name.empty();) {
            end = name.find('\\', end + 1);
            std::string part = name.substr(0, end);
            folder.isTaken |= m_files.contains(part);
            m_folders.insert(std::move(part));
        }
        files(folder.files);
    }
    void files(std::vector<PlannedFile>& files) {
        for (PlannedFile& file : files) {
            if (!file.source.empty()) {
                std::string name = keyOf(file.target);
                const size_t folder = name.find_last_of('\\');
                file.lacksFolder = folder != name.npos && !m_folders.contains(name.substr(0, folder));
                file.isTaken = m_folders.contains(name);
                file.isRepeated =
                    !file.lacksFolder && !file.isTaken && !m_files.insert(std::move(name)).second;
            }
        }
    }

    // By a folder.
    bool isTaken(const std::string& file) const { return m_folders.contains(keyOf(file)); }

private:
    static std::string keyOf(const std::string& target) {
        std::string key = lowered(normalizePath(target));
        while (!key.empty() && isSeparator(key.back())) {
            key.pop_back();
        }
        return key;
    }

    KeyedSet<std::string> m_files, m_folders;
};

}  // namespace

std::string withSeparator(std::string folder) {
    if (folder.empty() || !isSeparator(folder.back())) {
        folder += '\\';
    }
    return folder;
}

PlannedFolder planFolder(const XMLNode& element) {
    PlannedFolder folder;
    folder.place = element.place();
    folder.name = pathFromXml(xmlAttribute(element, "name"));
    folder.isNameless = folder.name.empty();
    folder.refusal = refusalOf("The folder name", folder.name, nameRefusal(folder.name));
    if (folder.name == ".") {
        folder.name.clear();
    }
    const std::string prefix = folder.name.empty() ? folder.name : withSeparator(folder.name);
    for (XMLNode child = element.firstChild("Check"); !child.isEmpty(); child = child.nextSibling("Check")) {
        folder.checked.push_back(planFile(child, nullptr));
    }
    for (XMLNode child = element.firstChild("File"); !child.isEmpty(); child = child.nextSibling("File")) {
        folder.files.push_back(planFile(child, &prefix));
    }
    return folder;
}

CreationPlan planCreation(const XMLNode& wizard, const std::string& levelMap) {
    CreationPlan plan;
    for (XMLNode child = wizard.firstChild("Folder"); !child.isEmpty(); child = child.nextSibling("Folder")) {
        plan.folders.push_back(planFolder(child));
    }
    const std::string map = levelMap.empty() ? "map" : pathFromXml(levelMap);
    const std::string why = plainNameRefusal(map);
    plan.map = map;
    plan.levelRefusal = why.empty() ? why : "The level map's name \"" + shortened(map) + "\" " + why + ".";
    plan.level = planSet(wizard.getChild("Level"), &map, {".zlm", ".zlb", ".zun"});
    plan.projectFiles = planSet(wizard.getChild("J8ProjectFiles"), nullptr, {".c", ".kez", ".xml"});
    plan.loadsProjectFile = !plan.projectFiles.target.empty();
    plan.projectFile = (plan.loadsProjectFile ? plan.projectFiles.target : map) + ".xml";
    TargetCheck check;
    for (PlannedFolder& folder : plan.folders) {
        if (!folder.isNameless && folder.refusal.empty()) {
            check.folder(folder);
        }
    }
    check.files(plan.level.files);
    check.files(plan.projectFiles.files);
    plan.isProjectFileTaken = check.isTaken(plan.projectFile);
    return plan;
}

std::string lengthRefusal(const std::string& path) {
    return path.size() <= kLongestPath
               ? std::string()
               : "The path has " + std::to_string(path.size()) + " characters; the system takes " +
                     std::to_string(kLongestPath) + ": \"" + path + "\".";
}

std::string mapRefusal(const std::string& path) {
    return path.size() <= kLongestMapPath ? std::string()
                                          : "The path of the level's map has " + std::to_string(path.size()) +
                                                " characters; the editor opens " +
                                                std::to_string(kLongestMapPath) + ": \"" + path + "\".";
}

std::string takenText(bool isFolder, const std::string& target) {
    return (isFolder ? "The folder can't be made: a file of that name is copied before: "
                     : "The file can't be made: a folder of that name is made before: ") +
           target;
}

std::string lacksFolderText(const std::string& target) {
    return "Can't be copied, because no folder before makes the one that it lies in: " + target;
}

std::string folderRefusal(const std::string& path) {
    // Some systems take it, but no editor could open the project there.
    if (path.find(':', 2) != path.npos) {
        return "The path \"" + shortened(path) + "\" holds a colon, which means a stream of a file.";
    }
    const size_t end = path.find_last_not_of("\\/") + 1;
    const std::string name(fileNameOf(path.substr(0, end)));
    // ".." leads to a folder that is there.
    const std::string refusal = name == ".." ? "" : refusalOf("The folder name", name, nameRefusal(name));
    return refusal.empty() ? lengthRefusal(path) : refusal;
}

PlanRefusal firstRefusal(const CreationPlan& plan, const std::string& projectFolder) {
    const std::string root = withSeparator(projectFolder);
    const auto refused = [&root](const std::string& target, const std::string& refusal, bool isFolder) {
        PlanRefusal found{isFolder, root + target, refusal};
        if (found.text.empty()) {
            found.text = lengthRefusal(found.path);
        }
        return found;
    };
    if (PlanRefusal found = refused({}, folderRefusal(projectFolder), true); !found.text.empty()) {
        return found;
    }
    for (const PlannedFolder& folder : plan.folders) {
        if (folder.isNameless) {
            continue;
        }
        if (PlanRefusal found = refused(folder.name, folder.refusal, true); !found.text.empty()) {
            return found;
        }
        for (const PlannedFile& file : folder.files) {
            if (file.source.empty()) {
                break;
            }
            if (PlanRefusal found = refused(file.target, file.refusal, false); !found.text.empty()) {
                return found;
            }
        }
    }
    if (!plan.levelRefusal.empty()) {
        return {false, root + plan.level.target, plan.levelRefusal};
    }
    for (const PlannedSet* set : {&plan.level, &plan.projectFiles}) {
        for (const PlannedFile& file : set->files) {
            if (PlanRefusal found = refused(file.target, set->refusal, false); !found.text.empty()) {
                return found;
            }
        }
    }
    return refused(plan.projectFile, mapRefusal(root + plan.map), false);
}

}  // namespace zoka
