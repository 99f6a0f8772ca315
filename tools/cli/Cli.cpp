#include "tools/cli/Cli.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "util/OsFiles.h"
#include "util/SafeWrite.h"

namespace zoka::cli {

void setExample(CLI::App& command, const std::string& line) {
    command.footer("Example:\n  " + line +
                   "\n\nExit codes:\n"
                   "  0  done\n"
                   "  1  findings: something is wrong with the content\n"
                   "  2  usage: the arguments make no sense, nothing was done\n"
                   "  3  could not do it: a file can't be read or written");
}

std::optional<std::string> readInput(const std::string& path) {
    if (!isStandardStream(path)) {
        std::optional<std::string> bytes = osFiles().readWhole(path);
        if (!bytes) complain("cannot read " + path + ": " + osFiles().lastError());
        return bytes;
    }
    std::string bytes;
    std::array<char, 65536> block;
    while (const size_t got = std::fread(block.data(), 1, block.size(), stdin))
        bytes.append(block.data(), got);
    if (!std::ferror(stdin)) return bytes;
    complain(std::string("cannot read the standard input: ") + std::strerror(errno));
    return std::nullopt;
}

bool writeOutput(const std::string& path, std::string_view bytes) {
    if (!isStandardStream(path)) {
        const SafeWriteResult result = safeWrite(path, bytes);
        if (!result) complain(result.error);
        return static_cast<bool>(result);
    }
    if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0)
        return true;
    complain(std::string("cannot write the standard output: ") + std::strerror(errno));
    return false;
}

void complain(const std::string& text) {
    std::fprintf(stderr, "zoka: %s\n", text.c_str());
}

}  // namespace zoka::cli
