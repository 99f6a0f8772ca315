#include "xml/XMLErrors.h"

const char* xmlErrorText(int code) {
    static constexpr const char* texts[] = {
        "No error",
        "Warning: Unmatched end tag",
        "Error: No XML data",
        "Error: First token not start tag",
        "Error: Missing start tag name",
        "Error: Missing end tag name",
        "Error: Unmatched quote",
        "Error: Unmatched end tag",
        "Error: Unmatched clear tag end",
        "Error: Unexpected token found",
        "Error: Invalid tag found",
        "Error: No elements found",
        "Error: File not found",
        "Error: First Tag not found",
        "Error: Unknown character entity",
        "Error: unable to convert between UNICODE and MultiByte chars",
        "Error: unable to open file for writing",
        "Error: cannot write into file",
        "Warning: Base64-string length is not a multiple of 4",
        "Error: Base64-string contains an illegal character",
        "Warning: Base64-string is truncated",
        "Error: Base64 decode output buffer is too small",
    };
    static_assert(sizeof texts / sizeof *texts == kXmlBase64BufferSmall + 1);
    return code >= 0 && code <= kXmlBase64BufferSmall ? texts[code] : "Unknown";
}
