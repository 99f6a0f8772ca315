// The files of a project of any size.
#pragma once

#include <string>

#include "tests/support/TempFolder.h"

namespace zoka::bench {

// The project file `name`.xml with its behaviours in files of 100 and its components in files of 1,000: as many as
// their counts, each component with `properties` of them, used by the behaviours and the entities in turn.
void writeProject(const test::TempFolder& folder, const std::string& name, int levels, int entities,
                  int behaviors, int components, int properties = 4);

}  // namespace zoka::bench
