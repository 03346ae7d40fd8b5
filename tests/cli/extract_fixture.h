// SPDX-License-Identifier: Apache-2.0
// `trellant extract` over documents that a test makes, with the real worker and converter.
#pragma once

#include "extract/extract.h"
#include "said.h"

#include <trellant/base/cancellation.h>
#include <trellant/model/timeline.h>

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {

/// The names of what stands in a folder, hidden ones too, ascending.
[[nodiscard]] std::vector<std::string> namesIn(const std::string& folder);
/// A 16-bit mono WAVE file at 48000 Hz with these samples.
[[nodiscard]] Bytes waveOf(const std::vector<std::int16_t>& samples,
                           std::uint32_t sampleRate = 48'000, std::uint16_t channels = 1);
/// What stands in the "data" chunk of a WAVE file whose chunks before it are as short as usual.
[[nodiscard]] Bytes sampleBytesOf(const std::string& wavePath);
/// Little-endian samples of 16 bits.
[[nodiscard]] Bytes samples16(const std::vector<std::int16_t>& samples);
[[nodiscard]] Bytes samples16Big(const std::vector<std::int16_t>& samples);

/// A source in a document, with one clip that plays its first samples.
struct PlayedSource {
    std::string name;
    /// Absent for media outside.
    std::optional<Bytes> media{};
    MediaKind kind = MediaKind::wave;
    std::vector<ObjectID> locators{};
    /// Of the clip, in 1/100 s.
    std::int64_t clipLength = 0;
    std::int32_t physicalTrack = 1;
};

class ExtractTest : public ::testing::Test {
  protected:
    ExtractTest();

    /// Adds a source with the mob identifier 1, 0, N; N counts from 1.
    void add(const PlayedSource& source);
    /// The document with all sources added, as "mix.omf" in the test's folder.
    std::string writeDocument();

    /// Options for `file` into "out".
    [[nodiscard]] cli::ExtractOptions options(const std::string& file) const;
    [[nodiscard]] Said extract(const cli::ExtractOptions& options, const Setting& setting = {},
                               const StopToken& stop = {}) const;
    /// Extraction into "out" that must end well; what stands on standard output.
    std::string extractWell(const cli::ExtractOptions& options) const;

    [[nodiscard]] std::string out(const std::string& name = "") const;
    [[nodiscard]] AAFTimeline timeline(const std::string& name = "timeline.json") const;
    /// The path of the file that the source of that number plays.
    [[nodiscard]] std::optional<std::string> pathOfSource(std::uint32_t number) const;

    TemporaryDirectory folder_;
    OmfBuilder omf_;

  private:
    std::vector<ObjectID> slots_;
    std::uint32_t sources_ = 0;
};

}  // namespace trellant::testing
