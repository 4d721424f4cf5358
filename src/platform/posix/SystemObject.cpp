#include "platform/posix/SystemObject.h"

#include <cerrno>
#include <map>
#include <mutex>

#include "common/GuardedBy.h"
#include "common/NeverDestroyed.h"

namespace tavoren {

namespace {

thread_local DWORD lastError = 0;

struct OpenObjects {
    std::mutex lock;
    std::map<HANDLE, std::shared_ptr<SystemObject>> byHandle TAVOREN_GUARDED_BY(lock);
};

OpenObjects& openObjects() {
    static NeverDestroyed<OpenObjects> objects;
    return objects.object;
}

}  // namespace

SystemObject noObject;

HANDLE openObject(std::shared_ptr<SystemObject> object) {
    HANDLE const handle = object.get();
    const std::scoped_lock lock(openObjects().lock);
    openObjects().byHandle[handle] = std::move(object);
    return handle;
}

std::shared_ptr<SystemObject> openedObject(HANDLE handle) {
    const std::scoped_lock lock(openObjects().lock);
    const auto found = openObjects().byHandle.find(handle);
    return found == openObjects().byHandle.end() ? nullptr : found->second;
}

BOOL CloseHandle(HANDLE object) {
    if (!object || object == INVALID_HANDLE_VALUE)
        return failWith(ERROR_INVALID_HANDLE);
    const auto kept = openedObject(object);  // ends its life outside the lock
    const std::scoped_lock lock(openObjects().lock);
    openObjects().byHandle.erase(object);
    return TRUE;
}

BOOL failWith(DWORD error) {
    lastError = error;
    return FALSE;
}

DWORD errorFromErrno(int number) {
    switch (number) {
        case EEXIST:
            return ERROR_ALREADY_EXISTS;
        case ENOENT:
        case ENOTDIR:
            return ERROR_PATH_NOT_FOUND;
        case EACCES:
        case EPERM:
        case EROFS:
            return ERROR_ACCESS_DENIED;
        default:
            return ERROR_GEN_FAILURE;
    }
}

DWORD GetLastError() {
    return lastError;
}

}  // namespace tavoren
