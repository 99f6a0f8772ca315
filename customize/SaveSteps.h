// How a step of saving a script ends, and how it asks and tells.
#pragma once

#include <optional>
#include <string>

#include "util/SaveResult.h"
#include "util/UserPrompt.h"

namespace zoka {

// How the save ended at a step, of which the user has been told; nothing when it goes on.
using SaveEnd = std::optional<SaveResult>;

inline bool asksYes(UserPrompt& prompt, const std::string& text) {
    return prompt.ask(text, "ZOKA", PromptButtons::YesNo, PromptIcon::None) == PromptAnswer::Yes;
}

// Tells the message; `notTold` is what is known besides.
inline SaveResult saveFailed(UserPrompt& prompt, const std::string& message,
                             const std::string& notTold = {}) {
    prompt.tell(message);
    return Refusal{notTold};
}

}  // namespace zoka
