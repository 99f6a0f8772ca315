// A suite's folder as the current one, with wizards and templates of a test's own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "J8ProjectManager/J8ProjectManager.h"
#include "J8ProjectWizard/J8Wizard.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"
#include "util/OsFiles.h"

namespace zoka::test {

class Suite {
public:
    Suite() : m_before(systemFiles().currentFolder()) {
        closeDebugLog();
        std::filesystem::create_directories(folder.native("templates/wizards"));
        std::filesystem::create_directories(folder.native("templates/xml"));
        std::filesystem::create_directories(folder.native("games"));
        systemFiles().setCurrentFolder(folder.path());
    }
    ~Suite() {
        closeDebugLog();
        CJ8ProjectManager::deleteInstance();
        systemFiles().setCurrentFolder(m_before);
    }

    // Names with slashes, below the suite's folder.
    void write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories(folder.native(name).parent_path());
        folder.write(name, content);
    }
    void wizard(const std::string& name, const std::string& content) const {
        write("templates/wizards/" + name, "<Wizard>" + content + "</Wizard>");
    }
    std::string read(const std::string& name) const { return folder.read(name); }
    bool has(const std::string& name) const { return std::filesystem::exists(folder.native(name)); }
    // Files and folders below a folder, sorted, with slashes.
    std::vector<std::string> tree(const std::string& name) const {
        std::vector<std::string> found;
        if (has(name)) {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.native(name))) {
                found.push_back(
                    std::filesystem::relative(entry.path(), folder.native(name)).generic_string() +
                    (entry.is_directory() ? "/" : ""));
            }
        }
        std::sort(found.begin(), found.end());
        return found;
    }
    // The debug log's messages, each with a "|" behind it.
    std::string logged() const {
        closeDebugLog();
        std::string all;
        const std::string log = folder.read("debugLogOut.xml");
        for (size_t at = 0; (at = log.find("\" >", at)) != log.npos;) {
            at += 3;
            const size_t end = log.find("</", at);
            all += log.substr(at, end - at) + "|";
        }
        return all;
    }
    // The keys of the report that a run left, one blank between, "SaveProjectXml" without what is in it.
    std::string reportKeys() const {
        const XMLNode report = XMLNode::parseFile(kWizardReport, "WizardDebug");
        std::string keys;
        for (XMLNode step = report.firstChild(); !step.isEmpty(); step = step.nextSibling()) {
            keys += (keys.empty() ? "" : " ") + std::string(step.getName());
        }
        return keys + (report.hasAttribute("err") ? " ok" : "");
    }
    // Data for a project games\NAME.
    CJ8WizardUserData data(const std::string& name) const {
        CJ8WizardUserData made;
        made.m_strName = "My Game";
        made.m_strDocs = "Docs";
        made.m_strProjectFolder = folder.path("games") + "\\" + name;
        made.m_strLevelName = "Start";
        made.m_strLevelMap = "harbour";
        made.m_strLevelDocs = "The first one";
        return made;
    }

    TempFolder folder;

private:
    std::string m_before;
};

// A wizard that has everything, with its templates.
inline void addFullWizard(const Suite& suite) {
    suite.wizard(
        "full.xml",
        "<Title>Full</Title><Desc>All of it</Desc><Defaults><Name>N</Name><LevelMap>harbour</LevelMap>"
        "</Defaults><Folder name='.'><Check name='c.txt' folder='a'/><File name='one.txt' folder='a'/>"
        "</Folder><Folder name='maps\\deep'><File name='two.txt' folder='a'/></Folder>"
        "<Level><File name='lev' folder='a'/></Level>"
        "<J8ProjectFiles><File name='main' folder='a'/></J8ProjectFiles>");
    for (const char* name :
         {"c.txt", "one.txt", "two.txt", "lev.zlm", "lev.zlb", "lev.zun", "main.c", "main.kez"}) {
        suite.write(std::string("templates/a/") + name, name);
    }
    suite.write("templates/a/main.xml",
                "<Project name='T' date='5' vers='1'><Level name='L' "
                "mapfile='old.zlb'><Doc>d</Doc></Level></Project>");
}

}  // namespace zoka::test
