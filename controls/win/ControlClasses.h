// The window classes of a panel's controls, and the code page of their texts.
#pragma once

#include <windows.h>

#include "controls/TextSet.h"

namespace zoka {

inline constexpr const char* kEntryClass = "ZK_ENTRY";      // one row of a panel
inline constexpr const char* kIntEditClass = "ZT_IntEdit";  // takes whole numbers
inline constexpr const char* kFloatEditClass = "ZT_FloatEdit";
inline constexpr const char* kSliderClass = "ZT_SliderV";    // a slider with its number field
inline constexpr const char* kEntryPanelClass = "ZK_PANEL";  // the rows and their scroll bar

inline UINT codePageOf(TextSet set) {
    return set == TextSet::Utf8 ? CP_UTF8 : CP_ACP;
}

// While one of these lives, the classes can be used. Each panel has one, which is made before and freed after
// its windows: a library that is unmapped must leave no class behind. [editor thread]
class ControlClasses {
public:
    ControlClasses();
    ~ControlClasses();
    ControlClasses(const ControlClasses&) = delete;
    ControlClasses& operator=(const ControlClasses&) = delete;

    // The module that the classes belong to. [any thread, while one lives]
    static HINSTANCE instance();
};

}  // namespace zoka
