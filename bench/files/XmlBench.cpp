#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "common/Utf8.h"
#include "files/xml/XmlCode.h"
#include "files/xml/XmlDeclaration.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "files/xml/XmlText.h"
#include "platform/Files.h"

namespace tavoren {
namespace {

constexpr std::string_view path = "tavoren_xml_bench.xml";
constexpr int entryCount = 16000;

std::shared_ptr<XmlElement> makeEntry(int index) {
    auto entry = std::make_shared<XmlElement>(L"Sensor");
    entry->setAttribute(L"Name", L"Accelerometer");
    entry->setAttribute(L"Index", std::to_wstring(index));
    for (const wchar_t* const name : {L"Offset", L"Scale", L"Noise", L"Rotation", L"Norm"}) {
        auto result = std::make_shared<XmlElement>(name);
        result->setAttribute(L"Success", L"true");
        result->addChild(std::make_shared<XmlText>(L"0.012345,-0.998877,0.004321;"));
        entry->addChild(std::move(result));
    }
    return entry;
}

/// A result log of some megabytes.
const XmlDocument& sampleLog() {
    static XmlDocument document;
    if (document.children().empty()) {
        document.addChild(
            std::make_shared<XmlDeclaration>(L"xml", L"version=\"1.0\" encoding=\"UTF-8\""));
        auto root = std::make_shared<XmlElement>(L"Log");
        for (int i = 0; i < entryCount; ++i)
            root->addChild(makeEntry(i));
        document.addChild(std::move(root));
    }
    return document;
}

const std::string& sampleBytes() {
    static const std::string bytes = *toUtf8(sampleLog().toString());
    return bytes;
}

void setRate(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(sampleBytes().size()));
}

/// The floor of a load: the same bytes as wide text.
void xmlDecodeOnly(benchmark::State& state) {
    const std::string& bytes = sampleBytes();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(fromUtf8(bytes));
    setRate(state);
}
BENCHMARK(xmlDecodeOnly)->Unit(benchmark::kMillisecond);

void xmlLoad(benchmark::State& state) {
    if (!replaceFile(path, sampleBytes(), LineEnds::asWritten))
        state.SkipWithError("no file to load");
    for ([[maybe_unused]] auto _ : state) {
        XmlDocument document;
        if (document.load(path) != XmlCode::success)
            state.SkipWithError("load failed");
    }
    std::filesystem::remove(nativePath(path));
    setRate(state);
}
BENCHMARK(xmlLoad)->Unit(benchmark::kMillisecond);

/// The floor of a save: the same text as UTF-8.
void xmlEncodeOnly(benchmark::State& state) {
    const std::wstring text = sampleLog().toString();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(toUtf8(text));
    setRate(state);
}
BENCHMARK(xmlEncodeOnly)->Unit(benchmark::kMillisecond);

void xmlSave(benchmark::State& state) {
    const XmlDocument& document = sampleLog();
    for ([[maybe_unused]] auto _ : state) {
        if (document.save(path) != XmlCode::success)
            state.SkipWithError("save failed");
    }
    std::filesystem::remove(nativePath(path));
    setRate(state);
}
BENCHMARK(xmlSave)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tavoren
