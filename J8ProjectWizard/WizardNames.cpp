#include "J8ProjectWizard/WizardNames.h"

#include <algorithm>

#include "util/DeviceNames.h"
#include "util/PathRules.h"

namespace zoka {
namespace {

std::string partRefusal(std::string_view part) {
    if (part.empty() || part == ".") {
        return {};
    }
    if (part == "..") {
        return "leads out of its folder";
    }
    if (std::ranges::any_of(part, [](char c) { return static_cast<unsigned char>(c) < 0x20; })) {
        return "holds a control character";
    }
    if (part.find_first_of("<>\"|?*") != part.npos) {
        return "holds a character that no file name may hold";
    }
    if (part.ends_with('.') || part.ends_with(' ')) {
        return "ends with a dot or a blank, which the system would drop";
    }
    return isDeviceName(part) ? "is a device of the system" : "";
}

}  // namespace

std::string nameRefusal(std::string_view name) {
    if (name.size() > kLongestPath) {
        return "is longer than any path of the system";
    }
    if (!name.empty() && isSeparator(name.front())) {
        return "leads out of its folder";
    }
    if (name.size() > 1 && name[1] == ':') {
        return "leads to a drive";
    }
    if (name.find(':') != name.npos) {
        return "holds a colon, which means a stream of a file";
    }
    for (size_t at = 0; at <= name.size();) {
        const size_t end = std::min(name.find_first_of("\\/", at), name.size());
        if (std::string refusal = partRefusal(name.substr(at, end - at)); !refusal.empty()) {
            return refusal;
        }
        at = end + 1;
    }
    return {};
}

std::string fileNameRefusal(std::string_view name) {
    const std::string_view last = name.substr(name.find_last_of("\\/") + 1);
    std::string refusal = nameRefusal(name);
    return refusal.empty() && (last.empty() || last == ".") ? "is no name of a file" : refusal;
}

std::string plainNameRefusal(std::string_view name) {
    return name == "."                              ? "is no name of a file"
           : name.find_first_of("\\/") != name.npos ? "holds a separator of folders"
                                                    : nameRefusal(name);
}

}  // namespace zoka
