// A project's files in a folder of their own, and the debug log that loading them leaves.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "J8ProjectManager/J8ProjectManager.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"

namespace zoka::test {

class ProjectFiles : public testing::Test {
protected:
    ProjectFiles() {
        closeDebugLog();
        debugLogFileName() = folder.path("log.xml");
        setRoots(folder.path(), folder.path());
    }
    ~ProjectFiles() override {
        closeDebugLog();
        debugLogFileName() = "debugLogOut.xml";
    }

    void setRoots(const std::string& project, const std::string& data) {
        paths = "<Paths proj_file=\"" + project + "\" j8_file=\"" + data + "\"/>";
    }
    // A project file of these elements behind its Paths.
    std::string project(const std::string& elements) {
        return folder.write("game.xml", "<Project name=\"Game\" date=\"1\" vers=\"8\">\n" + paths + "\n" +
                                            elements + "\n</Project>\n");
    }
    bool load(const std::string& elements, bool keepFilled = false) {
        return manager.LoadFromXML(project(elements), keepFilled);
    }
    // The report behind the two lines of roots.
    std::string report() const {
        const size_t at = manager.m_report.find("\r\n\r\n");
        return at == std::string::npos ? manager.m_report : manager.m_report.substr(at + 4);
    }
    // The log's entries, a line each, without the line numbers of our source.
    std::string log() const {
        closeDebugLog();
        const std::string text = folder.read("log.xml");
        std::string entries;
        for (size_t at = text.find("<DebugLog>\n") + 11; at < text.size();) {
            const size_t end = text.find('\n', at);
            std::string line = text.substr(at, end - at);
            if (const size_t number = line.find("line=\""); number != std::string::npos) {
                line.erase(number, line.find('"', number + 6) + 2 - number);
            }
            entries += line + "\n";
            at = end + 1;
        }
        return entries;
    }

    TempFolder folder;
    std::string paths;
    CJ8ProjectManager manager;
};

}  // namespace zoka::test
