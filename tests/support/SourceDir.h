// Where the sources lie, for tests that read samples and kept inputs.
#pragma once

#include <filesystem>
#include <string>

namespace zoka::test {

std::filesystem::path sourceDir();
// All bytes of a file of this system; none where it can't be read.
std::string readNative(const std::filesystem::path& path);

}  // namespace zoka::test
