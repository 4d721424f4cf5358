#pragma once

#include <string_view>

namespace tavoren {

/// Whether the text behind the last "." of `path`, the whole path if it has none, is `extension`
/// in any case.
bool hasExtension(std::string_view path, std::string_view extension);

}  // namespace tavoren
