#include "tests/customize/Checks.h"

#include <random>

#include "customize/CarryValues.h"
#include "customize/EntriesText.h"
#include "customize/ScriptRows.h"
#include "customize/ValueFile.h"
#include "customize/WriteBack.h"
#include "tests/customize/Edits.h"

namespace zoka::test {

std::string scriptFault(const std::string& text, unsigned seed) {
    std::minstd_rand random(seed);
    ScriptRows panel;
    parseCustomText(text, panel.script);
    panel.makeRows();
    CustomScript& script = panel.script;
    if (script.fileText() != text) {
        return "the text is not kept";
    }
    size_t cursor = 0;
    for (const CustomEntry& entry : script.entries) {
        if (!entry.hasValue()) {
            continue;
        }
        if (entry.valueStart < cursor) {
            return "spans are not in order";
        }
        cursor = entry.valueStart + entry.valueLength;
        if (cursor > text.size()) {
            return "a span lies outside";
        }
    }
    if (editedText(text, editsOf(script)) != text) {
        return "without a change there is a difference";
    }

    // A switched line may be anything, and what follows with it. A name in brackets of an entity, a path or
    // the like may end at its ">" without a blank, and another value then runs on: saving asks about such.
    bool uncertain = false;
    for (size_t i = 0; i < panel.size(); ++i) {
        const CustomEntry& entry = script.entries[i];
        if (entry.hasValue() && random() % 4 != 0) {
            static_cast<void>(panel.row(i).edit(otherValue(panel.row(i), random)));
        }
        uncertain = uncertain || (entry.kind == kEnable && panel.row(i).HasChanged()) ||
                    (entry.kind >= kEntryEntity && entry.value.starts_with('<'));
    }
    const std::vector<ScriptEdit> edits = editsOf(script);
    if (const std::string fault = editFault(script, edits); !fault.empty()) {
        return fault;
    }
    const std::string edited = editedText(text, edits);
    lineChanges(text, edits);
    CustomScript again;
    parseCustomText(edited, again);
    if (!uncertain) {
        for (const size_t i : notReadBack(script, again)) {
            return "the value of \"" + script.entries[i].label + "\" is lost";
        }
    }
    // Those that saving is certain of, without reading the script again.
    std::vector<ScriptEdit> certain;
    for (const ScriptEdit& edit : edits) {
        if (keepsEntries(script, {edit})) {
            certain.push_back(edit);
        }
    }
    if (certain.size() < edits.size()) {
        parseCustomText(editedText(text, certain), again);
    }
    applyEdits(script, certain, editedText(text, certain));
    if (script.text != again.text || entriesText(script) != entriesText(again) ||
        script.findings.count() != again.findings.count()) {
        return "read again it is\n" + entriesText(again) + "and not\n" + entriesText(script);
    }
    return {};
}

std::string valueFileFault(const std::string& bytes) {
    const ValueRecords first = parseValueFile(bytes);
    std::string written = "1\n0\n0\n\n";
    size_t carried = 0;
    for (const ValueRecord& record : first.records) {
        if (record.id <= 0 || record.value.size() > kValueFileLine) {
            return "a record is not whole";
        }
        // A value that fills a line leaves no room for its line end.
        if (record.value.size() == kValueFileLine) {
            continue;
        }
        appendValueRecord(written, record.id, record.kind, record.value);
        ++carried;
    }
    const ValueRecords second = parseValueFile(written);
    if (!second.whole || second.records.size() != carried) {
        return "what is written can't be read";
    }
    const std::vector<UnplacedValue> lost = {{{3, 11, "a", "1"}, "why"}, {{-1, 11, "b", "2"}, "why"}};
    const std::string old = oldValuesText(bytes, CustomScript(), lost);
    if (old.find("\n3\n11\n1\n\n") == old.npos || !parseValueFile(old).whole) {
        return "old values are lost";
    }
    return {};
}

}  // namespace zoka::test
