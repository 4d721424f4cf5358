#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace tavoren {

/// The numbers of a text, whatever separates them.
inline std::vector<double> numbersOf(std::string text) {
    for (char& c : text)
        if (c == ',' || c == ';')
            c = ' ';
    std::istringstream stream(text);
    std::vector<double> numbers;
    for (double number = 0.0; stream >> number;)
        numbers.push_back(number);
    return numbers;
}

/// The parameters of a truth file by their names, such as "Accelerometer.offset".
inline std::map<std::string, std::vector<double>> truthOf(const std::string& file) {
    std::map<std::string, std::vector<double>> truth;
    std::istringstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t equals = line.find('=');
        truth[line.substr(0, equals)] = numbersOf(line.substr(equals + 1));
    }
    return truth;
}

/// What the calibration of a sensor printed of itself must be the truth within bounds. A median of
/// n samples is good to about 1.25 noise / sqrt(n); a rest of three seconds holds at least 100 of
/// them, and five such deviations are allowed, three times as many where positions are combined.
/// Of a single position comes the offset alone.
inline void expectTruth(const std::string& shown, const std::string& truthFile, const std::string& sensor) {
    // An ellipsoid's scale is that of a field of 500 milligauss.
    const double scaleUnit = sensor == "Magnetometer" ? 50.0 : 1.0;
    const auto truth = truthOf(truthFile);
    const double bound = 5.0 * 3.0 * 1.25 * truth.at(sensor + ".noise").at(0) / 10.0;
    const auto compare = [&](const std::string& heading, const std::string& name, double limit) {
        const std::string title = sensor + " " + heading + ":\n";
        const std::size_t at = shown.find(title);
        ASSERT_NE(at, std::string::npos) << title << shown;
        const std::vector<double> found = numbersOf(shown.substr(at + title.size()));
        const std::vector<double>& expected = truth.at(sensor + "." + name);
        ASSERT_GE(found.size(), expected.size()) << title;
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(found[i], expected[i], limit) << title << " element " << i;
    };
    compare("Offset", "offset", bound);
    if (shown.find("Step 1 out of 1.") != std::string::npos)
        return;
    compare("Scale", "scale", bound / scaleUnit);
    compare("Axis mapping", "mapping", 0.0);
}

}  // namespace tavoren
