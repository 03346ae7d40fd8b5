// SPDX-License-Identifier: Apache-2.0
// What a mapping of a document leaves, in forms that a test can write down by hand.
#pragma once

#include <trellant/base/boxed.h>
#include <trellant/io/byte_readers.h>
#include <trellant/mapper/mapper.h>
#include <trellant/model/timeline.h>

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <trellant_testing/object_builder.h>
#include <vector>

namespace trellant::testing {

/// The edit rate of the slots of test compositions.
constexpr std::int32_t unitsPerSecond = 100;

struct Mapped {
    AAFTimeline timeline{};
    std::vector<std::string> diagnostics{};
    /// As the progress was told.
    std::vector<double> fractions{};
    /// Reads of the input file, opening included.
    std::uint64_t readCalls = 0;
};

/// Writes `image` to a folder of its own and maps it. Without a source path the timeline comes
/// from "/projects/song.omf".
[[nodiscard]] Mapped mapImage(ByteView image, MappingPlaces places = {});

/// The text of the OMFIOError that mapping throws; empty when there is none.
[[nodiscard]] std::string mappingError(ByteView image, const MappingPlaces& places = {});

/// The records, each as "omf-loss-0 informational: TEXT at PATH".
[[nodiscard]] std::vector<std::string> recordsOf(const Mapped& mapped);
[[nodiscard]] std::string lossLine(int number, std::string_view text, std::string_view path);
[[nodiscard]] std::string unsupportedLine(int number, std::string_view text, std::string_view path);

/// "/SEQU[12]", as object paths go on.
[[nodiscard]] std::string step(std::string_view label, ObjectID id);

/// Seconds in units of 1/100; stops the test when they are not whole.
[[nodiscard]] std::int64_t units(const AAFRational& seconds);

/// An event in units of 1/100 of a second; its source has 48000 samples a second.
struct Placed {
    std::int64_t start = 0;
    std::int64_t length = 0;
    std::int64_t sourceStart = 0;
    bool operator==(const Placed&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const Placed& placed);
[[nodiscard]] std::vector<Placed> placedIn(const Mapped& mapped);
/// Composition length in units; 0 when absent.
[[nodiscard]] std::int64_t lengthOf(const Mapped& mapped);

/// "fadeIn 20 linear" with the duration in units; "none".
[[nodiscard]] std::string described(const Boxed<AAFFade>& fade);
/// "linear: 0/1=0.5 1/1=1"; "none".
[[nodiscard]] std::string described(const Boxed<AAFAutomationEnvelope>& envelope);

}  // namespace trellant::testing
