// What is wrong in a project beyond what loading it notices.
#pragma once

#include <vector>

#include "J8ProjectManager/ProjectFields.h"

namespace zoka {

// Parents that no behaviours file has, skills and properties that the parent or component lacks, values that
// their type or limits forbid, names that come twice, behaviours files that no entity uses, sections whose file
// is no XML, map files that aren't there. In the order of the files. Reads the sections' files; linear otherwise.
std::vector<J8Finding> checkProject(const CJ8ProjectManager& project);

// Why a value that an entity doesn't hold yet would do nothing: no behaviours or components file declares that parent,
// skill or property, or the property isn't for entities to change. Else empty.
std::string undeclaredRefusal(const CJ8ProjectManager& project, const ProjectField& field,
                              const std::string& value);

}  // namespace zoka
