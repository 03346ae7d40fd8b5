// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/source_timecode.h>

#include <algorithm>

namespace trellant {

namespace {

/// What of a reel's labels makes sense; absent where nobody counts by such.
std::optional<AAFTimecodeRate> rateOf(const AAFWorkerExtensions::ReelTimecode& timecode) {
    constexpr std::int64_t mostFrames = 1'000;
    const std::int64_t frames = timecode.framesPerSecond;
    if (frames < 1 || frames > mostFrames || (timecode.dropFrame && frames != 30 && frames != 60)) {
        return std::nullopt;
    }
    const AAFRational whole(frames);
    const AAFRational reduced(frames * 1'000, 1'001);
    const bool isTold =
        timecode.editRate && (*timecode.editRate == whole || *timecode.editRate == reduced);
    const AAFRational usual = timecode.dropFrame ? reduced : whole;
    return AAFTimecodeRate(isTold ? *timecode.editRate : usual, frames, timecode.dropFrame);
}

std::int64_t framesOfDay(const AAFTimecodeRate& rate) {
    return AAFTimecodeAddress(23, 59, 59, rate.nominalFramesPerSecond - 1, rate)
               .absoluteFrameNumber() +
           1;
}

/// `seconds` moved by whole days into the one that begins at 0.
AAFRational withinDay(const AAFRational& seconds, const AAFRational& day) {
    const std::int64_t frames = (seconds / day).roundedInt64();
    AAFRational rest = seconds - day * AAFRational(frames);
    if (rest < AAFRational::zero()) {
        rest = rest + day;
    }
    // Numbers beyond all sense are rounded, and may lie anywhere.
    return rest < AAFRational::zero() || rest >= day ? AAFRational::zero() : rest;
}

}  // namespace

std::optional<SourceTimecode> sourceTimecode(const AAFWorkerExtensions::Reel& reel) {
    const auto rate = reel.timecode ? rateOf(*reel.timecode) : std::nullopt;
    if (!rate) {
        return std::nullopt;
    }
    const std::int64_t day = framesOfDay(*rate);
    const AAFRational zero =
        AAFRational(std::max<std::int64_t>(reel.timecode->start, 0) % day) / rate->exactRate;
    return SourceTimecode{
        .reel = reel.name,
        .rate = *rate,
        .sinceMidnight = withinDay(zero + reel.start, AAFRational(day) / rate->exactRate)};
}

std::string labelAt(const SourceTimecode& timecode, const AAFRational& seconds) {
    const AAFRational frames = (timecode.sinceMidnight + seconds) * timecode.rate.exactRate;
    return AAFTimecodeAddress::fromAbsoluteFrameNumber(
               std::max<std::int64_t>(frames.roundedInt64(), 0), timecode.rate)
        .description();
}

std::uint64_t samplesSinceMidnight(const SourceTimecode& timecode, const AAFRational& sampleRate) {
    if (!(sampleRate > AAFRational::zero())) {
        return 0;
    }
    return static_cast<std::uint64_t>(
        std::max<std::int64_t>((timecode.sinceMidnight * sampleRate).roundedInt64(), 0));
}

SourceTimecodes::SourceTimecodes(const HandOff& handOff) {
    for (const AAFWorkerExtensions::Reel& reel : handOff.reels) {
        if (auto timecode = sourceTimecode(reel)) {
            byEssence_.emplace(reel.essenceID, std::move(*timecode));
        }
    }
}

const SourceTimecode* SourceTimecodes::of(std::string_view essenceID) const {
    const auto found = byEssence_.find(essenceID);
    return found == byEssence_.end() ? nullptr : &found->second;
}

}  // namespace trellant
