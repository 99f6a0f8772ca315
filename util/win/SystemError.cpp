#include "util/SystemError.h"

#include <windows.h>

namespace zoka {

OsFault faultOf(SystemErrorNumber number) {
    switch (number) {
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return OsFault::NoPermission;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return OsFault::NoRoom;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return OsFault::InUse;
        default:
            return OsFault::Other;
    }
}

std::string systemWords(SystemErrorNumber number) {
    char text[512];
    DWORD size = FormatMessageA(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
        number, 0, text, sizeof text, nullptr);
    while (size > 0 && (text[size - 1] == ' ' || text[size - 1] == '.')) {
        --size;
    }
    return size > 0 ? std::string(text, size) : "system error " + std::to_string(number);
}

}  // namespace zoka
