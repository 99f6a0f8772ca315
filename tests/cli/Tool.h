// Runs the built command-line tool in a folder of the test's own.
#pragma once

#include <filesystem>
#include <string>

struct ToolRun {
    int status = -1;  // -1: it did not end by itself
    std::string out;
    std::string err;
};

class ToolFolder {
public:
    ToolFolder();
    ~ToolFolder();
    ToolFolder(const ToolFolder&) = delete;
    ToolFolder& operator=(const ToolFolder&) = delete;

    // Runs `zoka ARGUMENTS` (in shell words) in this folder, with `input` as its standard input. `before` is
    // a shell command that ends with ";" or "&&", or empty.
    ToolRun run(const std::string& arguments, const std::string& input = "", const std::string& before = "");

    void write(const std::string& name, const std::string& bytes);
    std::string read(const std::string& name) const;
    size_t fileCount() const;
    std::filesystem::path path(const std::string& name) const { return m_folder / name; }

private:
    std::filesystem::path m_folder;
    std::filesystem::path m_streams;  // the standard streams' files lie outside the folder
};
