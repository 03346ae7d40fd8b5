// SPDX-License-Identifier: Apache-2.0
// Plans made by hand, their media, and what they sound like.
#pragma once

#include "media_reader.h"
#include "sound.h"

#include <trellant/exchange/export_plan.h>

#include <cstdint>
#include <string>
#include <trellant_testing/temporary_directory.h>
#include <vector>

namespace trellant::testing {

/// A session at 48,000 Hz from 01:00:00:00 at 25 fps whose media are files of 16 bits.
class RenderedPlan {
  public:
    RenderedPlan();

    /// Interleaved samples; gives the position in the plan's media.
    std::size_t addMedia(const std::vector<std::int16_t>& samples, std::uint16_t channels = 1);
    std::size_t addMissingMedia();
    exchange::PlannedTrack& addTrack(const std::string& name = "Track");
    /// Plays the medium from its first sample on.
    exchange::PlannedClip& addClip(exchange::PlannedTrack& track, std::size_t media,
                                   exchange::Samples start, exchange::Samples length);

    /// All of it in blocks of so many frames, in steps of 16 bits: 1 is a sample's least step.
    [[nodiscard]] std::vector<double> steps(render::Sound& sound, std::size_t frames,
                                            std::size_t block = 3) const;

    exchange::ExportPlan plan{};
    render::PlayedFiles played{};

  private:
    TemporaryDirectory folder_;
};

}  // namespace trellant::testing
