// Every text that loading a project reports or logs. Users and other tools of the suite know these lines, the
// odd ones too: they stay as they are.
#pragma once

#include "J8ProjectManager/ReportWriter.h"

namespace zoka::texts {

inline constexpr const char* kSource = "J8ProjectManager\\J8ProjectManager";

#define ZOKA_LOAD "CJ8ProjectManager::LoadFromXML(const std::string&)"

// --- The project file. %1: its path.
inline constexpr ReportEntry kXmlMissing{"(LoadFromXML): XML MISSING!\r\n", ZOKA_LOAD "XML MISSING!", "%1",
                                         kReportError};
inline constexpr ReportEntry kRootMissing{"(LoadFromXML): MISSING Project!\r\n", ZOKA_LOAD "Project MISSING!",
                                          "%1", kReportError};
inline constexpr ReportEntry kNoName{"(LoadFromXML): No Name!\r\n", ZOKA_LOAD "No Name.", "%1",
                                     kReportWarning};
inline constexpr ReportEntry kNoVers{"", ZOKA_LOAD "No Vers.", "%1", kReportWarning,
                                     "(LoadFromXML): No Vers."};
inline constexpr ReportEntry kNoDate{"(LoadFromXML): No Date!\r\n", ZOKA_LOAD "No Date.", "%1",
                                     kReportWarning};
inline constexpr ReportEntry kPathsMissing{"PATHS MISSING!\r\n\r\n", ZOKA_LOAD,
                                           "One or more paths are MISSING!", kReportWarning};
inline constexpr ReportEntry kJ8Path{"J8 Path: %1\r\n"};
inline constexpr ReportEntry kJ8PathMissing{"J8 Path: MISSING!\r\n", ZOKA_LOAD, "J8 Path: MISSING!",
                                            kReportWarning};
inline constexpr ReportEntry kProjPath{"Proj Path: %1\r\n\r\n"};
inline constexpr ReportEntry kProjPathMissing{"Proj Path: MISSING!\r\n\r\n", ZOKA_LOAD, "Proj Path: MISSING!",
                                              kReportWarning};
inline constexpr ReportEntry kNoBehaviorPath{
    "", ZOKA_LOAD, "pBehFilename->GetFilepath(csPath) returned false.", kReportError};
// %1: the path text, %2: the path
inline constexpr ReportEntry kBehaviorProblem{"Problem loading Behavior:%1.\r\n", ZOKA_LOAD,
                                              "LoadBehaviorXML(csPath) returned false.: %2", kReportWarning};
inline constexpr ReportEntry kDisplayMissing{"Warning: Display xml tag missing.\r\n", "", "", kReportWarning};
inline constexpr ReportEntry kUserInputMissing{"Warning: UserInput xml tag missing.\r\n", "", "",
                                               kReportWarning};
inline constexpr ReportEntry kLevelFailed{"", ZOKA_LOAD, "LoadLevel(..) return false.", kReportError};

// --- File references.
inline constexpr ReportEntry kBadPathTag{"", "CJ8ProjectManager PathTag(const CJ8File::eType&)",
                                         "kNotValid type.", kReportError};
inline constexpr ReportEntry kNoFilename{"", "CJ8ProjectManager GetFilenameFromXML()",
                                         "CJ8ProjectManager GetFilenameFromXML()", kReportError,
                                         "This element names no file: it needs proj_file, j8_file or file."};

// What resolving a reference found, by its kind. %1: the path text.
struct FileLines {
    ReportEntry notValid, isInline, custom, local, proj, j8;
};
// clang-format off
#define ZOKA_FILE_LINES(word) \
    {word " Inline.\r\n"}, {word " File: Custom Path.\r\n"}, {word " File: %1 (local)\r\n"}, \
    {word " File: %1 (proj)\r\n"}, {word " File: %1 (j8)\r\n"}
inline constexpr FileLines kBehaviorFile{{"Behavior File: Not Valid!\r\n", "", "", kReportWarning},
    ZOKA_FILE_LINES("Behavior")};
// The camera's first two lines were never finished.
inline constexpr FileLines kCameraFile{{"Invalid Path!", ZOKA_LOAD, "Camera File: Invalid Path!", kReportWarning},
    {"Camera Inline.\r\n"}, {"Custom Path."}, {"Camera File: %1 (local)\r\n"}, {"Camera File: %1 (proj)\r\n"},
    {"Camera File: %1 (j8)\r\n"}};
inline constexpr FileLines kUIFile{{"UI File: Invalid Path!\r\n", ZOKA_LOAD, "UI File: Invalid Path!", kReportWarning},
    ZOKA_FILE_LINES("UI")};
inline constexpr FileLines kAnimationFile{{"Animation File: Invalid Path!\r\n", ZOKA_LOAD,
    "Animation File: Invalid Path!", kReportWarning}, ZOKA_FILE_LINES("Animation")};
inline constexpr FileLines kWeaponDefFile{{"Weapon Def File: Invalid Path!\r\n", ZOKA_LOAD,
    "Weapon Def File: Invalid Path!", kReportWarning}, ZOKA_FILE_LINES("Weapon Def")};
inline constexpr FileLines kDisplayFile{{"Display File: Invalid Path!\r\n", "", "", kReportWarning},
    ZOKA_FILE_LINES("Display")};
inline constexpr FileLines kUserInputFile{{"UserInput File: Invalid Path!\r\n", "", "", kReportWarning},
    ZOKA_FILE_LINES("UserInput")};
#undef ZOKA_FILE_LINES
// clang-format on

// --- Components files. %1: the path.
#define ZOKA_CMP "CJ8ProjectManager::LoadCMPXML(const std::string&)"
inline constexpr ReportEntry kCmpMissing{"Bad Components: XML MISSING!\r\n", ZOKA_CMP,
                                         "Bad Components: XML MISSING: %1", kReportError,
                                         "There is no components file \"%1\"."};
inline constexpr ReportEntry kCmpOpenError{"Bad Components: XML Open Error!\r\n", ZOKA_CMP,
                                           "Bad Components: XML OPEN ERROR: %1", kReportError,
                                           "The components file \"%1\" can't be read."};
#undef ZOKA_CMP
inline constexpr ReportEntry kCmpNoName{"Warning (LoadCMPXML) %1 :Component found without name.\r\n", "", "",
                                        kReportWarning};
// %1: the component's name
inline constexpr ReportEntry kCmpTwice{"Warning (LoadCMPXML): CMP with name \"%1\" already added.\r\n", "",
                                       "", kReportWarning};
inline constexpr ReportEntry kPropertyFailed{"", "CJ8ProjectManager::LoadCMPXML()",
                                             "LoadProperty returned false.", kReportWarning};

// --- Properties. %1: the component's name, %2: the property's.
inline constexpr ReportEntry kPropertyNoName{
    "Warning (LoadProperty) \"%1\" :Property found without name. Not added.\r\n",
    "LoadProperty(CJ8CMPData*, XMLNode&, std::string&)", "Property found without name. Not added.",
    kReportWarning};
#define ZOKA_PROPERTY "Warning(LoadProperty): CMP(%1): Property \"%2\" "
// %3: the word
inline constexpr ReportEntry kPropertyBadType{ZOKA_PROPERTY "using unknown type.\r\n  -->\"%3\"\r\n", "", "",
                                              kReportWarning};
inline constexpr ReportEntry kPropertyNoType{ZOKA_PROPERTY "found without type. Using Unit.\r\n", "", "",
                                             kReportWarning};
inline constexpr ReportEntry kPropertyNoValue{ZOKA_PROPERTY "found without value.\r\n", "", "",
                                              kReportWarning};
inline constexpr ReportEntry kPropertyNoDocs{ZOKA_PROPERTY "found without docs.\r\n", "", "", kReportWarning};
inline constexpr ReportEntry kConstraintNoValue{ZOKA_PROPERTY "found constraint without value.\r\n", "", "",
                                                kReportWarning};
inline constexpr ReportEntry kEnumNoValue{ZOKA_PROPERTY "found enum without value.\r\n", "", "",
                                          kReportWarning};
#undef ZOKA_PROPERTY

// --- Behaviours files. %1: the path.
#define ZOKA_BEHAVIOR "CJ8ProjectManager::LoadBehaviorXML(const std::string&)"
inline constexpr ReportEntry kBehMissing{"LoadBehaviorXML: XML MISSING!\r\n", ZOKA_BEHAVIOR,
                                         "LoadBehaviorXML: XML MISSING: %1", kReportError,
                                         "There is no behaviors file \"%1\"."};
inline constexpr ReportEntry kBehOpenError{"LoadBehaviorXML: XML Open Error!\r\n", ZOKA_BEHAVIOR,
                                           "Behavior XML could not be openned.: %1", kReportError,
                                           "The behaviors file \"%1\" can't be read."};
#undef ZOKA_BEHAVIOR
inline constexpr ReportEntry kNoComponents{"No Component Data.\r\n\r\n"};
// %1: the path text
inline constexpr ReportEntry kCmpFileProj{"Component File: %1 (proj)\r\n"};
inline constexpr ReportEntry kCmpFileJ8{"Component File: %1 (j8)\r\n"};
inline constexpr ReportEntry kCmpFileNotFound{"Component File Not Found.\r\n", "", "", kReportWarning};
inline constexpr ReportEntry kCmpLoadError{"(LoadBehaviorXML) Error loading Component Data:%1\r\n\r\n", "",
                                           "", kReportError};
inline constexpr ReportEntry kCmpLoadedAlready{
    "Component File: Already loaded!\r\nFile \"%1\" has been ignored.\r\n"};
inline constexpr ReportEntry kLoadBehaviorFailed{"", "CJ8ProjectManager::LoadBehaviorXML()",
                                                 "LoadBehavior returned false.", kReportWarning};
inline constexpr ReportEntry kBehaviorThrow{"", "CJ8ProjectManager::LoadBehaviorXML()",
                                            "Throw creating new CJ8BehaviorData.", kReportError};

// --- Behaviours. %1: the behaviour's name.
inline constexpr ReportEntry kBehaviorNoName{
    "Warning (LoadBehavior)  :Property found without name. Not added.\r\n", "LoadBehavior()",
    "Property found without name. Not added.", kReportWarning};
inline constexpr ReportEntry kBehaviorNoClass{"Warning (LoadBehavior) %1 :Behavior found without class.\r\n",
                                              "", "", kReportWarning};
inline constexpr ReportEntry kBehaviorNoGroup{"Warning (LoadBehavior) %1 :Behavior found without group.\r\n",
                                              "", "", kReportWarning};
inline constexpr ReportEntry kBehaviorNoDocs{"Warning (LoadBehavior) %1 :Behavior found without docs.\r\n",
                                             "", "", kReportWarning};
// %2: the edit's name
inline constexpr ReportEntry kEditNoValue{
    "Warning (LoadBehavior) %1 :Behavior Edit %2 found without value. Not added.\r\n", "", "",
    kReportWarning};
// Told nowhere else: the loader passes over it without a word. %2: which skill; %3: what it lacks.
inline constexpr ReportEntry kSkillPassedOver{"", "", "", kReportWarning,
                                              "%2 of behavior \"%1\" has no %3, and is passed over"};
// %2: the component's name; %3: which edit.
inline constexpr ReportEntry kEditPassedOver{"", "", "", kReportWarning,
                                             "component \"%2\" of behavior \"%1\" has more than one Edit; "
                                             "only the first one counts, and %3 is passed over"};

// --- Levels. The first line names the behaviours' loader.
inline constexpr ReportEntry kLevelNoName{"Warning (LoadBehavior)  :Level found without name. Not added.\r\n",
                                          "LoadLevel()", "Level found without name. Not added.",
                                          kReportWarning};
inline constexpr ReportEntry kLevelNoDocs{"Warning (LoadLevel) \"%1\" :Level found without docs.\r\n", "", "",
                                          kReportWarning};

#undef ZOKA_LOAD

}  // namespace zoka::texts
