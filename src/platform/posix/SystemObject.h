#pragma once

#include <memory>

#include "platform/Platform.h"

namespace tavoren {

/// What a `HANDLE` points to. Objects of the process itself are static and never closed; all others
/// are kept by `openObject` until `CloseHandle`.
struct SystemObject {
    SystemObject() = default;
    SystemObject(const SystemObject&) = delete;
    SystemObject& operator=(const SystemObject&) = delete;
    virtual ~SystemObject() = default;
};

/// Keeps an object until its handle is closed.
HANDLE openObject(std::shared_ptr<SystemObject> object);

/// The open object of a handle; null for any other handle. A call that holds it is safe from a
/// handle that is closed meanwhile.
std::shared_ptr<SystemObject> openedObject(HANDLE handle);

/// The same for an object of a class; sets ERROR_INVALID_HANDLE if there is none.
template <typename Object>
std::shared_ptr<Object> openedAs(HANDLE handle);

/// Sets what `GetLastError` gives in this thread, and gives FALSE.
BOOL failWith(DWORD error);

/// The system's error number as an error code of the platform calls.
DWORD errorFromErrno(int number);

template <typename Object>
std::shared_ptr<Object> openedAs(HANDLE handle) {
    auto object = std::dynamic_pointer_cast<Object>(openedObject(handle));
    if (!object)
        failWith(ERROR_INVALID_HANDLE);
    return object;
}

}  // namespace tavoren
