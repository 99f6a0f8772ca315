#include "tests/customize/Edits.h"

#include "controls/EntryRules.h"

namespace zoka::test {
namespace {

std::string letters(std::minstd_rand& random, const char* set, size_t most) {
    const std::string all = set;
    std::string made(1 + random() % most, ' ');
    for (char& c : made) {
        c = all[random() % all.size()];
    }
    return made;
}

}  // namespace

std::string otherValue(const EntryModel& row, std::minstd_rand& random) {
    const EntryFacts& facts = row.facts();
    for (int tries = 0; tries < 20; ++tries) {
        std::string value;
        switch (facts.field) {
            case EntryField::Switch:
                return row.isOn() ? "0" : "1";
            case EntryField::Slider:
                value =
                    row.textAt(static_cast<int>(random() % (static_cast<unsigned>(row.sliderRange()) + 1)));
                break;
            case EntryField::IntField:
            case EntryField::FloatField:
                value = row.stepped(static_cast<int>(random() % 41) - 20);
                break;
            case EntryField::FileField:
                value = letters(random, "abc XYZ_09\xE9", 20) + ".wav";
                break;
            case EntryField::StringField:
                value = letters(random, "ab \t;<>='/\\:,\xC4%_\x80", 40) + letters(random, "x;/", 600);
                if (facts.lines > 1) {
                    value += "\r\n// entry: no\nlast";
                }
                if (facts.maxChars > 0) {
                    value.resize(std::min(value.size(), static_cast<size_t>(facts.maxChars)));
                }
                break;
            case EntryField::DropList:
                value = facts.options.empty() || random() % 3 == 0
                            ? letters(random, "abcXYZ019._", 12)
                            : facts.options[random() % facts.options.size()];
                break;
            default:
                return row.value();
        }
        value = row.asWritten(value);
        if (value != row.value() && entryRefusal(facts, value).empty()) {
            return value;
        }
    }
    return row.value();
}

}  // namespace zoka::test
