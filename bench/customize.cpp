// Reading the markup of scripts and saving them, against a plain walk over the lines and a plain copy.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "bench/Ratio.h"
#include "customize/CustomMarkup.h"
#include "customize/CustomScript.h"
#include "customize/CustomizeSession.h"
#include "plugin/host/FolderHost.h"
#include "util/OsFiles.h"
#include "util/SafeWrite.h"
#include "util/UserPrompt.h"

namespace {

// About 200 bytes an entry: 1 MB holds some 5,000.
std::string scriptText(int entries) {
    std::string text = "// title: Measured\r\n// ver: 3\r\n// date: 260801\r\n\r\n";
    for (int i = 1; i <= entries; ++i) {
        const std::string n = std::to_string(i);
        if (i % 25 == 1) text += "// section: Part " + n + "\r\n";
        switch (i % 5) {
            case 0:
                text +=
                    "// enable: Show the lamp of the harbour\r\n// help: Off while nobody is near.\r\n// "
                    "id: " +
                    n + "\r\n" + (i % 2 ? "//" : "") + "define LAMP_" + n + ";\r\n";
                break;
            case 1:
                text += "// entry: Distance (m)\r\n// help: From the lamp to the wall.\r\n// id: " + n +
                        "\r\n// cntl: slider 0 100 0.5\r\nvar lamp_distance_" + n + " = 12.5;\r\n";
                break;
            case 2:
                text += "// entry: Sound\r\n// id: " + n + "\r\nsound lamp_sound_" + n + " = <hum.wav>;\r\n";
                break;
            case 3:
                text += "// entry_drop: Colour\r\n// id: " + n +
                        "\r\n// cntl: drop_list red green blue\r\nstring colour_" + n + " = \"green\";\r\n";
                break;
            default:
                text += "// entry: Count\r\n// id: " + n + "\r\nvar count_" + n + " = 4;\r\n";
        }
        text += "\r\nfunction lamp_" + n + "()\r\n{\r\n    count_" + n + " = max(1, count_" + n +
                ");\r\n    wait(1);\r\n}\r\n\r\n";
    }
    return text;
}

constexpr int kEntriesPerMB = 5000;

// Of 1, 10 or 100 MB.
const std::string& textOf(int64_t mb) {
    static std::map<int64_t, std::string> texts;
    std::string& text = texts[mb];
    if (text.empty()) text = scriptText(static_cast<int>(mb) * kEntriesPerMB);
    return text;
}
const std::string& text1MB() {
    return textOf(1);
}

void bytes(benchmark::State& state, size_t size) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}

// Each size must take its time per byte, as the plain walk does: a list of entries that is moved about, or a
// look back over the text, would show in the larger ones.
size_t memchrLines(const std::string& text) {
    size_t lines = 0;
    const char* const end = text.data() + text.size();
    for (const char* p = text.data(); p < end; ++lines) {
        p = static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(end - p)));
        if (!p) break;
        ++p;
    }
    return lines;
}

void walkLines(benchmark::State& state) {
    const std::string& text = textOf(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(memchrLines(text));
    bytes(state, text.size());
}
BENCHMARK(walkLines)->Arg(1)->Arg(10)->Arg(100);

void parse(int64_t mb) {
    zoka::CustomScript script;
    zoka::ParseCustomMarkup(textOf(mb), script);
    if (script.entries.size() < static_cast<size_t>(mb * kEntriesPerMB)) std::abort();
}

void parseMarkup(benchmark::State& state) {
    for (auto _ : state) parse(state.range(0));
    bytes(state, textOf(state.range(0)).size());
}
BENCHMARK(parseMarkup)->Arg(1)->Arg(10)->Arg(100);

// The script with its rows, as opening the panel needs it.
void loadRows(benchmark::State& state) {
    const std::string& text = text1MB();
    for (auto _ : state) {
        zoka::ScriptRows panel;
        zoka::parseCustomText(text, panel.script);
        panel.makeRows();
    }
    bytes(state, text.size());
}
BENCHMARK(loadRows);

// Saving, against copies of the same file: one that only hands the bytes to the system, and one that waits,
// as saving does, until they are on the disk. The second is the measure.
struct SaveFixture {
    std::string folder = zoka::systemFiles().currentFolder();
    std::string path, copy;
    explicit SaveFixture(const std::string& name = "bench_customize")
        : path(folder + "\\" + name + ".kez"), copy(folder + "\\" + name + ".copy") {
        zoka::safeWrite(path, text1MB());
    }
    ~SaveFixture() {
        for (const std::string& file : {path, copy, path + ".zoka"}) zoka::systemFiles().deleteFile(file);
    }
    void copyFile(bool flush) {
        const auto text = zoka::systemFiles().readWhole(path);
        const auto out = zoka::systemFiles().openForWriting(copy, zoka::OsOpen::Truncate);
        if (!text || !out || !out->write(*text) || (flush && !out->flush()) || !out->close()) std::abort();
    }
};

void copyOnly(benchmark::State& state) {
    SaveFixture files;
    for (auto _ : state) files.copyFile(false);
}
BENCHMARK(copyOnly)->UseRealTime();

void copyToDisk(benchmark::State& state) {
    SaveFixture files;
    for (auto _ : state) files.copyFile(true);
}
BENCHMARK(copyToDisk)->UseRealTime();

// Script and value file, both on the disk at the end.
class Saving {
public:
    Saving() {
        if (!m_session.open(m_files.path)) std::abort();
    }
    void changeAndSave() {
        ++m_round;
        for (size_t i = 0; i < m_session.size(); i += 50) {
            const int kind = m_session.entry(i).kind;
            if (kind == zoka::kEntryNumEdit) change(i, std::to_string(m_round % 1000 + 5));
            if (kind == zoka::kEnable) change(i, m_session.row(i).isOn() ? "0" : "1");
        }
        if (m_session.save() != zoka::SaveResult::Saved) std::abort();
    }

private:
    void change(size_t i, const std::string& value) {
        if (!m_session.setValue(i, value)) std::abort();
    }

    SaveFixture m_files;
    zoka::FolderHost m_host{{.project = m_files.folder, .suite = m_files.folder}};
    zoka::CustomizeSession m_session{m_host, zoka::userPrompt()};
    int m_round = 0;
};

void save(benchmark::State& state) {
    Saving saving;
    for (auto _ : state) saving.changeAndSave();
}
BENCHMARK(save)->UseRealTime();

void ratios() {
    using namespace zoka::bench;
    // Some seconds each: another machine's work on the same processor comes in bursts of up to one, and takes more from
    // the reading of markup than from the plain walk.
    constexpr int kParses = 6001, kSaves = 1001;
    const auto parseTime = [] { return millisecondsOf([] { parse(1); }); };
    const auto walkTime = [] {
        return millisecondsOf([] { benchmark::DoNotOptimize(memchrLines(text1MB())); });
    };
    printRatio("markup of 1 MB", leastOf(kParses, parseTime, walkTime), "memchr loop over its lines", 4.0);
    Saving saving;
    SaveFixture copies("bench_customize_copied");
    const auto saveTime = [&] { return millisecondsOf([&] { saving.changeAndSave(); }); };
    const auto copyTime = [&] { return millisecondsOf([&] { copies.copyFile(true); }); };
    printRatio("save a script of 1 MB", leastOf(kSaves, saveTime, copyTime), "copy it, on the disk", 2.0);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    ratios();
    return zoka::bench::g_allMet ? 0 : 1;
}
