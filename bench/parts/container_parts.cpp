// SPDX-License-Identifier: Apache-2.0
// Opening a container against one read of its table, and small values against the same bytes from
// memory and against reads of the system.
#include "opened.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <variant>

namespace trellant::bench {

namespace {

constexpr std::size_t uidSize = 12;
constexpr std::size_t smallRead = 16;
constexpr std::size_t positions = 65'536;

void perItem(benchmark::State& state, std::size_t itemsInIteration) {
    state.SetItemsProcessed(static_cast<std::int64_t>(itemsInIteration) *
                            static_cast<std::int64_t>(state.iterations()));
}

void openAndIndex(benchmark::State& state, const std::string& path) {
    std::size_t objects = 0;
    for (auto _ : state) {
        const BentoContainer container(path);
        objects = container.objectIDs().size();
        benchmark::DoNotOptimize(objects);
    }
    perItem(state, objects);
}

void openDocument(benchmark::State& state, const std::string& path) {
    std::size_t objects = 0;
    for (auto _ : state) {
        const OMFDocument document(path);
        objects = document.bento().objectIDs().size();
        benchmark::DoNotOptimize(objects);
    }
    perItem(state, objects);
}

void readTableOnce(benchmark::State& state, const std::string& path) {
    const BentoContainer container(path);
    const auto& footer = container.footer();
    for (auto _ : state) {
        const RandomAccessFile file(path);
        const auto bytes = std::make_unique_for_overwrite<std::byte[]>(footer.tocSize);
        file.read(footer.tocOffset, std::span(bytes.get(), footer.tocSize));
        benchmark::DoNotOptimize(bytes.get());
    }
    perItem(state, container.objectIDs().size());
}

std::vector<OMFObject> clipsOf(const OMFDocument& document) {
    return document.objects("SCLP");
}

void readValues(benchmark::State& state, const std::string& path) {
    const OMFDocument document(path);
    const auto clips = clipsOf(document);
    for (auto _ : state) {
        std::uint32_t sum = 0;
        for (const OMFObject clip : clips) {
            sum += document.uid(clip, {OMFProperty::clipSourceID}).value_or(OMFUID::zero()).b;
        }
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, clips.size());
}

/// The same values, their places known, out of a copy of the file.
void readValuesFromMemory(benchmark::State& state, const std::string& path) {
    const OMFDocument document(path);
    const auto& file = document.bento().file();
    const Bytes bytes = file.read(0, static_cast<std::int64_t>(file.size()));
    std::vector<std::uint64_t> places;
    for (const OMFObject clip : clipsOf(document)) {
        const auto segments =
            document.bento().valueSegments(number(clip), nameOf(OMFProperty::clipSourceID));
        if (!segments.empty()) {
            places.push_back(std::get<BentoRange>(segments.front().storage).offset);
        }
    }
    for (auto _ : state) {
        std::uint32_t sum = 0;
        for (const std::uint64_t place : places) {
            std::uint32_t words[uidSize / sizeof(std::uint32_t)];
            std::memcpy(words, bytes.data() + place, uidSize);
            sum += words[1];
        }
        benchmark::DoNotOptimize(sum);
    }
    perItem(state, places.size());
}

/// 16 cached bytes from anywhere in the file.
void readAtPositions(benchmark::State& state, const std::string& path) {
    const RandomAccessFile file(path);
    std::minstd_rand random(1);
    std::vector<std::uint64_t> places(positions);
    for (std::uint64_t& place : places) {
        place = (std::uint64_t{random()} * random()) % (file.size() - smallRead);
    }
    std::array<std::byte, smallRead> bytes{};
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(file.readAvailable(places[next % positions], bytes));
        ++next;
    }
    perItem(state, 1);
}

}  // namespace

void registerContainerParts(const PartsFiles& files) {
    const auto add = [&](const char* name, auto* measure) {
        benchmark::RegisterBenchmark(name, [&, measure](benchmark::State& state) {
            measure(state, files.omf);
        })->Unit(benchmark::kMicrosecond);
    };
    add("open_and_index", openAndIndex);
    add("open_document", openDocument);
    add("unit_read_table", readTableOnce);
    add("value_reads", readValues);
    add("unit_values_from_memory", readValuesFromMemory);
    add("unit_positioned_read", readAtPositions);
}

}  // namespace trellant::bench
