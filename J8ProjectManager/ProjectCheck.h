// What is wrong in a project beyond what loading it notices.
#pragma once

#include <vector>

#include "J8ProjectManager/J8ProjectManager.h"

namespace zoka {

// Parents that no behaviours file has, skills and properties that the parent or component lacks, values that
// their type or limits forbid, names that come twice, behaviours files that no entity uses, sections whose file
// is no XML, map files that aren't there. In the order of the files. Reads the sections' files; linear otherwise.
std::vector<J8Finding> checkProject(const CJ8ProjectManager& project);

}  // namespace zoka
