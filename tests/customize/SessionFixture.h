// A session over a project, its templates and a user who answers as told.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "customize/CustomizeSession.h"
#include "tests/support/FaultyOsFiles.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/ScriptedPrompt.h"
#include "tests/support/TempFolder.h"

namespace zoka::test {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NotingView : public CustomizeView, public RowsListener {
public:
    void bringToFront() override { calls += "front "; }
    void raiseOnce() override { calls += "raise "; }
    void rowsReplaced() override { calls += "rows "; }
    std::string calls;
};

inline constexpr char kOld[] =
    "// ver: 1\r\n// section: First\r\n// entry: Range\r\n// id: 1\r\n// cntl: spin 0 200 1\r\nvar range = "
    "10;\r\n\r\n"
    "// enable: Lamp\r\n// id: 2\r\n//define LAMP;\r\n\r\n// section: Second\r\n// entry: Gone\r\n// id: "
    "3\r\n"
    "string gone = \"a\";\r\n\r\n// entry: Free\r\nvar free = 5;\r\n\r\n// entry_entity: Who\r\n// id: 5\r\n"
    "string who = \"me\";\r\n";
inline constexpr char kNew[] =
    "// ver: 2\r\n// entry: Range\r\n// id: 1\r\n// cntl: spin 0 100 1\r\nvar range = 20;\r\n\r\n"
    "// enable: Lamp\r\n// id: 2\r\ndefine LAMP;\r\n\r\n// entry: Free\r\nvar free = 5;\r\n\r\n"
    "// entry_entity: Who\r\n// id: 5\r\nstring who = \"you\";\r\n";

struct Session : testing::Test {
    Session() {
        session.setListener(&view);
        std::filesystem::create_directories(suite.native("templates"));
        host.setListItems({"me", "lamp_1", "lamp_1", "lamp_2"});
    }
    void open(const std::string& text = kOld) {
        ASSERT_TRUE(session.open(project.write("s.kez", text)));
        view.calls.clear();
        host.calls.clear();
    }
    void makeTemplate(const std::string& text, const char* name = "templates/s.kez") {
        suite.write(name, text);
        host.setChosenFile(suite.path("templates\\s.kez"));
    }
    size_t rowOf(const std::string& label) {
        for (size_t i = 0; i < session.size(); ++i) {
            if (session.entry(i).label == label) {
                return i;
            }
        }

        ADD_FAILURE() << label;
        return 0;
    }
    std::string value(const std::string& label) { return session.row(rowOf(label)).value(); }
    void set(const std::string& label, const std::string& text) {
        EXPECT_TRUE(session.setValue(rowOf(label), text));
    }

    TempFolder project, suite;
    ScriptedPrompt prompt;
    RecordingHost host{FolderHost::Folders{.project = project.path(), .suite = suite.path()}};
    NotingView view;
    CustomizeSession session{host, prompt, &view};
};

}  // namespace zoka::test
