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

XMLPlaces::XMLPlaces(std::string bytes) : m_text(std::move(bytes)), m_lines{0} {
    // As the parser took the bytes: what is no UTF-8 was converted from the platform's set.
    const bool notUtf8 = firstNotUtf8(m_text) != m_text.npos;
    XMLDecoded decoded = decodeXmlFile(m_text, XMLCharset::Utf8, notUtf8);
    if (decoded.converted) {
        m_text = std::move(decoded.text);
    }
    m_skip = static_cast<std::uint32_t>(decoded.skip);
    for (size_t i = 0; i < m_text.size(); ++i) {
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
    const auto first = static_cast<std::uint32_t>(tag == m_text.npos ? 0 : tag);
    const auto behind = std::upper_bound(m_lines.begin(), m_lines.end(), first);
    const std::uint32_t start = std::max(*(behind - 1), m_skip);
    int column = 1;
    for (std::uint32_t i = start; i < first; ++i) {
        column += (static_cast<unsigned char>(m_text[i]) & 0xc0) != 0x80;
    }
    return {static_cast<int>(behind - m_lines.begin()), column};
}

}  // namespace zoka
