// One save of a panel's script: the one way in which its file changes by the user's edits.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "customize/SaveSteps.h"
#include "customize/ScriptReader.h"
#include "customize/ScriptRows.h"
#include "customize/WriteBack.h"
#include "util/UserPrompt.h"

namespace zoka {

// Its steps are taken in the order in which they stand here; each tells the user itself when it ends the save. All that
// it's made with outlives it. [panel thread]
class ScriptSave {
public:
    ScriptSave(ScriptRows& panel, ScriptReader& reader, UserPrompt& prompt)
        : m_panel(panel), m_reader(reader), m_prompt(prompt) {}

    // Asks where the file is another one than was loaded. With `loadsAgain` the user wants it loaded again and the
    // values put into it, before the save goes on. A look at the file's time and size is enough at first: a change
    // that they don't show is met by `write`, and then the whole content is compared (`isOvertaken`).
    SaveEnd settleWithDisk(bool isOvertaken, bool& loadsAgain);
    // Makes the text from the rows' values. Asks where entries would be lost by it.
    SaveEnd makeText();
    // Puts the script, whose path may be another one by now, and its value file into their places; what another has
    // made of the script, and the user gives up, is kept beside it. The save begins anew
    // with `isOvertaken`: another program has changed the file meanwhile, and nothing was written. A script that is
    // a copy made for this save (`isCopied`) is replaced whatever it holds.
    SaveEnd write(bool isCopied, bool& isOvertaken);
    // The panel's script becomes what the file holds now. True when its rows mean the same as before. Nothing but
    // showing them may follow.
    bool takeOver();
    // Tells of a value file that could not be written.
    SaveResult end();

private:
    bool mayLoseEntries();

    ScriptRows& m_panel;
    ScriptReader& m_reader;
    UserPrompt& m_prompt;
    std::optional<std::string> m_overwritten;  // what the file holds, when the user wants that overwritten
    std::vector<ScriptEdit> m_edits;
    std::string m_text;           // edited
    bool m_keepsEntries = false;  // they are where they were, and the panel's rows stay
    ScriptRows m_saved;           // else: those of the edited text
    Outcome m_written;
};

}  // namespace zoka
