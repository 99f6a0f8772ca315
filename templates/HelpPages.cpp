#include "templates/HelpPages.h"

#include <algorithm>
#include <cstdint>
#include <unordered_set>

#include "templates/CatalogueText.h"
#include "templates/HelpStyle.h"
#include "templates/ScriptNeeds.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"
#include "xml/XMLConvert.h"

namespace zoka {

namespace {

constexpr const char* kHead =
    "<!-- saved from KEZ2XML -->\n<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 "
    "Transitional//EN\">\n<html>\n<head>\n";
constexpr const char* kAfterTitle =
    "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=iso-8859-1\">\n"
    "<link href=\"css.css\" rel=\"stylesheet\" type=\"text/css\">\n</head>\n<body>\n\n";
constexpr const char* kFoot = "\n</body>\n</html>";
constexpr const char* kDocumentedType = "USER";

// The pages' character set is fixed, so each character beyond ASCII is written as a reference. A text is UTF-8 where
// all of it can be, else of the 8-bit set.
std::string escaped(const std::string& text) {
    const bool utf8 = isUtf8(text.c_str());
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        const char c = text[i];
        if (static_cast<unsigned char>(c) >= 0x80) {
            char32_t character = windows1252(static_cast<unsigned char>(c));
            i += utf8 ? std::max(utf8Sequence(text.c_str() + i, character), 1U) : 1;
            result += "&#" + std::to_string(static_cast<std::uint32_t>(character)) + ";";
            continue;
        }
        ++i;
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '\0':
                break;
            default:
                result += c;
        }
    }
    return result;
}

// With "<br>" for each line end.
std::string inLines(const std::string& text) {
    std::string result;
    for (const char c : escaped(text)) {
        if (c == '\n') {
            result += "<br>";
        } else if (c != '\r') {
            result += c;
        }
    }
    return result;
}

std::string page(const std::string& title, const std::string& body) {
    return kHead + ("<title>" + escaped(title) + "</title>\n") + kAfterTitle + body + kFoot;
}

std::string link(const std::string& file, const std::string& text) {
    std::string address;
    for (const char c : file) {
        constexpr const char* kDigits = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= ' ' || byte >= 127 || c == '%' || c == '#' || c == '&' || c == '\'') {
            ((address += '%') += kDigits[byte >> 4]) += kDigits[byte & 15];
        } else {
            address += c;
        }
    }
    return "<a href=\"" + address + "\">" + escaped(text) + "</a>";
}

std::string actionLine(const CScriptAction& action) {
    std::string line = action.m_engreq.IsEmpty() ? std::string() : editionMarks(action.m_engreq.edition);
    line += "<b>";
    line +=
        escaped(action.m_name.empty() ? action.m_filename : action.m_name + " (" + action.m_filename + ")");
    return line + "</b> - " + inLines(action.m_desc) + "\n<br>\n";
}

std::string actionLines(const CScriptElm& script) {
    std::string lines;
    for (const CScriptSection& section : script.m_sections) {
        for (const CScriptAction& action : section.m_actions) {
            lines += actionLine(action);
        }
    }
    return lines;
}

std::string needsList(const CScriptElm& script) {
    std::string list;
    for (const std::string& need : script.m_needs) {
        if (!list.empty()) {
            list += ", ";
        }
        list += escaped(need);
    }
    return list;
}

// Descriptions are broken into lines anywhere; a line alone would often end in mid-sentence.
std::string firstSentence(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    const size_t end = text.find(". ");
    return end == std::string::npos ? text : text.substr(0, end + 1);
}

// The pages of one catalogue: which scripts and classes have one, under which name, and who needs whom.
class Help {
public:
    Help(const CTemplateData& catalogue, PageSink take) : m_take(std::move(take)) {
        KeyedMap<std::string, size_t> classes;
        unique(kIndexFile);
        for (const CScriptElm& script : catalogue.scripts()) {
            if (!equalNoCase(script.m_type, kDocumentedType)) {
                continue;
            }
            const auto [found, added] = classes.try_emplace(lowered(script.m_class), m_classes.size());
            if (added) {
                m_classes.push_back({script.m_class, unique(classPageName(script.m_class)), {}});
            }
            m_classes[found->second].scripts.push_back(m_scripts.size());
            m_scripts.push_back({script, {}, found->second});
        }
        for (size_t i = 0; i < m_scripts.size(); ++i) {
            m_scripts[i].page = unique(scriptPageName(m_scripts[i].script));
            m_byFile.try_emplace(lowered(m_scripts[i].script.m_filename), i);
        }
        for (size_t i = 0; i < m_scripts.size(); ++i) {
            for (const std::string& need : m_scripts[i].script.m_needs) {
                std::vector<size_t>& users = m_neededBy[lowered(need)];
                if (users.empty() || users.back() != i) {
                    users.push_back(i);
                }
            }
        }
    }

    Outcome writeClasses() {
        return writeAll(m_classes, [this](const Class& each) { return classPage(each); });
    }
    Outcome writeScripts() {
        return writeAll(m_scripts, [this](const Script& each) { return scriptPage(each); });
    }
    Outcome writeStyle() { return write(kStyleFile, kHelpStyle); }
    Outcome writeIndex(const CTemplateData& catalogue) {
        std::string body = "<h1>" + escaped(catalogue.GetName()) + "</h1>\n\n";
        const std::string req = catalogue.GetEngReq();
        body += "<p>Version " + escaped(catalogue.GetVers()) + ", " + escaped(catalogue.GetDate()) +
                (req.empty() ? "" : ", for engine " + escaped(req)) + "</p>\n";
        for (const Class& each : m_classes) {
            body +=
                "\n<h2>" + link(each.page, each.name.empty() ? "(no class)" : each.name) + "</h2>\n<ul>\n";
            for (const size_t i : each.scripts) {
                body += "<li>" + link(m_scripts[i].page, m_scripts[i].script.DisplayName()) +
                        editionMarks(m_scripts[i].script.m_engreq.edition) + " - " +
                        escaped(firstSentence(m_scripts[i].script.m_desc)) + "</li>\n";
            }
            body += "</ul>\n";
        }
        return write(kIndexFile, page(catalogue.GetName(), body));
    }

private:
    struct Class {
        std::string name;
        std::string page;
        std::vector<size_t> scripts;
    };
    struct Script {
        CScriptElm script;
        std::string page;
        size_t classIndex;
    };

    // `m_taken` holds for each name (lowered) the number that its next namesake tries first.
    std::string unique(const std::string& name) {
        const auto [first, added] = m_taken.try_emplace(lowered(name), 2);
        if (added) {
            return name;
        }
        const std::string stem = name.substr(0, name.rfind('.'));
        for (unsigned& number = first->second;;) {
            const std::string next = stem + "_" + std::to_string(number++) + ".htm";
            if (m_taken.try_emplace(lowered(next), 2).second) {
                return next;
            }
        }
    }

    std::string classPage(const Class& each) const {
        std::string body = "<h1>Template class: <b>" + escaped(each.name) + "</b></h1>\n\n";
        for (const size_t i : each.scripts) {
            const CScriptElm& script = m_scripts[i].script;
            const std::string actions = actionLines(script);
            body += "<h2>" + escaped(script.DisplayName()) + "</h2>\n" + inLines(script.m_desc);
            body += "\n<h3>Actions:</h3>\n" + (actions.empty() ? "[none]" : actions);
            body += "\n<h3>Needs:</h3>\n<b>" + needsList(script) + "</b>\n";
            body += "<h3>Filename:</h3>\n<b>" + escaped(script.m_filename) + "</b>\n";
            if (!script.m_note.empty()) {
                body += "<h3>Remarks:</h3>\n" + escaped(script.m_note);
            }
            body += "<p>&nbsp;</p>\n<p>&nbsp;</p>\n";
        }
        return page("Template_" + each.name, body);
    }

    std::string scriptPage(const Script& each) const {
        const CScriptElm& script = each.script;
        // The description flows: where its lines end says nothing.
        std::string body = "<h2>" + escaped(script.DisplayName()) + "</h2>\n" + escaped(script.m_desc);
        if (!script.m_sections.empty() && !script.m_sections.back().m_actions.empty()) {
            body += "\n<h3>Actions:</h3>\n<br>\n" + actionLines(script);
        }
        body += "\n<h3>Needs:</h3>\n<b>" + needsList(script) + "</b>\n";
        body += "<h3>Filename:</h3>\n<b>" + escaped(script.m_filename) + "</b>\n";
        if (!script.m_note.empty()) {
            body += "<h3>Remarks:</h3>\n" + escaped(script.m_note);
        }
        body += "<h3>See also:</h3>\n" + seeAlso(each);
        return page("Template Script: " + script.DisplayName(), body);
    }

    // The class, the scripts that this one needs, and those that need it.
    std::string seeAlso(const Script& each) const {
        const auto item = [this](size_t i, const char* why) {
            return "<li>" + link(m_scripts[i].page, m_scripts[i].script.DisplayName()) + " - " + why +
                   "</li>\n";
        };
        const Class& ownClass = m_classes[each.classIndex];
        std::string list = "<ul>\n<li>" + link(ownClass.page, "Template class: " + ownClass.name) + "</li>\n";
        std::unordered_set<size_t> listed;
        for (const std::string& need : each.script.m_needs) {
            const auto found = m_byFile.find(lowered(need));
            if (found != m_byFile.end() && &m_scripts[found->second] != &each &&
                listed.insert(found->second).second) {
                list += item(found->second, "needed by this script");
            }
        }
        const auto users = m_neededBy.find(lowered(each.script.m_filename));
        if (users != m_neededBy.end()) {
            for (const size_t i : users->second) {
                if (&m_scripts[i] != &each) {
                    list += item(i, "needs this script");
                }
            }
        }
        return list + "</ul>\n";
    }

    Outcome write(const std::string& name, const std::string& text) { return m_take(name, inTextMode(text)); }
    template <class List, class TextOf>
    Outcome writeAll(const List& list, const TextOf& textOf) {
        Outcome written;
        for (auto each = list.begin(); written && each != list.end(); ++each) {
            written = write(each->page, textOf(*each));
        }
        return written;
    }

    PageSink m_take;
    KeyedMap<std::string, unsigned> m_taken;
    std::vector<Class> m_classes;   // in catalogue order
    std::vector<Script> m_scripts;  // in catalogue order
    KeyedMap<std::string, size_t> m_byFile;
    KeyedMap<std::string, std::vector<size_t>> m_neededBy;  // file name -> scripts
};

// Waiting for the disk twice for each page took most of the time. So pages are not flushed: the next run makes those
// again that a power failure has cut, because it writes each that is not as it is to be, and no other.
class PageWriter {
public:
    explicit PageWriter(const std::string& folder) : m_folder(folder) {}
    PageSink sink() {
        return [this](const std::string& name, const std::string& text) { return take(name, text); };
    }
    // After the last page: what has not been written yet.
    Outcome finish() {
        std::vector<FileContent> files;
        for (const auto& [path, text] : m_pages) {
            files.push_back({path, text, FileKind::Generated});
            files.back().flushed = false;
        }
        Outcome written = safeWrite(files);
        m_pages.clear();
        return written;
    }

private:
    Outcome take(const std::string& name, const std::string& text) {
        constexpr size_t kAtOnce = 250;  // each is an open file until they are written
        std::string path = m_folder + name;
        if (!isUsersStyle(path, text) && (osFiles().isLink(path) || osFiles().readWhole(path) != text)) {
            m_pages.emplace_back(std::move(path), text);
        }
        return m_pages.size() < kAtOnce ? Outcome() : finish();
    }

    std::string m_folder;
    std::vector<std::pair<std::string, std::string>> m_pages;  // path and text
};

// What no file system takes becomes "_".
std::string asFileName(std::string name) {
    for (char& c : name) {
        if (static_cast<unsigned char>(c) < ' ' ||
            std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos) {
            c = '_';
        }
    }
    constexpr size_t kLongest = 200;  // bytes, with room for a number
    constexpr std::string_view kEnding = ".htm";
    if (name.size() > kLongest) {
        name = name.substr(0, kLongest - kEnding.size()) + std::string(kEnding);
    }
    return isPlainFileName(name) ? name : "_" + name;  // a device's name
}

}  // namespace

bool isUsersStyle(const std::string& path, std::string_view text) {
    if (fileNameOf(path) != kStyleFile || osFiles().isLink(path)) {
        return false;
    }
    const std::optional<std::string> before = osFiles().readWhole(path);
    return before && !text.starts_with(*before);
}

std::string classPageName(const std::string& className) {
    return asFileName("template_" + className + ".htm");
}

std::string scriptPageName(const CScriptElm& script) {
    std::string name;
    for (const char c : script.DisplayName()) {
        if (std::string_view(" \\/\"'(),#%").find(c) == std::string_view::npos) {
            name += c;
        }
    }
    return asFileName(name + ".htm");
}

std::string editionMarks(const std::string& edition) {
    const int code = editionCode(edition);
    std::string marks;
    if (code < 1) {
        return marks;
    }
    constexpr const char* kLetters = "SECP";
    for (int i = code; i <= 4; ++i) {
        marks += std::string("<span class=\"edition\">&nbsp;") + kLetters[i - 1] + "&nbsp;</span>";
    }
    return marks + "\n";
}

Outcome writeClassPages(const CTemplateData& catalogue, const std::string& folder) {
    PageWriter writer(folder);
    const Outcome made = Help(catalogue, writer.sink()).writeClasses();
    return made ? writer.finish() : made;
}

Outcome writeScriptPages(const CTemplateData& catalogue, const std::string& folder) {
    PageWriter writer(folder);
    const Outcome made = Help(catalogue, writer.sink()).writeScripts();
    return made ? writer.finish() : made;
}

Outcome writeHelp(const CTemplateData& catalogue, const std::string& folder) {
    PageWriter writer(folder);
    const Outcome made = makeHelp(catalogue, writer.sink());
    return made ? writer.finish() : made;
}

std::vector<std::string> pagesOfOthers(const std::string& folder, const KeyedSet<std::string>& names) {
    constexpr std::string_view kMark = "<!-- saved from KEZ2XML -->";
    std::vector<std::string> others;
    for (const OsEntry& entry : osFiles().list(folder + "*.htm")) {
        if (entry.isFolder || names.contains(lowered(entry.name))) {
            continue;
        }
        const std::optional<std::string> text = osFiles().readWhole(folder + entry.name);
        if (text && text->starts_with(kMark)) {
            others.push_back(entry.name);
        }
    }
    return others;
}

Outcome makeHelp(const CTemplateData& catalogue, const PageSink& take) {
    Help help(catalogue, take);
    Outcome made = help.writeStyle();
    made = made ? help.writeIndex(catalogue) : made;
    made = made ? help.writeClasses() : made;
    return made ? help.writeScripts() : made;
}

}  // namespace zoka
