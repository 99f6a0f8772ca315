#include "templates/CatalogueXml.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"
#include "xml/XMLEncoding.h"
#include "xml/XMLRead.h"

namespace zoka {

namespace {

const char* engineVersion(const XMLNode& node) {
    return xmlAttribute(node.getChild("EngineReq"), "vers");
}

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

CScriptElm readScript(const XMLNode& node) {
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

// The same fields of the same element, without making its record.
CTemplateData::Row readRow(const XMLNode& node) {
    return {xmlAttribute(node, "name"), xmlAttribute(node, "filename"),
            xmlFirstText(node.firstChild("class")), xmlAttribute(node, "type")};
}

class CatalogueText {
public:
    explicit CatalogueText(std::string& out) : m_out(out) {}

    void line(const char* text) { m_out += text; }
    // before="value"\n
    void attribute(const char* before, const std::string& value) {
        ((m_out += before) += withoutMarkup(value)) += "\"\n";
    }
    void element(const char* before, const std::string& value, const char* after) {
        ((m_out += before) += withoutMarkup(value)) += after;
    }
    void value(const std::string& value) { m_out += withoutMarkup(value); }

    // The blanks before '=' and after the quotes belong to the format.
    void engineReq(const char* before, const CEngineReq& req, const char* after) {
        if (req.IsEmpty()) {
            return;
        }
        (m_out += before) += "<EngineReq ";
        if (!req.vers.empty()) {
            element("vers =\"", req.vers, "\" ");
        }
        if (!req.edition.empty()) {
            element("edition =\"", req.edition, "\" ");
        }
        (m_out += "/>") += after;
    }

    void action(const CScriptAction& action) {
        line("\t<action\n");
        attribute("\t\tname=\"", action.m_name);
        attribute("\t\tfilename=\"", action.m_filename);
        line("\t\t>");
        engineReq("\n\t\t", action.m_engreq, "");
        line("\n");
        value(action.m_desc);
        line("\t</action>\n");
    }

    void section(const CScriptSection& section) {
        line("\t<section\n");
        attribute("\t\tname=\"", section.m_name);
        if (!section.m_imgfile.empty()) {
            attribute("\t\timgfile=\"", section.m_imgfile);
        }
        line("\t\t>\n");
        // The text stands before and behind the actions; readers pass over both.
        value(section.m_text);
        for (const CScriptAction& each : section.m_actions) {
            action(each);
        }
        line("\n");
        value(section.m_text);
        line("\t</section>\n");
    }

    void script(const CScriptElm& script) {
        attribute("<Script\n\tid=\"", script.m_id);
        attribute("\tprefix=\"", script.m_prefix);
        attribute("\tdirectory=\"", script.m_directory);
        attribute("\tfilename=\"", script.m_filename);
        attribute("\tname=\"", script.m_name);
        attribute("\ttype=\"", script.m_type);
        attribute("\tvers=\"", script.m_vers);
        attribute("\tdate=\"", script.m_date);
        line(">\n");
        engineReq("\t", script.m_engreq, "\n");
        element("\t<class>", script.m_class, "</class>\n");
        element("\t<desc>", script.m_desc, "</desc>\n");
        if (!script.m_note.empty()) {
            element("\t<note>", script.m_note, "</note>\n");
        }
        for (const std::string& need : script.m_needs) {
            element("\t<need>", need, "</need>\n");
        }
        for (const CScriptSection& each : script.m_sections) {
            section(each);
        }
        line("</Script>\n");
    }

private:
    std::string& m_out;
};

}  // namespace

std::string withoutMarkup(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '"':
                result += '\'';
                break;
            case '<':
                result += '[';
                break;
            case '>':
                result += ']';
                break;
            case '&':
                result += "and";
                break;
            default:
                if (!isDroppedFromCatalogue(c)) {
                    result += c;
                }
        }
    }
    return result;
}

std::string inTextMode(std::string_view text) {
#ifdef _WIN32
    constexpr std::string_view kLineEnd = "\r\n";
#else
    constexpr std::string_view kLineEnd = "\n";
#endif
    std::string result;
    result.reserve(text.size() + text.size() / 16);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            continue;
        }
        if (text[i] == '\n') {
            result += kLineEnd;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::string catalogueText(const CTemplateData& catalogue, const std::string& date) {
    std::string out;
    CatalogueText text(out);
    text.line("<TavrixTemplate\n");
    text.attribute("\tname=\"", catalogue.GetName());
    text.attribute("\ttype=\"", catalogue.GetType());
    text.attribute("\tversion=\"", catalogue.GetVers());
    text.element("\tdate=\"", date, "\">\n");
    text.line("\n");
    text.engineReq("\t", catalogue.engineReq(), "\n");
    for (const auto& [type, path] : catalogue.directories()) {
        text.attribute("<Directory\n\ttype=\"", type);
        text.attribute("\tpath=\"", path);
        text.line("/>\n");
    }
    text.line("\n\n");
    for (const CScriptElm& script : catalogue.scripts()) {
        text.script(script);
    }
    text.line("\n\n</TavrixTemplate>");
    return out;
}

namespace {

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

void CTemplateData::AddScript(const XMLNode& node) {
    AddScript(zoka::readScript(node));
}

std::string_view CTemplateData::version(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::xmlAttribute(*node, "vers")
                : std::string_view(std::get<std::shared_ptr<const CScriptElm>>(source)->m_vers);
}

std::string_view CTemplateData::date(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::xmlAttribute(*node, "date")
                : std::string_view(std::get<std::shared_ptr<const CScriptElm>>(source)->m_date);
}

std::string CTemplateData::engineReqText(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::engineVersion(*node)
                : std::get<std::shared_ptr<const CScriptElm>>(source)->m_engreq.AsText();
}

std::string_view CTemplateData::description(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::xmlFirstText(node->firstChild("desc"))
                : std::string_view(std::get<std::shared_ptr<const CScriptElm>>(source)->m_desc);
}

CScriptElm CTemplateData::script(size_t record) const {
    const Source& source = m_sources[record];
    const XMLNode* const node = std::get_if<XMLNode>(&source);
    return node ? zoka::readScript(*node) : *std::get<std::shared_ptr<const CScriptElm>>(source);
}

bool CTemplateData::LoadFromNode(const XMLNode& root, zoka::JobProgress* progress) {
    Empty();
    m_name = zoka::xmlAttribute(root, "name");
    m_type = zoka::xmlAttribute(root, "type");
    m_version = zoka::xmlAttribute(root, "version");
    m_date = zoka::xmlAttribute(root, "date");
    // One walk over the children: the elements of a large file are far apart in memory, and each visit is felt.
    const auto total = static_cast<size_t>(root.childCount());
    reserveScripts(total);
    bool hasReq = false;
    for (XMLNode node = root.firstChild(); !node.isEmpty(); node = node.nextSibling()) {
        node.nextSibling().prefetch();
        const char* const name = node.getName();
        if (!zoka::equalNoCase(name, "Script")) {
            if (zoka::equalNoCase(name, "Directory")) {
                AddDirectory(zoka::xmlAttribute(node, "type"), zoka::xmlAttribute(node, "path"));
            } else if (zoka::equalNoCase(name, "EngineReq") && !std::exchange(hasReq, true)) {
                m_engreq.vers = zoka::xmlAttribute(node, "vers");
            }
            continue;
        }
        // Often enough to keep a window alive, too seldom to be felt.
        if (m_rows.size() % 1024 == 0 && !zoka::mayContinue(progress, m_rows.size(), total, m_name)) {
            Empty();
            return false;
        }
        append(zoka::readRow(node), node);
    }
    return true;
}

bool CTemplateData::LoadFromXML(const std::string& path) {
    return LoadFromNode(XMLNode::loadFileOrExit(path.c_str(), zoka::kCatalogueRoot));
}

bool CTemplateData::WriteXML(const std::string& path) const {
    return static_cast<bool>(zoka::safeWrite(path, zoka::inTextMode(zoka::catalogueText(*this, GetCurDate())),
                                             zoka::FileKind::Generated));
}
