#include "tests/cli/Tool.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace fs = std::filesystem;

namespace {

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

std::string quoted(fs::path path) {
    return '"' + path.make_preferred().string() + '"';
}

// The exit status of a shell command, or -1 when it was ended from outside.
int shell(const std::string& command) {
#ifdef _WIN32
    return std::system(('"' + command + '"').c_str());  // cmd takes the outer quotes off
#else
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

}  // namespace

ToolFolder::ToolFolder() {
    const fs::path base = fs::temp_directory_path() / ("zoka-cli-" + std::to_string(std::random_device()()));
    m_folder = base / "work";
    m_streams = base / "streams";
    fs::create_directories(m_folder);
    fs::create_directories(m_streams);
}

ToolFolder::~ToolFolder() {
    std::error_code ignored;
    fs::remove_all(m_folder.parent_path(), ignored);
}

ToolRun ToolFolder::run(const std::string& arguments, const std::string& input, const std::string& before) {
    const fs::path in = m_streams / "in", out = m_streams / "out", err = m_streams / "err";
    writeFile(in, input);
    ToolRun run;
#ifdef _WIN32
    const char* const enter = "cd /d ";
#else
    const char* const enter = "cd ";
#endif
    run.status = shell(enter + quoted(m_folder) + " && " + before + " " + quoted(fs::absolute(ZOKA_CLI)) +
                       " " + arguments + " <" + quoted(in) + " >" + quoted(out) + " 2>" + quoted(err));
    run.out = readFile(out);
    run.err = readFile(err);
    return run;
}

void ToolFolder::write(const std::string& name, const std::string& bytes) {
    writeFile(path(name), bytes);
}
std::string ToolFolder::read(const std::string& name) const {
    return readFile(path(name));
}
size_t ToolFolder::fileCount() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
}
