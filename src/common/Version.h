#pragma once

#include <string_view>

namespace tavoren {

/// The version in the banner and in the result logs.
inline constexpr std::wstring_view versionText = L"3.1.0.4596";

}  // namespace tavoren
