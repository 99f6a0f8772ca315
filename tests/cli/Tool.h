// Runs the built command-line tool in a folder of the test's own.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

#include "tests/support/TempFolder.h"

struct ToolRun {
    int status = -1;  // -1: it did not end by itself
    std::string out = {};
    std::string err = {};
    bool operator==(const ToolRun&) const = default;
};
inline std::ostream& operator<<(std::ostream& to, const ToolRun& run) {
    return to << "status " << run.status << "\nout: " << run.out << "\nerr: " << run.err;
}

class ToolFolder {
public:
    // Runs `zoka ARGUMENTS` (in shell words) in this folder, with `input` as its standard input. `before` is
    // a shell command that ends with ";" or "&&", or empty.
    ToolRun run(const std::string& arguments, const std::string& input = "", const std::string& before = "");

    void write(const std::string& name, const std::string& bytes) { m_folder.write(name, bytes); }
    std::string read(const std::string& name) const { return m_folder.read(name); }
    size_t fileCount() const { return m_folder.names().size(); }
    std::filesystem::path path(const std::string& name) const { return m_folder.native(name); }

private:
    zoka::test::TempFolder m_folder;
    zoka::test::TempFolder m_streams;  // the standard streams' files lie outside the folder
};
