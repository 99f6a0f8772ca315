// What the panel says about its rows.
#include "controls/EntryRules.h"
#include "customize/CustomizeSession.h"

namespace zoka {
namespace {

std::string onOneLine(const std::string& text) {
    std::string made;
    for (const char c : text) {
        if (c == '\n') {
            made += ' ';
        } else if (c != '\r') {
            made += c;
        }
    }
    return made;
}

}  // namespace

std::vector<bool> CustomizeSession::visibleRows() const {
    std::vector<FilterItem> items;
    items.reserve(size());
    for (size_t i = 0; i < size(); ++i) {
        items.push_back({row(i).facts().field, entry(i).label, entry(i).help, row(i).HasChanged()});
    }
    return filter.visible(items);
}

std::string CustomizeSession::tooltip(size_t i) {
    const EntryFacts& facts = row(i).facts();
    std::string text = facts.label;
    const auto line = [&](const std::string& one) { text += "\r\n" + one; };
    if (hasValue(facts.field)) {
        if (const auto value = defaultOf(i)) {
            line("default: " + onOneLine(*value));
        }
        if (row(i).HasChanged()) {
            line("loaded: " + onOneLine(row(i).loadedValue()));
        }
        if (const std::string range = allowedRange(facts); !range.empty()) {
            line(range);
        }
        if (facts.maxChars > 0) {
            line("at most " + std::to_string(facts.maxChars) + " characters");
        }
        line(entry(i).id >= 1 ? "id " + std::to_string(entry(i).id)
                              : "no id: an update does not keep the value");
    }
    line("line " + std::to_string(entry(i).line));
    return text;
}

std::string CustomizeSession::helpText(size_t i) const {
    return entry(i).help.empty() ? "No Help" : entry(i).help;
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
