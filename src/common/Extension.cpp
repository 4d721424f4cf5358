#include "common/Extension.h"

#include "common/Text.h"

namespace tavoren {

bool hasExtension(std::string_view path, std::string_view extension) {
    return equalsIgnoringCase(path.substr(path.rfind('.') + 1), extension);
}

}  // namespace tavoren
