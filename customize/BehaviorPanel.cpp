#include "customize/BehaviorPanel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "controls/EntryRules.h"
#include "customize/MarkupLine.h"
#include "plugin/host/EntityAccess.h"
#include "util/Lex.h"
#include "util/LexChars.h"
#include "util/OsFiles.h"
#include "util/Text.h"

namespace zoka {
namespace {

class BehaviorReader {
public:
    BehaviorReader(std::string_view block, int firstLine, BehaviorPanel& panel)
        : m_panel(panel), m_rest(block), m_line(firstLine) {}

    void run() {
        for (; !m_rest.empty(); ++m_line) {
            const size_t end = std::min(m_rest.find('\n'), m_rest.size());
            readLine(m_rest.substr(0, end));
            m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
        }
        checkValues();
    }

private:
    void readLine(std::string_view line) {
        line = withoutLeadingBlanks(line);
        if (!line.starts_with("//")) {
            return;
        }
        if (line.starts_with("///")) {
            take(m_keyword, trimmed(line.substr(3)), true);
            return;
        }
        const MarkupLine parts = splitMarkupLine(line);
        m_keyword = LookupCustomKeyword(parts.keyword);
        if (m_keyword == kNoKeyword) {
            reportUnknown(parts);
        }
        take(m_keyword, parts.text, false);
    }

    void take(int keyword, std::string_view text, bool continued) {
        std::vector<CustomEntry>& rows = m_panel.rows;
        switch (keyword) {
            case kTitle:
            case kImage:
            case kText:
            case kSection:
                add(keyword, -1, text);
                return;
            case kDesc:
                if (continued && !rows.empty()) {
                    rows.back().label.append(rows.back().label.empty() ? "" : " ").append(text);
                } else {
                    add(kDesc, -1, text);
                }
                return;
            case kHelp:
            case kEntryHelp:
                if (!rows.empty()) {
                    rows.back().help.append(rows.back().help.empty() ? "" : "\r\n").append(text);
                }
                return;
            case kCntl:
                if (!rows.empty()) {
                    readCntl(text, rows.back());
                }
                return;
            default:
                break;
        }
        if (keyword >= kFlag1 && keyword < kFlag1 + kEntityFlags) {
            declare(kFlag, kFlagIds + keyword - kFlag1 + 1, text);
        } else if (keyword >= kSkill1 && keyword < kSkill1 + kEntitySkills) {
            declare(kSkill, kSkillIds + keyword - kSkill1 + 1, text);
        }
    }

    CustomEntry& add(int kind, int id, std::string_view label) {
        CustomEntry& row = m_panel.rows.emplace_back();
        row.kind = kind;
        row.id = id;
        row.line = m_line;
        row.label = label;
        return row;
    }

    void declare(int kind, int id, std::string_view text) {
        LineTokens tokens(text, kBlanks);
        CustomEntry& row = add(kind, id, tokens.next());
        const std::string_view value = tokens.next();
        row.value = value.empty() ? "0" : value;
        ++m_panel.declaredCount;
        const auto [first, isNew] = m_declared.emplace(id, m_line);
        if (!isNew) {
            report(fieldName(row) + " stands in line " + std::to_string(first->second) +
                   " already; both rows show the same value");
        }
    }

    void readCntl(std::string_view text, CustomEntry& row) {
        std::string fault;
        if (!readControl(text, row, &fault)) {
            report("unknown control word in " + quotedBeginning(text) + "; it was ignored");
        } else if (!fault.empty()) {
            report(fault);
        } else if (row.kind != kSkill) {
            report("a control word suits a skill alone; that of " + quotedBeginning(row.label) +
                   " was ignored");
        }
    }

    void reportUnknown(const MarkupLine& line) {
        constexpr size_t longest = 15;  // of what is repeated whole
        const std::string_view word = numberedKeyword(line.keyword);
        if (!word.empty() && line.keyword.size() <= longest) {
            const int last = word == "skill" ? kEntitySkills : kEntityFlags;
            report("there is no " + std::string(line.keyword) + ": an entity's are numbered 1 to " +
                   std::to_string(last) + "; the line was passed over");
            return;
        }
        const int near = line.colon ? nearCustomKeyword(line.keyword) : kNoKeyword;
        if (near >= 0) {
            report(quotedBeginning(line.keyword) + " is no keyword; is \"" + customKeywordName(near) +
                   "\" meant? The line was taken as a comment");
        }
    }

    // Once the block is read: the control of a row stands below it.
    void checkValues() {
        for (const CustomEntry& row : m_panel.rows) {
            if (row.kind == kFlag && row.value != "0" && row.value != "1") {
                reportAt(row.line, "the default " + quotedBeginning(row.value) + " of the flag " +
                                       quotedBeginning(row.label) + " is neither 0 nor 1");
            } else if (row.kind == kSkill && !skillOfText(row.value)) {
                reportAt(row.line, "the default " + quotedBeginning(row.value) + " of " +
                                       quotedBeginning(row.label) + " is no number");
            } else if (row.kind == kSkill) {
                const EntryFacts facts = behaviorFacts(row, m_panel.set);
                const float value = *skillOfText(row.value);
                const double number = static_cast<double>(value);
                if (facts.limited && facts.minimum <= facts.maximum &&
                    (number < facts.minimum || number > facts.maximum)) {
                    reportAt(row.line, "the default " + row.value + " of " + quotedBeginning(row.label) +
                                           " lies outside its limits (" + allowedRange(facts) + ")");
                }
                for (const std::string& option : facts.options) {
                    if (!skillOfText(option)) {
                        reportAt(row.line, "the choice " + quotedBeginning(option) + " of " +
                                               quotedBeginning(row.label) +
                                               " is no number; no skill can hold it");
                    }
                }
            }
        }
        m_panel.findings.sortByLine();
    }

    void report(std::string what) { reportAt(m_line, std::move(what)); }
    void reportAt(int line, std::string what) { m_panel.findings.add(line, std::move(what)); }

    BehaviorPanel& m_panel;
    std::string_view m_rest;
    int m_line;
    int m_keyword = kNoKeyword;     // of the last line with two slashes
    std::map<int, int> m_declared;  // the line of each id's first row
};

// Flags have a box, whatever control is asked for; of a skill's choices and limits those that are there count.
void setSkillField(const CustomEntry& row, EntryFacts& facts) {
    facts.decimal = true;
    switch (row.controlKind) {
        case kDropList:
            facts.options = row.options;
            break;
        case kDropPair:
            facts.options = {"1", "0"};
            break;
        default:
            setLimits(row, facts);
            break;
    }
    facts.field = row.controlKind == kSliderControl ? EntryField::Slider
                  : facts.options.empty()           ? EntryField::FloatField
                                                    : EntryField::DropList;
}

// All texts that were read.
void takeToUtf8(BehaviorPanel& panel) {
    for (CustomEntry& row : panel.rows) {
        row.label = utf8Text(row.label, panel.set);
        row.help = utf8Text(row.help, panel.set);
    }
    MarkupFindings findings;
    for (const MarkupFinding& one : panel.findings.kept()) {
        findings.add(one.line, utf8Text(one.what, panel.set), one.ofValue);
    }
    panel.findings = std::move(findings);
    panel.set = TextSet::Utf8;
}

void clear(BehaviorPanel& panel) {
    panel.rows.clear();
    panel.declaredCount = 0;
    panel.findings = {};
}

}  // namespace

std::string BehaviorPanel::caption() const {
    const auto title =
        std::find_if(rows.rbegin(), rows.rend(), [](const CustomEntry& row) { return row.kind == kTitle; });
    return title == rows.rend() ? "" : title->label;
}

void LoadBehaviorPanel(BehaviorPanel& panel) {
    clear(panel);
    if (panel.scriptName.empty()) {
        return;
    }
    if (const auto text = osFiles().readWhole(panel.scriptName)) {
        readBehaviorMarkup(*text, panel);
    }
}

void readBehaviorMarkup(const std::string& script, BehaviorPanel& panel) {
    clear(panel);
    panel.set = textSetOf(script);
    const std::int64_t start = panel.blockStart, length = panel.blockLength;
    if (script.empty()) {
        return;
    }
    if (start < 0 || length < 0 || static_cast<std::int64_t>(script.size()) < start + length) {
        panel.findings.add(1, "the action's place (position " + std::to_string(start) + ", length " +
                                  std::to_string(length) +
                                  ") lies outside the script, which has changed since");
        return;
    }
    const auto lines = std::count(script.data(), script.data() + start, '\n');
    readActionBlock(std::string_view(script).substr(static_cast<size_t>(start), static_cast<size_t>(length)),
                    static_cast<int>(lines) + 1, panel);
    if (hasUtf16Mark(script)) {
        panel.findings.add(1, kUtf16Script);
    }
}

void readActionBlock(std::string_view block, int firstLine, BehaviorPanel& panel) {
    clear(panel);
    BehaviorReader(block, firstLine, panel).run();
    if (panel.declaredCount == 0) {
        addUndeclaredRows(panel);
    }
}

void addUndeclaredRows(BehaviorPanel& panel) {
    for (const auto* names : {&panel.defaultSkillNames, &panel.defaultFlagNames}) {
        for (const NumberedName& one : *names) {
            if (!convertText(one.name, TextSet::Utf8, panel.set)) {
                takeToUtf8(panel);
            }
        }
    }
    const auto add = [&panel](int kind, int id, const std::string& label, const char* value) {
        CustomEntry& row = panel.rows.emplace_back();
        row.kind = kind;
        row.id = id;
        row.label = *convertText(label, TextSet::Utf8, panel.set);
        row.value = value;
    };
    for (const NumberedName& skill : panel.defaultSkillNames) {
        add(kSkill, kSkillIds + skill.number, skill.name, "0.0");
    }
    for (const NumberedName& flag : panel.defaultFlagNames) {
        add(kFlag, kFlagIds + flag.number, flag.name, "0");
    }
    if (panel.defaultSkillNames.empty() && panel.defaultFlagNames.empty()) {
        add(kDesc, -1, "No Behavior Panel Defined.", "0.0");
        add(kDesc, -1, "Use \"Properties\" to change values.", "0.0");
    }
}

int skillNumber(const CustomEntry& row) {
    const int number = row.id - kSkillIds;
    return row.kind == kSkill && number >= 1 && number <= kEntitySkills ? number : 0;
}

int flagNumber(const CustomEntry& row) {
    const int number = row.id - kFlagIds;
    return row.kind == kFlag && number >= 1 && number <= kEntityFlags ? number : 0;
}

std::string fieldName(const CustomEntry& row) {
    if (const int skill = skillNumber(row)) {
        return "skill" + std::to_string(skill);
    }
    if (const int flag = flagNumber(row)) {
        return "flag" + std::to_string(flag);
    }
    return {};
}

EntryFacts behaviorFacts(const CustomEntry& row, TextSet set) {
    EntryFacts facts = plainFacts(row, set);
    if (row.kind == kFlag) {
        facts.field = EntryField::Switch;
    } else if (row.kind == kSkill) {
        setSkillField(row, facts);
    }
    if (facts.label.empty()) {
        facts.label = fieldName(row);
    }
    return facts;
}

std::string skillText(float value) {
    std::array<char, 400> digits{};
    const int length = CLex::FormatFloat(digits.data(), static_cast<double>(value));
    return std::string(digits.data(), static_cast<size_t>(length));
}

std::optional<float> skillOfText(std::string_view text) {
    const auto number = numberOf(text);
    const float value = static_cast<float>(number.value_or(0));
    const bool hasDigit = text.find_first_of("0123456789") != text.npos;
    return number && hasDigit && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

const char* skillRefusal(std::string_view text) {
    return numberOf(text) && text.find_first_of("0123456789") != text.npos
               ? "This number is too large."
               : "Only a number fits here: digits, one point, a sign in front.";
}

}  // namespace zoka
