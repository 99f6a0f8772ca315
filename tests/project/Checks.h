// What holds of any bytes as a project.
#pragma once

#include <string>
#include <string_view>

namespace zoka::test {

// The three files of a project in one text: the project file, then, each behind a line "---", the behaviours file
// b.xml and the components file c.xml. They are written to `folder`, which must be the current folder, so that
// references without roots find them. What is wrong, or empty.

// Loading and checking end; every value is found by its address; every row of every entity can be made.
std::string loadFault(std::string_view files, const std::string& folder);
// What is written reads back equal, and is written the same again, by its tree too.
std::string saveFault(std::string_view files, const std::string& folder);

}  // namespace zoka::test
