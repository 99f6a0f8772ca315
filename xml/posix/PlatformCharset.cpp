#include "xml/PlatformCharset.h"

#include "xml/XMLConvert.h"

namespace zoka {

const bool* platformLeadBytes() {
    return nullptr;
}

bool appendPlatform(std::string& out, std::u16string_view text) {
    const size_t before = out.size();
    for (const char16_t unit : text) {
        if (unit < 0x80 || (unit >= 0xa0 && unit < 0x100)) {
            out += static_cast<char>(unit);
            continue;
        }
        unsigned char byte = 0x80;
        while (byte < 0xa0 && windows1252(byte) != unit) {
            ++byte;
        }
        if (byte == 0xa0) {
            out.resize(before);
            return false;
        }
        out += static_cast<char>(byte);
    }
    return true;
}

void appendUtf16(std::u16string& out, std::string_view platformText) {
    for (const char c : platformText) {
        out += windows1252(static_cast<unsigned char>(c));
    }
}

}  // namespace zoka
