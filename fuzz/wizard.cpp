// A wizard's definition from the fuzzer's bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/wizard/Checks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string fault = zoka::test::planFault({reinterpret_cast<const char*>(data), size});
    if (!fault.empty()) {
        std::fprintf(stderr, "%s\n", fault.c_str());
        std::abort();
    }
    return 0;
}
