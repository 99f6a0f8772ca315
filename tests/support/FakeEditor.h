// An editor that records every call and answers what a test has put in.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "plugin/host/ZunEditorInterface.h"

namespace zoka::test {

// What happened, in order, from any thread.
class EventLog {
public:
    void add(const std::string& event) {
        const std::lock_guard lock(m_mutex);
        m_events.push_back(event);
    }
    std::vector<std::string> take() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_events, {});
    }

private:
    std::mutex m_mutex;
    std::vector<std::string> m_events;
};

// The answers are plain members, to be set before the calls. `calls` holds each call in order, as
// "Name(argument, argument)"; calls may come from two threads. An operation whose name is in `failing` is
// recorded and fails as a host would: nothing, false or an empty folder.
class FakeEditor : public ZunEditorInterface {
public:
    std::string mainScript = "C:\\project\\main.kez";
    std::string projectFolder = "C:\\project";
    std::vector<std::string> listItems;
    std::string chosenFile;  // empty: the user cancels
    std::map<ZunCommandCode, std::string> folders = {{CmdGetSuiteFolder, "C:\\suite"},
                                                     {CmdGetTemplateSubfolder, "templates"}};
    std::set<std::string> failing;

    // The calls so far, and from then on none.
    std::vector<std::string> takeCalls() { return m_calls.take(); }

    void CreateMainScript() override { record("CreateMainScript", {}); }
    std::optional<std::string> GetMainScriptPath() override {
        return some(record("GetMainScriptPath", {}), mainScript);
    }
    void MainScriptChanged() override { record("MainScriptChanged", {}); }
    std::optional<std::string> GetListItemName(int index) override {
        const bool works = record("GetListItemName", {std::to_string(index)});
        const auto at = static_cast<size_t>(index);
        return works && index >= 0 && at < listItems.size() ? std::optional(listItems[at]) : std::nullopt;
    }
    void EndListUpdate() override { record("EndListUpdate", {}); }
    std::optional<std::string> ChooseFile(const std::string& preset) override {
        return some(record("ChooseFile", {preset}), chosenFile);
    }
    std::string GetProjectFolder() override {
        return some(record("GetProjectFolder", {}), projectFolder).value_or("");
    }
    bool CopyFileToFolder(const std::string& source, const std::string& folder) override {
        return record("CopyFileToFolder", {source, folder});
    }
    bool CopyFileWithSubstitutions(
        const std::string& source, const std::string& destination,
        std::span<const std::pair<std::string, std::string>> substitutions) override {
        std::vector<std::string> arguments = {source, destination};
        for (const auto& [find, replacement] : substitutions) {
            arguments.push_back(find + "->" + replacement);
        }

        return record("CopyFileWithSubstitutions", arguments);
    }
    std::string QueryFolder(ZunCommandCode code) override {
        return some(record("QueryFolder", {std::to_string(code)}), folders[code]).value_or("");
    }
    bool OpenMap(const std::string& path) override { return record("OpenMap", {path}); }

private:
    static std::optional<std::string> some(bool works, const std::string& answer) {
        return works && !answer.empty() ? std::optional(answer) : std::nullopt;
    }
    bool record(const std::string& name, const std::vector<std::string>& arguments) {
        std::string text = name + "(";
        for (const std::string& argument : arguments) {
            text += (text.back() == '(' ? "" : ", ") + argument;
        }

        m_calls.add(text + ")");
        return !failing.contains(name);
    }

    EventLog m_calls;
};

}  // namespace zoka::test
