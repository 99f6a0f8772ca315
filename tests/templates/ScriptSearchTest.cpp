#include "templates/ScriptSearch.h"

#include <gtest/gtest.h>

#include "tests/templates/Scripts.h"

using namespace zoka;

TEST(ScriptSearch, NarrowsAsOneTypes) {
    CTemplateData data;
    const char* const scripts[][4] = {{"Fog", "fog.kez", "Weather", "Thick air"},
                                      {"Rain", "rain.kez", "weather", "Wet, with FOG"},
                                      {"Door", "swing.kez", "Doors", "Opens"},
                                      {"Night fog", "nf.kez", "Light", ""}};
    for (const auto& [name, file, className, desc] : scripts) {
        CScriptElm elm = test::script(name, file, className);
        elm.m_desc = desc;
        data.AddScript(elm);
    }
    ScriptSearch search(data);
    using Found = std::vector<std::uint32_t>;
    struct Row {
        const char *className, *query;
        Found found;
    };
    // In this order: each goes on from the last, or starts anew.
    for (const Row& row :
         {Row{"<ALL>", "", {0, 1, 2, 3}}, Row{"<ALL>", "f", {0, 1, 3}}, Row{"<ALL>", "fog", {0, 1, 3}},
          Row{"<ALL>", "fog ", {0, 1, 3}}, Row{"<ALL>", "fog we", {0, 1}}, Row{"<ALL>", "fog wet", {1}},
          Row{"<ALL>", "fog", {0, 1, 3}}, Row{"WEATHER", "fog", {0, 1}}, Row{"weather", "SWING", {}},
          Row{"<all>", "swing", {2}}, Row{"<ALL>", "doors opens", {2}}, Row{"<ALL>", "fogweather", {}},
          Row{"none", "", {}}, Row{"<all>", "  \t ", {0, 1, 2, 3}}}) {
        EXPECT_EQ(search.find(row.className, row.query), row.found) << row.query;
    }
}
