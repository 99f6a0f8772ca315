#include "util/Backups.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <vector>

#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"

namespace zoka {

namespace {

constexpr std::string_view kEnding = ".bak";

std::string backupPath(const std::string& path, std::uint64_t number) {
    return path + "." + std::to_string(number) + std::string(kEnding);
}

// The number in the name of a copy of the file `original`; nothing for another file.
std::optional<std::uint64_t> numberOf(std::string_view name, std::string_view original) {
    if (name.size() <= original.size() + 1 + kEnding.size() ||
        !equalNoCase(name.substr(0, original.size()), original) || name[original.size()] != '.' ||
        !equalNoCase(name.substr(name.size() - kEnding.size()), kEnding)) {
        return {};
    }
    const std::string_view digits =
        name.substr(original.size() + 1, name.size() - original.size() - 1 - kEnding.size());
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool whole = error == std::errc() && end == digits.data() + digits.size();
    // The highest one would leave no number for the next copy.
    return whole && number < UINT64_MAX ? std::optional(number) : std::nullopt;
}

}  // namespace

Result<std::string> keepBackup(const std::string& path, std::string_view bytes) {
    if (osFiles().exists(path) && !osFiles().openForWriting(path, OsOpen::Existing)) {
        return Refusal{"Can't write '" + path + "': " + osFiles().lastError()};
    }
    std::vector<std::uint64_t> numbers;
    const std::string_view original = fileNameOf(path);
    for (const OsEntry& entry : osFiles().list(path + ".*" + std::string(kEnding))) {
        if (const auto number = numberOf(entry.name, original)) {
            numbers.push_back(*number);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    if (!numbers.empty()) {
        const std::string newest = backupPath(path, numbers.back());
        if (osFiles().readWhole(newest) == bytes) {
            return newest;
        }
    }
    const std::string made = backupPath(path, numbers.empty() ? 1 : numbers.back() + 1);
    // Who may not read the file may not read its copy either.
    const FileContent copy{.path = made, .bytes = bytes, .like = path};
    const SafeWriteResult written = safeWrite({&copy, 1});
    if (!written) {
        return Refusal{written.why()};
    }
    // Only now: a copy that could not be made costs no older one.
    for (size_t i = 0; i + kMostBackups <= numbers.size(); ++i) {
        osFiles().deleteFile(backupPath(path, numbers[i]));
    }
    return made;
}

}  // namespace zoka
