// The editor's raw object behind the plug-in's interface: operations called by slot as
// C++ members of the host's.
#pragma once

#include "plugin/host/HostAbi.h"
#include "plugin/host/ZunEditorInterface.h"

namespace zoka {

// Whatever the host answers does no harm: buffers are zeroed before a call and ended after it, so a failing
// host yields empty text and an unterminated answer is cut at 259 characters (63 for a list item's name).
class HostAdapter : public ZunEditorInterface {
public:
    // `rawEditor` is the host's object, not null; it stays the host's and must outlive this.
    explicit HostAdapter(void* rawEditor) : m_editor(rawEditor) {}

    void CreateMainScript() override;
    std::optional<std::string> GetMainScriptPath() override;
    void MainScriptChanged() override;
    std::optional<std::string> GetListItemName(int index) override;
    void EndListUpdate() override;
    std::optional<std::string> ChooseFile(const std::string& preset) override;
    std::string GetProjectFolder() override;
    bool CopyFileToFolder(const std::string& source, const std::string& folder) override;
    bool CopyFileWithSubstitutions(
        const std::string& source, const std::string& destination,
        std::span<const std::pair<std::string, std::string>> substitutions) override;
    std::string QueryFolder(ZunCommandCode code) override;
    bool OpenMap(const std::string& path) override;

private:
    template <class Result, class... Args>
    Result call(HostSlot slot, Args... args);

    void* m_editor;
};

}  // namespace zoka
