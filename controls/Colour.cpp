#include "controls/Colour.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "controls/EntryRules.h"
#include "util/Fold.h"
#include "util/Text.h"

namespace zoka {
namespace {

constexpr std::string_view kHex = "0123456789abcdef";
constexpr std::string_view kBetween = " \t,";

// The value of a hex digit; npos for other characters.
size_t digitOf(char c) {
    return kHex.find(foldCase(c));
}

// The numbers of a text and what stands between them, which is blanks with at most one comma.
struct Parts {
    std::vector<std::string_view> numbers, between;
};

std::optional<Parts> partsOf(std::string_view text) {
    Parts parts;
    for (size_t at = 0;;) {
        const size_t end = std::min(text.find_first_of(kBetween, at), text.size());
        const std::string_view number = text.substr(at, end - at);
        if (number.find_first_of("0123456789") == number.npos || !numberOf(number) ||
            parts.numbers.size() == 4) {
            return std::nullopt;
        }
        parts.numbers.push_back(number);
        if (end == text.size()) {
            break;
        }
        const size_t next = std::min(text.find_first_not_of(kBetween, end), text.size());
        parts.between.push_back(text.substr(end, next - end));
        if (parts.between.back().find(',') != parts.between.back().rfind(',')) {
            return std::nullopt;
        }
        at = next;
    }
    return parts.numbers.size() >= 3 ? std::optional(parts) : std::nullopt;
}

bool isParted(const Parts& parts) {
    for (size_t i = 0; i < 3; ++i) {
        if (parts.numbers[i].find('.') != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

bool isHex(std::string_view text) {
    if (!text.starts_with('#') || (text.size() != 7 && text.size() != 9)) {
        return false;
    }
    for (const char c : text.substr(1)) {
        if (digitOf(c) == kHex.npos) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<Colour> colourOf(std::string_view text) {
    text = trimmed(text);
    std::array<std::uint8_t, 3> rgb{};
    if (isHex(text)) {
        for (size_t i = 0; i < rgb.size(); ++i) {
            rgb[i] = static_cast<std::uint8_t>(digitOf(text[1 + 2 * i]) * 16 + digitOf(text[2 + 2 * i]));
        }
        return Colour{rgb[0], rgb[1], rgb[2], std::string(text.substr(7))};
    }
    const auto parts = partsOf(text);
    if (!parts) {
        return std::nullopt;
    }
    const double most = isParted(*parts) ? 1 : 255;
    for (size_t i = 0; i < rgb.size(); ++i) {
        const double value = *numberOf(parts->numbers[i]);
        if (!(value >= 0 && value <= most)) {
            return std::nullopt;
        }
        rgb[i] = static_cast<std::uint8_t>(std::floor(value * 255 / most + 0.5));
    }
    return Colour{rgb[0], rgb[1], rgb[2],
                  parts->numbers.size() == 4 ? std::string(parts->numbers[3]) : std::string()};
}

std::string colourText(const Colour& colour, std::string_view like) {
    like = trimmed(like);
    const std::uint8_t rgb[] = {colour.red, colour.green, colour.blue};
    const auto parts = isHex(like) ? std::nullopt : partsOf(like);
    std::string text;
    if (!parts || !colourOf(like)) {
        text = "#";
        for (const std::uint8_t one : rgb) {
            text += {kHex[one / 16u], kHex[one % 16u]};
        }
        const std::string_view alpha = colour.alpha.empty() && isHex(like) ? like.substr(7) : colour.alpha;
        return alpha.size() == 2 ? text.append(alpha) : text;
    }
    const bool parted = isParted(*parts);
    for (size_t i = 0; i < parts->numbers.size(); ++i) {
        if (i > 0) {
            text += parts->between[i - 1];
        }
        if (i == 3) {
            text += colour.alpha.empty() ? parts->numbers[3] : std::string_view(colour.alpha);
            break;
        }
        std::string number = numberText(parted ? rgb[i] / 255.0 : rgb[i], parted ? 3 : 0);
        if (parted && number.find('.') == number.npos) {
            number += ".0";
        }
        text += number;
    }
    return text;
}

}  // namespace zoka
