#include "customize/CustomScript.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

#include "controls/EntryRules.h"
#include "controls/PictureFile.h"
#include "controls/TextSet.h"
#include "customize/CustomMarkup.h"
#include "customize/MarkupLine.h"
#include "util/KeyedHash.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/Text.h"

namespace zoka {
namespace {

std::string inQuotes(const std::string& text) {
    return '"' + text + '"';
}

bool isNumberKind(int kind) {
    return kind == kEntryNumEdit || kind == kEntryNumEditF;
}
bool hasFraction(double value) {
    return decimalsOf(value) > 0;
}

void checkEncoding(CustomScript& script) {
    if (hasUtf16Mark(script.text)) {
        script.findings.add(1, kUtf16ToCustomize);
    }
}

void checkIds(CustomScript& script) {
    const std::vector<CustomEntry>& entries = script.entries;
    std::vector<size_t> order;
    bool rising = true;
    for (size_t i = 0; i < entries.size(); ++i) {
        if (entries[i].id < 1) {
            continue;
        }
        rising = rising && (order.empty() || entries[order.back()].id < entries[i].id);
        order.push_back(i);
    }
    if (rising) {
        return;  // as they nearly always are
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return entries[a].id < entries[b].id; });
    for (size_t i = 1, first = 0; i < order.size(); ++i) {
        const CustomEntry &one = entries[order[first]], &other = entries[order[i]];
        if (one.id != other.id) {
            first = i;
        } else if (one.line != other.line) {  // lines under one switch share its id; that has been reported
            script.findings.add(other.line, "the id " + std::to_string(other.id) + " of " +
                                                inQuotes(other.label) + " is that of " + inQuotes(one.label) +
                                                " in line " + std::to_string(one.line) +
                                                " too; kept values reach the first one only");
        }
    }
}

// How the value ends its lines; without one of its own as the line in front of its definition does.
bool endsLinesInLf(const CustomScript& script, const CustomEntry& entry) {
    const size_t own = entry.value.find('\n');
    if (own != entry.value.npos) {
        return own == 0 || entry.value[own - 1] != '\r';
    }
    const size_t before = script.text.rfind('\n', entry.valueStart);
    return before != script.text.npos && (before == 0 || script.text[before - 1] != '\r');
}

// A control that belongs to another kind of entry changes nothing.
void checkControl(CustomScript& script, const CustomEntry& entry) {
    const bool list = entry.controlKind == kDropList || entry.controlKind == kDropPair;
    const bool drop = entry.kind >= kEntryEntity && entry.kind <= kEntryDrop;
    if ((list && !drop) || (entry.isLimited() && !isNumberKind(entry.kind))) {
        script.findings.add(entry.line, std::string(list ? "a list of choices" : "a spin or slider") +
                                            " is no control for " + inQuotes(entry.label) +
                                            ", whose value is " +
                                            (isNumberKind(entry.kind) ? "a number"
                                             : drop                   ? "one of a list"
                                                                      : "a text") +
                                            (list ? "; make it an entry_drop" : "") + ". It was ignored");
    }
}

bool lacksValue(const EntryFacts& list) {
    return hasChoices(list) && !isChoice(list, list.value);
}

std::string pictureFault(const std::string& name, const std::string& path) {
    if (name.empty()) {
        return "it has no name";
    }
    const auto bytes = osFiles().readWhole(path);
    if (!bytes) {
        return osFiles().exists(path) ? osFiles().lastError()
                                      : "there is no such file beside the script or in the template folder";
    }
    return decodePicture(*bytes) ? "" : "it is damaged, or no BMP, TGA or PCX";
}

}  // namespace

std::string quotedBeginning(std::string_view text) {
    constexpr size_t kShown = 60;
    return '"' + std::string(beginningOf(text, kShown)) + (text.size() > kShown ? "...\"" : "\"");
}

void MarkupFindings::sortByLine() {
    std::stable_sort(m_kept.begin(), m_kept.end(),
                     [](const MarkupFinding& a, const MarkupFinding& b) { return a.line < b.line; });
}

Outcome LoadCustomScript(const std::string& fileName, CustomScript& script, JobProgress* progress) {
    const std::string path = fileName.substr(0, kMaxScriptPath);
    if (path.empty()) {
        return Refusal{};
    }
    auto onDisk = osFiles().search(path);
    auto text = osFiles().readWhole(path);
    if (!text || text->size() > INT32_MAX - 2) {
        return Refusal{text ? "it is too large" : osFiles().lastError()};
    }
    CustomScript loaded;
    loaded.scriptPath = path;
    loaded.onDisk = std::move(onDisk);
    if (!parseCustomText(std::move(*text), loaded, progress)) {
        return Refusal{};  // stopped
    }
    if (loaded.tooLarge) {
        return Refusal{"it is too large to be customized: more than " +
                       std::to_string(loaded.entries.size()) + " entries don't fit into the editor's memory"};
    }
    script = std::move(loaded);
    return {};
}

bool parseCustomText(std::string fileText, CustomScript& script, JobProgress* progress) {
    script.text = std::move(fileText);
    script.fileLength = script.text.size();
    script.set = textSetOf(script.text);
    if (!script.text.ends_with("\r\n")) {
        script.text += "\r\n";
    }
    script.entries.clear();
    script.version = script.date = 0;
    script.findings = {};
    script.tooLarge = false;
    checkEncoding(script);
    const bool whole = ParseCustomMarkup(script.text, script, progress);
    checkCustomEntries(script);
    return whole;
}

void checkCustomValue(CustomScript& script, const CustomEntry& entry) {
    if (isNumberKind(entry.kind) && entry.isLimited() && entry.minimum <= entry.maximum) {
        const double value = numberOf(entry.value).value_or(0);
        if (value < entry.minimum || value > entry.maximum) {
            script.findings.add(entry.line,
                                "the value " + entry.value + " of " + inQuotes(entry.label) +
                                    " lies outside its limits (" + allowedRange(factsOf(script, entry)) +
                                    "); it was left as it is",
                                true);
        }
    } else if (entry.kind == kEntryDrop && lacksValue(factsOf(script, entry))) {
        script.findings.add(entry.line,
                            "the value " + inQuotes(entry.value) + " of " + inQuotes(entry.label) +
                                " is not among its choices; it was left as it is",
                            true);
    } else if (entry.kind == kEnable && entry.value == "1") {
        // Commented out, the line would be markup.
        size_t end = script.text.find('\n', entry.valueStart);
        std::string_view line =
            std::string_view(script.text).substr(entry.valueStart, end - entry.valueStart);
        const std::string commented = "//" + std::string(line.substr(0, 80));
        const std::string_view word = splitMarkupLine(commented).keyword;
        if (LookupCustomKeyword(word) >= 0) {
            script.findings.add(entry.line,
                                "the line below the switch " + inQuotes(entry.label) +
                                    " begins with the keyword " + inQuotes(std::string(word)) +
                                    ": once switched off it can't be switched on again",
                                true);
        }
    }
}

void checkCustomEntries(CustomScript& script) {
    checkIds(script);
    for (const CustomEntry& entry : script.entries) {
        checkCustomValue(script, entry);
        if (entry.hasValue() && entry.controlKind != kNoControl) {
            checkControl(script, entry);
        }
    }
    script.findings.sortByLine();
}

void checkPictures(CustomScript& script, const std::function<std::string(const std::string&)>& pathOf) {
    constexpr size_t kMostPictures = 200;  // read here; a script has a few
    KeyedMap<std::string, std::string> faults;
    for (const CustomEntry& entry : script.entries) {
        if (entry.kind != kImage || faults.size() == kMostPictures) {
            continue;
        }
        const auto [known, added] = faults.try_emplace(entry.label);
        if (added) {
            known->second = pictureFault(entry.label, pathOf(entry.label));
        }
        if (!known->second.empty()) {
            script.findings.add(entry.line,
                                "the picture " + inQuotes(entry.label) + " can't be shown: " + known->second);
        }
    }
    script.findings.sortByLine();
}

EntryFacts plainFacts(const CustomEntry& entry, TextSet set) {
    EntryFacts facts;
    facts.set = set;
    facts.label = entry.label;
    facts.help = entry.help;
    facts.value = entry.value;
    facts.field = entry.kind == kTitle     ? EntryField::Caption
                  : entry.kind == kImage   ? EntryField::Picture
                  : entry.kind == kSection ? EntryField::Heading
                                           : EntryField::Text;
    return facts;
}

void setLimits(const CustomEntry& entry, EntryFacts& facts) {
    facts.limited = entry.isLimited();
    if (facts.limited) {
        facts.minimum = entry.minimum;
        facts.maximum = entry.maximum;
        facts.step = std::max(0.0, entry.step);
    }
}

EntryFacts factsOf(const CustomScript& script, const CustomEntry& entry, const HostNames& hostNames) {
    EntryFacts facts = plainFacts(entry, script.set);
    if (entry.kind > kEnable && entry.valueStart > 0) {
        const char before = script.text[entry.valueStart - 1];
        // The span of a bare value begins behind a blank, "=" or a line end.
        facts.shape = before == '"'                  ? ValueShape::Quoted
                      : before == '<'                ? ValueShape::Bracketed
                      : entry.value.starts_with('<') ? ValueShape::WithBrackets
                                                     : ValueShape::Bare;
    }
    switch (entry.kind) {
        case kEnable:
            facts.field = EntryField::Switch;
            facts.shape = ValueShape::Switch;
            break;
        case kEntryNumEdit:
        case kEntryNumEditF:
            setLimits(entry, facts);
            // A whole number whose limits or step have fractions is one that happens to be whole.
            facts.decimal =
                hasFraction(facts.minimum) || hasFraction(facts.maximum) || hasFraction(facts.step);
            // One with a sign counts as a decimal number. It stays whole, and goes by whole steps.
            if (!facts.decimal && entry.value.find('.') == entry.value.npos) {
                facts.step = facts.step > 0 ? facts.step : 1;
            } else {
                facts.keepPoint = entry.kind == kEntryNumEditF && !facts.decimal;
            }
            facts.decimal = facts.decimal || entry.kind == kEntryNumEditF;
            facts.field = entry.controlKind == kSliderControl ? EntryField::Slider
                          : facts.decimal                     ? EntryField::FloatField
                                                              : EntryField::IntField;
            break;
        case kEntryChooseFile:
            facts.field = EntryField::FileField;
            break;
        case kEntryEntity:
        case kEntryPath:
        case kEntryDrop:
            facts.field = EntryField::DropList;
            facts.options = entry.controlKind == kDropPair ? dropPairOf(entry.value) : entry.options;
            if (entry.kind != kEntryDrop) {
                facts.hostNames = hostNames;
            }
            break;
        case kEntryStrEdit:
        case kEntryText:
            facts.field = EntryField::StringField;
            facts.lines = entry.textParam1;
            facts.maxChars = entry.textParam2;
            // However many lines are asked for, those that the value has are shown.
            if (facts.lines < 2 && entry.value.find('\n') != entry.value.npos) {
                facts.lines = 2;
            }
            facts.bareFeeds = facts.lines > 1 && endsLinesInLf(script, entry);
            break;
        default:
            break;
    }
    return facts;
}

std::vector<std::string> dropPairOf(std::string_view whole) {
    const std::string_view value = withoutBrackets(whole);
    constexpr std::string_view pairs[][2] = {{"yes", "no"}, {"on", "off"}, {"true", "false"}, {"1", "0"}};
    const std::string_view(*pair)[2] = &pairs[1];
    for (const auto& candidate : pairs) {
        if (equalNoCase(value, candidate[0]) || equalNoCase(value, candidate[1])) {
            pair = &candidate;
        }
    }
    const auto isUpper = [&](size_t i) { return i < value.size() && value[i] >= 'A' && value[i] <= 'Z'; };
    std::vector<std::string> made;
    for (const std::string_view word : *pair) {
        std::string text(word);
        for (size_t i = 0; i < text.size(); ++i) {
            if (isUpper(0) && (i == 0 || isUpper(1)) && text[i] >= 'a') {
                text[i] = static_cast<char>(text[i] - ('a' - 'A'));
            }
        }
        made.push_back(text);
    }
    return made;
}

}  // namespace zoka
