// SPDX-License-Identifier: Apache-2.0
#include <trellant/audio/waveform_data.h>

#include <algorithm>
#include <limits>

namespace trellant::audio {

namespace {

constexpr std::uint32_t version = 2;
constexpr std::uint32_t eightBitFlag = 1;

std::byte lowByte(std::uint32_t value) noexcept {
    return static_cast<std::byte>(value & 0xFFU);
}

void append(Bytes& bytes, std::int16_t value, PeakBits bits) {
    const auto pattern = static_cast<std::uint16_t>(value);
    if (bits == PeakBits::sixteen) {
        bytes.push_back(lowByte(pattern));
    }
    // The upper half of a number in two's complement is the number divided by 256, rounded down.
    bytes.push_back(lowByte(pattern >> 8U));
}

}  // namespace

std::array<std::byte, waveformHeaderBytes> waveformHeader(const WaveformHeader& header) noexcept {
    const std::array<std::uint32_t, 6> fields{
        version,           header.bits == PeakBits::eight ? eightBitFlag : 0,
        header.sampleRate, header.framesPerPair,
        header.pairs,      header.channels};
    std::array<std::byte, waveformHeaderBytes> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = lowByte(fields[i / 4] >> (8 * (i % 4)));
    }
    return bytes;
}

void appendPairs(Bytes& bytes, std::span<const PeakPair> pairs, PeakBits bits) {
    for (const PeakPair& pair : pairs) {
        append(bytes, pair.lowest, bits);
        append(bytes, pair.highest, bits);
    }
}

Bytes waveformData(const SoundMeasures& sound, PeakBits bits) {
    constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
    const auto header = waveformHeader(
        {.bits = bits,
         .sampleRate = sound.sampleRate,
         .framesPerPair = static_cast<std::uint32_t>(std::min(sound.peaks.framesPerPair, most)),
         .pairs = static_cast<std::uint32_t>(sound.peaks.length()),
         .channels = static_cast<std::uint32_t>(sound.peaks.channels)});
    Bytes bytes(header.begin(), header.end());
    appendPairs(bytes, sound.peaks.pairs, bits);
    return bytes;
}

}  // namespace trellant::audio
