// How a call of a rehearsal ends without having done anything.
#pragma once

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <string>

namespace rcp::inspect {

inline int failWith(int error) {
    errno = error;
    return -1;
}

/// What the system would say of the real file or directory; errno tells why not.
inline bool isAllowed(const std::string& place, int access) {
    return faccessat(AT_FDCWD, place.c_str(), access, AT_EACCESS) == 0;
}

}  // namespace rcp::inspect
