// The keys of the steps that saving a project reports. Other tools of the suite read them.
#pragma once

namespace zoka::keys {

inline constexpr const char* kErrProject = "ErrProject";
inline constexpr const char* kAddBehaviors = "AddBehaviorXmls";
inline constexpr const char* kAddBehavior = "AddBehavior";
inline constexpr const char* kWarnBehavior = "WarnBehaviorBadPathTag";
inline constexpr const char* kAddLevel = "AddLevel";
inline constexpr const char* kWarnLevel = "WarnLevel";
inline constexpr const char* kAddLevelEntity = "AddLevelEntity";
inline constexpr const char* kErrGetFilepath = "ErrGetFilepath";
inline constexpr const char* kSections[] = {"WarnCamera", "WarnUI",      "WarnAnimationPool",
                                            "WarnWepDef", "WarnDisplay", "WarnUserInput"};

}  // namespace zoka::keys
