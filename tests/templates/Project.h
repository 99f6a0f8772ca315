// A project folder and a template folder with a host over them that records what it is asked to do.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/RecordingHost.h"
#include "tests/support/TempFolder.h"
#include "tests/templates/Scripts.h"
#include "util/OsFiles.h"

namespace zoka::test {

struct Project {
    explicit Project(const std::string& mainScript = "// main\r\n\r\nfunction main()\r\n{\r\n}\r\n") {
        std::filesystem::create_directory(suite.native("template_6"));
        folder.write("main.kez", mainScript);
    }
    void addTemplate(const std::string& name, const std::string& text) {
        suite.write("template_6/" + name, text);
    }
    std::string templatePath(const std::string& name) const { return suite.path("template_6") + "\\" + name; }
    std::string main() const { return folder.read("main.kez"); }

    TempFolder folder, suite;
    RecordingHost host{
        FolderHost::Folders{folder.path(), suite.path(), "template_6", folder.path("main.kez")}};
};

}  // namespace zoka::test
