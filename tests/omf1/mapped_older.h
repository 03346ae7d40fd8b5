// SPDX-License-Identifier: Apache-2.0
// A document of OMF 1.x, mapped as one of OMF 2.x is.
#pragma once

#include <trellant/mapper/loss_places.h>
#include <trellant/mapper/mapper.h>
#include <trellant/model/timeline.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <trellant_testing/omf1_builder.h>
#include <vector>

namespace trellant::testing {

struct MappedOlder {
    AAFTimeline timeline{};
    std::vector<std::string> diagnostics{};
    std::vector<LossPlace> places{};
};

/// Writes `image` to a folder of its own, opens it, whichever model it is, and maps it.
[[nodiscard]] MappedOlder mapAny(ByteView image, bool extract = false);

/// The text of the OMFIOError that opening or mapping throws; empty when there is none.
[[nodiscard]] std::string errorOf(ByteView image);

/// The sentences of the losses.
[[nodiscard]] std::vector<std::string> sentencesOf(const MappedOlder& mapped);
/// Their paths.
[[nodiscard]] std::vector<std::string> pathsOf(const MappedOlder& mapped);

/// A session of one track with one clip of one embedded file, in either byte order; all of its
/// objects by name.
struct OneClip {
    static constexpr MobID voice{1, 2, 3};

    explicit OneClip(const Omf1Builder::Options& options = {});

    Omf1Builder omf;
    ObjectID source = 0;
    ObjectID clip = 0;
    ObjectID sequence = 0;
    ObjectID track = 0;
    ObjectID timecode = 0;
    ObjectID composition = 0;
};

/// The four ways of writing values and containers.
[[nodiscard]] std::array<Omf1Builder::Options, 4> allByteOrders();

/// Mono audio of 16 bits at 48000 Hz with so many samples.
[[nodiscard]] Bytes aifcOf(std::size_t samples, std::uint16_t channels = 1);

}  // namespace trellant::testing
