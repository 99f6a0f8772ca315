#include "templates/ScriptRestore.h"

#include "plugin/host/HostCopy.h"
#include "templates/ScriptFolders.h"
#include "util/CopyFailure.h"
#include "util/OsFiles.h"
#include "util/PathRules.h"

namespace zoka {

namespace {

constexpr const char* kCantUpdate = "Can't Update Script";

}  // namespace

RestorePlan planRestore(ZunEditorInterface& editor, const std::string& fileName) {
    const ScriptFolders folders(editor);
    RestorePlan plan{folders.templatePath(fileName), folders.projectPath(fileName), {}};
    if (staysInFolder(fileName) && osFiles().exists(plan.destination)) {
        plan.problem = "Original file still there.";
        plan.title = kCantUpdate;
    } else if (!folders.inTemplates(fileName)) {
        plan.problem = "Can't find the original in template folder.";
        plan.title = kCantUpdate;
    } else if (equalNoCase(plan.destination, plan.source)) {
        plan.problem = "Same File!\nNo Update.";
    }
    return plan;
}

bool RestoreFromTemplate(ZunEditorInterface& editor, const std::string& fileName, UserPrompt& prompt) {
    RestorePlan plan = planRestore(editor, fileName);
    if (plan.problem.empty()) {
        const std::string folder(folderOf(plan.destination));
        if (const Outcome copied = copyByHostToFolder(editor, plan.source, folder); !copied) {
            plan.problem = copyError(copied.why());
        }
    }
    if (!plan.problem.empty()) {
        prompt.ask(plan.problem, plan.title, PromptButtons::Ok, PromptIcon::Error);
    }
    return plan.problem.empty();
}

}  // namespace zoka
