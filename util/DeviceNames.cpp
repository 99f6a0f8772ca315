#include "util/DeviceNames.h"

#include <algorithm>
#include <iterator>

#include "util/PathRules.h"

namespace zoka {
namespace {

constexpr const char* kDevices[] = {"con", "prn", "aux", "nul", "conin$", "conout$", "clock$"};
// Of serial and parallel ports. The system knows the raised digits, too; they stand here in its 8-bit set and in UTF-8.
constexpr std::string_view kPorts[] = {"1", "2",    "3",    "4",    "5",        "6",        "7",       "8",
                                       "9", "\xb9", "\xb2", "\xb3", "\xc2\xb9", "\xc2\xb2", "\xc2\xb3"};

}  // namespace

bool isDeviceName(std::string_view name) {
    std::string_view stem = name.substr(0, name.find('.'));
    stem = stem.substr(0, stem.find_last_not_of(' ') + 1);
    const std::string_view kind = stem.substr(0, 3);
    if ((equalNoCase(kind, "com") || equalNoCase(kind, "lpt")) &&
        std::ranges::find(kPorts, stem.substr(3)) != std::end(kPorts)) {
        return true;
    }
    return std::ranges::any_of(kDevices, [stem](const char* device) { return equalNoCase(stem, device); });
}

}  // namespace zoka
