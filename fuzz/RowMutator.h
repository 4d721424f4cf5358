#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "common/Text.h"

namespace tavoren::fuzz {

/// Changes dumps as a sensor, a stream or an operator might: rows are lost, come twice, or show
/// something else in one column.
class RowMutator {
  public:
    explicit RowMutator(unsigned seed) : random(seed) {}

    std::string mutated(const std::string& text) {
        Lines lines = linesOf(text);
        const std::size_t first = pick(lines.size());
        const std::size_t count = std::min(lines.size() - first, std::size_t{1} << pick(9));
        const auto begin = lines.begin() + static_cast<std::ptrdiff_t>(first);
        const auto end = begin + static_cast<std::ptrdiff_t>(count);
        const std::size_t kind = pick(8);
        if (kind == 0) {
            lines.erase(begin, end);
        } else if (kind == 1) {
            Lines twice;
            std::for_each(begin, end,
                          [&](const auto& line) { twice.insert(twice.end(), 2, line); });
            lines.insert(lines.erase(begin, end), twice.begin(), twice.end());
        } else {
            const Change change = anyChange();
            const std::size_t column = pick(4);
            std::for_each(begin, end, [&](std::string& line) { apply(change, column, line); });
        }
        std::string result;
        for (const std::string& line : lines)
            result += (result.empty() ? "" : "\n") + line;
        return result;
    }

  private:
    using Lines = std::vector<std::string>;

    struct Change {
        double factor;
        double addend;
        std::string text;  ///< in place of the number, unless empty
    };

    static Lines linesOf(const std::string& text) {
        Lines lines(1);
        for (const char c : text)
            if (c == '\n')
                lines.emplace_back();
            else
                lines.back() += c;
        return lines;
    }

    std::size_t pick(std::size_t below) { return random() % below; }

    Change anyChange() {
        constexpr std::array factors{-1.0, 0.0, 0.5, 0.9, 1.01, 1.1, 2.0, 100.0, 1e300};
        constexpr std::array addends{0.0, 0.0, 0.01, -0.1, 1.0, 30.0, -500.0, 1e9};
        const std::array<std::string, 8> texts{"", "", "", "", "nan", "inf", "-1e308", "1e-320"};
        return {factors[pick(factors.size())], addends[pick(addends.size())],
                texts[pick(texts.size())]};
    }

    /// A line without such a column stays.
    static void apply(const Change& change, std::size_t column, std::string& line) {
        std::size_t begin = 0;
        for (std::size_t comma = 0; comma < column; ++comma) {
            begin = line.find(',', begin) + 1;
            if (begin == 0)
                return;
        }
        const std::size_t length = std::min(line.find(',', begin), line.size()) - begin;
        const double value = std::strtod(line.substr(begin, length).c_str(), nullptr);
        line.replace(begin, length,
                     change.text.empty() ? formatGeneral(value * change.factor + change.addend)
                                         : change.text);
    }

    std::minstd_rand random;
};

}  // namespace tavoren::fuzz
