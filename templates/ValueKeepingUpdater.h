// The update of the customization panel for the script-management pages.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "customize/ValueUpdate.h"
#include "templates/ScriptUpdate.h"

namespace zoka {

class ValueKeepingUpdater : public ScriptUpdater {
public:
    bool update(const std::string& projectCopy, const std::string& templateCopy, std::string& why) override {
        m_unplaced.clear();
        auto plan = planValueUpdate(projectCopy, templateCopy, why);
        if (!plan || !updateKeepingValues(*plan, why)) {
            return false;
        }
        m_unplaced = std::move(plan->unplaced);
        return true;
    }
    // They are in the file of old values too.
    std::string unplaced() const override { return unplacedText(m_unplaced); }

private:
    std::vector<UnplacedValue> m_unplaced;
};

}  // namespace zoka
