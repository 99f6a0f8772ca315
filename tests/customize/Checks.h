// What holds for any bytes at all; tests and the fuzzer check the same.
#pragma once

#include <string>

namespace zoka::test {

// Of a script: what is found lies inside and in order, saving without changes is the identity, values put in
// are read back, and where saving doesn't read the script again it knows the same as if it had. Returns what
// doesn't hold, or nothing. `seed` chooses the values.
std::string scriptFault(const std::string& text, unsigned seed);

// Of a value file: its records are whole and survive being written and read again, and values without a place
// can be added to it.
std::string valueFileFault(const std::string& bytes);

}  // namespace zoka::test
