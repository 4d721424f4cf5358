#pragma once

#include <cstdint>

namespace tavoren {

/// Thresholds of the movement and sensor checks, named as in TestingConfig.xml; the units stand in
/// the names. A factory tunes them by that file in the working directory.
struct TestingConfig {
    double rotation_agreement_degrees_acc = 5.0;
    double gyr_threshold_motionless_DPS = 100.0;
    double gyr_threshold_motion_DPS = 15.0;
    double acc_Threshold_G0 = 0.1;
    std::int32_t max_time_gap_ms = 100;
    std::int32_t max_frequency_diff_Hz = 10;
    std::int32_t max_interval_std_ms = 10;
    double mag_Threshold_Noise = 15.0;
    double mag_Threshold_angles = 15.0;
    double mag_Static_Threshold = 70.0;
    double mag_scale_Thershold = 0.15;
    double rotation_agreement_degrees_mag = 15.0;
    double gyr_MaxNoise_DPS = 0.5;
    double acc_MaxNoise_G0 = 0.04;
    double gyr_MaxSpike_DPS = 50.0;
    double acc_MaxSpike_G0 = 0.5;
    std::int32_t max_spikes_allowed = 3;
    double hand_held_motionless_factor = 3.0;

    friend bool operator==(const TestingConfig&, const TestingConfig&) = default;
};

/// The record of this process. It is complete before anything else runs; a run loads it once, at
/// its start, and only reads it from then on.
TestingConfig& testingConfig();

/// Reads TestingConfig.xml of the working directory over the record. Never fails: without a
/// readable file or where a key is missing, the values stay; a text that is no number gives 0.
void loadTestingConfig(TestingConfig& record) noexcept;

}  // namespace tavoren
