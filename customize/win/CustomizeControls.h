// Numbers of the controls and menu items of "KEZ Customize".
#pragma once

namespace zoka {

inline constexpr const char* kCustomizeTitle = "KEZ Customize";

enum CustomizeControl : int {
    kScriptLabel = 1100,
    kScript,
    kSearchLabel,
    kSearch,
    kChangedOnly,
    kRows,
    kHelpBox,
    kShowChanges,
    kShowFindings,
    kSave,
    kRestore,
    kUpdate,
    kUndo,  // from here on: items of menus and keys
    kRedo,
    kFindField,
    kResetLoaded,
    kResetDefault,
    kResetSectionLoaded,
    kResetSectionDefault,
    kResetAllLoaded,
    kResetAllDefault,
    kCopyPlace,
    kFoldAll,
    kUnfoldAll,
    kCutText,
    kCopyText,
    kPasteText,
};

}  // namespace zoka
