#include "bench/xmlData.h"

#include <cstddef>

namespace zoka::bench {
namespace {

class Dice {
public:
    unsigned below(unsigned limit) {
        m_state = m_state * 1664525u + 1013904223u;
        return (m_state >> 16) % limit;
    }

private:
    unsigned m_state = 1;
};

const char* const kWords[] = {"door",  "guard", "opens", "slowly", "when",   "the",   "player", "enters",
                              "a",     "room",  "and",   "closes", "behind", "him",   "light",  "flickers",
                              "sound", "of",    "water", "bridge", "falls",  "after", "three",  "seconds"};

std::string words(Dice& dice, size_t length) {
    std::string text;
    while (text.size() < length) {
        text += kWords[dice.below(sizeof kWords / sizeof *kWords)];
        text += ' ';
    }
    text.resize(length - 1);
    return text + '.';
}

std::string number(unsigned value) {
    return std::to_string(value);
}

}  // namespace

std::string catalogueXml(int scripts) {
    Dice dice;
    std::string out =
        "<TavrixTemplate\n\tname=\"Default\"\n\ttype=\"KEZ\"\n\tversion=\"6\"\n\tdate=\"080303\">\n\n";
    for (const char* folder : {"main", "entity", "weapon", "camera"})
        out +=
            std::string("<Directory\n\ttype=\"") + folder + "\"\n\tpath=\"templates\\" + folder + "\"\n/>\n";
    const auto attribute = [&out](const char* indent, const char* name, const std::string& value) {
        out += std::string(indent) + name + "=\"" + value + "\"\n";
    };
    const auto element = [&out](const char* name, const std::string& text) {
        out += std::string("\t<") + name + ">" + text + "</" + name + ">\n";
    };
    for (int i = 0; i < scripts; ++i) {
        const std::string word = kWords[dice.below(sizeof kWords / sizeof *kWords)];
        const std::string id = word + "_" + std::to_string(i);
        out += "<Script\n";
        attribute("\t", "id", id);
        attribute("\t", "prefix", word);
        attribute("\t", "directory", "templates\\entity");
        attribute("\t", "filename", id + ".kez");
        attribute("\t", "name", "The " + word + " number " + std::to_string(i));
        attribute("\t", "type", "entity");
        attribute("\t", "vers", "1." + number(dice.below(20)));
        attribute("\t", "date", "0803" + number(10 + dice.below(20)));
        out += ">\n";
        element("class", "Doors and " + word + "s");
        const std::string text = words(dice, 166);
        element("desc", text.substr(0, 80) + " &lt;b&gt; &amp; &quot;c&quot; " + text.substr(80));
        for (unsigned needs = dice.below(3); needs-- > 0;)
            element("need", "script_" + number(dice.below(1000)));
        for (int section = 0; section < 2; ++section) {
            out += "\t<section\n";
            attribute("\t\t", "name", "Section " + std::to_string(section));
            out += "\t\t>\n";
            for (int action = 0; action < 2; ++action) {
                out += "\t<action\n";
                attribute("\t\t", "name", "Action " + std::to_string(action));
                attribute("\t\t", "filename", "action_" + number(dice.below(1000)) + ".kez");
                out += "\t\t>\n" + words(dice, 40) + "\t</action>\n";
            }
            out += "\n\t</section>\n";
        }
        out += "</Script>\n";
    }
    return out + "\n\n</TavrixTemplate>";
}

std::string projectXml(int levels, int entitiesPerLevel) {
    Dice dice;
    std::string out =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Project name=\"Bench\" date=\"1200000000\" "
        "vers=\"8.0303\">\n"
        "\t<Paths proj_file=\"C:\\games\\bench\" j8_file=\".\\templates\\xml\\\"/>\n";
    for (int level = 0; level < levels; ++level) {
        const std::string n = std::to_string(level);
        out += "\t<Level name=\"level " + n + "\" mapfile=\"level" + n + ".zlm\">\n\t\t<Doc>" +
               words(dice, 80) + "</Doc>\n";
        for (int entity = 0; entity < entitiesPerLevel; ++entity) {
            out += "\t\t<Entity name=\"" + std::string(kWords[dice.below(20)]) + "_" +
                   std::to_string(entity) + "\" parent=\"" + kWords[dice.below(20)] + "\">\n";
            for (int skill = 1; skill <= 5; ++skill)
                out += "\t\t\t<Skill num=\"" + std::to_string(skill) + "\" value=\"" +
                       number(dice.below(1000)) + "." + number(dice.below(100)) + "\"/>\n";
            for (int component = 0; component < 2; ++component) {
                out += "\t\t\t<Component name=\"component_" + number(dice.below(50)) + "\">\n";
                for (int edit = 0; edit < 2; ++edit)
                    out += "\t\t\t\t<Edit name=\"" + std::string(kWords[dice.below(20)]) +
                           "_speed\" value=\"" + number(dice.below(1000)) + "\"/>\n";
                out += "\t\t\t</Component>\n";
            }
            out += "\t\t</Entity>\n";
        }
        out += "\t</Level>\n";
    }
    return out + "</Project>\n";
}

}  // namespace zoka::bench
