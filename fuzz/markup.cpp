// Any bytes as a script.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/customize/Checks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string fault = zoka::test::scriptFault(text, static_cast<unsigned>(size));
    if (!fault.empty()) {
        std::fprintf(stderr, "does not hold: %s\n", fault.c_str());
        std::abort();
    }
    return 0;
}
