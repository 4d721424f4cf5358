#include "simulator/Recorder.h"

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "files/CsvParser.h"
#include "platform/Files.h"

namespace tavoren::simulator {

namespace {

/// Milliseconds between two samples, as the tool asks for them.
int intervalOf(const SensorModel& model) {
    return model.kind().quantity == SensorKind::Quantity::light ? 20 : 10;
}

SampleBuffer samplesOf(SensorModel& model, const World& world, const Script& script) {
    SampleBuffer samples;
    const int interval = intervalOf(model);
    for (int time = 0; time < script.seconds() * 1000.0; time += interval)
        samples.append({double(time), model.reading(script.at(time / 1000.0), world)});
    return samples;
}

std::string matrixText(const Matrix& matrix) {
    return toUtf8Lossy(wideListText(matrix));
}

std::string truthOf(const SensorModel& model, const World& world) {
    const std::string name = model.description()->displayName() + ".";
    const TrueSensor& truth = model.truth();
    const std::string noise = name + "noise=" + formatNumber(truth.noise) + "\n";
    if (model.kind().quantity == SensorKind::Quantity::light)
        return name + "scale=" + formatNumber(truth.scale(0, 0)) + "\n" + noise;
    std::string text = name + "offset=" + listText(truth.offset) + "\n" + name +
                       "scale=" + matrixText(truth.scale) + "\n" + name +
                       "mapping=" + matrixText(truth.mapping) + "\n" + noise;
    if (model.kind().quantity == SensorKind::Quantity::field)
        text += name + "field=" + formatNumber(world.field) + "\n" + name +
                "dip=" + formatNumber(world.dip) + "\n";
    return text;
}

}  // namespace

void recordDumps(Device& device, const Script& script, const std::string& folder) {
    if (!makeDirectoryTree(folder))
        throw CalibrationException("cannot make the folder " + folder);
    SensorDataMap data;
    std::vector<std::shared_ptr<Sensor>> order;
    for (SensorModel& model : device.sensors())
        if (model.kind().isCorrected() && model.kind().quantity != SensorKind::Quantity::none) {
            order.push_back(model.description());
            data[order.back()] = samplesOf(model, device.world(), script);
        }
    const std::string base = folder + "\\dataDump.csv";
    CsvParser().writeToFile(base, data, order);
    for (const auto& sensor : order)
        if (const std::string name = CsvParser::sensorFileName(base, sensor->displayName());
            !isRegularFile(name))
            throw CalibrationException("cannot write " + name);
}

void writeTruth(const Device& device, const std::string& path) {
    std::string text;
    for (const SensorModel& model : device.sensors())
        if (model.kind().isCorrected() && model.kind().quantity != SensorKind::Quantity::none)
            text += truthOf(model, device.world());
    if (!replaceFile(path, text, LineEnds::asWritten))
        throw CalibrationException("cannot write the truth file " + path);
}

}  // namespace tavoren::simulator
