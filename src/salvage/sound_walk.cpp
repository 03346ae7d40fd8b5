// SPDX-License-Identifier: Apache-2.0
#include "sound_walk.h"

#include <trellant/base/byte_load.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace trellant::salvage {

namespace {

/// Before the samples: no writer puts more there, and what claims to is no sound.
constexpr std::uint64_t longestHeader = 1'048'576;
constexpr int mostChunks = 64;
constexpr std::uint16_t mostChannels = 1'024;
constexpr std::uint16_t mostBits = 64;
constexpr std::uint32_t highestRate = 16'000'000;
constexpr std::uint32_t sizeNotSaid = 0xFFFFFFFF;
constexpr std::size_t commonBytes = 18;
constexpr std::size_t formatBytes = 16;
constexpr std::size_t largeSizesBytes = 24;
/// Offset and block size before the samples of AIFF.
constexpr std::uint64_t soundLeadBytes = 8;
constexpr std::size_t block = 64;

/// The number that four letters are in the machine's own byte order: compared at once.
std::uint32_t wordAt(const std::byte* at) noexcept {
    std::uint32_t word = 0;
    std::memcpy(&word, at, sizeof word);
    return word;
}

constexpr std::uint32_t word(const char (&letters)[5]) noexcept {
    return std::bit_cast<std::uint32_t>(
        std::array<char, 4>{letters[0], letters[1], letters[2], letters[3]});
}

std::optional<SoundKind> kindAt(const std::byte* at) noexcept {
    const std::uint32_t form = wordAt(at);
    const std::uint32_t type = wordAt(at + 8);
    if (form == word("FORM")) {
        return type == word("AIFC")   ? std::optional(SoundKind::aifc)
               : type == word("AIFF") ? std::optional(SoundKind::aiff)
                                      : std::nullopt;
    }
    if (type != word("WAVE")) {
        return std::nullopt;
    }
    return form == word("RIFF")   ? std::optional(SoundKind::wave)
           : form == word("RF64") ? std::optional(SoundKind::rf64)
                                  : std::nullopt;
}

/// Sixteen bytes that the processor compares at once.
using Lane [[gnu::vector_size(16)]] = std::uint8_t;

Lane laneAt(const std::byte* at) noexcept {
    Lane lane;
    std::memcpy(&lane, at, sizeof lane);
    return lane;
}

/// Whether a mark may begin at one of the 64 places from `at` on, by its first two letters and the
/// first of its type; 72 bytes are there.
bool mayHoldMark(const std::byte* at) noexcept {
    Lane found{};
    for (std::size_t i = 0; i < block; i += sizeof(Lane)) {
        const Lane first = laneAt(at + i);
        const Lane second = laneAt(at + i + 1);
        const Lane type = laneAt(at + i + 8);
        // "RIFF" and "RF64": both second letters lie between 0x40 and 0x4F.
        found |= reinterpret_cast<Lane>((first == 'F') & (second == 'O') & (type == 'A')) |
                 reinterpret_cast<Lane>((first == 'R') & ((second & 0xF0) == 0x40) & (type == 'W'));
    }
    std::array<std::uint64_t, 2> halves{};
    std::memcpy(halves.data(), &found, sizeof found);
    return (halves[0] | halves[1]) != 0;
}

/// At which of the 16 places from `at` on a mark may begin, a byte each, by three letters of its
/// form and two of its type; 26 bytes are there.
std::array<std::uint64_t, 2> likelyMarks(const std::byte* at) noexcept {
    const Lane first = laneAt(at);
    const Lane second = laneAt(at + 1);
    const Lane third = laneAt(at + 2);
    const Lane type = laneAt(at + 8);
    const Lane typeSecond = laneAt(at + 9);
    const auto isForm = (first == 'F') & (second == 'O') & (third == 'R');
    const auto isRiff =
        (first == 'R') & (((second == 'I') & (third == 'F')) | ((second == 'F') & (third == '6')));
    const auto found = (isForm & (type == 'A') & (typeSecond == 'I')) |
                       (isRiff & (type == 'W') & (typeSecond == 'A'));
    std::array<std::uint64_t, 2> places{};
    std::memcpy(places.data(), &found, sizeof places);
    return places;
}

/// The place of the first byte in memory that is not 0; there is one.
std::size_t firstByteSet(std::uint64_t word) noexcept {
    const int bits = std::endian::native == std::endian::little ? std::countr_zero(word)
                                                                : std::countl_zero(word);
    return static_cast<std::size_t>(bits) / 8;
}

/// The word without that byte.
std::uint64_t withoutFirstByte(std::uint64_t word) noexcept {
    const std::size_t place = firstByteSet(word);
    const std::size_t shift =
        8 * (std::endian::native == std::endian::little ? place : sizeof word - 1 - place);
    return word & ~(std::uint64_t{0xFF} << shift);
}

/// Whether the ten bytes are a rate that audio has: positive, normalised, 256 Hz to 16 MHz.
bool isRate(const std::byte* at) noexcept {
    constexpr std::uint16_t lowestExponent = 16'383 + 8;
    constexpr std::uint16_t highestExponent = 16'383 + 23;
    const auto exponent = loadUnsigned<std::uint16_t>(at, OMFByteOrder::big);
    return exponent >= lowestExponent && exponent <= highestExponent &&
           (at[2] & std::byte{0x80}) != std::byte{0};
}

bool isPlain(const std::byte* compression) noexcept {
    constexpr std::array plain{word("NONE"), word("twos"), word("sowt"), word("raw "), word("in24"),
                               word("in32"), word("fl32"), word("FL32"), word("fl64")};
    return std::find(plain.begin(), plain.end(), wordAt(compression)) != plain.end();
}

}  // namespace

MarkScan scanForMarks(ByteView bytes, MarkLook look, std::span<std::uint32_t> found) noexcept {
    MarkScan scan;
    if (bytes.size() < markBytes) {
        return scan;
    }
    const std::size_t end = bytes.size() - markBytes + 1;
    // False where there is no room for another.
    const auto note = [&](std::size_t at) {
        if (kindAt(bytes.data() + at) &&
            (look == MarkLook::alone || mayLeadOn(bytes.subspan(at)))) {
            found[scan.count++] = static_cast<std::uint32_t>(at);
            scan.places = at + 1;
        }
        return scan.count < found.size();
    };
    std::size_t at = 0;
    for (; end - at >= block && bytes.size() - at >= block + markBytes; at += block) {
        if (!mayHoldMark(bytes.data() + at)) {
            continue;
        }
        for (std::size_t lane = at; lane < at + block; lane += sizeof(Lane)) {
            const auto likely = likelyMarks(bytes.data() + lane);
            for (std::size_t half = 0; half < likely.size(); ++half) {
                for (std::uint64_t places = likely[half]; places != 0;
                     places = withoutFirstByte(places)) {
                    if (!note(lane + 8 * half + firstByteSet(places))) {
                        return scan;
                    }
                }
            }
        }
    }
    for (; at < end; ++at) {
        if (!note(at)) {
            return scan;
        }
    }
    scan.places = end;
    return scan;
}

bool isChunkName(const std::byte* id) noexcept {
    // A sum with a bit where a byte is below 0x20 or above 0x7E, worked out for all four at once.
    const std::uint32_t name = wordAt(id);
    const std::uint32_t low = (name | 0x80808080U) - 0x20202020U;
    const std::uint32_t high = (name & 0x7F7F7F7FU) + 0x01010101U;
    const bool isPrintable = ((~low | high | name) & 0x80808080U) == 0;
    return isPrintable && name != word("FORM") && name != word("RIFF") && name != word("RF64");
}

bool mayLeadOn(ByteView mark) noexcept {
    return mark.size() < markBytes + chunkHeadBytes || isChunkName(mark.data() + markBytes);
}

bool takeCommon(ByteView content, std::uint64_t size, std::uint64_t chunk,
                SoundHead& head) noexcept {
    if (size < commonBytes || content.size() < commonBytes || !isRate(content.data() + 8)) {
        return false;
    }
    const auto channels = loadUnsigned<std::uint16_t>(content.data(), OMFByteOrder::big);
    const auto bits = loadUnsigned<std::uint16_t>(content.data() + 6, OMFByteOrder::big);
    const bool isPlainKind = head.kind == SoundKind::aiff || size < commonBytes + 4 ||
                             content.size() < commonBytes + 4 ||
                             isPlain(content.data() + commonBytes);
    if (channels == 0 || channels > mostChannels || bits > mostBits || (isPlainKind && bits == 0)) {
        return false;
    }
    head.formatChunk = chunk;
    head.frames = loadUnsigned<std::uint32_t>(content.data() + 2, OMFByteOrder::big);
    head.frameBytes = isPlainKind ? channels * ((bits + 7U) / 8U) : 0;
    return true;
}

SoundWalk::SoundWalk(std::uint64_t begin, ByteView mark) noexcept : next_(begin + markBytes) {
    head_.begin = begin;
    head_.kind = kindAt(mark.data()).value_or(SoundKind::aiff);
    const auto size = loadUnsigned<std::uint32_t>(mark.data() + 4, head_.order());
    if (size != 0 && size != sizeNotSaid) {
        head_.formBytes = std::uint64_t{size} + chunkHeadBytes;
    }
}

SoundWalk::Step SoundWalk::take(ByteView bytes) noexcept {
    if (bytes.size() < chunkHeadBytes || !isChunkName(bytes.data()) || ++chunks_ > mostChunks) {
        return Step::nonsense;
    }
    const auto size = loadUnsigned<std::uint32_t>(bytes.data() + 4, head_.order());
    const ByteView content = bytes.subspan(chunkHeadBytes);
    const std::uint32_t name = wordAt(bytes.data());
    if (name == (head_.isBigEndian() ? word("SSND") : word("data"))) {
        return takeSound(content, size);
    }
    const bool isFormat = name == (head_.isBigEndian() ? word("COMM") : word("fmt "));
    if (isFormat && !takeFormat(content, size)) {
        return Step::nonsense;
    }
    if (head_.kind == SoundKind::rf64 && name == word("ds64")) {
        takeSizes(content);
    }
    const std::uint64_t skipped = chunkHeadBytes + std::uint64_t{size} + size % 2;
    if (skipped > longestHeader - (next_ - head_.begin)) {
        return Step::nonsense;
    }
    next_ += skipped;
    return Step::further;
}

bool SoundWalk::takeFormat(ByteView content, std::uint64_t size) noexcept {
    if (head_.isBigEndian()) {
        return takeCommon(content, size, next_, head_);
    }
    if (size < formatBytes || content.size() < formatBytes) {
        return false;
    }
    constexpr auto order = OMFByteOrder::little;
    const auto channels = loadUnsigned<std::uint16_t>(content.data() + 2, order);
    const auto rate = loadUnsigned<std::uint32_t>(content.data() + 4, order);
    head_.frameBytes = loadUnsigned<std::uint16_t>(content.data() + 12, order);
    head_.formatChunk = next_;
    return channels != 0 && channels <= mostChannels && rate != 0 && rate <= highestRate &&
           head_.frameBytes != 0 &&
           loadUnsigned<std::uint16_t>(content.data() + 14, order) <= mostBits;
}

void SoundWalk::takeSizes(ByteView content) noexcept {
    constexpr std::uint64_t most = std::uint64_t{1} << 62U;
    if (content.size() < largeSizesBytes) {
        return;
    }
    const auto form = loadUnsigned<std::uint64_t>(content.data(), OMFByteOrder::little);
    largeSound_ = loadUnsigned<std::uint64_t>(content.data() + 8, OMFByteOrder::little);
    if (form != 0 && form < most && largeSound_ < most) {
        head_.sizesChunk = next_;
        if (!head_.formBytes) {
            head_.formBytes = form + chunkHeadBytes;
        }
    } else {
        largeSound_ = 0;
    }
}

SoundWalk::Step SoundWalk::takeSound(ByteView content, std::uint32_t size) noexcept {
    head_.soundChunk = next_;
    if (size == sizeNotSaid && largeSound_ != 0) {
        head_.soundBytes = largeSound_;
    } else if (size != sizeNotSaid && (size != 0 || head_.formBytes)) {
        head_.soundBytes = size;
    }
    const std::uint64_t lead = head_.isBigEndian() ? soundLeadBytes : 0;
    if (head_.soundBytes.value_or(lead + 1) <= lead) {
        // Writers set a header aside, and write the one that counts elsewhere.
        return Step::empty;
    }
    if (!head_.isBigEndian()) {
        return head_.formatChunk ? Step::sound : Step::nonsense;
    }
    if (content.size() < soundLeadBytes) {
        return Step::nonsense;
    }
    head_.soundLead =
        soundLeadBytes + loadUnsigned<std::uint32_t>(content.data(), OMFByteOrder::big);
    const bool isInside =
        head_.soundBytes ? head_.soundLead < *head_.soundBytes : head_.soundLead < longestHeader;
    return isInside ? Step::sound : Step::nonsense;
}

}  // namespace trellant::salvage
