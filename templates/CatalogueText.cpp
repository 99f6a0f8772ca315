#include "templates/CatalogueText.h"

namespace zoka {

namespace {

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

size_t droppedBytes(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < ' ') {
        return first == '\t' || first == '\n' || first == '\r' ? 0 : 1;
    }
    return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF") ? 3 : 0;
}

std::string withoutMarkup(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at) {
        if (const size_t dropped = droppedBytes(text.substr(at)); dropped > 0) {
            at += dropped - 1;
            continue;
        }
        switch (text[at]) {
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
                result += text[at];
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

}  // namespace zoka
