#include "files/TestingConfig.h"

#include <array>
#include <cstdlib>
#include <string>
#include <string_view>
#include <variant>

#include "common/Text.h"
#include "common/Utf8.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlDocument.h"
#include "frame/Console.h"
#include "platform/Files.h"

namespace tavoren {

namespace {

constexpr std::string_view fileName = "TestingConfig.xml";

struct Key {
    std::wstring_view name;
    std::variant<double TestingConfig::*, std::int32_t TestingConfig::*> field;
};

// In reading order, which is not quite the order of the fields.
constexpr std::array keys{
    Key{L"rotation_agreement_degrees_acc", &TestingConfig::rotation_agreement_degrees_acc},
    Key{L"gyr_threshold_motionless_DPS", &TestingConfig::gyr_threshold_motionless_DPS},
    Key{L"gyr_threshold_motion_DPS", &TestingConfig::gyr_threshold_motion_DPS},
    Key{L"acc_Threshold_G0", &TestingConfig::acc_Threshold_G0},
    Key{L"max_time_gap_ms", &TestingConfig::max_time_gap_ms},
    Key{L"max_frequency_diff_Hz", &TestingConfig::max_frequency_diff_Hz},
    Key{L"max_interval_std_ms", &TestingConfig::max_interval_std_ms},
    Key{L"mag_Threshold_angles", &TestingConfig::mag_Threshold_angles},
    Key{L"mag_Threshold_Noise", &TestingConfig::mag_Threshold_Noise},
    Key{L"mag_Static_Threshold", &TestingConfig::mag_Static_Threshold},
    Key{L"mag_scale_Thershold", &TestingConfig::mag_scale_Thershold},
    Key{L"rotation_agreement_degrees_mag", &TestingConfig::rotation_agreement_degrees_mag},
    Key{L"gyr_MaxNoise_DPS", &TestingConfig::gyr_MaxNoise_DPS},
    Key{L"acc_MaxNoise_G0", &TestingConfig::acc_MaxNoise_G0},
    Key{L"gyr_MaxSpike_DPS", &TestingConfig::gyr_MaxSpike_DPS},
    Key{L"acc_MaxSpike_G0", &TestingConfig::acc_MaxSpike_G0},
    Key{L"max_spikes_allowed", &TestingConfig::max_spikes_allowed},
    Key{L"hand_held_motionless_factor", &TestingConfig::hand_held_motionless_factor},
};

/// Leading text that is no number gives 0, trailing text is ignored. Single precision, as the
/// thresholds have always been read.
float singleOf(const std::wstring& text) {
    return std::strtof(toUtf8Lossy(text).c_str(), nullptr);
}

void store(TestingConfig& record, const Key& key, float value) {
    if (const auto* const number = std::get_if<double TestingConfig::*>(&key.field))
        record.*(*number) = static_cast<double>(value);
    else if (const auto* const integer = std::get_if<std::int32_t TestingConfig::*>(&key.field))
        record.*(*integer) = truncateToInt32(static_cast<double>(value));
}

void readKeys(TestingConfig& record) {
    XmlDocument document;
    if (!isRegularFile(fileName) || document.load(fileName) != XmlCode::success)
        return;
    const auto root = document.findChild(L"TestingConfig");
    if (!root) {
        Console::printLine("Failed to  get root node of TestingConfig");
        return;
    }
    for (const Key& key : keys) {
        if (const auto child = root->findChild(key.name))
            store(record, key, singleOf(child->text));
    }
}

constinit TestingConfig processConfig;

}  // namespace

TestingConfig& testingConfig() {
    return processConfig;
}

void loadTestingConfig(TestingConfig& record) noexcept {
    try {
        readKeys(record);
    } catch (...) {
        return;  // the thresholds stored so far stay
    }
}

}  // namespace tavoren
