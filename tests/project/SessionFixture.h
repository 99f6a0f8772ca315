// A project session on a small project, with a user who answers as told.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "J8ProjectManager/ProjectSession.h"
#include "tests/project/ProjectFiles.h"
#include "tests/support/ScriptedPrompt.h"

inline constexpr char kElements[] =
    "\t<Behavior proj_file=\"b.xml\"/>\n\t<Level name=\"harbour\" mapfile=\"h.zlb\">\n\t\t<Doc>by the "
    "sea</Doc>\n"
    "\t\t<Entity name=\"guard\" parent=\"g\">\n\t\t\t<Skill num=\"1\" value=\"5\"/>\n"
    "\t\t\t<Component name=\"body\">\n\t\t\t\t<Edit name=\"mass\" value=\"7\"/>\n\t\t\t</Component>\n"
    "\t\t</Entity>\n\t\t<Entity name=\"guard\"/>\n\t</Level>\n\t<Level name=\"a/b#1=%\"/>";
inline constexpr char kBehaviors[] =
    "<Behaviors><Component proj_file='c.xml'/><Behavior name='g'><Skill num='1' name='Health' type='int' "
    "value='9'>"
    "<Constraint type='min' value='0'/><Constraint type='max' value='10'/></Skill>"
    "<Skill num='2' name='Side' value='t'><Enum name='Town' value='t'/><Enum name='Fort' value='f'/></Skill>"
    "<Component name='body'><Edit name='solid' value='FALSE'/></Component></Behavior></Behaviors>";
inline constexpr char kComponents[] =
    "<Components><Component name='body'><Property name='mass' type='int' value='3' edit='true'/>"
    "<Property name='solid' type='bool' value='true' edit='true'/><Property name='fixed' type='string' "
    "value='x'/>"
    "</Component></Components>";

class ProjectSessionTest : public zoka::test::ProjectFiles {
protected:
    ProjectSessionTest() {
        folder.write("b.xml", kBehaviors);
        folder.write("c.xml", kComponents);
        path = project(kElements);
        session.writesStepReport = false;
        const zoka::Outcome opened = session.open(path);
        EXPECT_TRUE(opened) << opened.why();
    }
    bool set(const std::string& address, std::optional<std::string> value, bool typing = false) {
        const auto field = zoka::fieldAt(manager, address);
        const zoka::Outcome set =
            field ? session.setValue(*field, value, typing) : zoka::Refusal{field.why()};
        why = set.why();
        return bool(set);
    }
    std::string get(const std::string& address) {
        const auto field = zoka::fieldAt(manager, address);
        return field ? zoka::fieldValue(manager, *field).value_or("<none>") : "<" + field.why() + ">";
    }
    std::string all() const {
        std::string text;
        zoka::forEachField(manager,
                           [&](const zoka::ProjectField&, const std::string& address, const auto& value) {
                               text += address + "=" + value.value_or("<none>") + "\n";
                           });
        return text;
    }

    zoka::test::ScriptedPrompt prompt;
    zoka::ProjectSession session{manager, prompt};
    std::string path, why;
};
