// SPDX-License-Identifier: Apache-2.0
#include "sound_extent.h"

#include <trellant/base/byte_load.h>

#include <algorithm>
#include <limits>
#include <string_view>

namespace trellant::salvage {

namespace {

/// Chunks behind the samples that are looked at.
constexpr int mostChunks = 1'024;
constexpr std::uint64_t framesInCommon = 2;

std::uint64_t soundBegin(const SoundHead& head) noexcept {
    return head.soundChunk + chunkHeadBytes;
}

/// The mends of one copy.
class Mends {
  public:
    explicit Mends(const SoundHead& head) : head_(head) {}

    /// `formBytes`: of the whole copy.
    void form(std::uint64_t formBytes) {
        if (head_.sizesChunk) {
            large(0, formBytes - chunkHeadBytes);
        } else {
            number(4, formBytes - chunkHeadBytes);
        }
    }
    void samples(std::uint64_t contentBytes, std::uint64_t frames) {
        if (head_.sizesChunk) {
            constexpr std::uint64_t soundInSizes = 8;
            constexpr std::uint64_t framesInSizes = 16;
            large(soundInSizes, contentBytes);
            large(framesInSizes, frames);
        } else {
            number(head_.soundChunk - head_.begin + 4, contentBytes);
        }
        if (head_.isBigEndian() && head_.formatChunk && *head_.formatChunk < head_.soundChunk) {
            number(*head_.formatChunk - head_.begin + chunkHeadBytes + framesInCommon, frames);
        }
    }
    [[nodiscard]] std::vector<Mend> sorted() {
        std::sort(mends_.begin(), mends_.end(),
                  [](const Mend& left, const Mend& right) { return left.offset < right.offset; });
        return std::move(mends_);
    }

  private:
    void number(std::uint64_t offset, std::uint64_t value) {
        const auto kept = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(value, std::numeric_limits<std::uint32_t>::max()));
        Mend mend{.offset = offset};
        for (std::size_t i = 0; i < mend.bytes.size(); ++i) {
            const std::size_t place = head_.isBigEndian() ? mend.bytes.size() - 1 - i : i;
            mend.bytes[place] = static_cast<std::uint8_t>(kept >> (8U * i) & 0xFFU);
        }
        mends_.push_back(mend);
    }
    /// 64 bits in the chunk "ds64", at `offset` of its content; always little-endian.
    void large(std::uint64_t offset, std::uint64_t value) {
        const std::uint64_t at = *head_.sizesChunk - head_.begin + chunkHeadBytes + offset;
        number(at, value & 0xFFFFFFFFU);
        number(at + 4, value >> 32U);
    }

    const SoundHead& head_;
    std::vector<Mend> mends_;
};

/// Behind the samples: where the chunks end that make sense before `end`; may be one byte behind
/// it, for a chunk that lacks its last, meaningless byte.
std::uint64_t endOfChunks(SoundHead& head, std::uint64_t end, ForwardWindow& window) {
    const std::uint64_t samples = head.soundBytes.value_or(0);
    std::uint64_t at = soundBegin(head) + samples;
    if (samples % 2 != 0) {
        // Some writers leave the byte out that makes the chunk even.
        const ByteView behind = window.at(at, chunkLookBytes);
        at += behind.size() >= chunkHeadBytes && isChunkName(behind.data()) ? 0U : 1U;
    }
    for (int count = 0; count < mostChunks && at < end && end - at >= chunkHeadBytes; ++count) {
        const ByteView chunk = window.at(at, chunkLookBytes);
        if (chunk.size() < chunkHeadBytes || !isChunkName(chunk.data())) {
            return at;
        }
        const auto size = loadUnsigned<std::uint32_t>(chunk.data() + 4, head.order());
        if (size > end - at - chunkHeadBytes) {
            return at;
        }
        const bool isCommon =
            std::string_view(reinterpret_cast<const char*>(chunk.data()), 4) == "COMM";
        if (isCommon && head.isBigEndian() && !head.formatChunk) {
            static_cast<void>(takeCommon(chunk.subspan(chunkHeadBytes), size, at, head));
        }
        at += chunkHeadBytes + std::uint64_t{size} + size % 2;
    }
    return at;
}

FoundSound soundOf(const SoundHead& head) {
    FoundSound sound;
    sound.kind = head.kind;
    sound.origin = SoundOrigin::header;
    if (head.formBytes) {
        sound.claimedBytes = *head.formBytes;
    } else if (head.soundBytes) {
        sound.claimedBytes = soundBegin(head) - head.begin + *head.soundBytes;
    }
    return sound;
}

void noteFormat(const SoundHead& head, FoundSound& sound) {
    if (!head.formatChunk) {
        sound.doubts.push_back(Doubt::formatMissing);
    }
}

}  // namespace

bool hasAllSamples(const SoundHead& head, std::uint64_t limit) noexcept {
    return head.soundBytes && soundBegin(head) <= limit &&
           *head.soundBytes <= limit - soundBegin(head);
}

FoundSound soundWithTail(SoundHead head, std::uint64_t limit, ForwardWindow& window) {
    const std::uint64_t soundEnd = soundBegin(head) + head.soundBytes.value_or(0);
    const std::uint64_t formEnd = head.begin + head.formBytes.value_or(0);
    const bool holdsSamples = formEnd >= soundEnd;
    const std::uint64_t chunksEnd =
        holdsSamples ? endOfChunks(head, std::min(formEnd, limit), window) : soundEnd;
    FoundSound sound = soundOf(head);
    // A few bytes of a form that hold no chunk stand at the end of some files.
    if (holdsSamples && formEnd <= limit &&
        (chunksEnd >= formEnd || formEnd - chunksEnd < chunkHeadBytes)) {
        const bool mayHavePad = (formEnd - head.begin) % 2 != 0 && formEnd < limit;
        const ByteView pad = mayHavePad ? window.at(formEnd, 1) : ByteView{};
        const bool hasPad = !pad.empty() && pad.front() == std::byte{0};
        sound.ranges = {{head.begin, formEnd - head.begin + (hasPad ? 1 : 0)}};
    } else {
        const std::uint64_t end = std::min(chunksEnd, limit);
        Mends mends(head);
        mends.form(end - head.begin);
        sound.isWhole = false;
        sound.ranges = {{head.begin, end - head.begin}};
        sound.mends = mends.sorted();
        sound.doubts.push_back(holdsSamples ? Doubt::chunksMissing : Doubt::headerTooShort);
    }
    noteFormat(head, sound);
    return sound;
}

std::optional<FoundSound> cutSound(const SoundHead& head, std::uint64_t end, Doubt doubt) {
    const std::uint64_t begin = soundBegin(head);
    const std::uint64_t available =
        end < begin ? 0 : std::min(end - begin, head.soundBytes.value_or(end - begin));
    if (available <= head.soundLead) {
        return std::nullopt;
    }
    std::uint64_t samples = available - head.soundLead;
    std::uint64_t frames = 0;
    if (head.frameBytes != 0) {
        frames = samples / head.frameBytes;
        samples = frames * head.frameBytes;
    } else if (head.soundBytes && available < std::numeric_limits<std::uint32_t>::max()) {
        // Compressed: as many as there are bytes of them.
        frames = head.frames * samples / (*head.soundBytes - head.soundLead);
    }
    if (samples == 0) {
        return std::nullopt;
    }
    FoundSound sound = soundOf(head);
    const std::uint64_t content = head.soundLead + samples;
    sound.isWhole = false;
    sound.isPadded = content % 2 != 0;
    sound.ranges = {{head.begin, begin - head.begin + content}};
    Mends mends(head);
    mends.form(sound.ranges.front().length + (sound.isPadded ? 1 : 0));
    mends.samples(content, frames);
    sound.mends = mends.sorted();
    sound.doubts.push_back(head.soundBytes ? doubt : Doubt::openEnd);
    noteFormat(head, sound);
    return sound;
}

}  // namespace trellant::salvage
