// Runs a string of bytes as operations on a memory file and on a plain model of it, for random tests and for
// fuzzing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "util/File.h"

struct dmemfile_peek {
    static std::int32_t alloc(const dmemfile_t& file) { return file.alloc; }
    static size_t blockSize(std::int32_t alloc) { return dmemfile_t::blockSize(alloc); }
};

namespace zoka::test {

// Where file and model first disagree, in words; empty when they never do.
std::string runMemFileOps(const std::uint8_t* data, size_t size);

}  // namespace zoka::test
