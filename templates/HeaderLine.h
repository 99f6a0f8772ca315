// The comment lines of a script's header: which keyword a line carries and what stands behind it.
#pragma once

#include <string_view>
#include <vector>

namespace zoka {

// Codes of the header keywords. 5 and 20 are not used.
enum class HeaderCode {
    None = -1,
    Action = 0,
    Enable = 1,
    Entry = 2,
    Function = 3,
    Section = 4,
    Class = 6,
    Data = 7,
    Date = 8,
    Desc = 9,
    EngineReq = 10,
    Help = 11,
    IdCode = 12,
    Image = 13,
    Needs = 14,
    Note = 15,
    Prefix = 16,
    Title = 17,
    Type = 18,
    Ver = 19,
    Continuation = 21,
    EndHeader = 22,
};

enum class HeaderGroup { None, Block, Field };

// The keyword of one line (without its line end), in any case. A line that starts with "///" continues the
// one before; one that doesn't start with "//" is no header line.
HeaderCode classifyHeaderLine(std::string_view line);
// 0 to 4 are blocks, 5 to 19 header fields.
HeaderGroup groupOf(HeaderCode code);

inline bool isCommentLine(std::string_view line) {
    return line.starts_with("//");
}
// What stands between the slashes and the first ":", trimmed; empty for a line without ":".
std::string_view headerKeyword(std::string_view line);
// What stands behind the first ":" of a "//" line (nothing when it has none), or behind the slashes of a
// "///" line, trimmed.
std::string_view headerValue(std::string_view line);
// The tokens of a value, parted by any run of blanks and commas.
std::vector<std::string_view> headerTokens(std::string_view value);
// The first token, or nothing.
std::string_view firstHeaderToken(std::string_view value);

}  // namespace zoka
