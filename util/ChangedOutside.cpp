#include "util/ChangedOutside.h"

namespace zoka {

PromptAnswer askAboutChangedFile(UserPrompt& prompt, const std::string& what) {
    return prompt.ask(what +
                          " was changed on the disk since it was loaded.\n\n"
                          "Yes: load it again, keep my changes and save them.\n"
                          "No: overwrite it, the other changes are lost (a copy of the file is kept).\n"
                          "Cancel: don't save.",
                      "ZOKA", PromptButtons::YesNoCancel, PromptIcon::Warning);
}

bool asksToSaveAnew(UserPrompt& prompt, const std::string& what, const std::string& path) {
    return prompt.ask(what +
                          " is gone: it was moved, renamed or deleted since it was loaded.\n\n"
                          "Save it anew, as '" +
                          path + "'?",
                      "ZOKA", PromptButtons::YesNo, PromptIcon::Warning) == PromptAnswer::Yes;
}

std::string unreadableNow(const std::string& path, const std::string& why) {
    return "Can't read '" + path + "': " + why +
           "\nIt may have been changed on the disk since it was loaded, so it was not saved.";
}

}  // namespace zoka
