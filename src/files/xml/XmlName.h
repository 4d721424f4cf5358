#pragma once

namespace tavoren {

/// May this character begin an element name?
bool isXmlNameStart(wchar_t c);
/// May it stand behind the first one? Every start character may.
bool isXmlNameCharacter(wchar_t c);

}  // namespace tavoren
