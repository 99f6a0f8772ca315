// Any bytes as a script; the first four say which part of it is the action's block.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "customize/BehaviorPanel.h"
#include "plugin/host/HostAbi.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    zoka::BehaviorPanel panel;
    if (size >= 4) {
        std::int16_t place[2];
        std::memcpy(place, data, sizeof place);
        panel.blockStart = place[0];
        panel.blockLength = place[1];
        data += 4;
        size -= 4;
    }
    const std::string script(reinterpret_cast<const char*>(data), size);
    for (int whole = 0; whole < 2; ++whole) {
        zoka::readBehaviorMarkup(script, panel);
        for (const zoka::CustomEntry& row : panel.rows) {
            zoka::behaviorFacts(row, panel.set);
            const bool inRange = (row.kind != zoka::kSkill || zoka::skillNumber(row) > 0) &&
                                 (row.kind != zoka::kFlag || zoka::flagNumber(row) > 0);
            if (!inRange) {
                std::abort();
            }
        }
        panel.blockStart = 0;
        panel.blockLength = static_cast<std::int32_t>(size);
    }
    return 0;
}
