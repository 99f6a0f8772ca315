#include "customize/EntriesText.h"

#include "controls/EntryRules.h"

namespace zoka {
namespace {

std::string shown(const std::string& text) {
    std::string made;
    for (const char c : text) {
        if (c == '\n') {
            made += "\\n";
        } else if (c == '\0') {
            made += "\\0";
        } else if (c != '\r') {
            made += c;
        }
    }
    return made;
}

std::string lineOf(const std::string& file, int line) {
    return file + ':' + std::to_string(line);
}

}  // namespace

std::string controlText(const CustomEntry& entry) {
    switch (entry.controlKind) {
        case kSpin:
        case kSliderControl:
            return std::string(entry.controlKind == kSpin ? "spin " : "slider ") +
                   numberText(entry.minimum, 6) + ' ' + numberText(entry.maximum, 6) + ' ' +
                   numberText(entry.step, 6);
        case kDropPair:
            return "drop_pair";
        case kDropList: {
            std::string text = "drop_list";
            for (const std::string& option : entry.options) {
                text += ' ' + option;
            }
            return text;
        }
        default:
            return {};
    }
}

std::string entriesText(const CustomScript& script) {
    std::string text =
        "version " + std::to_string(script.version) + ", date " + std::to_string(script.date) + '\n';
    for (const CustomEntry& entry : script.entries) {
        text += std::to_string(entry.line) + ' ' + customKeywordName(entry.kind) + " \"" +
                shown(entry.label) + '"';
        if (entry.id != -1) {
            text += " id " + std::to_string(entry.id);
        }
        if (entry.hasValue()) {
            text += " @" + std::to_string(entry.valueStart) + '+' + std::to_string(entry.valueLength) +
                    " = " + shown(entry.value);
        }
        text += '\n';
        if (entry.textParam1 || entry.textParam2) {
            text += "    " + std::to_string(entry.textParam1) + " lines, " +
                    std::to_string(entry.textParam2) + " characters\n";
        }
        if (const std::string control = controlText(entry); !control.empty()) {
            text += "    " + control + '\n';
        }
        if (!entry.help.empty()) {
            text += "    help: " + shown(entry.help) + '\n';
        }
    }
    for (const MarkupFinding& finding : script.findings.kept()) {
        text += "finding in line " + std::to_string(finding.line) + ": " + shown(finding.what) + '\n';
    }
    return text;
}

std::string placeText(const CustomScript& script, const CustomEntry& entry) {
    return lineOf(script.scriptPath, entry.line);
}

std::string findingText(const std::string& file, const MarkupFinding& finding) {
    return lineOf(file, finding.line) + ": " + finding.what;
}

std::string findingsText(const CustomScript& script) {
    std::string text;
    for (const MarkupFinding& finding : script.findings.kept()) {
        text += findingText(script.scriptPath, finding) + "\r\n";
    }
    const size_t left = script.findings.count() - script.findings.kept().size();
    if (left > 0) {
        text += "and " + std::to_string(left) + " more\r\n";
    }
    return text;
}

std::string changesText(const std::vector<LineChange>& changes) {
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
    for (const LineChange& change : changes) {
        text += "line " + std::to_string(change.line) + "\r\n";
        marked("- ", change.before);
        marked("+ ", change.after);
    }
    return text;
}

}  // namespace zoka
