#include "customize/NumberedScripts.h"

#include "util/LexChars.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

namespace {

constexpr std::string_view kMarker = kCopyMarker;

// What stands between "_" and the extension, when that is a number: "3" of "lift_3.kez".
std::string_view copyNumberOf(const PathParts& parts) {
    size_t digits = 0;
    while (digits < parts.name.size() && lex::isDecimal(parts.name[parts.name.size() - digits - 1])) {
        ++digits;
    }
    const bool numbered = digits > 0 && digits < parts.name.size() &&
                          parts.name[parts.name.size() - digits - 1] == '_' && equalNoCase(parts.ext, ".kez");
    return numbered ? parts.name.substr(parts.name.size() - digits) : std::string_view();
}

bool isFile(const std::string& path) {
    const std::optional<OsEntry> entry = osFiles().search(path);
    return entry && !entry->isFolder;
}

}  // namespace

bool IsNumberedTemplate(const std::string& path) {
    const PathParts parts = splitPath(path);
    return equalNoCase(parts.ext, ".kez") && parts.name.ends_with('_');
}

std::string numberedCopy(const std::string& path, unsigned number) {
    const size_t dot = path.rfind('.');
    return path.substr(0, dot) + std::to_string(number) + path.substr(dot);
}

std::string copyMark(unsigned number) {
    return "_" + std::to_string(number);
}

std::string withCopyMark(std::string_view text, std::string_view mark) {
    std::string made;
    made.reserve(text.size());
    size_t at = 0;
    for (size_t found; (found = text.find(kMarker, at)) != text.npos; at = found + kMarker.size()) {
        (made += text.substr(at, found - at)) += mark;
    }
    return made += text.substr(at);
}

std::string numberedTemplateOf(const std::string& scriptPath) {
    const PathParts parts = splitPath(scriptPath);
    const std::string_view number = copyNumberOf(parts);
    if (number.empty()) {
        return {};
    }
    return std::string(parts.name.substr(0, parts.name.size() - number.size())) + std::string(parts.ext);
}

std::optional<std::string> templatePathFor(const std::string& scriptPath, const std::string& templateFolder) {
    std::string path = templateFolder + std::string(fileNameOf(scriptPath));
    if (isFile(path)) {
        return path;
    }
    const std::string numbered = numberedTemplateOf(scriptPath);
    path = templateFolder + numbered;
    return !numbered.empty() && isFile(path) ? std::optional(path) : std::nullopt;
}

std::optional<std::string> templateTextFor(const std::string& scriptPath, const std::string& templatePath) {
    auto text = osFiles().readWhole(templatePath);
    const std::string_view number = copyNumberOf(splitPath(scriptPath));
    if (text && !number.empty() && equalNoCase(numberedTemplateOf(scriptPath), fileNameOf(templatePath))) {
        return withCopyMark(*text, "_" + std::string(number));
    }
    return text;
}

}  // namespace zoka
