#include "xml/XMLEncoding.h"

#include <atomic>

#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLConvert.h"

namespace zoka {
namespace {

constexpr size_t kFewestBytes = 25;

std::atomic<XMLCharset> theCharset = XMLCharset::Utf8;
std::atomic<bool> guessing = true;

bool sequencesAreUtf8(std::string_view head) {
    for (size_t i = 0; i < head.size();) {
        const auto lead = static_cast<unsigned char>(head[i++]);
        if (lead < 0x80) {
            continue;
        }
        if (lead < 0xc0 || lead >= 0xf8) {
            return false;
        }
        for (int trails = lead < 0xe0 ? 1 : lead < 0xf0 ? 2 : 3; trails > 0; --trails, ++i) {
            // A sequence that the limit cuts is no violation.
            if (i == head.size()) {
                return i == kXmlGuessBytes;
            }
            if ((static_cast<unsigned char>(head[i]) & 0xc0) != 0x80) {
                return false;
            }
        }
    }
    return true;
}

bool startsWithNoCase(std::string_view text, std::string_view start) {
    return equalNoCase(text.substr(0, start.size()), start);
}

}  // namespace

XMLCharset xmlCharset() {
    return theCharset;
}
void setXmlCharset(XMLCharset charset) {
    theCharset = charset;
}
bool xmlCharsetGuessing() {
    return guessing;
}
void setXmlCharsetGuessing(bool on) {
    guessing = on;
}

bool guessUtf8(std::string_view bytes) {
    const std::string_view head = bytes.substr(0, kXmlGuessBytes);
    if (head.size() < kFewestBytes) {
        return false;
    }
    if (hasUtf16Mark(head) || head[0] == 0 || head[1] == 0) {
        return false;
    }
    if (head.starts_with(kUtf8Mark)) {
        return true;
    }
    if (!sequencesAreUtf8(head)) {
        return false;
    }

    const std::string_view named = namedEncoding(head);
    if (named.empty()) {
        return true;
    }
    const std::string_view value = named.substr(1);
    return startsWithNoCase(value, "utf-8") || startsWithNoCase(value, "utf8");
}

}  // namespace zoka
