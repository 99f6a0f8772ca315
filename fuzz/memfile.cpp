// Any bytes as operations on a memory file; a disagreement with the plain model is a finding.
#include <cstdio>
#include <cstdlib>

#include "tests/support/MemFileOps.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size) {
    const std::string report = zoka::test::runMemFileOps(data, size);
    if (!report.empty()) {
        std::fprintf(stderr, "%s\n", report.c_str());
        std::abort();
    }
    return 0;
}
