#include <benchmark/benchmark.h>

#include <array>
#include <exception>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

namespace {

std::string rounded(double number, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << number;
    return text.str();
}

std::string milliseconds(double seconds) {
    const double ms = seconds * 1e3;
    return rounded(ms, ms < 0.1 ? 4 : ms < 1.0 ? 3 : ms < 100.0 ? 1 : 0) + " ms";
}

/// Prints what `runBesideFloor` counted as one table.
class TableReporter final : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override {
        std::cout << "| What | CPU | Rate | Floor | Its CPU | Ratio | Aim |\n"
                     "|---|---|---|---|---|---|---|\n";
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) {
                std::cerr << run.benchmark_name() << ": " << run.error_message << std::endl;
                failed = true;
            } else {
                printRow(run);
            }
        }
    }

    bool failed = false;

  private:
    static void printRow(const Run& run) {
        std::array<std::string, 4> texts;
        std::istringstream label(run.report_label);
        for (std::string& text : texts)
            std::getline(label, text, '|');
        const auto& [what, floor, unit, aim] = texts;
        const double tool = run.counters.at("tool");
        const double rate = run.counters.at("items") / tool / 1e6;
        std::cout << "| " << what << " | " << milliseconds(tool) << " | "
                  << rounded(rate, rate < 10.0 ? 2 : 0) << (unit == "B" ? " M" : " M ") << unit
                  << "/s | " << floor << " | " << milliseconds(run.counters.at("floor")) << " | "
                  << rounded(run.counters.at("ratio"), 2) << " | " << aim << " |" << std::endl;
    }
};

}  // namespace

int main(int argc, char* argv[]) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    TableReporter reporter;
    try {
        benchmark::RunSpecifiedBenchmarks(&reporter);
    } catch (const std::exception& e) {
        std::cerr << e.what() << std::endl;
        return 1;
    }
    return reporter.failed ? 1 : 0;
}
