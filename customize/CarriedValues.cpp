#include "customize/CarriedValues.h"

#include <string>
#include <utility>

#include "customize/SaveSteps.h"
#include "customize/ValueFile.h"
#include "util/Backups.h"
#include "util/KeyedHash.h"
#include "util/PathRules.h"

namespace zoka {

void CarriedValues::forget() noexcept {
    m_carried.clear();
    m_unplaced.clear();
}

void CarriedValues::intoNewVersion(const ScriptRows& before) {
    m_unplaced.clear();
    if (before.script.set == m_panel.script.set && valueFileCarriesAll(before.script, true)) {
        byValueFile();
    } else {
        KeyedSet<int> ids;
        for (const CustomEntry& one : m_panel.script.entries) {
            ids.insert(one.id);
        }
        for (const KeptValue& kept : m_carried) {
            if (!ids.contains(kept.id)) {
                warnNoMatch(m_prompt);
            }
        }
        m_unplaced = carryValues(m_carried, m_panel);
    }
    for (UnplacedValue& lost : lostWithoutId(before, m_panel)) {
        m_unplaced.push_back(std::move(lost));
    }
}

void CarriedValues::byValueFile() {
    KeyedMap<int, const KeptValue*> keptOf;
    for (const KeptValue& kept : m_carried) {
        keptOf.emplace(kept.id, &kept);
    }
    const auto place = [&](const ValueRecord& record, CustomEntry* entry) {
        const auto found = keptOf.find(record.id);
        UnplacedValue lost{{record.id, record.kind, found == keptOf.end() ? "" : found->second->label,
                            record.value, m_panel.script.set},
                           "the script has no entry for it"};
        if (lost.kept.value.ends_with('\r')) {
            lost.kept.value.pop_back();
        }
        if (entry) {
            const auto& model = static_cast<const EntryModel&>(*entry->control);
            lost.reason = carryRefusal(lost.kept, *entry, model.facts());
            if (lost.reason.empty()) {
                entry->control->SetValueFromText(lost.kept.value);
            }
        }
        if (!lost.reason.empty()) {
            m_unplaced.push_back(std::move(lost));
        }
    };
    if (ReadValueFile(m_panel.script, m_prompt, place)) {
        return;
    }
    // The user has been told; the values are still at hand.
    for (EntryModel& row : m_panel.rows()) {
        row.putBack(row.loadedValue());
    }
    m_unplaced = carryValues(m_carried, m_panel);
}

void CarriedValues::arrived() {
    m_areKept = bool(keepOldValues(m_panel.script, m_unplaced));
    if (!m_areKept) {
        m_prompt.tell(
            "These values found no place in the script, and could not be written into a file either:\n\n" +
            unplacedText(m_unplaced));
    }
    m_carried.clear();
}

std::vector<UnplacedValue> CarriedValues::unsaved() const {
    std::vector<UnplacedValue> unsaved;
    for (const KeptValue& kept :
         m_carried.empty() ? valuesToKeep(m_panel, ValuesToKeep::Changed) : m_carried) {
        unsaved.push_back({kept, "it was not saved"});
    }
    return unsaved;
}

void CarriedValues::keepUnsaved() noexcept {
    m_reserve.release();
    keepInside([this] {
        (void)keepOldValues(m_panel.script, unsaved());  // there is nobody to be told
    });
}

void CarriedValues::offerUnsaved() noexcept {
    m_reserve.release();
    keepInside([this] {
        const std::vector<UnplacedValue> values = unsaved();
        if (values.empty()) {
            return;
        }
        const bool isOne = values.size() == 1;
        const std::string name(fileNameOf(m_panel.script.scriptPath));
        if (!asksYes(m_prompt, "The window has to close, and " +
                                   (isOne ? "a value" : std::to_string(values.size()) + " values") + " of '" +
                                   name + "' " + (isOne ? "is" : "are") + " not saved.\n\nKeep " +
                                   (isOne ? "it" : "them") + " in the value file '" + name + kLeftOverEnding +
                                   "', beside the script?")) {
            return;
        }
        if (const Outcome kept = keepOldValues(m_panel.script, values); !kept) {
            m_prompt.tell("The values could not be kept: " + kept.why());
        }
    });
}

}  // namespace zoka
