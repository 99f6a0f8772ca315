#include "templates/ScriptSearch.h"

#include <gtest/gtest.h>

#include "tests/templates/Scripts.h"

using namespace zoka;

// A catalogue's texts are in the set of its file, and what is typed is in that of the window or of the terminal.
TEST(ScriptSearch, FindsLettersWithAccentsInEitherSet) {
    for (const char* const title : {"Caf\xE9", "Caf\xC3\xA9"}) {
        CTemplateData data;
        data.AddScript(test::script("Fog", "fog.kez", "Weather"));
        data.AddScript(test::script(title, "cafe.kez", title));
        ScriptSearch search(data);
        for (const char* const query : {"caf\xE9", "CAF\xC9", "caf\xC3\xA9", "CAF\xC3\x89"}) {
            EXPECT_EQ(search.find("<ALL>", query), std::vector<std::uint32_t>{1}) << title << " " << query;
            EXPECT_EQ(search.find(query, ""), std::vector<std::uint32_t>{1}) << title << " " << query;
        }
    }
}

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
