// What the editor's thread and the panels' threads do at once. The preset linux-tsan runs it under the thread
// sanitizer, which sees what a wrong result need not show.
#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "J8ProjectManager/J8ProjectManager.h"
#include "customize/BehaviorPanel.h"
#include "customize/CustomScript.h"
#include "templates/TemplateData.h"
#include "tests/support/SourceDir.h"
#include "tests/support/TempFolder.h"
#include "util/DebugLog.h"
#include "util/FileLock.h"
#include "util/OsFiles.h"
#include "util/SafeWrite.h"
#include "xml/XMLNode.h"

using zoka::test::TempFolder;

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 12;

// Runs `work` with each number below `threads`, all at once.
void atOnce(int threads, const std::function<void(int)>& work) {
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i) {
        running.emplace_back(work, i);
    }
    for (std::thread& one : running) {
        one.join();
    }
}

class ThreadsTest : public testing::Test {
protected:
    ThreadsTest() {
        std::filesystem::copy(zoka::test::sourceDir() / "samples", m_folder.native("samples"),
                              std::filesystem::copy_options::recursive);
        zoka::debugLogFileName() = m_folder.path("log.xml");
    }
    ~ThreadsTest() override {
        zoka::closeDebugLog();
        zoka::debugLogFileName() = "debugLogOut.xml";
    }
    std::string sample(const std::string& name) const { return m_folder.path("samples\\" + name); }

    TempFolder m_folder;
};

}  // namespace

// Each reader's result while all read is the one that it has alone.
TEST_F(ThreadsTest, PanelsAndTheEditorReadAtOnce) {
    const std::function<std::string()> readers[] = {
        [&] {
            zoka::CustomScript script;
            std::string text =
                LoadCustomScript(sample("templates\\weather.kez"), script) ? "read " : "not read ";
            for (const zoka::CustomEntry& entry : script.entries) {
                text += entry.label + '=' + entry.value + '\n';
            }
            return text;
        },
        [&] {
            zoka::BehaviorPanel panel;
            panel.scriptName = sample("project\\guard.kez");
            panel.blockLength = 400;
            LoadBehaviorPanel(panel);
            std::string text = panel.caption() + '\n';
            for (const zoka::CustomEntry& row : panel.rows) {
                text += row.label + '=' + row.value + '\n';
            }
            return text;
        },
        [&] {
            CTemplateData catalogue;
            std::string text =
                catalogue.LoadFromXML(sample("templates\\template_6.xml")) ? "read " : "not read ";
            for (const CScriptElm& script : catalogue.scripts()) {
                text += script.m_name + script.m_desc + '\n';
            }
            return text;
        },
        [&] {
            CTemplateData header;
            std::string errors;
            const bool read = header.LoadScriptFromKEZ(sample("templates\\fog.kez"), errors);
            return (read ? "read " : "not read ") + errors + header.script(0).m_desc;
        },
        [&] {
            CJ8ProjectManager project;
            const bool read = project.LoadFromXML(sample("j8project\\main.xml"), false);
            return (read ? "read " : "not read ") + project.m_report;
        },
    };
    std::vector<std::string> alone;
    for (const auto& reader : readers) {
        alone.push_back(reader());
        EXPECT_GT(alone.back().size(), 40U) << "reader " << alone.size() << " has found something to read";
    }
    std::vector<int> wrong(2 * alone.size());
    atOnce(static_cast<int>(wrong.size()), [&](int i) {
        const auto which = static_cast<size_t>(i) % alone.size();
        for (int round = 0; round < kRounds; ++round) {
            wrong[static_cast<size_t>(i)] += readers[which]() != alone[which];
        }
    });
    EXPECT_EQ(wrong, std::vector<int>(wrong.size()));
}

// Each of them reads the number, adds one and writes it back under the file's lock.
TEST_F(ThreadsTest, WritersWithTheFilesLockLoseNothing) {
    const std::string path = m_folder.write("count.txt", "0");
    atOnce(kThreads, [&](int) {
        for (int round = 0; round < kRounds; ++round) {
            const zoka::FileLock lock(path);
            const int count = lock ? std::stoi(zoka::osFiles().readWhole(path).value_or("-1000")) : -1000;
            zoka::safeWrite(path, std::to_string(count + 1));
        }
    });
    EXPECT_EQ(m_folder.read("count.txt"), std::to_string(kThreads * kRounds));
}

TEST_F(ThreadsTest, LogEntriesStayInOnePiece) {
    atOnce(kThreads, [&](int i) {
        for (int round = 0; round < kRounds; ++round) {
            zoka::debugLog("file.cpp", i, "function", std::string(200, static_cast<char>('a' + i)), 3);
        }
    });
    zoka::closeDebugLog();
    const std::string log = m_folder.read("log.xml");
    for (int i = 0; i < kThreads; ++i) {
        const std::string entry = "<Note file=\"file.cpp\" line=\"" + std::to_string(i) +
                                  "\" func=\"function\" >" + std::string(200, static_cast<char>('a' + i)) +
                                  "</Note>\n";
        int found = 0;
        for (size_t at = 0; (at = log.find(entry, at)) != std::string::npos; at += entry.size()) {
            ++found;
        }
        EXPECT_EQ(found, kRounds);
    }
}

// One tree for each thread, in the character set that its reader asks for.
TEST_F(ThreadsTest, TreesInDifferentCharacterSets) {
    const std::string path = m_folder.write("a.xml", "<a b='\xC3\xA9'>&#233;</a>");
    std::vector<int> wrong(kThreads);
    atOnce(kThreads, [&](int i) {
        const bool utf8 = i % 2 == 0;
        const auto set = utf8 ? XMLCharset::Utf8 : XMLCharset::Platform;
        for (int round = 0; round < kRounds; ++round) {
            const XMLNode tree = XMLNode::parseFile(path.c_str(), "a", nullptr, {}, set);
            const char* const text = tree.getText();
            wrong[static_cast<size_t>(i)] += !text || std::string(text) != (utf8 ? "\xC3\xA9" : "\xE9");
        }
    });
    EXPECT_EQ(wrong, std::vector<int>(wrong.size()));
}
