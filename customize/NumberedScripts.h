// Templates that are copied into a project under a fresh number each time: "camera_.kez" becomes
// "camera_0.kez", "camera_1.kez" and so on.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zoka {

// In a numbered template's text; each copy holds "_" and its number there instead.
inline constexpr const char* kCopyMarker = "%_%";

// Whether the file is copied under a fresh number each time: its extension is "kez", in any case, and the
// last character of its name before that is "_".
bool IsNumberedTemplate(const std::string& path);
// The path of a numbered template's copy: "camera_.kez" and 3 make "camera_3.kez".
std::string numberedCopy(const std::string& path, unsigned number);
// What stands for kCopyMarker in that copy: "_3".
std::string copyMark(unsigned number);
// The text with `mark` in the place of each kCopyMarker.
std::string withCopyMark(std::string_view text, std::string_view mark);

// The file name of the template that a copy was made of: "camera_.kez" of "camera_3.kez". Empty for a name
// that is no copy's.
std::string numberedTemplateOf(const std::string& scriptPath);

// The full path of the script's template in `templateFolder` (which ends with a separator): the file of its
// own name, else the numbered template that it is a copy of. Nothing when neither is there.
std::optional<std::string> templatePathFor(const std::string& scriptPath, const std::string& templateFolder);
// The template's bytes as they are for the script: a numbered copy has its number in the place of each marker.
// Nothing when the file can't be read.
std::optional<std::string> templateTextFor(const std::string& scriptPath, const std::string& templatePath);

}  // namespace zoka
