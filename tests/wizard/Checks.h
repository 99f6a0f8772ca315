// What holds for a wizard's definition of any bytes, for the tests and the fuzzer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "J8ProjectWizard/CreationPlan.h"

namespace zoka::test {

// Whatever it names, no path that the plan makes leaves the project folder, and none that it reads leaves the
// templates; what the dialog shows of it can be asked for. Empty, or what is wrong. Makes nothing, and reads no file.
std::string planFault(const CreationPlan& plan);
// The same of the plan that the bytes give, which `plans` counts then; those that are no wizard give none.
std::string planFault(std::string_view wizard, size_t* plans = nullptr);

}  // namespace zoka::test
