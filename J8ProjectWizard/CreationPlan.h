// What creating a project makes: the plan that creation carries out, that a dry run prints and that the dialog
// shows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "J8ProjectWizard/J8WizardUserData.h"
#include "xml/XMLNode.h"

namespace zoka {

// Sources are paths from the current folder, targets paths below the project folder; both in the system's
// character set.
struct PlannedFile {
    std::string source;        // empty: the element has no name
    std::string target;        // empty for a file that is only to be there
    std::string refusal;       // why it is not made, in words with the name; empty: it is
    bool hasFolder = false;    // its element says in which folder of the templates it lies
    bool isRepeated = false;   // an earlier file has the same target, so copying this one fails
    bool lacksFolder = false;  // nothing before makes the folder of its target, so copying it fails
    bool isTaken = false;  // an earlier folder has the same target, so copying this one fails and leaves none
    std::uint32_t place = 0;  // of its element, see XMLNode::place
};

struct PlannedFolder {
    std::string name;         // below the project folder; empty: the project folder itself
    std::string refusal;      // as in PlannedFile
    bool isNameless = false;  // it is passed over, with its files
    bool isTaken = false;     // an earlier file has its name, or that of one it lies in: it can't be made
    std::vector<PlannedFile> checked;  // that must be there and aren't copied
    std::vector<PlannedFile> files;    // to be copied up to the first nameless one, which is a failure
    std::uint32_t place = 0;
};

// The level's files, or those of the project: of one name, with three extensions.
struct PlannedSet {
    bool isDeclared = false;  // the wizard has an element for them
    std::string target;       // without extension; empty: nothing is copied
    std::string refusal;
    std::vector<PlannedFile> files;  // in the order of copying
    std::uint32_t place = 0;
};

struct CreationPlan {
    std::vector<PlannedFolder> folders;
    PlannedSet level;                 // .zlm, .zlb, .zun
    PlannedSet projectFiles;          // .c, .kez, .xml
    std::string levelRefusal;         // what is wrong with the level map's name
    std::string projectFile;          // the file that the project is saved to
    std::string map;                  // of the level, without extension
    bool isProjectFileTaken = false;  // by a folder of that name
    bool loadsProjectFile = false;    // it is copied from the templates
};

// The plan of the wizard whose root element is `wizard`. No disk is touched, and of `data` only the level map's
// name counts, so that the plan stays while the user types.
CreationPlan planCreation(const XMLNode& wizard, const std::string& levelMap);
// One element `Folder` of it.
PlannedFolder planFolder(const XMLNode& folder);

// Why the plan must not be carried out in that folder: the first refused name, or a path that is too long.
struct PlanRefusal {
    bool isFolder = false;
    std::string path;  // of what would be made
    std::string text;  // in words; empty: nothing is refused
};
PlanRefusal firstRefusal(const CreationPlan& plan, const std::string& projectFolder);
// What is wrong with the length of a path that is to be made; empty: nothing.
std::string lengthRefusal(const std::string& path);
// The same of the project folder's path, an absolute one, and of its last part.
std::string folderRefusal(const std::string& path);
// What is wrong with the length of the path of the level's map, which is given without extension.
std::string mapRefusal(const std::string& path);
// Of a file whose plan says lacksFolder.
std::string lacksFolderText(const std::string& target);
// Of a folder or file whose plan says isTaken.
std::string takenText(bool isFolder, const std::string& target);

// `folder` with a separator at its end.
std::string withSeparator(std::string folder);

}  // namespace zoka
