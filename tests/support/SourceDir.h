// Where the sources lie, for tests that read samples and kept inputs.
#pragma once

#include <filesystem>

namespace zoka::test {

std::filesystem::path sourceDir();

}  // namespace zoka::test
