// A project folder and a template folder with a host over them that records what it is asked to do.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "plugin/host/FolderHost.h"
#include "tests/support/TempFolder.h"
#include "tests/templates/Scripts.h"
#include "util/OsFiles.h"

namespace zoka::test {

class Project {
public:
    class Host : public FolderHost {
    public:
        using FolderHost::FolderHost;
        Names calls;
        bool failCopies = false;
        std::string mainScriptMade;  // what CreateMainScript makes the main script; empty: nothing

        void CreateMainScript() override {
            calls.push_back("create");
            m_made = mainScriptMade;
        }
        std::optional<std::string> GetMainScriptPath() override {
            return m_made.empty() ? FolderHost::GetMainScriptPath() : m_made;
        }
        void MainScriptChanged() override { calls.push_back("changed"); }
        bool CopyFileToFolder(const std::string& source, const std::string& folder) override {
            calls.push_back("copy");
            return !failCopies && FolderHost::CopyFileToFolder(source, folder);
        }
        bool CopyFileWithSubstitutions(
            const std::string& source, const std::string& destination,
            std::span<const std::pair<std::string, std::string>> substitutions) override {
            calls.push_back(substitutions.empty()
                                ? "copy"
                                : "copy " + substitutions[0].first + "=" + substitutions[0].second);
            return !failCopies && FolderHost::CopyFileWithSubstitutions(source, destination, substitutions);
        }

    private:
        std::string m_made;
    };

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
    Host host{FolderHost::Folders{folder.path(), suite.path(), "template_6", folder.path("main.kez")}};
};

}  // namespace zoka::test
