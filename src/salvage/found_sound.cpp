// SPDX-License-Identifier: Apache-2.0
#include <trellant/salvage/found_sound.h>

#include <algorithm>
#include <cstddef>

namespace trellant::salvage {

namespace {

struct DoubtText {
    std::string_view word;
    std::string_view sentence;
};

/// In the order of the cases.
constexpr std::array<DoubtText, 7> doubtTexts{{
    {"cutByEnd", "The file ends within the samples: the rest is lost."},
    {"cutByNext",
     "Another sound begins within the samples that the header claims: what lies before it was "
     "taken, and the length in the header may be wrong."},
    {"openEnd",
     "The header does not say how long the samples are: all bytes up to the next sound were taken, "
     "and the last of them may be no samples."},
    {"chunksMissing",
     "All samples are there; what the header announces behind them is not, or makes no sense."},
    {"headerTooShort",
     "All samples are there; the header counted fewer bytes than they have and was corrected."},
    {"lengthsDiffer",
     "The table of contents and the header of the sound name different lengths: that of the table "
     "was taken."},
    {"formatMissing",
     "Nothing says what the samples are like: name rate, channels and bits yourself when you "
     "import them."},
}};

BentoImmediate immediate(const Mend& mend) {
    return {.bytes = mend.bytes, .count = static_cast<std::uint8_t>(mend.bytes.size())};
}

}  // namespace

std::string_view doubtWord(Doubt doubt) noexcept {
    return doubtTexts[static_cast<std::size_t>(doubt)].word;
}

std::string_view doubtSentence(Doubt doubt) noexcept {
    return doubtTexts[static_cast<std::size_t>(doubt)].sentence;
}

std::uint64_t FoundSound::bytes() const noexcept {
    std::uint64_t sum = 0;
    for (const BentoRange& range : ranges) {
        sum += range.length;
    }
    return sum;
}

std::vector<BentoValueSegment> FoundSound::copied() const {
    std::vector<BentoValueSegment> pieces;
    if (mends.empty()) {
        for (const BentoRange& range : ranges) {
            pieces.push_back({range, false});
        }
    } else {
        const BentoRange range = ranges.front();
        std::uint64_t done = 0;
        for (const Mend& mend : mends) {
            pieces.push_back({BentoRange{range.offset + done, mend.offset - done}, false});
            pieces.push_back({immediate(mend), false});
            done = mend.offset + mend.bytes.size();
        }
        pieces.push_back({BentoRange{range.offset + done, range.length - done}, false});
    }
    if (isPadded) {
        pieces.push_back({BentoImmediate{.bytes = {}, .count = 1}, false});
    }
    return pieces;
}

}  // namespace trellant::salvage
