// Every operation of the lexer over the fuzzer's bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/lex/LexCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const char* broken = zoka::lexcheck::fault(text)) {
        std::fprintf(stderr, "does not hold: %s\n", broken);
        std::abort();
    }
    return 0;
}
