#include "util/SystemError.h"

#include <cerrno>
#include <cstring>

namespace zoka {

OsFault faultOf(SystemErrorNumber number) {
    switch (number) {
        case EACCES:
        case EPERM:
        case EROFS:
            return OsFault::NoPermission;
        case ENOSPC:
        case EDQUOT:
            return OsFault::NoRoom;
        case EBUSY:
        case ETXTBSY:
            return OsFault::InUse;
        default:
            return OsFault::Other;
    }
}

std::string systemWords(SystemErrorNumber number) {
    return std::strerror(static_cast<int>(number));
}

}  // namespace zoka
