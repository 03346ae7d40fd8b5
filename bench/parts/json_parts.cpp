// SPDX-License-Identifier: Apache-2.0
// The result as JSON, out and back, against the same text copied from memory and read once.
#include "opened.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstring>
#include <numeric>

namespace trellant::bench {

namespace {

/// Takes the bytes as standard output does, but for the call of the system.
class CopyingSink final : public JsonSink {
  public:
    void write(std::string_view bytes) override {
        while (!bytes.empty()) {
            const auto piece = bytes.substr(0, buffer_.size());
            std::memcpy(buffer_.data(), piece.data(), piece.size());
            benchmark::ClobberMemory();
            bytes.remove_prefix(piece.size());
        }
    }

  private:
    std::vector<char> buffer_ = std::vector<char>(JsonWriter::bufferSize);
};

struct Given {
    explicit Given(const std::string& path) : result(mapped(OMFDocument(path), path)) {
        StringSink sink;
        encodeResult(result, sink);
        text = std::move(sink.text);
    }
    AAFWorkerProtocol::Result result;
    std::string text{};
};

void perByte(benchmark::State& state, const Given& given) {
    state.SetBytesProcessed(static_cast<std::int64_t>(given.text.size()) *
                            static_cast<std::int64_t>(state.iterations()));
    state.SetItemsProcessed(static_cast<std::int64_t>(given.result.timeline.events.size()) *
                            static_cast<std::int64_t>(state.iterations()));
}

void encode(benchmark::State& state, const Given& given) {
    CopyingSink sink;
    for (auto _ : state) {
        encodeResult(given.result, sink);
    }
    perByte(state, given);
}

void copyText(benchmark::State& state, const Given& given) {
    CopyingSink sink;
    for (auto _ : state) {
        sink.write(given.text);
    }
    perByte(state, given);
}

void decodeAndValidate(benchmark::State& state, const Given& given) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(decodeResult(given.text));
    }
    perByte(state, given);
}

void readText(benchmark::State& state, const Given& given) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::accumulate(given.text.begin(), given.text.end(), 0U));
    }
    perByte(state, given);
}

}  // namespace

void registerJsonParts(const PartsFiles& files) {
    const auto add = [&](const char* name, auto* measure) {
        benchmark::RegisterBenchmark(name, [&, measure](benchmark::State& state) {
            const Given given(files.omf);
            measure(state, given);
        })->Unit(benchmark::kMicrosecond);
    };
    add("encode", encode);
    add("unit_copy_text", copyText);
    add("decode_and_validate", decodeAndValidate);
    add("unit_read_text", readText);
}

}  // namespace trellant::bench
