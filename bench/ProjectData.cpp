#include "bench/ProjectData.h"

#include <algorithm>

namespace zoka::bench {

void writeProject(const test::TempFolder& folder, const std::string& name, int levels, int entities,
                  int behaviors, int components, int properties) {
    const auto text = [](int n) { return std::to_string(n); };
    std::string project =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Project name=\"Large\" date=\"1\" "
        "vers=\"8.0303\">\n\t<Paths proj_file=\"" +
        folder.path() + "\\\" j8_file=\"" + folder.path() + "\\\"/>\n";
    for (int file = 0; file * 1000 < components; ++file) {
        std::string cmp = "<Components>\n";
        for (int i = file * 1000; i < std::min(components, (file + 1) * 1000); ++i) {
            cmp += "\t<Component name=\"component" + text(i) + "\">\n\t\t<Doc>What it is for.</Doc>\n";
            for (int p = 0; p < properties; ++p) {
                cmp += "\t\t<Property name=\"property" + text(p) + "\" type=\"int\" value=\"" + text(p) +
                       "\" edit=\"true\">\n\t\t\t<Doc>How much of it.</Doc>\n\t\t\t<Constraint type=\"min\" "
                       "value=\"0\"/>\n\t\t</Property>\n";
            }
            cmp += "\t</Component>\n";
        }
        folder.write(name + "c" + text(file) + ".xml", cmp + "</Components>\n");
    }
    for (int file = 0; file * 100 < behaviors; ++file) {
        const std::string behaviorFile = name + "b" + text(file) + ".xml";
        std::string beh = "<Behaviors>\n\t<Component proj_file=\"" + name + "c" +
                          text(file * 100 * components / behaviors / 1000) + ".xml\"/>\n";
        for (int i = file * 100; i < std::min(behaviors, (file + 1) * 100); ++i) {
            beh += "\t<Behavior name=\"behavior" + text(i) +
                   "\" class=\"Actor\" group=\"Enemies\">\n"
                   "\t\t<Doc>What it does.</Doc>\n\t\t<Skill num=\"1\" name=\"Health\" type=\"int\" "
                   "value=\"5\">\n"
                   "\t\t\t<Doc>How strong.</Doc>\n\t\t</Skill>\n\t\t<Component name=\"component" +
                   text(i) + "\"/>\n\t</Behavior>\n";
        }
        folder.write(behaviorFile, beh + "</Behaviors>\n");
        project += "\t<Behavior proj_file=\"" + behaviorFile + "\"/>\n";
    }
    for (int level = 0; level < levels; ++level) {
        project +=
            "\t<Level name=\"level" + text(level) + "\" mapfile=\"map.zlb\">\n\t\t<Doc>A level.</Doc>\n";
        for (int i = 0; i < entities; ++i) {
            project +=
                "\t\t<Entity name=\"entity" + text(i) + "\" parent=\"behavior" +
                text(i % std::max(behaviors, 1)) + "\">\n\t\t\t<Skill num=\"1\" value=\"" + text(i) +
                "\"/>\n\t\t\t<Component name=\"component" + text(i) +
                "\">\n\t\t\t\t<Edit name=\"property1\" value=\"7\"/>\n\t\t\t</Component>\n\t\t</Entity>\n";
        }
        project += "\t</Level>\n";
    }
    folder.write(name + ".xml", project + "</Project>\n");
}

}  // namespace zoka::bench
