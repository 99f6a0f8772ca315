// What a browse button offers.
#pragma once

#include <string_view>

namespace zoka {

// The filter of an open-file dialog for a field that holds `current`, by its extension: pictures, sounds or
// everything. Pairs of description and pattern, parted and ended with '|'.
const char* fileFilterFor(std::string_view current);

}  // namespace zoka
