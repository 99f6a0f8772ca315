#include "xml/XMLRead.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLConvert.h"

namespace zoka {

const char* xmlAttribute(const XMLNode& node, const char* name) {
    const char* const value = node.getAttribute(name);
    return value ? value : "";
}

const char* xmlFirstText(const XMLNode& node) {
    const char* const text = node.getText();
    return text ? text : "";
}

std::string xmlAllText(const XMLNode& node) {
    if (node.clearCount() == 0 && node.textCount() <= 1) {
        return xmlFirstText(node);
    }
    std::string all;
    for (const int entry : node.order()) {
        const int index = entry / 4;
        if (entry % 4 == kXmlText) {
            all += node.getText(index);
        } else if (entry % 4 == kXmlClear) {
            const XMLClearView clear = node.getClear(index);
            if (std::string_view(clear.openTag) == "<![CDATA[") {
                all += clear.value;
            }
        }
    }
    return all;
}

bool xmlTrue(const char* value) {
    return value && equalNoCase(value, "true");
}

std::optional<int> xmlInteger(const char* value) {
    if (!value) {
        return std::nullopt;
    }
    std::string_view text = trimmed(value);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc() && end == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

namespace {

constexpr size_t kBlock = 1024;

bool beginsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xc0) != 0x80;
}

}  // namespace

XMLPlaces::XMLPlaces(std::string bytes) : m_text(std::move(bytes)), m_lines{0} {
    // As the parser took the bytes: what is no UTF-8 was converted from the platform's set.
    const bool notUtf8 = firstNotUtf8(m_text) != m_text.npos;
    XMLDecoded decoded = decodeXmlFile(m_text, XMLCharset::Utf8, notUtf8);
    if (decoded.converted) {
        m_text = std::move(decoded.text);
    }
    m_skip = decoded.skip;
    std::uint32_t characters = 0;
    for (size_t i = 0; i < m_text.size(); ++i) {
        if (i % kBlock == 0) {
            m_characters.push_back(characters);
        }
        characters += beginsCharacter(m_text[i]);
        const bool ends = m_text[i] == '\n' || (m_text[i] == '\r' && m_text.c_str()[i + 1] != '\n');
        if (ends) {
            m_lines.push_back(static_cast<std::uint32_t>(i + 1));
        }
    }
}

XMLPlace XMLPlaces::at(std::uint32_t place) const {
    if (place == 0 || place > m_text.size()) {
        return {};
    }
    const size_t tag = m_text.rfind('<', place - 1);
    return exactly(tag == m_text.npos ? 0 : tag);
}

XMLPlace XMLPlaces::exactly(size_t offset) const {
    if (offset >= m_text.size()) {
        return {};
    }
    const auto behind = std::upper_bound(m_lines.begin(), m_lines.end(), offset);
    const size_t start = std::max<size_t>(*(behind - 1), m_skip);
    const auto charactersBefore = [this](size_t end) {
        std::uint32_t count = m_characters[end / kBlock];
        for (size_t i = end / kBlock * kBlock; i < end; ++i) {
            count += beginsCharacter(m_text[i]);
        }
        return count;
    };
    const std::uint32_t column = offset > start ? charactersBefore(offset) - charactersBefore(start) : 0;
    return {static_cast<int>(behind - m_lines.begin()), static_cast<int>(column) + 1};
}

}  // namespace zoka
