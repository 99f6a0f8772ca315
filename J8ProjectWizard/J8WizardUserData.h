// What the user decides about a new project.
#pragma once

#include <string>

namespace zoka {

// Relative to the current folder, in which the suite's templates lie.
inline constexpr const char* kTemplatesRoot = ".\\templates\\";
inline constexpr const char* kWizardsFolder = ".\\templates\\wizards\\";
inline constexpr const char* kTemplatesXmlFolder = ".\\templates\\xml\\";

}  // namespace zoka

// Folders and the message are in the system's character set, the other texts in UTF-8 as in XML files.
class CJ8WizardUserData {
public:
    // All texts are empty but the templates path: the full path of the suite's project data, with its last
    // backslash, where there is such a folder. Where there is none, the debug log says so.
    CJ8WizardUserData();

    std::string m_strName;
    std::string m_strDocs;
    std::string m_strDate;           // empty: the date in the template's project file stays
    std::string m_strProjectFolder;  // the new folder's full path
    std::string m_strTemplatesPath;
    std::string m_strLevelName;  // of the first level
    std::string m_strLevelMap;   // its map's file name, without folder and extension
    std::string m_strLevelDocs;
    std::string m_strMessage;  // the last error in words, or the path that it is about
};
