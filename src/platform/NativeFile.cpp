#include "platform/NativeFile.h"

#include <utility>

namespace tavoren {

NativeFile& NativeFile::operator=(NativeFile&& other) noexcept {
    if (this != &other) {
        close();
        descriptor = other.release();
    }
    return *this;
}

int NativeFile::release() {
    return std::exchange(descriptor, -1);
}

}  // namespace tavoren
