// Any bytes as a script: what is found lies inside and in order, saving without changes is the identity, and
// values put in are read back.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "customize/EntriesText.h"
#include "customize/ScriptPanel.h"
#include "customize/WriteBack.h"

namespace {

void check(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    zoka::ScriptPanel panel;
    zoka::takeCustomText(text, panel.script);
    panel.makeRows();
    check(panel.script.fileText() == text, "the text is kept");
    size_t cursor = 0;
    for (const zoka::CustomEntry& entry : panel.script.entries) {
        if (!entry.hasValue()) continue;
        check(entry.valueStart >= cursor, "spans are in order");
        cursor = entry.valueStart + entry.valueLength;
        check(cursor <= size, "spans lie inside");
    }
    check(!zoka::entriesText(panel.script).empty(), "there is a text");
    check(zoka::editedText(text, zoka::editsOf(panel.script)) == text, "no change, no difference");
    bool switched = false;
    for (size_t i = 0; i < panel.size(); ++i) {
        zoka::EntryModel& row = panel.row(i);
        for (const char* value : {"1", "0", "x y", "a.b", "7.5"}) row.edit(i % 2 ? value : row.stepped(1));
        row.sliderPosition();
        row.textAt(static_cast<int>(i));
        switched = switched || (panel.script.entries[i].kind == zoka::kEnable && row.HasChanged());
    }
    const auto edits = zoka::editsOf(panel.script);
    check(zoka::editFault(panel.script, edits).empty(), "values can be put in");
    zoka::lineChanges(text, edits);
    zoka::CustomScript saved;
    zoka::takeCustomText(zoka::editedText(text, edits), saved);
    // A switched line may be anything, and what follows with it. A name in brackets of an entity, a path or the
    // like may end at its ">" without a blank, and another value then runs on: saving asks about such.
    bool bracketed = false;
    for (const zoka::CustomEntry& entry : panel.script.entries)
        bracketed = bracketed || (entry.kind >= zoka::kEntryEntity && entry.value.starts_with('<'));
    check(switched || bracketed || zoka::notReadBack(panel.script, saved).empty(), "values are read back");
    return 0;
}
