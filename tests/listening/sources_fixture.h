// SPDX-License-Identifier: Apache-2.0
// Timelines whose sources are audio files in a folder of the test, and converters that misbehave.
#pragma once

#include <trellant/base/url.h>
#include <trellant/extraction/staging.h>
#include <trellant/model/timeline.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>
#include <utility>
#include <vector>

namespace trellant::testing {

class SourcesTest : public ::testing::Test {
  protected:
    static Bytes waveOf(const std::vector<std::int16_t>& samples, std::uint16_t channels = 1) {
        ByteWriter writer(OMFByteOrder::little);
        for (const std::int16_t sample : samples) {
            writer.u16(static_cast<std::uint16_t>(sample));
        }
        return waveImage({.channels = channels, .samples = writer.written()});
    }
    std::string file(const std::string& name, const Bytes& bytes) {
        return writeFile(folder_.file(name), bytes);
    }
    /// A source that plays the file; its position.
    std::size_t add(const std::string& path, bool isPlayed = true) {
        AAFSourceEssence essence;
        essence.id = "source " + std::to_string(timeline_.essences.size());
        essence.fileURL = fileURL(path);
        if (isPlayed) {
            AAFClipEvent event;
            event.essenceID = essence.id;
            timeline_.events.push_back(event);
        }
        timeline_.essences.push_back(std::move(essence));
        return timeline_.essences.size() - 1;
    }
    /// A program that is started in place of the converter.
    std::string script(const std::string& text) {
        const std::string path = file("script", bytesOf("#!/bin/sh\n" + text + "\n"));
        ::chmod(path.c_str(), 0700);
        return path;
    }
    [[nodiscard]] bool isStagingEmpty() const { return std::filesystem::is_empty(staging_.path()); }

    TemporaryDirectory folder_;
    Staging staging_{folder_.path().native()};
    AAFTimeline timeline_;
};

}  // namespace trellant::testing
