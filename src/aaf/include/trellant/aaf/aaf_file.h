// SPDX-License-Identifier: Apache-2.0
// A whole AAF file as plain values, and how it is written. Nothing here knows of timelines: who
// fills it in decides what becomes a slot, a clip, a mob.
#pragma once

#include <trellant/aaf/errors.h>
#include <trellant/aaf/mobs.h>
#include <trellant/compound/byte_source.h>

#include <cstdint>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace aaf {

/// Which program wrote the file.
struct Identification {
    std::string companyName{};
    std::string productName{};
    std::string productVersionString{};
    ProductVersion productVersion{};
    /// The same for all versions of a program.
    AUID productID{};
    TimeStamp date{};
    /// Of what wrote the stored form.
    ProductVersion toolkitVersion{};
    std::string platform{};
    /// Of this writing of the file.
    AUID generationAUID{};
    bool operator==(const Identification&) const = default;
};

/// The essence of the source mob with the same MobID, inside the file.
struct EssenceData {
    MobID mobID{};
    std::uint64_t byteCount = 0;
    /// Gives exactly `byteCount` bytes, when they are written.
    compound::ByteSource data{};
};

struct AafFile {
    Identification identification{};
    TimeStamp lastModified{};
    /// One, of usage code topLevel, for readers that accept no other number.
    std::vector<Mob> compositionMobs{};
    std::vector<Mob> masterMobs{};
    std::vector<SourceMob> sourceMobs{};
    std::vector<EssenceData> essenceData{};
};

/// Writes `file` in one go, in file order: as the Edit Protocol's operational pattern, in a
/// compound file with sectors of 4096 bytes. The same values give the same bytes. Memory is in
/// proportion to the objects, not to the essence. All values are checked before the first byte goes
/// out. Throws AafError, compound::CompoundError when the file would be beyond the bounds of its
/// container or essence is not as long as was said, and whatever the sink or a source of essence
/// throws.
void writeAaf(const AafFile& file, const compound::ByteSink& sink);

}  // namespace aaf
}  // namespace trellant
