#include <algorithm>
#include <string>

#include "platform/Files.h"

namespace tavoren {

std::filesystem::path nativePath(std::string_view path) {
    std::string native(path);
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

}  // namespace tavoren
