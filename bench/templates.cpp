// The catalogue and the include block: loading against pugixml, growth, inserting against copying the file,
// how often files are read. Prints each figure, what it is measured against, the ratio and the ratio wanted.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "bench/Ratio.h"
#include "plugin/host/FolderHost.h"
#include "templates/CatalogueXml.h"
#include "templates/IncludeList.h"
#include "templates/ScriptManagerSession.h"
#include "tests/support/FaultyOsFiles.h"
#include "tests/support/TempFolder.h"

namespace zoka::bench {
namespace {

// Processor time in a process of its own, as the first thing that it does: a catalogue is loaded once in a process,
// into memory that the system has yet to hand out. Rounds in one process would measure caches and freed memory that
// fit the small catalogue and not the large one.
double millisecondsOfFresh(const std::function<void()>& work) {
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    const pid_t child = fork();
    if (child < 0) std::abort();
    if (child == 0) {
        const double result = processorMillisecondsOf(work);
        _exit(write(ends[1], &result, sizeof result) == sizeof result ? 0 : 1);
    }
    double result = 0;
    int status = 0;
    const bool read = ::read(ends[0], &result, sizeof result) == sizeof result;
    if (waitpid(child, &status, 0) != child || status != 0 || !read) std::abort();
    close(ends[0]);
    close(ends[1]);
    return result;
}

// Scripts as a suite ships them: a description, three needs, two sections with three actions.
CTemplateData catalogueOf(int scripts) {
    CTemplateData data;
    data.SetName("Benchmark");
    data.AddDirectory("code", ".\\templates");
    for (int i = 0; i < scripts; ++i) {
        const std::string number = std::to_string(i);
        CScriptElm script;
        script.m_id = "ID" + number;
        script.m_prefix = "p" + number + "_";
        script.m_directory = "code";
        script.m_filename = "script_" + number + ".kez";
        script.m_name = "Template script number " + number;
        script.m_type = i % 4 ? "USER" : "INTERNAL";
        script.m_vers = "3";
        script.m_date = "260101";
        script.m_engreq = {"6.1", "STD"};
        script.m_class = "Class " + std::to_string(i % 40);
        script.m_desc =
            "What script " + number + " does for the level, in two lines,\nwith a hint how it is used best.";
        for (int n = 1; n <= 3; ++n)
            script.m_needs.push_back("script_" + std::to_string((i + n) % scripts) + ".kez");
        script.m_sections = {
            {"Look",
             "",
             "",
             {{"act_a_" + number, script.m_filename, {}, "Moves the entity along its path."}}},
            {"Use",
             "",
             "",
             {{"act_b_" + number, script.m_filename, {"6.1", ""}, "Opens when the player is near."},
              {"act_c_" + number, script.m_filename, {}, "Closes again."}}}};
        data.AddScript(std::move(script));
    }
    return data;
}

void benchLoading(const test::TempFolder& folder) {
    constexpr int kFew = 10000, kMany = 100000;
    const auto file = [](int scripts) { return "t" + std::to_string(scripts) + ".xml"; };
    const auto load = [&](int scripts) {
        CTemplateData data;
        if (!loadCatalogue(data, folder.path(file(scripts)), nullptr) ||
            data.scripts().size() != static_cast<size_t>(scripts))
            std::abort();
    };
    for (const int scripts : {kFew, kMany}) {
        millisecondsOfFresh([&] { catalogueOf(scripts).WriteXML(folder.path(file(scripts))); });
        const auto pugi = [&] {
            pugi::xml_document document;
            if (!document.load_file(folder.native(file(scripts)).c_str())) std::abort();
        };
        const Pair least = leastOf(
            9, [&] { return millisecondsOfFresh([&] { load(scripts); }); },
            [&] { return millisecondsOfFresh(pugi); });
        printRatio(
            scripts == kMany ? "load a catalogue of 100,000 scripts" : "load a catalogue of 10,000 scripts",
            least, "pugixml parses it", 2.0);
    }
    // As many scripts in ten catalogues as in one.
    const Pair growth = leastOf(
        9, [&] { return millisecondsOfFresh([&] { load(kMany); }); },
        [&] {
            double all = 0;
            for (int i = 0; i < kMany / kFew; ++i) all += millisecondsOfFresh([&] { load(kFew); });
            return all;
        });
    printRatio("load 100,000 scripts, in one catalogue", growth, "in ten catalogues", 1.2);
}

void benchInserting(const test::TempFolder& folder) {
    std::string text = "// main\r\n";
    while (text.size() < 1000000)
        text += "var value_" + std::to_string(text.size()) + " = 1; // of the level\r\n";
    // One script that needs 999 others.
    std::string needs = "// needs:";
    for (int i = 0; i < 999; ++i) needs += " script_" + std::to_string(i) + ".kez";
    const std::string script = folder.write("all.kez", needs + "\r\n");
    const std::string main = folder.path("main.kez");
    const auto write = [&] { folder.write("main.kez", text); };

    write();
    int reads = 0, writes = 0;
    const auto count = [&](int, std::string_view op, const std::string& path) {
        if (op == "readWhole" && path == main) ++reads;
        if (op == "write") ++writes;
        return false;
    };
    const auto insert = [&] {
        const auto read = osFiles().readWhole(main);
        CLex lexer(read->data(), static_cast<long>(read->size()));
        if (InsertIncludes(lexer, main, script) != 1) std::abort();
    };
    {
        const test::FaultyOsFiles counting(count);
        insert();
    }
    // Read again under its lock, to see that nobody else has changed it meanwhile.
    std::printf("%-44s read %d, written %d times  wanted <= 2, 1  %s\n",
                "insert 1,000 includes: the main script is", reads, writes,
                verdict(reads <= 2 && writes == 1));

    FolderHost host(FolderHost::Folders{folder.path("copy"), folder.path(), "templates"});
    std::filesystem::create_directory(folder.native("copy"));
    double ours = 1e9, safe = 1e9, plain = 1e9;
    for (int i = 0; i < 15; ++i) {
        write();
        safe = std::min(safe, millisecondsOf([&] {
                            if (!host.CopyFileToFolder(main, folder.path("copy"))) std::abort();
                        }));
        plain = std::min(plain, millisecondsOf([&] {
                             std::ifstream in(folder.native("main.kez"), std::ios::binary);
                             std::ofstream(folder.native("plain"), std::ios::binary) << in.rdbuf();
                         }));
        ours = std::min(ours, millisecondsOf(insert));
    }
    printRatio("insert 1,000 includes into 1 MB", {ours, safe}, "the host's copy of it", 3.0);
    std::printf("%-44s %9.2f ms (not flushed to the disk)\n", "  for comparison, a plain copy", plain);
}

void benchManagement(const test::TempFolder& folder) {
    constexpr int kScripts = 1000;
    CTemplateData catalogue = catalogueOf(kScripts);
    std::filesystem::create_directory(folder.native("templates"));
    std::filesystem::create_directory(folder.native("game"));
    std::string main;
    for (const CScriptElm& script : catalogue.scripts()) {
        main += includeLine(script.m_filename);
        folder.write("templates/" + script.m_filename, "// ver: 2\r\n// date: 260101\r\n");
        folder.write("game/" + script.m_filename, "// ver: 1\r\n// date: 260101\r\n");
    }
    folder.write("game/main.kez", main + "\r\n");
    FolderHost host(FolderHost::Folders{folder.path("game"), folder.path(), "templates",
                                        folder.path("game") + "\\main.kez"});
    ScriptManagerSession session(host, catalogue, {}, userPrompt());
    std::unordered_map<std::string, int> reads;
    double list = 0, dependents = 0;
    int readsBefore = 0;
    {
        const test::FaultyOsFiles counting([&reads](int, std::string_view op, const std::string& path) {
            if (op == "readWhole") ++reads[path];
            return false;
        });
        ScriptUpdate update(host, catalogue, userPrompt());
        list = millisecondsOf([&] { update.FillUpdateList(false); });
        if (update.entries().size() != kScripts) std::abort();
        const int most = std::max_element(reads.begin(), reads.end(), [](const auto& a, const auto& b) {
                             return a.second < b.second;
                         })->second;
        std::printf("%-44s %9.2f ms  %zu files, each read at most %d times  wanted <= 1  %s\n",
                    "update list over 1,000 scripts", list, reads.size(), most, verdict(most == 1));
        session.open();
        readsBefore = counting.operations();
        std::vector<std::string> titles;
        dependents = millisecondsOf([&] {
            for (const IncludedScript& entry : session.included()) session.FindDependents(entry.text, titles);
        });
        const int operations = counting.operations() - readsBefore;
        std::printf("%-44s %9.2f ms  %d disk operations  wanted <= 0  %s\n",
                    "FindDependents of each of 1,000 scripts", dependents, operations,
                    verdict(operations == 0));
    }
}

void benchSearch() {
    const CTemplateData catalogue = catalogueOf(10000);
    double worst = 0;
    const double making = millisecondsOf([&] {
        ScriptSearch search(catalogue);
        std::string query;
        for (const char c : std::string("number 99 class")) {
            query += c;
            worst = std::max(worst, millisecondsOf([&] { search.find("<ALL>", query); }));
        }
    });
    std::printf("%-44s %9.2f ms  the slowest keystroke %.2f ms\n", "search 10,000 scripts, 15 keystrokes",
                making, worst);
}

}  // namespace
}  // namespace zoka::bench

int main() {
    using namespace zoka;
    {
        const test::TempFolder folder;
        bench::benchLoading(folder);
    }
    {
        const test::TempFolder folder;
        bench::benchInserting(folder);
    }
    {
        const test::TempFolder folder;
        bench::benchManagement(folder);
    }
    bench::benchSearch();
    return bench::g_allMet ? 0 : 1;
}
