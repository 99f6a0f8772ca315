#include "templates/ScriptHeader.h"

#include <algorithm>
#include <memory>

#include "customize/CustomKeywords.h"
#include "templates/HeaderLine.h"
#include "util/File.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {

namespace {

// The directory of a catalogue that scripts lie in when nothing else is said.
constexpr const char* kCodeDirectory = "code";
constexpr std::string_view kActionWord = "action";

// Puts `addition` on a line of its own behind `text`.
void appendLine(std::string& text, std::string_view addition) {
    if (!text.empty()) {
        text += '\n';
    }
    text += addition;
}
// Puts `addition` behind `text` on the same line.
void appendWords(std::string& text, std::string_view addition) {
    if (!text.empty() && text.back() != '\n') {
        text += ' ';
    }
    text += addition;
}

class HeaderParser {
public:
    HeaderParser(const std::string& filename, std::string& errorText) : m_errorText(errorText) {
        m_script.m_directory = kCodeDirectory;
        m_script.m_filename = filename;
    }

    void takeLine(std::string_view line) {
        // In the header a block's line ends the header and is then looked at as a block's.
        if (m_state == State::Header && !headerLine(line)) {
            m_state = State::Blocks;
        }
        switch (m_state) {
            case State::Header:
                break;
            case State::Blocks:
                blockLine(line);
                break;
            case State::Section:
                sectionLine(line);
                break;
            case State::Action:
                actionLine(line);
                break;
            case State::PassOver:
                if (!isCommentLine(line)) {
                    m_state = State::Blocks;
                }
                break;
        }
    }

    CScriptElm finish() {
        if (m_state == State::Action) {
            m_errorText += "**Action not complete: " + m_actionText + "\n";
            addAction(m_actionTitle);
        }
        m_script.CheckComplete(m_errorText);
        return std::move(m_script);
    }

private:
    enum class State { Header, Blocks, Section, Action, PassOver };

    // False when the line ends the header.
    bool headerLine(std::string_view line) {
        const HeaderCode code = classifyHeaderLine(line);
        if (groupOf(code) == HeaderGroup::Block || code == HeaderCode::EndHeader) {
            return false;
        }
        const std::string_view value = headerValue(line);
        switch (code) {
            case HeaderCode::IdCode:
                m_script.m_id = firstHeaderToken(value);
                break;
            case HeaderCode::Prefix:
                m_script.m_prefix = firstHeaderToken(value);
                break;
            case HeaderCode::Type:
                m_script.m_type = firstHeaderToken(value);
                break;
            case HeaderCode::Ver:
                m_script.m_vers = firstHeaderToken(value);
                break;
            case HeaderCode::Title:
                m_script.m_name = value;
                break;
            case HeaderCode::Class:
                m_script.m_class = value;
                break;
            case HeaderCode::Date:
                m_script.m_date = value;
                break;
            case HeaderCode::Note:
                m_script.m_note += value;
                break;
            case HeaderCode::Desc:
            case HeaderCode::Help:
                (m_script.m_desc += value) += '\n';
                break;
            case HeaderCode::EngineReq:
                m_script.m_engreq.SetFromText(std::string(value));
                break;
            case HeaderCode::Needs:
                for (const std::string_view need : headerTokens(value)) {
                    m_script.m_needs.emplace_back(need);
                }
                break;
            default:
                break;
        }
        return true;
    }

    void blockLine(std::string_view line) {
        if (!isCommentLine(line) || line.find(':') == std::string_view::npos) {
            return;
        }
        const std::string_view value = headerValue(line);
        switch (classifyHeaderLine(line)) {
            case HeaderCode::Action:
                m_action = {};
                m_action.m_filename = m_script.m_filename;
                m_actionTitle = value;
                m_actionText = value;
                m_text = &m_action.m_desc;
                m_state = State::Action;
                break;
            case HeaderCode::Entry:
            case HeaderCode::Function:
                m_state = State::PassOver;
                break;
            case HeaderCode::Section:
                m_script.m_sections.push_back({std::string(value), {}, {}, {}});
                m_text = &m_script.m_sections.back().m_text;
                m_inEntry = false;
                m_state = State::Section;
                break;
            default:
                break;
        }
    }

    void sectionLine(std::string_view line) {
        if (!isCommentLine(line)) {
            m_state = State::Blocks;
            return;
        }
        if (m_inEntry) {
            return;
        }
        const HeaderCode code = classifyHeaderLine(line);
        const std::string_view value = headerValue(line);
        const std::string_view keyword = headerKeyword(line);
        if (code == HeaderCode::Image) {
            m_script.m_sections.back().m_imgfile = value;
        } else if (code == HeaderCode::Continuation) {
            appendWords(*m_text, value);
        } else if (code == HeaderCode::Desc || code == HeaderCode::Help || equalNoCase(keyword, "text")) {
            appendLine(*m_text, value);
        } else if (groupOf(code) == HeaderGroup::Block || equalNoCase(keyword.substr(0, 5), "entry")) {
            m_inEntry = true;
        }
    }

    void actionLine(std::string_view line) {
        if (isCommentLine(line)) {
            appendLine(m_actionText, trimmed(line.substr(2)));
            actionComment(line);
        } else if (equalNoCase(line.substr(0, kActionWord.size()), kActionWord)) {
            const std::string_view name = trimmed(firstHeaderToken(trimmed(line.substr(kActionWord.size()))));
            addAction(std::string(name));
            m_state = State::Blocks;
        }
    }

    void actionComment(std::string_view line) {
        const HeaderCode code = classifyHeaderLine(line);
        const std::string_view value = headerValue(line);
        const std::string_view keyword = headerKeyword(line);
        if (code == HeaderCode::Title) {
            m_actionTitle = value;
        } else if (code == HeaderCode::Desc) {
            appendLine(*m_text, value);
        } else if (code == HeaderCode::Help) {
            // The help of a skill or flag stands behind its name, on the same line.
            if (m_afterLabel) {
                appendWords(*m_text += ':', value);
            } else {
                appendLine(*m_text, value);
            }
            m_afterLabel = false;
        } else if (code == HeaderCode::Continuation) {
            appendWords(*m_text, value);
        } else if (code == HeaderCode::Data) {
            m_action.m_filename = firstHeaderToken(value);
        } else if (code == HeaderCode::EngineReq) {
            m_action.m_engreq.SetFromText(std::string(value));
        } else if (!numberedKeyword(keyword).empty()) {
            // "skill2: Range 8" names the value in its first word; blanks are written as underscores there.
            std::string label(firstHeaderToken(value));
            std::replace(label.begin(), label.end(), '_', ' ');
            appendLine(*m_text, std::string(keyword) + " " + label);
            m_afterLabel = true;
        }
    }

    void addAction(const std::string& name) {
        m_action.m_name = name;
        if (!m_actionTitle.empty() && m_actionTitle != name) {
            std::string desc = std::move(m_actionTitle);
            if (!m_action.m_desc.empty()) {
                appendLine(desc, m_action.m_desc);
            }
            m_action.m_desc = std::move(desc);
        }
        if (m_script.m_sections.empty()) {
            m_script.m_sections.emplace_back();
        }
        m_script.m_sections.back().m_actions.push_back(std::move(m_action));
        m_action = {};
        m_afterLabel = false;
    }

    std::string& m_errorText;
    CScriptElm m_script;
    State m_state = State::Header;
    std::string* m_text = nullptr;  // where the open section's or action's texts go
    bool m_inEntry = false;         // the section's comment has come to an entry
    bool m_afterLabel = false;      // the action's comment stands behind a skill's or flag's line
    CScriptAction m_action;
    std::string m_actionTitle;
    std::string m_actionText;  // all of the action's comment, for the message about an unfinished one
};

}  // namespace

CScriptElm parseScriptHeader(std::string_view text, const std::string& filename, std::string& errorText) {
    HeaderParser parser(filename, errorText);
    if (text.starts_with(kUtf8Mark)) {
        text.remove_prefix(kUtf8Mark.size());  // it belongs to no line
    }
    while (!text.empty()) {
        const size_t length = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, length);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        parser.takeLine(line);
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return parser.finish();
}

bool loadScriptHeader(const std::string& path, const std::string& filename, CScriptElm& script,
                      std::string& errorText) {
    file_t file;
    if (!file.OpenRead(path.c_str())) {
        return false;
    }
    unsigned char* bytes = nullptr;
    long size = 0;
    file.GetText(&bytes, size);
    const std::unique_ptr<unsigned char[]> owner(bytes);
    const std::string_view text(reinterpret_cast<const char*>(bytes), static_cast<size_t>(size));
    script = parseScriptHeader(bytes ? text : std::string_view(), filename, errorText);
    return true;
}

}  // namespace zoka
