// Panels and dialogs without windows; each panel runs on a real thread.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "plugin/Procedures.h"
#include "tests/support/EventLog.h"
#include "tests/support/RecordingHost.h"

namespace zoka::test {

struct FakeDialog : PanelDialog {
    FakeDialog(EventLog& log, std::string itsName) : name(std::move(itsName)), m_log(log) {}
    ~FakeDialog() override { m_log.add("free " + name); }
    const std::string name;

private:
    EventLog& m_log;
};

class FakeThread : public PanelThread {
public:
    FakeThread(EventLog& log, PanelState& state, std::string name, bool starts)
        : m_log(log), m_state(state), m_name(std::move(name)), m_starts(starts) {}
    ~FakeThread() override { EXPECT_FALSE(m_thread.joinable()) << "freed while it runs"; }

    bool start() override {
        m_log.add("start " + m_name);
        if (!m_starts) {
            m_state.end();
            return false;
        }
        m_thread = std::thread([this] {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_closing; });
            // Long enough for a terminate that doesn't wait to be seen.
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            m_log.add("closed " + m_name);
            m_state.end();
        });
        return true;
    }
    void requestClose() override {
        const std::lock_guard lock(m_mutex);
        m_closing = true;
        m_wake.notify_all();
    }
    bool bringToFront() override {
        const std::lock_guard lock(m_mutex);
        // A closing panel is not noted: whether it is asked before or after it has closed is a matter of luck.
        if (m_closing) {
            return false;
        }
        m_log.add("front " + m_name);
        return true;
    }
    void waitUntilGone() override {
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }
    void leaveForUnload() override {
        m_log.add("unload " + m_name);
        requestClose();
        waitUntilGone();
    }

private:
    EventLog& m_log;
    PanelState& m_state;
    const std::string m_name;
    const bool m_starts;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_closing = false;
    std::thread m_thread;
};

class FakeSeams : public PluginSeams {
public:
    FakeSeams() { setPluginSeams(this); }
    ~FakeSeams() override {
        shutDownPlugin();
        setPluginSeams(nullptr);
    }

    EventLog log;
    std::function<void(RecordingHost&)> prepareEditor = [](RecordingHost&) {};
    bool threadStarts = true;
    bool definesBehavior = false;
    std::optional<NewProjectChoice> choice;
    std::function<void()> whileModal = [] {};
    FakeThread* lastThread = nullptr;

    // The user closes the panel opened last.
    void closeByUser() { lastThread->requestClose(); }

    std::unique_ptr<ZunEditorInterface> makeEditor(void*) override {
        auto editor = std::make_unique<Editor>(log);
        prepareEditor(*editor);
        return editor;
    }
    std::unique_ptr<PanelDialog> makeCustomizePanel(ZunEditorInterface&) override {
        return std::make_unique<FakeDialog>(log, "customize");
    }
    bool behaviorPanelDefined(const std::string&, const std::string& entity,
                              EntityDescriptor& descriptor) override {
        descriptor = {entity, "Opens"};
        return definesBehavior;
    }
    std::unique_ptr<PanelDialog> makeBehaviorPanel(
        ZunEditorInterface&, const HostContext* context,
        const std::optional<EntityDescriptor>& descriptor) override {
        const std::string entity = context && context->entityName ? context->entityName : "";
        return std::make_unique<FakeDialog>(
            log, (descriptor ? "panel " + descriptor->behavior : "plain") + " " + entity);
    }
    std::unique_ptr<PanelThread> makeThread(PanelState& state, PanelDialog& dialog, int number) override {
        auto thread = std::make_unique<FakeThread>(
            log, state, static_cast<FakeDialog&>(dialog).name + " " + std::to_string(number), threadStarts);
        lastThread = thread.get();
        return thread;
    }
    void runProjectManager(ZunEditorInterface&, const std::string& projectFile) override {
        modal("project " + projectFile);
    }
    void runScriptManager(ZunEditorInterface&, const std::string& mainScript,
                          const std::string& projectFolder, const std::string& catalogue) override {
        modal("scripts " + mainScript + " " + projectFolder + " " + catalogue);
    }
    std::optional<NewProjectChoice> runNewProject(ZunEditorInterface&) override {
        modal("new project");
        return choice;
    }

private:
    // Leaves the map it was asked to open in the log.
    struct Editor : RecordingHost {
        explicit Editor(EventLog& log)
            : RecordingHost(
                  {.project = "C:\\project", .suite = "C:\\suite", .mainScript = "C:\\project\\main.kez"}),
              m_log(log) {}
        bool OpenMap(const std::string& path) override {
            m_log.add("open " + path);
            return true;
        }
        EventLog& m_log;
    };
    void modal(const std::string& event) {
        log.add(event);
        whileModal();
    }
};

}  // namespace zoka::test
