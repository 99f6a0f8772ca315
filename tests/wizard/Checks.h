// What holds for a wizard's definition of any bytes, for the tests and the fuzzer.
#pragma once

#include <string>
#include <string_view>

namespace zoka::test {

// Whatever it names, no path that the plan makes leaves the project folder, and none that it reads leaves the templates; what
// the dialog shows of it can be asked for. Empty, or what is wrong. Makes nothing, and reads no file.
std::string planFault(std::string_view wizard);

}  // namespace zoka::test
