// SPDX-License-Identifier: Apache-2.0
// A chunk: identifier (4), size (4, little-endian), that many bytes, padded to an even number.
//
//   "fmt "  offset  0  2 bytes: 1 whole numbers, 3 floating point
//                   2  2 bytes: channels
//                  12  2 bytes: bytes of a frame
//                  14  2 bytes: bits of a sample
//   "ds64"  offset  8  8 bytes: size of "data" where that says 0xFFFFFFFF
#include <trellant/base/bytes.h>
#include <trellant/exporter/plain_wave.h>
#include <trellant/io/byte_readers.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace trellant {

namespace {

constexpr auto order = OMFByteOrder::little;
constexpr std::uint64_t headSize = 12;
constexpr std::uint64_t chunkHeadSize = 8;
constexpr std::uint32_t sizeElsewhere = 0xFFFFFFFF;
/// Samples lie behind a handful of chunks; a file with more is converted.
constexpr int mostChunks = 1'000;

bool isPlainFormat(ByteView format) {
    const auto tag = u16(format, 0, order);
    const std::uint32_t bits = u16(format, 14, order);
    const std::uint32_t frameBytes = u16(format, 12, order);
    const bool isWhole = tag == 1 && bits >= 8 && bits <= 32;
    const bool isFloating = tag == 3 && (bits == 32 || bits == 64);
    return (isWhole || isFloating) && bits % 8 == 0 && frameBytes != 0 &&
           frameBytes == u16(format, 2, order) * (bits / 8);
}

std::optional<sessions::WaveFile> waveIn(const RandomAccessFile& file) {
    const Bytes head = file.read(0, headSize);
    const std::string form = asciiCString(ByteView(head).first(4));
    // A large form that nothing asks for: tools that know the old one only would be left out.
    const bool isNeedlesslyLarge = form == "RF64" && file.size() <= sizeElsewhere;
    if ((form != "RIFF" && form != "RF64") || isNeedlesslyLarge ||
        asciiCString(ByteView(head).subspan(8)) != "WAVE") {
        return std::nullopt;
    }
    bool isPlain = false;
    sessions::WaveFile wave{.path = file.path(), .byteCount = file.size()};
    std::uint64_t largeSize = sizeElsewhere;
    std::uint64_t offset = headSize;
    for (int count = 0;
         count < mostChunks && offset <= file.size() && chunkHeadSize <= file.size() - offset;
         ++count) {
        const Bytes chunk = file.read(offset, chunkHeadSize);
        const std::string id = asciiCString(ByteView(chunk).first(4));
        const std::uint32_t size = u32(chunk, 4, order);
        offset += chunkHeadSize;
        if (id == "fmt ") {
            constexpr std::int64_t neededBytes = 16;
            if (size < neededBytes) {
                return std::nullopt;
            }
            const Bytes format = file.read(offset, neededBytes);
            isPlain = isPlainFormat(format);
            wave.bitsOfSample = u16(format, 14, order);
            wave.channels = u16(format, 2, order);
            wave.isFloatingPoint = u16(format, 0, order) == 3;
        } else if (id == "ds64" && size >= 16) {
            largeSize = u64(file.read(offset + 8, 8), 0, order);
        } else if (id == "data") {
            if (!isPlain) {
                return std::nullopt;
            }
            const std::uint64_t said = size == sizeElsewhere ? largeSize : size;
            wave.dataOffset = offset;
            wave.dataByteCount = std::min(said, file.size() - offset);
            return wave;
        }
        offset += std::uint64_t{size} + size % 2;
    }
    return std::nullopt;
}

}  // namespace

std::optional<sessions::WaveFile> plainWave(const std::string& path) {
    try {
        return waveIn(RandomAccessFile(path));
    } catch (const OMFIOError&) {
        return std::nullopt;
    } catch (const FileSystemError&) {
        return std::nullopt;
    }
}

}  // namespace trellant
