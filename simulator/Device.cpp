#include "simulator/Device.h"

#include <algorithm>

namespace tavoren::simulator {

Device::Device(const DevicePlan& plan) : surroundings(plan.world) {
    std::vector<const SensorKind*> kinds;
    for (const std::string& letter : plan.sensors)
        kinds.push_back(&sensorKind(letter));
    std::sort(kinds.begin(), kinds.end());
    kinds.erase(std::unique(kinds.begin(), kinds.end()), kinds.end());
    listedCount = kinds.size();
    const SensorKind* const unlisted = &sensorKind("A0");
    if (std::find(kinds.begin(), kinds.end(), unlisted) == kinds.end())
        kinds.push_back(unlisted);
    for (const SensorKind* const kind : kinds) {
        // Each sensor has numbers of its own, whatever other sensors the device has.
        const auto ownSeed = plan.seed * 1000U + static_cast<unsigned>(kind - sensorKinds().data());
        std::mt19937 random(ownSeed);
        TrueSensor truth = drawSensor(*kind, kind->isCorrected() ? plan.errors : Errors::none,
                                      plan.noiseFactor, random);
        if (kind->isSecond())
            truth.body = lidAxes(plan.formFactor, plan.hinge);
        models.emplace_back(*kind, truth, ownSeed + 500U);
        Sensor& sensor = *models.back().description();
        sensor.formFactor = plan.formFactor;
        sensor.hinge = plan.hinge;
        store.add(kind->luid, factoryRecord(sensor));
    }
}

std::vector<Luid> Device::listed() const {
    std::vector<Luid> luids;
    for (std::size_t i = 0; i < listedCount; ++i)
        luids.push_back(models[i].luid());
    return luids;
}

SensorModel* Device::find(const Luid& luid) {
    const auto found = std::find_if(models.begin(), models.end(),
                                    [&luid](const SensorModel& m) { return m.luid() == luid; });
    return found == models.end() ? nullptr : &*found;
}

void Device::reset() {
    for (SensorModel& model : models)
        model.useRecord(*store.find(model.luid()));
}

}  // namespace tavoren::simulator
