#include <cmath>

#include "common/Text.h"
#include "common/Utf8.h"
#include "frame/Console.h"
#include "sensors/InertialSensor.h"

namespace tavoren {

namespace {

/// The largest element; not-a-number if there is one, so that it never passes for small.
double largest(const Vector& distances) {
    double result = 0.0;
    for (const double distance : distances)
        if (!(distance <= result))
            result = std::isnan(result) ? result : distance;
    return result;
}

std::wstring streamed(double value) {
    return widen(formatGeneral(value));
}

bool vectorsAgree(const Vector& distances, const Vector& value, const Vector& expected,
                  double threshold, std::wstring_view testName, std::wstring_view comment) {
    if (largest(distances) <= threshold)
        return true;
    Console::printWideLine(L"Error in " + std::wstring(testName));
    Console::printWideLine(L"Error in vector assert. Vector: " + wideLogText(value) +
                           L" Expected vector: " + wideLogText(expected) +
                           L" distance is bigger than threshold of " + streamed(threshold) + L" " +
                           std::wstring(comment));
    Console::printWideLine(L"");
    return false;
}

}  // namespace

bool InertialSensor::vectorAssert(const Vector& value, const Vector& expected, double threshold,
                                  std::wstring_view testName, std::wstring_view comment) {
    return vectorsAgree(elementAbs(value - expected), value, expected, threshold, testName,
                        comment);
}

bool InertialSensor::angleAssert(const Vector& value, const Vector& expected, double threshold,
                                 std::wstring_view testName, std::wstring_view comment) {
    Vector distances = elementAbs(value - expected);
    for (double& distance : distances)
        if (distance > 180.0)
            distance = 360.0 - distance;
    return vectorsAgree(distances, value, expected, threshold, testName, comment);
}

bool InertialSensor::doubleAssert(double value, double expected, double threshold,
                                  std::wstring_view testName, std::wstring_view comment) {
    if (std::abs(value - expected) <= threshold)
        return true;
    Console::printWideLine(L"Error in " + std::wstring(testName));
    Console::printWideLine(L"Error in double assert. Value: " + streamed(value) +
                           L" Expected value: " + streamed(expected) +
                           L" distance is bigger than threshold of " + streamed(threshold) + L" " +
                           std::wstring(comment));
    return false;
}

bool InertialSensor::spikeAssert(std::int32_t count, std::wstring_view testName,
                                 std::int32_t allowed) {
    if (count <= allowed)
        return true;
    Console::printWideLine(L"Error in " + std::wstring(testName));
    Console::printWideLine(L"Spike detection error, spike count: " + std::to_wstring(count));
    return false;
}

}  // namespace tavoren
