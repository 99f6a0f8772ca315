#include "J8ProjectManager/ProjectLosses.h"

#include <algorithm>
#include <map>
#include <utility>

#include "util/PathRules.h"
#include "util/Text.h"
#include "xml/XMLRead.h"

namespace zoka {
namespace {

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    for (const std::string_view each : names) {
        if (equalNoCase(name, each)) {
            return true;
        }
    }
    return false;
}

constexpr std::string_view kFileAttributes[] = {"proj_file", "j8_file", "file"};

// The attribute that counts as a reference's, or null.
const char* referenceOf(const XMLNode& node) {
    for (const std::string_view name : kFileAttributes) {
        if (node.getAttribute(name.data())) {
            return name.data();
        }
    }
    return nullptr;
}

bool isReference(const XMLNode& node) {
    return isOneOf(node.getName(),
                   {"Behavior", "Camera", "UI", "AnimationPool", "WeaponDefPool", "Display", "UserInput"});
}

// What an element is found again by, among its siblings.
std::string keyOf(const XMLNode& node) {
    std::string key = lowered(node.getName());
    if (isReference(node)) {
        const char* const attribute = referenceOf(node);
        key += '\n' + std::string(attribute ? xmlAttribute(node, attribute) : "");
    } else if (equalNoCase(node.getName(), "Skill")) {
        const auto num = xmlInteger(node.getAttribute("num"));
        key += '\n' + (num ? std::to_string(*num) : std::string("none"));
    } else {
        const char* const name = node.getAttribute("name");
        key += name ? '\n' + std::string(name) : "";
    }
    return key;
}

std::string openTag(const XMLNode& node) {
    std::string text = "<" + std::string(node.getName());
    for (int i = 0; i < node.attributeCount() && i < 3; ++i) {
        const XMLAttributeView attribute = node.getAttributeAt(i);
        text += " " + std::string(attribute.name) + "=\"" + (attribute.value ? attribute.value : "") + "\"";
    }
    return text + ">";
}

// Whether the element that was written has the attribute with the same meaning.
bool isKept(const XMLNode& old, const XMLAttributeView& attribute, const XMLNode& now) {
    const std::string_view name = attribute.name, value = attribute.value ? attribute.value : "";
    if (equalNoCase(old.getName(), "Project") && isOneOf(name, {"date", "vers"})) {
        return true;
    }
    if (isReference(old)) {
        const char* const counted = referenceOf(old);
        return counted && equalNoCase(counted, name);  // its text is what the element was found by
    }
    const char* const written = now.getAttribute(attribute.name);
    if (!written) {
        return value.empty() && isOneOf(name, {"parent", "mapfile"});
    }
    if (value == written || (equalNoCase(old.getName(), "Skill") && equalNoCase(name, "num"))) {
        return true;
    }
    const std::string_view text = written;  // a root gets its separator
    return equalNoCase(old.getName(), "Paths") && text.starts_with(value) && text.size() == value.size() + 1;
}

// What is lost, and where to look for it.
struct Found {
    std::uint32_t place = 0;  // of the element that is lost or that holds what is; see XMLNode::place
    std::string text;
    // What stands there behind the element's start tag: how a comment begins, or (`isText`) a text between tags.
    // Empty: the element itself is meant.
    std::string begins = {};
    bool isText = false;
};

std::string firstLine(std::string_view text, std::string_view ends) {
    return std::string(text.substr(0, text.find_first_of(ends)));
}

// Where `found` stands; behind `from`, where something of the same element was found before.
size_t offsetOf(const std::string& text, const Found& found, size_t from) {
    size_t at = std::max<size_t>(found.place, from);
    // A text stands near, unless it is written in another way than it reads.
    constexpr size_t kNear = 4096;
    const std::string_view where = std::string_view(text).substr(0, found.isText ? at + kNear : text.npos);
    while (!found.begins.empty() && (at = where.find(found.begins, at)) != where.npos) {
        if (!found.isText) {
            return at;
        }
        const size_t before = at == 0 ? text.npos : text.find_last_not_of(kWhiteSpace, at - 1);
        if (before != text.npos && text[before] == '>') {
            return at;
        }
        ++at;
    }
    const size_t tag = found.place == 0 ? 0 : text.rfind('<', found.place - 1);
    return tag == text.npos ? 0 : tag;
}

class Comparison {
public:
    explicit Comparison(std::vector<Found>& losses) : m_losses(losses) {}

    void run(const XMLNode& document, const XMLNode& written) {
        compareClears(document, "");
        for (XMLNode node = document.firstChild(); !node.isEmpty(); node = node.nextSibling()) {
            if (!node.isDeclaration()) {
                m_open.emplace_back(node, written);
            } else if (!equalNoCase(node.getName(), "xml")) {
                lose(node, "<?" + std::string(node.getName()) + "?>");
            }
        }
        while (!m_open.empty()) {
            const auto [old, now] = std::move(m_open.back());
            m_open.pop_back();
            compare(old, now);
        }
    }

private:
    void lose(const XMLNode& node, std::string text) { m_losses.push_back({node.place(), std::move(text)}); }
    void loseClear(const XMLNode& node, std::string text, const XMLClearView& clear) {
        m_losses.push_back({node.place(), std::move(text), clear.openTag + firstLine(clear.value, "\r\n")});
    }
    void loseText(const XMLNode& node, const std::string& text) {
        m_losses.push_back({node.place(), "the text \"" + shortText(text) + "\"",
                            firstLine(trimmed(text), "\r\n&<>"), true});
    }

    // Comments and the like; a CDATA section of a text that is kept becomes plain text.
    void compareClears(const XMLNode& node, const std::string& keptText) {
        const int count = node.clearCount();
        for (int i = 0; i < count; ++i) {
            const XMLClearView clear = node.getClear(i);
            const std::string_view open = clear.openTag;
            if (open == "<!--") {
                loseClear(node, "the comment \"" + shortText(clear.value) + "\"", clear);
            } else if (open == "<!DOCTYPE") {
                loseClear(node, "the DOCTYPE", clear);
            } else if (keptText.empty()) {
                loseClear(node, "the text \"" + shortText(clear.value) + "\"", clear);
            }
        }
    }

    void compare(const XMLNode& old, const XMLNode& now) {
        for (int i = 0; i < old.attributeCount(); ++i) {
            const XMLAttributeView attribute = old.getAttributeAt(i);
            if (!isKept(old, attribute, now)) {
                lose(old, std::string("the attribute ") + attribute.name + "=\"" +
                              shortText(attribute.value ? attribute.value : "") + "\" of " +
                              shortText(openTag(old)));
            }
        }
        const std::string text = xmlAllText(old), kept = xmlAllText(now);
        if (text != kept && !text.empty() && old.textCount() > 0) {
            loseText(old, text);
        }
        compareClears(old, kept);
        // Where the elements that were written stand, by key, in order.
        std::multimap<std::string, XMLNode> written;
        for (XMLNode child = now.firstChild(); !child.isEmpty(); child = child.nextSibling()) {
            written.emplace(keyOf(child), child);
        }
        for (XMLNode child = old.firstChild(); !child.isEmpty(); child = child.nextSibling()) {
            const std::string key = keyOf(child);
            const auto found = written.lower_bound(key);
            if (found != written.end() && found->first == key) {
                m_open.emplace_back(child, found->second);
                written.erase(found);
            } else if (!isEmptyDoc(child)) {
                const bool more = child.childCount() > 0;
                lose(child, shortText(openTag(child)) + (more ? " and what is in it" : ""));
            }
        }
    }

    static bool isEmptyDoc(const XMLNode& node) {
        return equalNoCase(node.getName(), "Doc") && node.order().empty();
    }

    std::vector<Found>& m_losses;
    std::vector<std::pair<XMLNode, XMLNode>> m_open;
};

}  // namespace

std::string shortText(std::string text) {
    constexpr size_t kShown = 60;
    text = trimmed(text);
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < 0x20) {
            c = ' ';
        }
    }
    if (text.size() > kShown) {
        size_t end = kShown;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80) {
            --end;  // in front of a character, not inside
        }
        text.resize(end);
        text += "...";
    }
    return text;
}

std::vector<ProjectLoss> lossesOf(const XMLNode& document, const XMLNode& written, const std::string& bytes) {
    std::vector<Found> found;
    Comparison(found).run(document, written);
    if (found.empty()) {
        return {};
    }
    const XMLPlaces places(bytes);
    struct Lost {
        size_t offset;
        std::uint32_t place;
        std::string text;
    };
    std::vector<Lost> lost;
    std::uint32_t element = 0;
    size_t behind = 0;
    for (Found& each : found) {
        // Comments of one element come one after the other.
        const bool goesOn = !each.begins.empty() && each.place == element && !each.isText;
        const size_t at = offsetOf(places.text(), each, goesOn ? behind : 0);
        if (!each.begins.empty() && !each.isText) {
            element = each.place;
            behind = at + 1;
        }
        lost.push_back({at, std::max(each.place, static_cast<std::uint32_t>(at)), std::move(each.text)});
    }
    std::ranges::stable_sort(lost, {}, &Lost::offset);
    std::vector<ProjectLoss> losses;
    for (Lost& each : lost) {
        losses.push_back({places.exactly(each.offset), each.place, std::move(each.text)});
    }
    return losses;
}

}  // namespace zoka
