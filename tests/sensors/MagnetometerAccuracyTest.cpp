#include <gtest/gtest.h>

#include "files/xml/XmlElement.h"
#include "sensors/MagneticField.h"

namespace tavoren {
namespace {

/// How a recording of four flat positions, each a quarter turn on, departs from a perfect one.
struct Fault {
    double heading = 0.0;    // degrees, all positions
    double lastTurn = 0.0;   // degrees too much
    double eastScale = 1.0;  // of the circle
    double shake = 0.0;      // mG on the first axis, in the second step
    double lift = 0.0;       // mG on the still axis, up in the first half and down in the second
};

bool passes(Magnetometer& sensor, FakeRun& run, const Fault& fault, const Place& place) {
    sensor.setSensorManager(run);
    place.apply(sensor);
    run.fillSegments(sensor, 50, [&](int segment, int k) {
        const double turned =
            segment / 2 * 90.0 + (segment % 2 == 1 ? 90.0 * k / 50 : 0.0) + (segment == 6 ? fault.lastTurn : 0.0);
        Vector field = afterTurn(northernField(450.0, 60.0), 2, turned + fault.heading);
        field[0] *= fault.eastScale;
        field[0] += segment == 2 ? (k % 2 == 0 ? fault.shake : -fault.shake) : 0.0;
        field[2] += segment < 4 ? fault.lift : -fault.lift;
        return valuesOf(place.body * field + Vector{30.0, -20.0, 10.0});
    });
    testing::internal::CaptureStdout();
    const bool passed = sensor.testCalibration();
    testing::internal::GetCapturedStdout();
    return passed;
}

TEST(MagnetometerAccuracy, EachTestFindsItsFaultAndAllRun) {
    using Names = std::vector<std::wstring>;
    for (const auto& [fault, failing] :
         std::vector<std::pair<Fault, Names>>{{{.heading = -14.0}, {}},
                                              {{.heading = 16.0}, {L"TestDirection"}},
                                              {{.lastTurn = 16.0}, {L"TestMagValues", L"TestDirection"}},
                                              {{.eastScale = 0.89}, {}},
                                              {{.eastScale = 0.84}, {L"TestMagScale"}},
                                              {{.shake = 14.9}, {}},
                                              {{.shake = 15.1}, {L"TestMagSTD"}},
                                              {{.lift = 60.0}, {}},
                                              {{.lift = 80.0}, {L"TestStaticValues"}}}) {
        FakeRun run(SequenceKind::magAccuracy, RunMode::test);
        Magnetometer sensor(staticMagnetometer);
        EXPECT_EQ(passes(sensor, run, fault, places.front()), failing.empty());
        EXPECT_EQ(run.failures.count("Magnetometer"), failing.empty() ? 0U : 1U);
        Names failed;
        for (const auto& section : sensor.logNode->children())
            if (section->toString().find(L" FAILED") != std::wstring::npos)
                failed.push_back(section->name.substr(std::size("Performing_") - 1));
        EXPECT_EQ(failed, failing);
        EXPECT_EQ(sensor.logNode->children().size(), 5U);
    }
}

TEST(MagnetometerAccuracy, HeadingsKnowThePlaceOfTheSensor) {
    for (const Place& place : places) {
        FakeRun run(SequenceKind::magAccuracy, RunMode::test);
        Magnetometer sensor(staticMagnetometer);
        EXPECT_TRUE(passes(sensor, run, {}, place)) << int{place.formFactor} << int{place.hinge};
    }
    EXPECT_EQ(listText(Magnetometer::wrapDegrees({-270.0, 360.0, 360.5, 800.0, 0.0})), listText({90.0, 360.0, 0.5, 440.0, 0.0}));
}

}  // namespace
}  // namespace tavoren
