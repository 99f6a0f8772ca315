#include "customize/WriteBack.h"

#include <algorithm>
#include <utility>

#include "controls/EntryRules.h"
#include "customize/MarkupLine.h"
#include "util/LexChars.h"
#include "util/Text.h"

namespace zoka {
namespace {

std::string_view withoutLineEnd(std::string_view text) {
    if (text.ends_with('\n')) {
        text.remove_suffix(1);
    }
    if (text.ends_with('\r')) {
        text.remove_suffix(1);
    }
    return text;
}

bool isPlainWord(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        return lex::isDecimal(c) || (foldCase(c) >= 'a' && foldCase(c) <= 'z') || c == '_' || c == '.' ||
               lex::isSign(c);
    });
}

size_t lineStartOf(std::string_view text, size_t place) {
    const size_t before = place == 0 ? text.npos : text.rfind('\n', place - 1);
    return before == text.npos ? 0 : before + 1;
}

// What the line at `place` begins with behind its blanks; empty when it's a blank one.
std::string_view beginningAt(std::string_view text, size_t place) {
    while (place < text.size() && lex::isBlank(text[place])) {
        ++place;
    }
    text.remove_prefix(place);
    return text.empty() || !text[0] || lex::isLineEnd(text[0]) ? std::string_view() : text;
}

// A switch of one line with a blank line below it, whose new form is what a switch is looked for in.
bool keepsSwitch(const CustomScript& script, const ScriptEdit& edit) {
    const std::string_view text = script.text;
    const size_t i = edit.entry;
    const auto sameSwitch = [&](size_t other) {
        return script.entries[other].line == script.entries[i].line;
    };
    if ((i > 0 && sameSwitch(i - 1)) || (i + 1 < script.entries.size() && sameSwitch(i + 1))) {
        return false;
    }
    const size_t end = text.find('\n', edit.start);  // the text always ends with one
    if (!beginningAt(text, end + 1).empty()) {
        return false;
    }
    if (edit.length > 0) {
        const std::string_view line = beginningAt(text, edit.start + edit.length);
        return !line.empty() && !line.starts_with("//");
    }
    const std::string line = "//" + std::string(text.substr(edit.start, end - edit.start));
    const std::string_view word = splitMarkupLine(line).keyword;
    return !word.empty() && LookupCustomKeyword(word) < 0;
}

bool keepsEntry(const CustomScript& script, const ScriptEdit& edit) {
    const CustomEntry& entry = script.entries[edit.entry];
    const std::string_view before = std::string_view(script.text).substr(edit.start, edit.length);
    if (entry.kind == kEnable) {
        return keepsSwitch(script, edit);
    }
    if (edit.text.empty() || before.find_first_of("\"\r\n") != before.npos) {
        return false;
    }
    switch (script.text[edit.start - 1]) {  // a definition begins with the word that declares
        case '"':
            return edit.text.find_first_of("\"\r\n") == edit.text.npos;
        case '<':
            return entry.kind == kEntryChooseFile && edit.text.find_first_of("<>\"\r\n") == edit.text.npos &&
                   !lex::isSpace(edit.text.front()) && !lex::isSpace(edit.text.back());
        default:
            break;
    }
    const char behind = script.text[edit.start + edit.length];
    if (!isPlainWord(edit.text) || !(lex::isSpace(behind) || behind == ';' || behind == ',')) {
        return false;
    }
    if (entry.kind == kEntryNumEdit) {
        return isDigits(edit.text);
    }
    return entry.kind != kEntryNumEditF || (!isDigits(edit.text) && numberOf(edit.text));
}

}  // namespace

bool hasChanges(const CustomScript& script) {
    return std::any_of(script.entries.begin(), script.entries.end(),
                       [](const CustomEntry& entry) { return entry.control && entry.control->HasChanged(); });
}

size_t countChanges(const CustomScript& script) {
    return static_cast<size_t>(
        std::count_if(script.entries.begin(), script.entries.end(),
                      [](const CustomEntry& entry) { return entry.control && entry.control->HasChanged(); }));
}

std::vector<ScriptEdit> editsOf(const CustomScript& script) {
    std::vector<ScriptEdit> edits;
    for (size_t i = 0; i < script.entries.size(); ++i) {
        const CustomEntry& entry = script.entries[i];
        if (!entry.control || !entry.control->HasChanged()) {
            continue;
        }
        std::string value = entry.control->GetValueText();
        if (entry.kind != kEnable) {
            edits.push_back({entry.valueStart, entry.valueLength, std::move(value), i});
        } else if (value == "0") {
            edits.push_back({entry.valueStart, 0, "//", i});
        } else {
            edits.push_back({entry.valueStart, 2, "", i});
        }
    }
    return edits;
}

std::string editFault(const CustomScript& script, const std::vector<ScriptEdit>& edits) {
    size_t cursor = 0;
    for (const ScriptEdit& edit : edits) {
        const CustomEntry& entry = script.entries[edit.entry];
        if (edit.start < cursor) {
            return "The value of \"" + entry.label + "\" (line " + std::to_string(entry.line) +
                   ") lies within what another change replaces.";
        }
        if (edit.start + edit.length > script.fileLength) {
            return "The value of \"" + entry.label + "\" (line " + std::to_string(entry.line) +
                   ") lies behind the script's end.";
        }
        cursor = edit.start + edit.length;
    }
    return {};
}

std::string editedText(std::string_view fileText, const std::vector<ScriptEdit>& edits) {
    size_t size = fileText.size();
    for (const ScriptEdit& edit : edits) {
        size += edit.text.size() - edit.length;
    }
    std::string text;
    text.reserve(size);
    size_t cursor = 0;
    for (const ScriptEdit& edit : edits) {
        text.append(fileText.substr(cursor, edit.start - cursor)).append(edit.text);
        cursor = edit.start + edit.length;
    }
    return text.append(fileText.substr(cursor));
}

std::vector<LineChange> lineChanges(std::string_view fileText, const std::vector<ScriptEdit>& edits) {
    std::vector<LineChange> changes;
    size_t counted = 0;  // up to here the lines are counted
    int line = 1;
    for (size_t i = 0; i < edits.size();) {
        const size_t start = lineStartOf(fileText, edits[i].start);
        size_t end = start;
        std::string after;
        size_t cursor = start;
        do {
            after.append(fileText.substr(cursor, edits[i].start - cursor)).append(edits[i].text);
            cursor = edits[i].start + edits[i].length;
            end = fileText.find('\n', cursor);
            end = end == fileText.npos ? fileText.size() : end + 1;
            ++i;
        } while (i < edits.size() && edits[i].start < end);
        after.append(fileText.substr(cursor, end - cursor));
        line += static_cast<int>(std::count(fileText.begin() + static_cast<ptrdiff_t>(counted),
                                            fileText.begin() + static_cast<ptrdiff_t>(start), '\n'));
        counted = start;
        changes.push_back({line, std::string(withoutLineEnd(fileText.substr(start, end - start))),
                           std::string(withoutLineEnd(after))});
    }
    return changes;
}

std::vector<LineChange> lineChanges(const CustomScript& script) {
    const std::vector<ScriptEdit> edits = editsOf(script);
    return editFault(script, edits).empty() ? lineChanges(script.fileText(), edits)
                                            : std::vector<LineChange>();
}

bool keepsEntries(const CustomScript& script, const std::vector<ScriptEdit>& edits) {
    // Findings that could move up into those kept are not at hand.
    return script.findings.count() + edits.size() < MarkupFindings::kKept &&
           std::all_of(edits.begin(), edits.end(),
                       [&](const ScriptEdit& edit) { return keepsEntry(script, edit); });
}

void applyEdits(CustomScript& script, const std::vector<ScriptEdit>& edits, std::string newText) {
    script.text = std::move(newText);
    script.fileLength = script.text.size();
    if (!script.text.ends_with("\r\n")) {
        script.text += "\r\n";
    }
    size_t moved = 0;  // by which the spans lie further behind; modulo the size's range where it's in front
    auto edit = edits.begin();
    for (size_t i = 0; i < script.entries.size(); ++i) {
        CustomEntry& entry = script.entries[i];
        if (!entry.hasValue()) {
            continue;
        }
        entry.valueStart += moved;
        if (edit == edits.end() || edit->entry != i) {
            continue;
        }
        if (entry.kind == kEnable) {
            entry.value = edit->text.empty() ? "1" : "0";
            if (edit->text.empty()) {
                entry.valueStart = lineStartOf(script.text, entry.valueStart);
            }
        } else {
            entry.value = edit->text;
        }
        entry.valueLength = edit->text.size();
        moved += edit->text.size() - edit->length;
        ++edit;
    }
    if (script.findings.count() == 0) {
        for (const ScriptEdit& one : edits) {
            checkCustomValue(script, script.entries[one.entry]);
        }
    } else {
        script.findings.forgetThoseOfValues();
        for (const CustomEntry& entry : script.entries) {
            checkCustomValue(script, entry);
        }
    }
    script.findings.sortByLine();
}

std::vector<size_t> notReadBack(const CustomScript& script, const CustomScript& saved) {
    std::vector<size_t> lost;
    size_t next = 0;
    for (size_t i = 0; i < script.entries.size(); ++i) {
        const CustomEntry& entry = script.entries[i];
        if (!entry.hasValue()) {
            continue;
        }
        while (next < saved.entries.size() && !saved.entries[next].hasValue()) {
            ++next;
        }
        const CustomEntry* const again = next < saved.entries.size() ? &saved.entries[next] : nullptr;
        if (!again || again->id != entry.id || again->label != entry.label) {
            lost.push_back(i);
            continue;
        }
        ++next;
        if (again->value != (entry.control ? entry.control->GetValueText() : entry.value)) {
            lost.push_back(i);
        }
    }
    return lost;
}

}  // namespace zoka
