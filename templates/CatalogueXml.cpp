#include "templates/CatalogueXml.h"

#include <utility>

#include "util/PathRules.h"
#include "xml/XMLRead.h"

namespace zoka {

namespace {

void readSection(const XMLNode& node, CScriptSection& section) {
    section.m_name = xmlAttribute(node, "name");
    for (XMLNode child = node.firstChild("action"); !child.isEmpty(); child = child.nextSibling("action")) {
        CScriptAction& action = section.m_actions.emplace_back();
        action.m_name = xmlAttribute(child, "name");
        action.m_filename = xmlAttribute(child, "filename");
        action.m_engreq.vers = engineVersion(child);
        action.m_desc = xmlFirstText(child);
    }
}

// An element without a name needs nothing.
void takeNeed(CScriptElm& script, std::string_view name) {
    if (!name.empty()) {
        script.m_needs.emplace_back(name);
    }
}

XMLNode parseCatalogue(const std::string& path, XMLResults* results, JobProgress* progress) {
    XMLProgress watch;
    if (progress) {
        watch = [&, what = std::string(fileNameOf(path))](size_t done, size_t total) {
            return progress->step(done, total, what);
        };
    }
    return XMLNode::parseFileInItsSet(path.c_str(), kCatalogueRoot, results, watch);
}

}  // namespace

const char* engineVersion(const XMLNode& node) {
    return xmlAttribute(node.getChild("EngineReq"), "vers");
}

CScriptElm readCatalogueScript(const XMLNode& node) {
    CScriptElm script;
    script.m_name = xmlAttribute(node, "name");
    script.m_id = xmlAttribute(node, "id");
    script.m_directory = xmlAttribute(node, "directory");
    script.m_filename = xmlAttribute(node, "filename");
    script.m_type = xmlAttribute(node, "type");
    script.m_vers = xmlAttribute(node, "vers");
    script.m_date = xmlAttribute(node, "date");
    // One walk over the children, whatever their number.
    bool hasReq = false, hasClass = false, hasDesc = false;
    const auto first = [](bool& had) { return !std::exchange(had, true); };
    for (XMLNode child = node.firstChild(); !child.isEmpty(); child = child.nextSibling()) {
        const std::string_view name = child.getName() ? child.getName() : "";
        if (equalNoCase(name, "need")) {
            takeNeed(script, xmlFirstText(child));
        } else if (equalNoCase(name, "section")) {
            readSection(child, script.m_sections.emplace_back());
        } else if (equalNoCase(name, "class") && first(hasClass)) {
            script.m_class = xmlFirstText(child);
        } else if (equalNoCase(name, "desc") && first(hasDesc)) {
            script.m_desc = xmlFirstText(child);
        } else if (equalNoCase(name, "EngineReq") && first(hasReq)) {
            script.m_engreq.vers = xmlAttribute(child, "vers");
        }
    }
    return script;
}

CTemplateData::Row readCatalogueRow(const XMLNode& node) {
    return {xmlAttribute(node, "name"), xmlAttribute(node, "filename"),
            xmlFirstText(node.firstChild("class")), xmlAttribute(node, "type")};
}

bool loadCatalogue(CTemplateData& catalogue, const std::string& path, XMLResults* results,
                   JobProgress* progress) {
    XMLResults own;
    XMLResults& found = results ? *results : own;
    const XMLNode root = parseCatalogue(path, &found, progress);
    if (root.isEmpty() && found.code == kXmlNone) {
        catalogue.Empty();  // stopped
    }
    return !root.isEmpty() && catalogue.LoadFromNode(root, progress);
}

}  // namespace zoka
