#include "common/Text.h"
#include "common/Utf8.h"
#include "numerics/Vector.h"

namespace tavoren {

std::string logText(const Vector& a) {
    constexpr std::size_t width = 10;
    std::string text;
    for (const double x : a) {
        const std::string number = formatNumber(x);
        if (number.size() < width)
            text.append(width - number.size(), ' ');
        text += number;
        text += ' ';
    }
    text += '\n';
    return text;
}

std::wstring wideLogText(const Vector& a) {
    return widen(logText(a));
}

std::string listText(const Vector& a) {
    std::string text;
    for (const double x : a) {
        appendNumber(text, x);
        text += ',';
    }
    if (!a.empty())
        text.back() = ';';
    return text;
}

std::wstring wideListText(const Vector& a) {
    return widen(listText(a));
}

}  // namespace tavoren
