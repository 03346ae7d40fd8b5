// SPDX-License-Identifier: Apache-2.0
// An audio file as workstations describe it: a Source Mob for the file, and above it the Master Mob
// that compositions refer to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <trellant_testing/omf_builder.h>
#include <vector>

namespace trellant::examples {

struct SourceFileSpec {
    /// Of the Master Mob; the Source Mob has the next number.
    testing::MobID id{};
    std::string title{};
    std::string fileName{};
    testing::MediaKind kind = testing::MediaKind::wave;
    /// Absent for media outside of the composition.
    std::optional<Bytes> media{};
    std::int32_t sampleRate = 48'000;
    std::int64_t frames = 0;
    /// Tracks of the mobs, numbered from 1; each has the channel of its number.
    std::uint32_t channels = 1;
    /// Of the file's tracks, in samples: where its time zero lies.
    std::int64_t origin = 0;
    /// What the file was made from; none when it is where the chain ends.
    testing::MobID madeFrom{};
    std::vector<testing::ObjectID> locators{};
};

/// Adds both mobs, the descriptor and the media; gives the Master Mob.
testing::ObjectID addSourceFile(testing::OmfBuilder& omf, const SourceFileSpec& given);

}  // namespace trellant::examples
