#include "util/DeviceNames.h"

#include <algorithm>

#include "util/PathRules.h"

namespace zoka {
namespace {

constexpr const char* kDevices[] = {"con", "prn", "aux", "nul", "conin$", "conout$", "clock$"};
// Of serial and parallel ports; the system knows the raised digits, too.
constexpr std::string_view kPortDigits = "123456789\xb9\xb2\xb3";

}  // namespace

bool isDeviceName(std::string_view name) {
    std::string_view stem = name.substr(0, name.find('.'));
    stem = stem.substr(0, stem.find_last_not_of(' ') + 1);
    if (stem.size() == 4 && kPortDigits.find(stem[3]) != kPortDigits.npos) {
        return equalNoCase(stem.substr(0, 3), "com") || equalNoCase(stem.substr(0, 3), "lpt");
    }
    return std::ranges::any_of(kDevices, [stem](const char* device) { return equalNoCase(stem, device); });
}

}  // namespace zoka
