#include "common/Utf8.h"
#include "platform/Files.h"

namespace tavoren {

// The program's manifest makes UTF-8 its narrow encoding, so that arguments come as UTF-8 and calls
// with narrow names take it. Only the file system library converts by the C locale instead.
std::filesystem::path nativePath(std::string_view path) {
    return fromUtf8(path).value_or(L"");  // no path that exists
}

}  // namespace tavoren
