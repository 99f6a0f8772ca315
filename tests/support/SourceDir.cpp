#include "tests/support/SourceDir.h"

namespace zoka::test {

std::filesystem::path sourceDir() {
    return ZOKA_SOURCE_DIR;
}

}  // namespace zoka::test
