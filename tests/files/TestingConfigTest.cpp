#include "files/TestingConfig.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "files/TemporaryFolder.h"

namespace tavoren {
namespace {

class TestingConfigFile : public testing::Test {
  protected:
    TestingConfigFile() { std::filesystem::current_path(folder.path); }
    ~TestingConfigFile() override { std::filesystem::current_path(before); }

    /// What is read from a file of this content, and what the console shows of it.
    TestingConfig read(const std::string& content, const std::string& printed = {}) const {
        folder.write("TestingConfig.xml", content);
        TestingConfig record;
        testing::internal::CaptureStdout();
        loadTestingConfig(record);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), printed);
        return record;
    }

    const std::filesystem::path before = std::filesystem::current_path();
    const TemporaryFolder folder;
};

TEST_F(TestingConfigFile, LeavesTheDefaultsWhereItCannotBeRead) {
    TestingConfig absent;
    loadTestingConfig(absent);
    EXPECT_TRUE(absent == TestingConfig() && testingConfig() == TestingConfig());
    EXPECT_EQ(read("<TestingConfig><acc_Threshold_G0>1</b></TestingConfig>"), TestingConfig());
    EXPECT_EQ(read("<TestingConfig a='&#F;'/>"), TestingConfig()) << "not even an exception shows";
    EXPECT_EQ(read("<Config/>", "Failed to  get root node of TestingConfig\n"), TestingConfig());
}

TEST_F(TestingConfigFile, SetsEachFieldByItsKeyInSinglePrecision) {
    TestingConfig expected;
    expected.acc_MaxNoise_G0 = 0.1f;
    expected.mag_scale_Thershold = 0.0;
    expected.gyr_MaxNoise_DPS = -1.5;
    expected.max_spikes_allowed = 2;
    expected.max_time_gap_ms = std::numeric_limits<std::int32_t>::max();
    expected.max_interval_std_ms = 0;
    expected.mag_Threshold_angles = 16.0;
    EXPECT_EQ(read("<testingCONFIG><ACC_maxnoise_g0>0.1</ACC_maxnoise_g0><other>7</other>"
                   "<mag_scale_Thershold>abc</mag_scale_Thershold><gyr_MaxNoise_DPS> -1.<!-- -->5e0x </gyr_MaxNoise_DPS>"
                   "<max_spikes_allowed>2.9</max_spikes_allowed><max_time_gap_ms>1e99</max_time_gap_ms><max_interval_std_ms/>"
                   "<mag_Threshold_angles>0x10</mag_Threshold_angles></testingCONFIG>"),
              expected);
}

}  // namespace
}  // namespace tavoren
