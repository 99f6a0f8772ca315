#include "tests/cli/Tool.h"

#include <cstdlib>

#ifndef _WIN32
#include <sys/wait.h>
#endif

namespace {

std::string quoted(std::filesystem::path path) {
    return '"' + path.make_preferred().string() + '"';
}

// The exit status of a shell command that begins with the folder to run in, or -1 when it was ended from outside.
int shellIn(const std::string& command) {
#ifdef _WIN32
    return std::system(("\"cd /d " + command + '"').c_str());  // cmd takes the outer quotes off
#else
    const int status = std::system(("cd " + command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
}

}  // namespace

ToolRun ToolFolder::run(const std::string& arguments, const std::string& input, const std::string& before) {
    m_streams.write("in", input);
    const int status =
        shellIn(quoted(path("")) + " && " + before + " " + quoted(std::filesystem::absolute(ZOKA_CLI)) + " " +
                arguments + " <" + quoted(m_streams.native("in")) + " >" + quoted(m_streams.native("out")) +
                " 2>" + quoted(m_streams.native("err")));
    return {status, m_streams.read("out"), m_streams.read("err")};
}
