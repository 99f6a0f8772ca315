// Files as the product has them, in any size.
#pragma once

#include <string>

namespace zoka::bench {

// A template catalogue: each script with eight attributes, a class, a description of 200 characters with
// entities, needs, and two sections with two actions each.
std::string catalogueXml(int scripts);
// A project file, each entity with five skills and two components of two edits.
std::string projectXml(int levels, int entitiesPerLevel);

}  // namespace zoka::bench
