// Random values that an entry takes, for tests that edit whole scripts.
#pragma once

#include <random>
#include <string>

#include "controls/EntryModel.h"

namespace zoka::test {

// A value that the row takes and that differs from its own where it has more than one.
std::string otherValue(const EntryModel& row, std::minstd_rand& random);

}  // namespace zoka::test
