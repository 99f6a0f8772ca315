// Components files.
#include <utility>

#include "J8ProjectManager/J8ProjectManager.h"
#include "J8ProjectManager/LoadParts.h"
#include "J8ProjectManager/ReportTexts.h"
#include "xml/XMLRead.h"

namespace texts = zoka::texts;

bool CJ8ProjectManager::LoadCMPXML(const std::string& path) {
    const XMLNode root = openFile(path, "Components", texts::kCmpMissing, texts::kCmpOpenError);
    if (root.isEmpty()) {
        return false;
    }
    const std::uint32_t source = std::exchange(m_source, addSource(path));
    for (XMLNode node = root.firstChild("Component"); !node.isEmpty(); node = node.nextSibling("Component")) {
        const char* const name = node.getAttribute("name");
        if (!name) {
            add(texts::kCmpNoName, {path}, node.place());
            continue;
        }
        if (!m_componentIndex.add(name, static_cast<std::uint32_t>(m_apComponents.size()))) {
            add(texts::kCmpTwice, {name}, node.place());
            continue;
        }
        CJ8CMPData& component = m_apComponents.emplace_back();
        component.m_name = name;
        component.m_source = m_source;
        component.m_place = node.place();
        component.m_doc = zoka::xmlAllText(node.firstChild("Doc"));
        component.m_properties.reserve(static_cast<size_t>(node.childCount("Property")));
        for (XMLNode child = node.firstChild("Property"); !child.isEmpty();
             child = child.nextSibling("Property")) {
            if (!LoadProperty(&component, child, m_report)) {
                log(texts::kPropertyFailed);
            }
        }
    }
    m_source = source;
    return true;
}

bool CJ8ProjectManager::LoadProperty(CJ8CMPData* cmp, const XMLNode& node, std::string& report) {
    const char* const name = node.getAttribute("name");
    if (!name) {
        addTo(report, texts::kPropertyNoName, {cmp->m_name}, node.place());
        return false;
    }
    const auto finding = [&](const zoka::ReportEntry& entry, const XMLNode& at, const char* word = "") {
        addTo(report, entry, {cmp->m_name, name, word}, at.place());
    };
    zoka::J8Property& property = cmp->m_properties.emplace_back();
    property.name = name;
    property.place = node.place();
    if (const char* const word = node.getAttribute("type")) {
        property.type = zoka::typeOfWord(word);
        if (property.type == zoka::J8Type::Unknown) {
            finding(texts::kPropertyBadType, node, word);
        }
    } else {
        finding(texts::kPropertyNoType, node);
    }
    if (const char* const value = node.getAttribute("value")) {
        property.value = value;
    } else {
        finding(texts::kPropertyNoValue, node);
    }
    property.edit = zoka::xmlTrue(node.getAttribute("edit"));
    property.set = zoka::xmlTrue(node.getAttribute("set"));
    property.get = zoka::xmlTrue(node.getAttribute("get"));
    property.doc = zoka::xmlAllText(node.firstChild("Doc"));
    if (property.doc.empty()) {
        finding(texts::kPropertyNoDocs, node);
    }
    zoka::readLimits(
        node, property.constraints, property.enums,
        [&](const XMLNode& at) { finding(texts::kConstraintNoValue, at); },
        [&](const XMLNode& at) { finding(texts::kEnumNoValue, at); });
    return true;
}
