#include <sys/stat.h>

#include <cerrno>

#include "platform/Files.h"
#include "platform/posix/SystemObject.h"

namespace tavoren {

BOOL CreateDirectoryA(const char* pathName, const void*) {
    if (mkdir(nativePath(pathName).c_str(), 0777) != 0)
        return failWith(errorFromErrno(errno));
    return TRUE;
}

}  // namespace tavoren
