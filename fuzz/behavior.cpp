// Any bytes as a script; the first four say which part of it is the action's block.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "customize/BehaviorPanel.h"
#include "plugin/host/HostAbi.h"

namespace {

void check(const zoka::BehaviorPanel& panel) {
    for (const zoka::CustomEntry& row : panel.rows) {
        zoka::behaviorFacts(row, panel.set);
        const bool inRange = (row.kind != zoka::kSkill || zoka::skillNumber(row) > 0) &&
                             (row.kind != zoka::kFlag || zoka::flagNumber(row) > 0);
        if (!inRange) {
            std::abort();
        }
    }
}

// In memory of just that size, so that the sanitizer sees a step beyond either end.
void readAlone(std::string_view block, zoka::BehaviorPanel& panel) {
    const std::unique_ptr<char[]> exact(new char[block.size()]);
    std::copy(block.begin(), block.end(), exact.get());
    zoka::readActionBlock({exact.get(), block.size()}, 1, panel);
    check(panel);
}

}  // namespace

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
    zoka::readBehaviorMarkup(script, panel);
    check(panel);
    panel.set = zoka::textSetOf(script);
    const std::int64_t start = panel.blockStart, end = start + panel.blockLength;
    if (start >= 0 && end >= start && end <= static_cast<std::int64_t>(size)) {
        readAlone(
            std::string_view(script).substr(static_cast<size_t>(start), static_cast<size_t>(end - start)),
            panel);
    }
    readAlone(script, panel);
    return 0;
}
