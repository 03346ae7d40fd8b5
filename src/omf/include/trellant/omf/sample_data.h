// SPDX-License-Identifier: Apache-2.0
// Where in an OMF file the samples of its embedded audio lie: what is left of a WAVE or AIFC file
// without its chunks. For those who compare sound and not files.
#pragma once

#include <trellant/model/timeline.h>
#include <trellant/omf/document.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// A stretch of the OMF file, in bytes; it lies inside of it.
struct SamplePiece {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    bool operator==(const SamplePiece&) const = default;
};

struct SampleData {
    std::string essenceID{};
    /// Bytes of one sample of one channel; 1 where samples are compressed or their size is not
    /// known, so that the bytes count as they stand.
    std::int64_t sampleBytes = 1;
    /// Samples stand with their most significant byte first; of one byte they are signed.
    bool isBigEndian = false;
    /// In the order of the sound.
    std::vector<SamplePiece> pieces{};
    bool operator==(const SampleData&) const = default;
};

/// Pieces that are told for all sources of a file together.
inline constexpr std::size_t mostSamplePieces = 100'000;

/// Of the embedded essences of `timeline` whose samples can be found from the head of their audio,
/// in their order. One whose pieces leave the file, or are beyond the bound, is left out. Reads
/// heads of 4 KiB, of 256 KiB where that does not tell, nothing more.
[[nodiscard]] std::vector<SampleData> sampleData(const OMFDocument& document,
                                                 const AAFTimeline& timeline);

}  // namespace trellant
