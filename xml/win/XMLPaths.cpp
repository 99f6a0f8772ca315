#include "xml/PlatformCharset.h"
#include "xml/XMLConvert.h"
#include "xml/XMLEncoding.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

bool isPlain(std::string_view text) {
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string pathFromXml(std::string_view text) {
    std::string source(text);
    if (isPlain(text) || !isUtf8(source.c_str())) {
        return source;
    }
    std::string path;
    for (const char* p = source.c_str(); *p;) {
        char32_t c = 0;
        p += utf8Sequence(p, c);
        std::u16string unit;
        appendUtf16(unit, c);
        if (!appendPlatform(path, unit)) {
            path += '?';
        }
    }
    return path;
}

std::string xmlFromPath(std::string_view path) {
    if (isPlain(path)) {
        return std::string(path);
    }
    std::u16string wide;
    appendUtf16(wide, path);
    return utf8FromUtf16(wide);
}

}  // namespace zoka
