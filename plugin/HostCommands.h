// Facts of the host's command operation, and the sizes of the texts it fills.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zoka {

// Bytes of every path buffer handed to the host, the terminator included.
inline constexpr std::size_t kHostPathSize = 260;
// Bytes of the buffer for one item's name of the host's list.
inline constexpr std::size_t kHostItemNameSize = 64;

enum ZunCommandCode : std::int32_t {
    CmdGetSuiteFolder = 1,         // record; the suite's folder
    CmdOpenMap = 8,                // data: the map's path, size: its length without the terminator
    CmdGetTemplateSubfolder = 12,  // record; the name of the template subfolder
    CmdQueryPath13 = 13,           // record; a further folder, asked for by the entry controls
};

// The second argument of the command operation for every record command, whatever the record's own code.
inline constexpr std::int32_t kRecordCommand = 1;
inline constexpr std::int32_t kRecordSize = 16;

// A pair of texts for the substituting copy: `find` is replaced by `replacement`. An array of
// them ends with two nulls.
struct ZunSubstitution {
    const char* find;
    const char* replacement;
};

}  // namespace zoka
