// SPDX-License-Identifier: Apache-2.0
#include "places_fixture.h"

#include <algorithm>
#include <filesystem>
#include <trellant_testing/requests.h>
#include <trellant_testing/wave_builder.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

constexpr std::int64_t length = 48;
const std::string notLocatedPrefix = "external essence not located: ";

/// Thousands of files are made and removed: in memory where the system has such a place.
std::filesystem::path manyFilesPlace() {
    const std::filesystem::path memory = "/dev/shm";
    return ::access(memory.c_str(), W_OK | X_OK) == 0 ? memory
                                                      : std::filesystem::temp_directory_path();
}

}  // namespace

PlacesTest::PlacesTest() : folder_(manyFilesPlace()) {
    std::filesystem::create_directory(work());
    std::filesystem::create_directory(search());
}

Bytes PlacesTest::audioOf(std::uint32_t number) {
    ByteWriter samples(OMFByteOrder::little);
    return waveImage({.samples = samples.u32(number).written()});
}

void PlacesTest::addEmbedded(const std::optional<std::string>& name) {
    const MobID id{++count_, 0, 0};
    omf_.audioFile({.id = id, .name = name, .media = audioOf(count_), .length = length});
    clips_.push_back(omf_.clip({.length = length, .source = id}));
}

void PlacesTest::addExternal(const std::string& locator) {
    const MobID id{++count_, 0, 0};
    omf_.audioFile({.id = id, .length = length, .locators = {omf_.unixLocator(locator)}});
    clips_.push_back(omf_.clip({.length = length, .source = id}));
}

void PlacesTest::write() {
    if (isWritten_) {
        return;
    }
    isWritten_ = true;
    const ObjectID sequence = omf_.sequence(clips_);
    const ObjectID track = omf_.track({.name = "A"});
    const ObjectID slot =
        omf_.slot({.editRate = Ratio{48'000}, .segment = sequence, .track = track});
    omf_.composition({.slots = {slot}});
    writeFile(path("places.omf"), omf_.build());
}

WorkerRun PlacesTest::run(std::string_view operation) {
    write();
    return runWorker({.input = requestFor(operation, path("places.omf"), work(), search()).json()});
}

AAFWorkerProtocol::Result PlacesTest::succeed(const WorkerRun& run) {
    EXPECT_FALSE(run.signal.has_value());
    EXPECT_EQ(run.status, 0) << run.errors;
    return run.status == 0 ? decodeResult(run.output) : AAFWorkerProtocol::Result{};
}

AAFWorkerProtocol::Result PlacesTest::inspect() {
    return succeed(run("inspect"));
}

std::string PlacesTest::work(const std::string& name) const {
    return path(name.empty() ? "work" : "work/" + name);
}

std::string PlacesTest::search(const std::string& name) const {
    return path(name.empty() ? "search" : "search/" + name);
}

std::map<std::string, Bytes> PlacesTest::filesInWork() const {
    std::map<std::string, Bytes> files;
    for (const auto& entry : std::filesystem::directory_iterator(work())) {
        if (!entry.is_symlink() && entry.is_regular_file()) {
            files[entry.path().filename().string()] = readFile(entry.path().string());
        }
    }
    return files;
}

std::vector<std::string> PlacesTest::besideWork() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string PlacesTest::notLocated(const AAFWorkerProtocol::Result& result) {
    std::string found;
    for (const std::string& line : result.diagnostics) {
        if (line.starts_with(notLocatedPrefix)) {
            found += line.substr(notLocatedPrefix.size());
        }
    }
    return found;
}

}  // namespace trellant::testing
