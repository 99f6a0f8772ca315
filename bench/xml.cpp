// The XML layer against pugixml and tinyxml2 over files as the product has them: reading, memory, writing,
// lookups, freeing; and how its own figures grow with the file. Prints our figure, each peer's, the ratio and
// the ratio wanted.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bench/xmlData.h"
#include "bench/xmlEngines.h"

namespace zoka::bench {
namespace {

// Processor time of this thread, so that other work on the machine counts as little as can be.
double now() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <class Work>
double secondsOf(Work work) {
    const double start = now();
    work();
    return now() - start;
}

[[noreturn]] void die(const std::string& what) {
    std::fprintf(stderr, "bench_xml: %s\n", what.c_str());
    std::exit(1);
}

struct Row {
    const char* name;
    double wantedPugi, wantedTiny;  // times as fast; for memory the share at most
};
constexpr Row kWarm = {"parse, warm heap", 1.0, 4.0};
constexpr Row kFresh = {"parse, fresh process", 1.15, 3.2};
constexpr Row kPeak = {"peak memory", 0.85, 0.52};
constexpr Row kWrite = {"formatted writing", 1.6, 4.5};
constexpr Row kChildren = {"children by name", 1.0, 2.5};
constexpr Row kAttributes = {"attributes by name", 1.25, 1.9};
constexpr Row kParseAttributes = {"parse, then attributes", 1.15, 3.3};
constexpr Row kFree = {"free, fresh process", 1.0, 5.0};
constexpr const Row* kRows[] = {&kWarm,       &kFresh,           &kPeak, &kWrite, &kChildren,
                                &kAttributes, &kParseAttributes, &kFree};

// A text with the walks over it.
struct Data {
    std::string name;
    std::string text;
    std::string path;  // the same in a file
    bool isCatalogue;
};

// --- the walks, the same for every engine; what they give must be equal ---

template <class Engine>
long walkChildren(const typename Engine::Document& document, bool isCatalogue) {
    long found = 0;
    const auto count = [&](const auto&) { ++found; };
    if (isCatalogue) {
        Engine::children(Engine::root(document, "TavrixTemplate"), "Script", [&](const auto& script) {
            for (const char* tag : {"class", "desc", "need"}) Engine::children(script, tag, count);
            Engine::children(script, "section",
                             [&](const auto& section) { Engine::children(section, "action", count); });
        });
        return found;
    }
    Engine::children(Engine::root(document, "Project"), "Level", [&](const auto& level) {
        Engine::children(level, "Entity", [&](const auto& entity) {
            Engine::children(entity, "Skill", count);
            Engine::children(entity, "Component",
                             [&](const auto& component) { Engine::children(component, "Edit", count); });
        });
    });
    return found;
}

template <class Engine>
long walkAttributes(const typename Engine::Document& document, bool isCatalogue) {
    long sum = 0;
    const auto add = [&](const auto& node, std::initializer_list<const char*> names) {
        for (const char* name : names) sum += *Engine::attribute(node, name);
    };
    if (isCatalogue) {
        Engine::children(Engine::root(document, "TavrixTemplate"), "Script", [&](const auto& script) {
            add(script, {"id", "prefix", "directory", "filename", "name", "type", "vers", "date"});
        });
        return sum;
    }
    Engine::children(Engine::root(document, "Project"), "Level", [&](const auto& level) {
        Engine::children(level, "Entity", [&](const auto& entity) {
            add(entity, {"name", "parent"});
            Engine::children(entity, "Skill", [&](const auto& skill) { add(skill, {"num", "value"}); });
        });
    });
    return sum;
}

// --- fresh processes: this program calls itself ---

struct Fresh {
    double parse = 0, free = 0;  // seconds
    long peak = 0;               // KB
};

std::string readFile(const char* path) {
    std::string text;
    std::FILE* file = std::fopen(path, "rb");
    if (!file) die(std::string("cannot read ") + path);
    char block[65536];
    while (const size_t got = std::fread(block, 1, sizeof block, file)) text.append(block, got);
    std::fclose(file);
    return text;
}

// KB. Of this program alone: getrusage would tell of the parent before exec, too.
long peakOfProcess() {
    const std::string status = readFile("/proc/self/status");
    const size_t at = status.find("VmHWM:");
    if (at == status.npos) die("no VmHWM in /proc/self/status");
    return std::atol(status.c_str() + at + 6);
}

template <class Engine>
int childRun(const std::string& mode, const char* path) {
    Fresh result;
    if (mode == "peak") {
        const auto document = Engine::parseFile(path);
        result.peak = peakOfProcess();
    } else {
        const std::string text = readFile(path);
        typename Engine::Document document{};
        result.parse = secondsOf([&] { document = Engine::parse(text); });
        result.free = secondsOf([&] { document = {}; });
    }
    std::printf("%.9f %.9f %ld\n", result.parse, result.free, result.peak);
    return 0;
}

Fresh runChild(const char* engine, const char* mode, const Data& data) {
    int ends[2];
    if (pipe(ends) != 0) die("no pipe");
    const pid_t child = fork();
    if (child < 0) die("no process");
    if (child == 0) {
        dup2(ends[1], 1);
        close(ends[0]);
        execl("/proc/self/exe", "bench_xml", "--child", engine, mode, data.path.c_str(), nullptr);
        _exit(127);
    }
    close(ends[1]);
    std::FILE* in = fdopen(ends[0], "r");
    Fresh result;
    const int got = std::fscanf(in, "%lf %lf %ld", &result.parse, &result.free, &result.peak);
    std::fclose(in);
    int status = 0;
    waitpid(child, &status, 0);
    if (got != 3 || status != 0) die(std::string("the child process failed: ") + engine);
    return result;
}

int childMain(char** argv) {
    const std::string engine = argv[0];
    if (engine == Zoka::name) return childRun<Zoka>(argv[1], argv[2]);
    if (engine == Pugi::name) return childRun<Pugi>(argv[1], argv[2]);
    return childRun<Tiny>(argv[1], argv[2]);
}

// --- running ---

std::map<std::string, double> best;  // "row/engine": the least figure

// Registers one measurement: `measure` gives seconds. Google Benchmark repeats it, in random turn with the
// others.
void add(const Row& row, const char* engine, int repetitions, std::function<double()> measure) {
    const std::string name = std::string(row.name) + "/" + engine;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [name, measure](benchmark::State& state) {
                                     for (auto _ : state) {
                                         const double seconds = measure();
                                         state.SetIterationTime(seconds);
                                         double& least = best.try_emplace(name, seconds).first->second;
                                         least = std::min(least, seconds);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(repetitions)
        ->Unit(benchmark::kMillisecond);
}

template <class Engine>
void addEngine(const Data& data, int repetitions) {
    const auto document = std::make_shared<typename Engine::Document>(Engine::parse(data.text));
    const auto parse = [&data](bool thenAttributes) {
        typename Engine::Document parsed{};
        return secondsOf([&] {
            parsed = Engine::parse(data.text);
            if (thenAttributes) benchmark::DoNotOptimize(walkAttributes<Engine>(parsed, data.isCatalogue));
        });
    };
    add(kWarm, Engine::name, repetitions, [=] { return parse(false); });
    add(kParseAttributes, Engine::name, repetitions, [=] { return parse(true); });
    add(kWrite, Engine::name, repetitions, [=] {
        typename Engine::Text text{};
        return secondsOf([&] { text = Engine::write(*document); });
    });
    add(kChildren, Engine::name, repetitions, [=, &data] {
        return secondsOf(
            [&] { benchmark::DoNotOptimize(walkChildren<Engine>(*document, data.isCatalogue)); });
    });
    add(kAttributes, Engine::name, repetitions, [=, &data] {
        return secondsOf(
            [&] { benchmark::DoNotOptimize(walkAttributes<Engine>(*document, data.isCatalogue)); });
    });
    add(kFresh, Engine::name, repetitions, [&data] {
        const Fresh fresh = runChild(Engine::name, "parse", data);
        double& least =
            best.try_emplace(std::string(kFree.name) + "/" + Engine::name, fresh.free).first->second;
        least = std::min(least, fresh.free);
        return fresh.parse;
    });
    best[std::string(kPeak.name) + "/" + Engine::name] =
        static_cast<double>(runChild(Engine::name, "peak", data).peak);
}

// Keeps Google Benchmark from printing each of the many repetitions.
class Quiet : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>&) override {}
};

int missed = 0;

const char* judge(bool met) {
    missed += !met;
    return met ? "met" : "MISSED";
}

void compare(const Data& data) {
    // Every engine must find the same.
    const auto pugi = Pugi::parse(data.text);
    const auto tiny = Tiny::parse(data.text);
    {
        const XMLNode ours = Zoka::parse(data.text);
        if (ours.isEmpty() || !pugi || !tiny) die("an engine does not read the data");
        const long children = walkChildren<Zoka>(ours, data.isCatalogue);
        const long attributes = walkAttributes<Zoka>(ours, data.isCatalogue);
        if (children != walkChildren<Pugi>(pugi, data.isCatalogue) ||
            children != walkChildren<Tiny>(tiny, data.isCatalogue) ||
            attributes != walkAttributes<Pugi>(pugi, data.isCatalogue) ||
            attributes != walkAttributes<Tiny>(tiny, data.isCatalogue))
            die("the engines do not agree on the data");
    }
    best.clear();
    const int repetitions = data.text.size() > 30'000'000 ? 9 : 25;
    addEngine<Zoka>(data, repetitions);
    addEngine<Pugi>(data, repetitions);
    addEngine<Tiny>(data, repetitions);
    Quiet quiet;
    benchmark::RunSpecifiedBenchmarks(&quiet);
    benchmark::ClearRegisteredBenchmarks();

    std::printf("\n%s, %.1f MB\n", data.name.c_str(), static_cast<double>(data.text.size()) / 1e6);
    std::printf("%-24s %10s %10s %7s %7s        %10s %7s %7s\n", "", "ours", "pugixml", "ratio", "wanted",
                "tinyxml2", "ratio", "wanted");
    for (const Row* row : kRows) {
        const auto figure = [&](const char* engine) { return best[std::string(row->name) + "/" + engine]; };
        const double ours = figure(Zoka::name), pugis = figure(Pugi::name), tinys = figure(Tiny::name);
        const bool memory = row == &kPeak;
        const double scale = memory ? 1.0 / 1024 : 1e3;
        const double toPugi = memory ? ours / pugis : pugis / ours;
        const double toTiny = memory ? ours / tinys : tinys / ours;
        const auto met = [memory](double ratio, double wanted) {
            return memory ? ratio <= wanted : ratio >= wanted;
        };
        const char* const unit = memory ? "MB" : "ms";
        std::printf("%-24s %7.2f %s %7.2f %s %7.2f %s%5.2f %-6s %7.2f %s %7.2f %s%5.2f %s\n", row->name,
                    ours * scale, unit, pugis * scale, unit, toPugi, memory ? "<=" : ">=", row->wantedPugi,
                    judge(met(toPugi, row->wantedPugi)), tinys * scale, unit, toTiny,
                    memory ? "<=" : ">=", row->wantedTiny, judge(met(toTiny, row->wantedTiny)));
    }
}

// Time a script in files of different sizes: what is linear stays the same.
void growth() {
    constexpr double wanted = 1.15;
    std::printf("\n%-24s %12s %12s\n", "growth, us a script", "parse", "write");
    double first[2] = {}, last[2] = {};
    for (const int scripts : {1000, 10000, 100000}) {
        const std::string text = catalogueXml(scripts);
        const XMLNode document = Zoka::parse(text);
        double least[2] = {1e9, 1e9};
        for (int i = 0; i < std::max(50, 200000 / scripts); ++i) {
            XMLNode parsed;
            least[0] = std::min(least[0], secondsOf([&] { parsed = Zoka::parse(text); }));
            Zoka::Text written;
            least[1] = std::min(least[1], secondsOf([&] { written = Zoka::write(document); }));
        }
        for (int what = 0; what < 2; ++what) {
            last[what] = least[what] / scripts * 1e6;
            if (scripts == 1000) first[what] = last[what];
        }
        std::printf("%-24d %12.3f %12.3f\n", scripts, last[0], last[1]);
    }
    std::printf("%-24s %7.2f %s %7.2f %s (wanted: <= %.2f)\n", "100,000 against 1,000", last[0] / first[0],
                judge(last[0] / first[0] <= wanted), last[1] / first[1], judge(last[1] / first[1] <= wanted),
                wanted);
}

void childrenByIndex() {
    constexpr int count = 10000;
    constexpr double wanted = 2.0;
    std::string text = "<a>";
    for (int i = 0; i < count; ++i) text += i % 2 ? "<Script id='x'/><b/>" : "<Script id='x'/>";
    const XMLNode root = XMLNode::parseText((text + "</a>").c_str(), "a");
    double least = 1e9;
    int found = 0;
    for (int round = 0; round < 20; ++round)
        least = std::min(least, secondsOf([&] {
                             for (found = 0; !root.getChild("script", found).isEmpty();) ++found;
                         }));
    if (found != count) die("getChild by index finds something else");
    std::printf("\ngetChild(name, i) over %d children: %.3f ms (wanted: <= %.1f) %s\n", count, least * 1e3,
                wanted, judge(least * 1e3 <= wanted));
}

Data dataOf(const char* name, std::string text, bool isCatalogue) {
    char path[] = "/tmp/bench_xml_XXXXXX";
    const int file = mkstemp(path);
    if (file < 0 || write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        die("no temporary file");
    close(file);
    return {name, std::move(text), path, isCatalogue};
}

}  // namespace
}  // namespace zoka::bench

int main(int argc, char** argv) {
    using namespace zoka::bench;
    if (argc == 5 && std::strcmp(argv[1], "--child") == 0) return childMain(argv + 2);
    // A warm heap stays warm for every engine alike: nothing goes back to the system between two runs.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);

    std::vector<char*> arguments(argv, argv + argc);
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    arguments.push_back(interleaving);
    argc = static_cast<int>(arguments.size());
    benchmark::Initialize(&argc, arguments.data());
    childrenByIndex();
    growth();
    for (const bool isCatalogue : {false, true}) {
        const Data data = isCatalogue
                              ? dataOf("catalogue of 100,000 scripts", catalogueXml(100000), true)
                              : dataOf("project file, 50 levels of 200 entities", projectXml(50, 200), false);
        compare(data);
        unlink(data.path.c_str());
    }
    std::printf("\n%d missed\n", missed);
    return 0;
}
