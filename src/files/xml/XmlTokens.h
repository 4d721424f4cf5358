#pragma once

#include <string_view>

/// The fixed texts of the document format, matched case-sensitively.
namespace tavoren::XmlToken {

constexpr std::wstring_view declarationOpen = L"<?";
constexpr std::wstring_view declarationClose = L"?>";
constexpr std::wstring_view commentOpen = L"<!--";
constexpr std::wstring_view commentClose = L"-->";
constexpr std::wstring_view cdataOpen = L"<![CDATA[";
constexpr std::wstring_view markupOpen = L"<!";
constexpr std::wstring_view tagOpen = L"<";
constexpr std::wstring_view emptyTagClose = L"/>";
constexpr std::wstring_view tagClose = L">";
constexpr std::wstring_view endTagOpen = L"</";
constexpr std::wstring_view lineEnd = L"\r\n";
constexpr std::wstring_view indent = L"    ";

}  // namespace tavoren::XmlToken
