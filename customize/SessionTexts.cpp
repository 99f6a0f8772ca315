// What the panel says about its rows.
#include "customize/CustomizeSession.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

std::string CustomizeSession::details(size_t i) const {
    std::string text;
    if (hasValue(row(i).facts().field)) {
        text = entry(i).id >= 1 ? "id " + std::to_string(entry(i).id)
                                : "no id: an update does not keep the value";
        text += "\r\n";
    }
    return text + "line " + std::to_string(entry(i).line);
}

std::string CustomizeSession::picturePath(const std::string& name) const {
    return pictureFor(script(), name);
}

std::string CustomizeSession::pictureFor(const CustomScript& script, const std::string& name) const {
    const std::string own = joinPath(folderOf(script.scriptPath), name);
    return osFiles().search(own) ? own : m_host.TemplatePath(name);
}

std::string CustomizeSession::emptyText() const {
    if (script().scriptPath.empty()) {
        return m_notOpened.empty() ? "There is no script." : m_notOpened;
    }
    return size() == 0 ? "This script has nothing to customize." : "No entry matches.";
}

std::string CustomizeSession::placeInScript(size_t i) const {
    return script().scriptPath + ':' + std::to_string(entry(i).line);
}

std::vector<LineChange> CustomizeSession::changes() const {
    const std::vector<ScriptEdit> edits = editsOf(script());
    return editFault(script(), edits).empty() ? lineChanges(script().fileText(), edits)
                                              : std::vector<LineChange>();
}

std::string CustomizeSession::changesText() const {
    std::string text;
    const auto marked = [&](const char* mark, const std::string& lines) {
        text += mark;
        for (const char c : lines) {
            if (c == '\n') {
                text += std::string("\r\n") + mark;
            } else if (c != '\r') {
                text += c;
            }
        }
        text += "\r\n";
    };
    for (const LineChange& change : changes()) {
        text += "line " + std::to_string(change.line) + "\r\n";
        marked("- ", change.before);
        marked("+ ", change.after);
    }
    return text;
}

std::string CustomizeSession::findingsText() const {
    std::string text;
    for (const MarkupFinding& finding : script().findings.kept()) {
        text += script().scriptPath + ':' + std::to_string(finding.line) + ": " + finding.what + "\r\n";
    }
    const size_t left = script().findings.count() - script().findings.kept().size();
    if (left > 0) {
        text += "and " + std::to_string(left) + " more\r\n";
    }
    return text;
}

}  // namespace zoka
