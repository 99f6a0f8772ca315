// The line index over 100 MB of script text, against the plain way of making the same array.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "util/LineIndex.h"

namespace {

constexpr size_t kSize = 100'000'000;

// Lines as scripts have them: from none to some 70 characters, CR LF at the end, 24 bytes on average.
const std::string& scriptText() {
    static const std::string text = [] {
        const char* const lines[] = {
            "// entry: Density of the fog, in percent\r\n",
            "\r\n",
            "var density = 10;\r\n",
            "\tif (x > 5) {\r\n",
            "\t}\r\n",
            "// needs: sky.kez, light_.kez, wind.kez and what these need in their turn\r\n"};
        std::string made;
        made.reserve(kSize + 100);
        for (unsigned seed = 1; made.size() < kSize; seed = seed * 1664525u + 1013904223u)
            made += lines[(seed >> 16) % std::size(lines)];
        made.resize(kSize);
        return made;
    }();
    return text;
}

std::vector<const char*> startsByMemchr(const std::string& text) {
    std::vector<const char*> starts;
    const char* const end = text.data() + text.size();
    for (const char* p = text.data(); p;) {
        starts.push_back(p);
        p = static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(end - p)));
        if (p) ++p;
    }
    starts.push_back(nullptr);
    return starts;
}

void lineIndex(benchmark::State& state) {
    const std::string& text = scriptText();
    for (auto _ : state) benchmark::DoNotOptimize(zoka::LineIndex(text.data(), text.size()));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kSize));
}

void memchrLoop(benchmark::State& state) {
    const std::string& text = scriptText();
    for (auto _ : state) benchmark::DoNotOptimize(startsByMemchr(text));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(kSize));
}

void checkSameStarts() {
    const std::string& text = scriptText();
    const std::vector<const char*> starts = startsByMemchr(text);
    const zoka::LineIndex index(text.data(), text.size());
    bool same = index.lines() + 1 == starts.size();
    for (size_t i = 0; same && i < starts.size(); ++i) same = index.at(i) == starts[i];
    if (!same) {
        std::fprintf(stderr, "the line index and the memchr loop disagree\n");
        std::exit(1);
    }
}

// Keeps the real time of each benchmark, to print their ratio at the end.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.aggregate_name == "median")
                (run.run_name.function_name == "line index" ? ours : peer) = run.GetAdjustedRealTime();
    }
    double ours = 0, peer = 0;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    checkSameStarts();
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        benchmark::RegisterBenchmark(name, run)->Unit(benchmark::kMillisecond)->Repetitions(5)->UseRealTime();
    };
    add("memchr loop", memchrLoop);
    add("line index", lineIndex);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    if (reporter.ours > 0 && reporter.peer > 0)
        std::printf(
            "line index, 100 MB: ours %.1f ms, memchr loop %.1f ms, %.2f times as fast (wanted: 1.00)\n",
            reporter.ours, reporter.peer, reporter.peer / reporter.ours);
}
