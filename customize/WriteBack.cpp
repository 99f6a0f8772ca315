#include "customize/WriteBack.h"

#include <algorithm>

namespace zoka {
namespace {

std::string_view withoutLineEnd(std::string_view text) {
    if (text.ends_with('\n')) text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return text;
}

}  // namespace

size_t countChanges(const CustomScript& script) {
    return static_cast<size_t>(
        std::count_if(script.entries.begin(), script.entries.end(),
                      [](const CustomEntry& entry) { return entry.control && entry.control->HasChanged(); }));
}

std::vector<ScriptEdit> editsOf(const CustomScript& script) {
    std::vector<ScriptEdit> edits;
    for (size_t i = 0; i < script.entries.size(); ++i) {
        const CustomEntry& entry = script.entries[i];
        if (!entry.control || !entry.control->HasChanged()) continue;
        std::string value = entry.control->GetValueText();
        if (entry.kind != kEnable)
            edits.push_back({entry.valueStart, entry.valueLength, std::move(value), i});
        else if (value == "0")
            edits.push_back({entry.valueStart, 0, "//", i});
        else
            edits.push_back({entry.valueStart, 2, "", i});
    }
    return edits;
}

std::string editFault(const CustomScript& script, const std::vector<ScriptEdit>& edits) {
    size_t cursor = 0;
    for (const ScriptEdit& edit : edits) {
        const CustomEntry& entry = script.entries[edit.entry];
        if (edit.start < cursor)
            return "The value of \"" + entry.label + "\" (line " + std::to_string(entry.line) +
                   ") lies within what another change replaces.";
        if (edit.start + edit.length > script.fileLength)
            return "The value of \"" + entry.label + "\" (line " + std::to_string(entry.line) +
                   ") lies behind the script's end.";
        cursor = edit.start + edit.length;
    }
    return {};
}

std::string editedText(std::string_view fileText, const std::vector<ScriptEdit>& edits) {
    size_t size = fileText.size();
    for (const ScriptEdit& edit : edits) size += edit.text.size() - edit.length;
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
        const size_t before = edits[i].start == 0 ? fileText.npos : fileText.rfind('\n', edits[i].start - 1);
        const size_t start = before == fileText.npos ? 0 : before + 1;
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

std::vector<size_t> notReadBack(const CustomScript& script, const CustomScript& saved) {
    std::vector<size_t> lost;
    size_t next = 0;
    for (size_t i = 0; i < script.entries.size(); ++i) {
        const CustomEntry& entry = script.entries[i];
        if (!entry.hasValue()) continue;
        while (next < saved.entries.size() && !saved.entries[next].hasValue()) ++next;
        const CustomEntry* const again = next < saved.entries.size() ? &saved.entries[next] : nullptr;
        if (!again || again->id != entry.id || again->label != entry.label) {
            lost.push_back(i);
            continue;
        }
        ++next;
        if (again->value != (entry.control ? entry.control->GetValueText() : entry.value)) lost.push_back(i);
    }
    return lost;
}

}  // namespace zoka
