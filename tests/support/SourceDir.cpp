#include "tests/support/SourceDir.h"

#include <fstream>
#include <iterator>

namespace zoka::test {

std::filesystem::path sourceDir() {
    return ZOKA_SOURCE_DIR;
}

std::string readNative(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace zoka::test
