// The user's values while a panel's script is replaced by another text: on their way into it, and those that found no
// place.
#pragma once

#include <vector>

#include "customize/CarryValues.h"
#include "customize/ScriptRows.h"
#include "util/Doors.h"
#include "util/UserPrompt.h"

namespace zoka {

// From begin() to arrived() it holds the values, in case that something is thrown: they are in no file then, and
// perhaps in no row. Panel and prompt outlive the object. [panel thread]
class CarriedValues {
public:
    CarriedValues(ScriptRows& panel, UserPrompt& prompt) : m_panel(panel), m_prompt(prompt) {}

    // Takes the values of the panel's rows: of those that have changed, or of all that have an id.
    void begin(ValuesToKeep which) { m_carried = valuesToKeep(m_panel, which); }
    // The panel keeps the script that it has.
    void giveUp() noexcept { m_carried.clear(); }
    // The panel has another script now, whose values are its own.
    void forget() noexcept;

    // Puts the values into the panel's rows, which are those of what another has made of the script's file.
    void intoChangedFile() { m_unplaced = carryValues(m_carried, m_panel, CarryTo::ChangedFile); }
    // The same for a new version of the script; `before` is the panel as it was. Through the value file, which was
    // written of that, where it can carry them all. Warns of values that have no entry.
    void intoNewVersion(const ScriptRows& before);
    // Ends it: what found no place is kept in the file of old values beside the script, or told.
    void arrived();
    // What found no place, the last time, and whether it is in that file.
    const std::vector<UnplacedValue>& unplaced() const { return m_unplaced; }
    bool areKept() const { return m_areKept; }

    // --- When the panel has to go: memory put aside for that, and its use.
    void putMemoryAside() noexcept { m_reserve.refill(); }
    // Asks whether the values that are in no file yet are to be kept in the file of old values, and puts them there.
    void offerUnsaved() noexcept;
    // The same where nobody can be asked.
    void keepUnsaved() noexcept;

private:
    void byValueFile();
    std::vector<UnplacedValue> unsaved() const;

    ScriptRows& m_panel;
    UserPrompt& m_prompt;
    std::vector<KeptValue> m_carried;
    std::vector<UnplacedValue> m_unplaced;
    bool m_areKept = false;
    MemoryReserve m_reserve;
};

}  // namespace zoka
