// Any TestingConfig.xml leaves thresholds behind, and reading it once more changes none.

#include "files/TestingConfig.h"
#include "fuzz/Fuzz.h"

namespace tavoren::fuzz {
namespace {

void check(const std::string& input) {
    const TemporaryFolder& folder = workingFolder();
    folder.write("TestingConfig.xml", input);
    TestingConfig read;
    loadTestingConfig(read);
    TestingConfig twice = read;
    loadTestingConfig(twice);
    const bool holdsNan = read != read;  // the file may say so
    require(holdsNan || twice == read, "the same file gives the same thresholds");
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check(tavoren::fuzz::Input(data, size).text());
    return 0;
}
