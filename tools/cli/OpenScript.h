// A script that a command of "customize" works on.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "customize/CustomizeSession.h"
#include "plugin/host/FolderHost.h"
#include "tools/cli/Cli.h"
#include "util/FileLock.h"

namespace zoka::cli {

inline constexpr const char* kNoScript = " is no script: it holds bytes that no text has";

// The line of each entry's value, in the entries' order; lines count from 1.
std::vector<int> valueLines(const CustomScript& script);
// How a command names the entry: by its id or, without one, by its line.
std::string nameOf(const CustomEntry& entry, int line);

// Opened as the panel opens it. Its own folder is the project's, so saving stays there.
class OpenScript {
public:
    // One that `changes` holds its lock as long as it is open. What is wrong is said at once.
    OpenScript(const std::string& file, bool changes);

    bool isOpen() const { return m_open; }
    const std::string& path() const { return m_path; }
    CustomizeSession& session() { return m_session; }

    // The entry of an id, of a line of the script as "@12", or of a label; -1 after a complaint. Case doesn't count.
    int find(const std::string& name);
    // What an argument, or a line of a file, means in the script's character set.
    Result<std::string> inScript(const std::string& text, TextSet set) const;
    // Saves, or with a dry run prints the lines that saving would change.
    ExitStatus finish(bool dryRun);

private:
    std::string m_given, m_path;
    std::optional<FileLock> m_lock;
    FolderHost m_host;
    CustomizeSession m_session;
    bool m_open = false;
};

}  // namespace zoka::cli
