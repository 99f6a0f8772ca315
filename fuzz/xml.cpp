// The XML reader and writer over the fuzzer's bytes: whatever is read must be written and read again the same.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/support/XmlCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string wrong = zoka::test::checkXml({reinterpret_cast<const char*>(data), size});
    if (!wrong.empty()) {
        std::fprintf(stderr, "does not hold: %s\n", wrong.c_str());
        std::abort();
    }
    return 0;
}
