// What a save asks and tells where its file is another one by now than was loaded: the same words for every kind of
// file. `what` names the kind, as "The script".
#pragma once

#include <string>

#include "util/UserPrompt.h"

namespace zoka {

// Yes: it is to be loaded again, with the user's changes; No: it is overwritten, by a save that keeps a copy of it.
PromptAnswer askAboutChangedFile(UserPrompt& prompt, const std::string& what);
// Whether a file that is gone is to be made again.
bool asksToSaveAnew(UserPrompt& prompt, const std::string& what, const std::string& path);
// Of a file that can't be compared any more.
std::string unreadableNow(const std::string& path, const std::string& why);

}  // namespace zoka
