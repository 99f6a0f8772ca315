#include "xml/XMLConvert.h"

#include <algorithm>

#include "util/Text.h"
#include "xml/PlatformCharset.h"
#include "xml/XMLPosition.h"
#include "xml/XMLScan.h"

namespace zoka {
namespace {

struct Range {
    char32_t first, last;
};

bool inRanges(char32_t c, const Range* range, const Range* end) {
    while (range != end && c > range->last) {
        ++range;
    }
    return range != end && c >= range->first;
}

// Beyond ASCII, in ascending order.
constexpr Range kNameStart[] = {
    {0xc0, 0xd6},     {0xd8, 0xf6},     {0xf8, 0x2ff},    {0x370, 0x37d},
    {0x37f, 0x1fff},  {0x200c, 0x200d}, {0x2070, 0x218f}, {0x2c00, 0x2fef},
    {0x3001, 0xd7ff}, {0xf900, 0xfdcf}, {0xfdf0, 0xfffd}, {0x10000, 0xeffff},
};
constexpr Range kNameMore[] = {{0xb7, 0xb7}, {0x300, 0x36f}, {0x203f, 0x2040}};

// Windows-1252 from 80 to 9F hex; the rest is as in Unicode. The five bytes without a character mean the
// control characters of the same number, as they do on Windows.
constexpr char16_t kWindows1252[32] = {
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178,
};

// The encoding that the declaration at the start names, as it stands there; empty without one. Whether the
// declaration is right is the parser's affair.
std::string_view declaredEncoding(std::string_view text) {
    if (!text.starts_with("<?xml") || text.size() < 6 || !isXmlBlank(text[5])) {
        return {};
    }
    text = namedEncoding(text.substr(0, text.find("?>")));
    const size_t end = text.empty() ? text.npos : text.find(text[0], 1);
    return end == text.npos ? std::string_view() : text.substr(1, end - 1);
}

bool namesUtf8(std::string_view lowerCase) {
    return lowerCase.starts_with("utf-8") || lowerCase.starts_with("utf8");
}
bool namesUtf16(std::string_view lowerCase) {
    return lowerCase.starts_with("utf-16") || lowerCase.starts_with("utf16") ||
           lowerCase.starts_with("iso-10646-ucs-2") || lowerCase.starts_with("ucs-2");
}

// By mark and declaration alone.
XMLFileForm formBySigns(std::string_view bytes) {
    XMLFileForm form;
    if (hasUtf16Mark(bytes)) {
        form.set = bytes[0] == '\xff' ? XMLFileSet::Utf16Le : XMLFileSet::Utf16Be;
        form.mark = 2;
    } else if (bytes.starts_with(kUtf8Mark)) {
        form.mark = kUtf8Mark.size();
    } else {
        const std::string declared = lowered(declaredEncoding(bytes));
        if (declared == "iso-8859-1" || declared == "latin1") {
            form.set = XMLFileSet::Latin1;
        } else if (declared == "windows-1252" || declared == "cp1252") {
            form.set = XMLFileSet::Windows1252;
        }
    }
    return form;
}

// Appends characters to a text in a character set.
class Output {
public:
    Output(XMLDecoded& result, XMLCharset charset) : m_result(result), m_utf8(charset == XMLCharset::Utf8) {
        m_result.converted = true;
    }
    void put(char32_t c) {
        if (!m_result.ok) {
            return;
        }
        if (m_utf8 || c < 0x80) {
            appendUtf8(m_result.text, c);
            return;
        }
        std::u16string unit;
        appendUtf16(unit, c);
        if (!appendPlatform(m_result.text, unit)) {
            m_result.ok = false;
        }
    }
    void fail() { m_result.ok = false; }

private:
    XMLDecoded& m_result;
    const bool m_utf8;
};

XMLDecoded decodeUtf16(std::string_view bytes, bool bigEndian, XMLCharset charset) {
    XMLDecoded result;
    Output out(result, charset);
    const auto unit = [&](size_t i) {
        const auto a = static_cast<unsigned char>(bytes[i]), b = static_cast<unsigned char>(bytes[i + 1]);
        return static_cast<char32_t>(bigEndian ? a << 8 | b : b << 8 | a);
    };
    size_t i = 2;
    for (; result.ok && i + 1 < bytes.size(); i += 2) {
        char32_t c = unit(i);
        if (c >= 0xd800 && c < 0xe000) {
            const char32_t low = c < 0xdc00 && i + 3 < bytes.size() ? unit(i + 2) : 0;
            if (low < 0xdc00 || low > 0xdfff) {
                out.fail();
                return result;
            }
            c = 0x10000 + ((c - 0xd800) << 10) + (low - 0xdc00);
            i += 2;
        }
        out.put(c);
    }
    if (result.ok && i != bytes.size()) {
        out.fail();
    }
    return result;
}

// `bytes` are UTF-8 from `skip` on.
XMLDecoded decodeUtf8(std::string_view bytes, size_t skip, XMLCharset charset) {
    XMLDecoded result;
    Output out(result, charset);
    const char* p = bytes.data() + skip;
    const char* const end = bytes.data() + bytes.size();
    while (result.ok && p < end) {
        char32_t c = 0;
        const unsigned length = utf8Sequence(p, c);
        out.put(c);
        p += length;
    }
    return result;
}

XMLDecoded decodeLatin(std::string_view bytes, bool windows) {
    XMLDecoded result;
    Output out(result, XMLCharset::Utf8);
    for (const char byte : bytes) {
        const auto c = static_cast<unsigned char>(byte);
        out.put(windows ? char32_t{windows1252(c)} : char32_t{c});
    }
    return result;
}

}  // namespace

std::string_view namedEncoding(std::string_view text) {
    constexpr std::string_view word = "encoding";
    size_t at = text.find(word);
    if (at == text.npos) {
        return {};
    }
    const auto skipBlanks = [&] { at = std::min(text.find_first_not_of(kWhiteSpace, at), text.size()); };
    at += word.size();
    skipBlanks();
    if (at == text.size() || text[at] != '=') {
        return {};
    }
    ++at;
    skipBlanks();
    const bool isQuoted = at < text.size() && (text[at] == '"' || text[at] == '\'');
    return isQuoted ? text.substr(at) : std::string_view();
}

char16_t windows1252(unsigned char byte) {
    return byte >= 0x80 && byte < 0xa0 ? kWindows1252[byte - 0x80] : char16_t{byte};
}

char* putUtf8(char* out, char32_t c) {
    const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xc0 | c >> 6);
        put(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        put(0xe0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3f));
        put(0x80 | (c & 0x3f));
    } else {
        put(0xf0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3f));
        put(0x80 | (c >> 6 & 0x3f));
        put(0x80 | (c & 0x3f));
    }
    return out;
}

void appendUtf8(std::string& out, char32_t c) {
    char bytes[4];
    out.append(bytes, putUtf8(bytes, c));
}

void appendUtf16(std::u16string& out, char32_t c) {
    if (c < 0x10000) {
        out += static_cast<char16_t>(c);
        return;
    }
    out += static_cast<char16_t>(0xd800 + ((c - 0x10000) >> 10));
    out += static_cast<char16_t>(0xdc00 + (c & 0x3ff));
}

std::string utf8FromUtf16(std::u16string_view text) {
    std::string result;
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xd800 && c < 0xe000) {
            const char32_t low = c < 0xdc00 && i + 1 < text.size() ? text[i + 1] : 0;
            if (low >= 0xdc00 && low < 0xe000) {
                c = 0x10000 + ((c - 0xd800) << 10) + (low - 0xdc00);
                ++i;
            } else {
                c = 0xfffd;
            }
        }
        appendUtf8(result, c);
    }
    return result;
}

std::string allowedXmlText(const char* text, XMLCharset charset) {
    constexpr char32_t kReplacement = 0xfffd;
    std::string bytes(text);
    if (charset == XMLCharset::Platform) {
        for (char& c : bytes) {
            if (hasClass(c, kCharControl) && c != '\r') {
                c = '?';
            }
        }
        return bytes;
    }
    if (!isUtf8(text)) {
        bytes = utf8FromPlatform(bytes);
    }
    std::string allowed;
    for (const char* p = bytes.c_str(); *p;) {
        char32_t c = 0;
        p += utf8Sequence(p, c);
        appendUtf8(allowed, isXmlChar(c) ? c : kReplacement);
    }
    return allowed;
}

bool isUtf8(const char* text) {
    return firstNotUtf8(text) == std::string_view::npos;
}

size_t firstNotUtf8(std::string_view text) {
    for (size_t at = 0; at < text.size();) {
        char32_t c = 0;
        const unsigned length = utf8Sequence(text.data() + at, c);
        if (length == 0) {
            return at;
        }
        at += length;
    }
    return text.npos;
}

bool isXmlNameStart(char32_t c) {
    if (c < 0x80) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
    }
    return inRanges(c, std::begin(kNameStart), std::end(kNameStart));
}

bool isXmlNameChar(char32_t c) {
    if (c < 0x80) {
        return isXmlNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    }
    return isXmlNameStart(c) || inRanges(c, std::begin(kNameMore), std::end(kNameMore));
}

XMLFileForm xmlFileForm(std::string_view bytes) {
    XMLFileForm form = formBySigns(bytes);
    const bool is16 = form.set == XMLFileSet::Utf16Le || form.set == XMLFileSet::Utf16Be;
    std::string converted;
    std::string_view text = bytes.substr(form.mark);
    if (is16) {
        converted = decodeUtf16(bytes, form.set == XMLFileSet::Utf16Be, XMLCharset::Utf8).text;
        text = converted;
    }
    const auto tell = [&](size_t offset, std::string what) {
        const XMLPosition::Place place = XMLPosition(text.data(), true, nullptr).at(text.data() + offset);
        form.line = place.line;
        form.column = place.column;
        form.untrue = std::move(what);
    };
    const std::string_view given = declaredEncoding(text);
    const auto givenAt = static_cast<size_t>(given.empty() ? 0 : given.data() - text.data());
    const std::string declared = lowered(given);
    if (is16) {
        if (!declared.empty() && !namesUtf16(declared)) {
            tell(givenAt, "\"" + std::string(given) + "\" is declared, but the file is UTF-16 by its mark");
        }
        return form;
    }
    const bool saysUtf8 = form.mark > 0 || namesUtf8(declared);
    const size_t bad = form.set == XMLFileSet::Utf8 ? firstNotUtf8(text) : text.npos;
    if (bad != text.npos) {
        form.set = XMLFileSet::Platform;
        if (saysUtf8) {
            tell(bad, std::string(form.mark ? "the mark says UTF-8" : "UTF-8 is declared") +
                          ", but this is none: the file is read in the system's character set");
        }
    } else if (form.mark > 0 && !declared.empty() && !namesUtf8(declared)) {
        tell(givenAt, "\"" + std::string(given) + "\" is declared, but the file is UTF-8 by its mark");
    }
    if (form.mark == 0 && namesUtf16(declared)) {
        tell(givenAt, "\"" + std::string(given) + "\" is declared, but the file is 8-bit text");
    }
    return form;
}

XMLDecoded decodeXmlFile(std::string_view bytes, XMLCharset charset, bool notUtf8) {
    if (!xmlCharsetGuessing()) {
        return {};
    }
    const XMLFileForm form = formBySigns(bytes);
    XMLDecoded asItIs;
    asItIs.skip = form.mark;
    const std::string_view text = bytes.substr(form.mark);
    switch (form.set) {
        case XMLFileSet::Utf16Le:
        case XMLFileSet::Utf16Be:
            return decodeUtf16(bytes, form.set == XMLFileSet::Utf16Be, charset);
        case XMLFileSet::Latin1:
        case XMLFileSet::Windows1252:
            return charset == XMLCharset::Utf8 ? decodeLatin(bytes, form.set == XMLFileSet::Windows1252)
                                               : asItIs;
        default:
            break;
    }
    if (charset == XMLCharset::Platform) {
        const bool saysUtf8 = form.mark > 0 || namesUtf8(lowered(declaredEncoding(bytes)));
        return saysUtf8 && firstNotUtf8(text) == text.npos ? decodeUtf8(bytes, form.mark, charset) : asItIs;
    }
    if (!notUtf8) {
        return asItIs;
    }
    XMLDecoded result;
    result.converted = true;
    result.text = utf8FromPlatform(text);
    return result;
}

std::string utf8FromPlatform(std::string_view text) {
    std::u16string wide;
    appendUtf16(wide, text);
    return utf8FromUtf16(wide);
}

}  // namespace zoka
