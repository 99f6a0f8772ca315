#include "customize/CarryValues.h"

#include <algorithm>
#include <deque>

#include "controls/EntryRules.h"
#include "customize/MarkupLine.h"
#include "customize/ValueFile.h"
#include "util/Backups.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"
#include "util/SafeWrite.h"
#include "util/Text.h"

namespace zoka {
namespace {

// The entries with a value by id or label, in their order; each is given out once.
class Places {
public:
    explicit Places(const CustomScript& script) {
        for (size_t i = 0; i < script.entries.size(); ++i) {
            const CustomEntry& entry = script.entries[i];
            if (entry.hasValue()) {
                m_places[entryKey(entry.id, entry.label, script.set)].rows.push_back(i);
            }
        }
    }
    // The next row for it, or -1.
    ptrdiff_t next(int id, const std::string& label, TextSet set) {
        const auto found = m_places.find(entryKey(id, label, set));
        if (found == m_places.end() || found->second.given == found->second.rows.size()) {
            return -1;
        }
        return static_cast<ptrdiff_t>(found->second.rows[found->second.given++]);
    }

private:
    struct Place {
        std::vector<size_t> rows;
        size_t given = 0;
    };
    KeyedMap<std::string, Place> m_places;
};

// What stands in front of the value in its line, or behind it where there is nothing: of a switch its statement. In
// UTF-8.
std::string definitionOf(const CustomScript& script, const CustomEntry& entry) {
    const std::string_view text = script.text;
    const size_t lineStart = text.find_last_of('\n', entry.valueStart > 0 ? entry.valueStart - 1 : 0);
    const size_t start = lineStart == text.npos || entry.valueStart == 0 ? 0 : lineStart + 1;
    const std::string_view before = trimmed(text.substr(start, entry.valueStart - start));
    const size_t end = entry.valueStart + entry.valueLength;
    return utf8Text(before.empty() ? trimmed(text.substr(end, text.find('\n', end) - end)) : before,
                    script.set);
}

constexpr size_t kLabelKept = 200;
constexpr size_t kPiece = 250;  // with its label less than a line of a value file

// The two parts of the file of old values.
struct OldValues {
    std::string records;
    std::string labelled;  // an id of 0 makes readers pass over the line behind it
    std::deque<std::string> labels;

    // Long values in pieces, each behind its label. Returns the label.
    std::string_view addLabelled(std::string label, std::string_view value) {
        do {
            labelled.append("0\n").append(label).append("\t").append(value.substr(0, kPiece)).append("\n");
            value.remove_prefix(std::min(kPiece, value.size()));
        } while (!value.empty());
        return labels.emplace_back(std::move(label));
    }
    void addLine(std::string_view line) {
        do {
            labelled.append("0\n").append(line.substr(0, kValueFileLine - 1)).append("\n");
            line.remove_prefix(std::min(kValueFileLine - 1, line.size()));
        } while (!line.empty());
    }
};

}  // namespace

std::string entryKey(int id, const std::string& label, TextSet set) {
    return id >= 1 ? '#' + std::to_string(id) : '=' + utf8Text(label, set);
}

std::vector<std::ptrdiff_t> matchEntries(const CustomScript& from, const CustomScript& to) {
    Places places(to);
    std::vector<std::ptrdiff_t> found;
    found.reserve(from.entries.size());
    for (const CustomEntry& entry : from.entries) {
        found.push_back(entry.hasValue() ? places.next(entry.id, entry.label, from.set) : -1);
    }
    return found;
}

std::vector<KeptValue> valuesToKeep(const ScriptRows& panel, ValuesToKeep which) {
    std::vector<KeptValue> values;
    for (size_t i = 0; i < panel.size(); ++i) {
        const CustomEntry& entry = panel.script.entries[i];
        if (entry.hasValue() &&
            (which == ValuesToKeep::Changed ? panel.row(i).HasChanged() : entry.id >= 1)) {
            values.push_back({entry.id, entry.kind, entry.label, panel.row(i).value(), panel.script.set,
                              definitionOf(panel.script, entry)});
        }
    }
    return values;
}

std::string carryRefusal(const KeptValue& kept, const CustomEntry& entry, const EntryFacts& facts) {
    if (std::string why = entryRefusal(facts, kept.value); !why.empty()) {
        return why;
    }
    if (kept.kind == entry.kind || kept.value == entry.value) {
        return {};
    }
    const bool listed = isChoice(facts, kept.value);
    if (facts.field == EntryField::DropList && hasChoices(facts) && !listed) {
        return "the entry is a list now, and the value is not one of its choices";
    }
    if ((kept.kind == kEnable || entry.kind == kEnable) && !listed) {
        return kept.kind == kEnable ? "the entry is no switch any more" : "the entry is a switch now";
    }
    return {};
}

std::vector<UnplacedValue> carryValues(const std::vector<KeptValue>& values, ScriptRows& panel, CarryTo to) {
    std::vector<UnplacedValue> unplaced;
    Places places(panel.script);
    for (const KeptValue& kept : values) {
        const ptrdiff_t row = places.next(kept.id, kept.label, kept.set);
        if (row < 0) {
            unplaced.push_back({kept, "the script has no entry for it"});
            continue;
        }
        EntryModel& model = panel.row(static_cast<size_t>(row));
        const auto value = convertText(kept.value, kept.set, panel.script.set);
        std::string why = value.why();
        if (value) {
            KeptValue here = kept;
            here.value = *value;
            const CustomEntry& entry = panel.script.entries[static_cast<size_t>(row)];
            // The file may be in another character set, too.
            why = to == CarryTo::ChangedFile &&
                          utf8Text(entry.label, panel.script.set) != utf8Text(kept.label, kept.set) &&
                          definitionOf(panel.script, entry) != kept.definition
                      ? "the entry of this id is another one now, " +
                            utf8Text(quotedBeginning(entry.label), panel.script.set)
                      : carryRefusal(here, entry, model.facts());
        }
        if (why.empty()) {
            model.SetValueFromText(*value);
        } else {
            unplaced.push_back({kept, std::move(why)});
        }
    }
    return unplaced;
}

std::vector<UnplacedValue> lostWithoutId(const ScriptRows& before, const ScriptRows& after) {
    std::vector<UnplacedValue> lost;
    const std::vector<std::ptrdiff_t> places = matchEntries(before.script, after.script);
    for (size_t i = 0; i < before.size(); ++i) {
        const CustomEntry& entry = before.script.entries[i];
        if (!entry.hasValue() || entry.id >= 1) {
            continue;
        }
        const std::string& value = before.row(i).value();
        if (places[i] < 0 || utf8Text(after.row(static_cast<size_t>(places[i])).value(), after.script.set) !=
                                 utf8Text(value, before.script.set)) {
            lost.push_back({{entry.id, entry.kind, entry.label, value, before.script.set},
                            "entries without an id are not kept"});
        }
    }
    return lost;
}

std::string unplacedText(const std::vector<UnplacedValue>& values) {
    std::string text;
    for (const UnplacedValue& one : values) {
        text += utf8Text(one.kept.label, one.kept.set);
        if (one.kept.id >= 1) {
            text += " (id " + std::to_string(one.kept.id) + ")";
        }
        text += ": " + utf8Text(onOneLine(one.kept.value, "\\n"), one.kept.set) + " - " + one.reason + "\r\n";
    }
    return text;
}

std::string oldValuesText(const std::string& earlier, const CustomScript& script,
                          const std::vector<UnplacedValue>& values) {
    OldValues all;
    KeyedSet<int> newIds;
    KeyedSet<std::string_view> newLabels;
    for (const UnplacedValue& one : values) {
        const std::string value = onOneLine(one.kept.value, "\\n");
        std::string label = onOneLine(one.kept.label, "\\n").substr(0, kLabelKept);
        std::replace(label.begin(), label.end(), '\t', ' ');
        if (one.kept.id >= 1) {
            newIds.insert(one.kept.id);
        }
        if (one.kept.id < 1) {
            newLabels.insert(all.addLabelled(label, value));
        } else if (value.size() < kValueFileLine) {
            appendValueRecord(all.records, one.kept.id, one.kept.kind, value);
        } else {
            newLabels.insert(all.addLabelled(label + " (id " + std::to_string(one.kept.id) + ')', value));
        }
    }
    // The earlier file is in our own form: whole records, then pairs of lines that begin with "0". What a
    // user wrote there besides is passed over by readers too.
    std::vector<std::string_view> lines;
    for (size_t at = 0; at < earlier.size();) {
        const size_t end = std::min(earlier.find('\n', at), earlier.size());
        lines.push_back(std::string_view(earlier).substr(at, end - at));
        at = end + 1;
    }
    const auto isShort = [](std::string_view line) { return line.size() < kValueFileLine; };
    for (size_t i = 4; i < lines.size();) {
        const int id = markupInteger(lines[i]);
        if (lines[i] == "0" && i + 1 < lines.size()) {
            const size_t tab = std::min(lines[i + 1].find('\t'), lines[i + 1].size());
            if (!newLabels.contains(lines[i + 1].substr(0, tab))) {
                all.addLine(lines[i + 1]);
            }
            i += 2;
        } else if (id > 0 && i + 2 < lines.size() && isShort(lines[i]) && isShort(lines[i + 1]) &&
                   isShort(lines[i + 2])) {
            if (!newIds.contains(id)) {
                appendValueRecord(all.records, id, markupInteger(lines[i + 1]), lines[i + 2]);
            }
            i += 4;
        } else {
            if (!lines[i].empty()) {
                all.addLine(lines[i]);
            }
            ++i;
        }
    }
    return "1\n" + std::to_string(script.version) + '\n' + std::to_string(script.date) + "\n\n" +
           all.records + all.labelled;
}

Outcome keepOldValues(const CustomScript& script, const std::vector<UnplacedValue>& values) {
    if (values.empty()) {
        return {};
    }
    const std::string path = script.scriptPath + kLeftOverEnding;
    const auto earlier = osFiles().readWhole(path);
    if (!earlier) {
        const std::string why = osFiles().lastError();
        if (osFiles().exists(path)) {  // what it keeps must not be overwritten
            return Refusal{"Can't read '" + path + "': " + why};
        }
    }
    const std::string text = oldValuesText(earlier.value_or(""), script, values);
    const FileContent file{path, text, FileKind::Generated, std::nullopt, script.scriptPath};
    return safeWrite({&file, 1});
}

}  // namespace zoka
