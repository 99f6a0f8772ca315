// Another project than a panel's own is open in the editor, or none: told in the same words by each panel.
#pragma once

#include <optional>
#include <string>

namespace zoka {

// The folder of the project that the editor has open, empty for none; nothing while it is the panel's own.
using Elsewhere = std::optional<std::string>;

// For the panel's title, in words; empty while its own project is open. Static.
inline const char* elsewhereText(const Elsewhere& open) {
    return !open ? "" : open->empty() ? " (no project is open)" : " (another project is open)";
}

// Whether two projects have the same folder, however it is written. Two unknown folders are the same.
bool sameFolder(const std::string& a, const std::string& b);

}  // namespace zoka
