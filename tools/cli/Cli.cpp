#include "tools/cli/Cli.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "controls/EntryModel.h"
#include "controls/EntryRules.h"
#include "tools/cli/SuitePath.h"
#include "util/ConsolePrompt.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"
#include "util/SafeWrite.h"
#include "util/SaveResult.h"

namespace zoka::cli {

namespace {

// Where this much came, the end never will.
constexpr size_t kMostBytes = 0x7fffffff;

// All that comes from a stream, which `name` stands for in a complaint.
std::optional<std::string> readStream(std::FILE* stream, const std::string& name) {
    std::string bytes;
    std::array<char, 65536> block;
    while (const size_t got = std::fread(block.data(), 1, block.size(), stream)) {
        bytes.append(block.data(), got);
        if (bytes.size() > kMostBytes) {
            complain("Can't read " + name + ": more than 2 GiB came");
            return std::nullopt;
        }
    }
    if (!std::ferror(stream)) {
        return bytes;
    }
    complain("Can't read " + name + ": " + std::strerror(errno));
    return std::nullopt;
}

// A named pipe, such as the shell's <(...) is one.
bool isPipe(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_fifo(path, ignored);
}

}  // namespace

std::optional<std::string> readInput(const std::string& path) {
    workOn(path);
    if (isStandardStream(path)) {
        return readStream(stdin, "the standard input");
    }
    if (isPipe(path)) {
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(std::fopen(path.c_str(), "rb"),
                                                                   std::fclose);
        if (pipe) {
            return readStream(pipe.get(), "'" + path + "'");
        }
        complainUnreadable(path, std::strerror(errno));
        return std::nullopt;
    }
    std::optional<std::string> bytes = osFiles().readWhole(path);
    if (!bytes) {
        complainUnreadable(path, osFiles().lastError());
    }
    return bytes;
}

bool writeOutput(const std::string& path, std::string_view bytes, FileKind kind) {
    if (!isStandardStream(path)) {
        // Where it can't be made, the file can't either, and that is told with its name.
        const std::string folder(folderOf(osFiles().fullPath(path)));
        if (!folder.empty() && !osFiles().exists(folder)) {
            osFiles().makeFolders(folder);
        }
        const SafeWriteResult result = safeWrite(path, bytes, kind);
        if (!result) {
            complain(result.why());
        }
        return static_cast<bool>(result);
    }
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    return flushOutput();
}

ExitStatus rewriteFile(const std::string& path, const std::string& before, std::string_view bytes,
                       const std::function<ExitStatus()>& again) {
    if (bytes == before) {
        return ExitStatus::Done;
    }
    FileContent file = {path, bytes};
    file.expected = before;
    const SafeWriteResult result = safeWrite({&file, 1});
    if (result.changedMeanwhile) {
        return again();
    }
    if (!result) {
        complain(result.why());
    }
    return result ? ExitStatus::Done : ExitStatus::Failed;
}

bool flushOutput() {
    if (std::fflush(stdout) == 0 && !std::ferror(stdout)) {
        return true;
    }
    complain(std::string("Can't write the standard output: ") + std::strerror(errno));
    return false;
}

void tellSkipped(const OsListing& left, const std::string& folder) {
    for (const std::string& name : left.skipped) {
        complain(folder + ": " + name + " is skipped: a name with a backslash can't be told from a path");
    }
}

ExitStatus statusOf(const SaveResult& saved) {
    if (saved == SaveResult::Cancelled) {
        complain("not saved");
        return ExitStatus::Findings;
    }
    return saved == SaveResult::Failed ? ExitStatus::Failed : ExitStatus::Done;
}

std::string notOffered(const EntryModel& row, const std::string& value) {
    const std::string why = value == row.loadedValue() ? "" : choiceRefusal(row.facts(), value);
    return why.empty() ? why : why + "; --force sets it all the same.";
}

void complain(const std::string& text) {
    std::fprintf(stderr, "zoka: %s\n", shownText(withGivenPaths(text)).c_str());
}

void complainUnreadable(const std::string& path, const std::string& why) {
    complain("Can't read '" + path + "': " + why);
}

void printShown(const std::string& text) {
    const std::string shown = shownText(text);
    std::fwrite(shown.data(), 1, shown.size(), stdout);
}

void printPatch(const std::string& difference) {
    if (isTerminal(stdout)) {
        printShown(difference);
    } else {
        std::fwrite(difference.data(), 1, difference.size(), stdout);
    }
}

namespace {

std::string g_workedOn;

}  // namespace

void workOn(const std::string& path) {
    g_workedOn = path;
}

const std::string& workedOn() {
    return g_workedOn;
}

}  // namespace zoka::cli
