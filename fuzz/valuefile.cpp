// Any bytes as a value file: records are whole, and what they give is written and read again alike.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "customize/CarryValues.h"
#include "customize/ValueFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const zoka::ValueRecords first = zoka::parseValueFile(bytes);
    std::string again = "1\n0\n0\n\n";
    size_t carried = 0;
    for (const zoka::ValueRecord& record : first.records) {
        if (record.id <= 0 || record.value.size() > zoka::kValueFileLine) std::abort();
        // A value that fills a line leaves no room for its line end.
        if (record.value.size() == zoka::kValueFileLine) continue;
        zoka::appendValueRecord(again, record);
        ++carried;
    }
    const zoka::ValueRecords second = zoka::parseValueFile(again);
    if (second.error || second.records.size() != carried) std::abort();
    zoka::CustomScript script;
    const std::vector<zoka::UnplacedValue> lost = {{{3, 11, "a", "1"}, "why"}, {{-1, 11, "b", "2"}, "why"}};
    const std::string old = zoka::oldValuesText(bytes, script, lost);
    if (old.find("\n3\n11\n1\n\n") == old.npos || zoka::parseValueFile(old).error) std::abort();
    return 0;
}
