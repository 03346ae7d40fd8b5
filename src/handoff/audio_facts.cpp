// SPDX-License-Identifier: Apache-2.0
// A chunk of either kind of file: identifier (4), size (4), that many bytes, padded to an even
// number. What tells the length:
//
//   WAVE "fmt "  offset 12, 2 bytes: bytes of a frame       AIFF "COMM"  offset 2, 4 bytes: frames
//   WAVE "data"  its size, or with the size 0xFFFFFFFF that of "ds64" (offset 8, 8 bytes)

#include <trellant/handoff/audio_facts.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace trellant {

namespace {

constexpr std::uint64_t headSize = 12;
constexpr std::uint64_t chunkHeadSize = 8;
/// Real files have a dozen.
constexpr int chunkLimit = 10'000;
constexpr std::uint32_t sizeElsewhere = 0xFFFFFFFF;

struct Chunk {
    std::string id;
    std::uint32_t size = 0;
    /// Of its first byte behind the head.
    std::uint64_t offset = 0;
};

/// The heads of chunks, read with what follows them: chunks of a few bytes would otherwise cost a
/// call of the system each.
class ChunkHeads {
  public:
    explicit ChunkHeads(const RandomAccessFile& file) : file_(file) {}

    /// The head at `offset`, which the file has wholly.
    [[nodiscard]] ByteView at(std::uint64_t offset) {
        if (offset < start_ || chunkHeadSize > size_ || offset - start_ > size_ - chunkHeadSize) {
            start_ = offset;
            size_ = std::min<std::uint64_t>(window_.size(), file_.size() - offset);
            file_.read(start_, std::span(window_).first(size_));
        }
        return ByteView(window_).subspan(offset - start_, chunkHeadSize);
    }

  private:
    const RandomAccessFile& file_;
    std::uint64_t start_ = 0;
    std::uint64_t size_ = 0;
    std::array<std::byte, 4096> window_{};
};

template <class Visit>
void forEachChunk(const RandomAccessFile& file, OMFByteOrder order, const Visit& visit) {
    std::uint64_t offset = headSize;
    ChunkHeads heads(file);
    for (int count = 0;
         count < chunkLimit && offset <= file.size() && chunkHeadSize <= file.size() - offset;
         ++count) {
        const ByteView head = heads.at(offset);
        Chunk chunk{asciiCString(head.first(4)), u32(head, 4, order), offset + chunkHeadSize};
        visit(chunk);
        offset = chunk.offset + chunk.size + chunk.size % 2;
    }
}

/// The bytes at `offset` of a chunk; absent when the chunk or the file is shorter.
std::optional<Bytes> field(const RandomAccessFile& file, const Chunk& chunk, std::uint64_t offset,
                           std::uint32_t count) {
    const std::uint64_t end = offset + count;
    if (end > chunk.size || chunk.offset > file.size() || end > file.size() - chunk.offset) {
        return std::nullopt;
    }
    return file.read(chunk.offset + offset, count);
}

std::optional<std::uint64_t> waveFrames(const RandomAccessFile& file) {
    constexpr auto order = OMFByteOrder::little;
    std::uint64_t frameBytes = 0;
    std::optional<std::uint64_t> largeSize;
    std::optional<std::uint64_t> sampleBytes;
    forEachChunk(file, order, [&](const Chunk& chunk) {
        if (chunk.id == "fmt " && frameBytes == 0) {
            const auto bytes = field(file, chunk, 12, 2);
            frameBytes = bytes ? u16(*bytes, 0, order) : 0;
        } else if (chunk.id == "ds64" && !largeSize) {
            const auto bytes = field(file, chunk, 8, 8);
            largeSize = bytes ? std::optional(u64(*bytes, 0, order)) : std::nullopt;
        } else if (chunk.id == "data" && !sampleBytes && chunk.offset <= file.size()) {
            const std::uint64_t said =
                chunk.size == sizeElsewhere && largeSize ? *largeSize : chunk.size;
            sampleBytes = std::min(said, file.size() - chunk.offset);
        }
    });
    if (frameBytes == 0 || !sampleBytes) {
        return std::nullopt;
    }
    return *sampleBytes / frameBytes;
}

std::optional<std::uint64_t> aiffFrames(const RandomAccessFile& file) {
    std::optional<std::uint64_t> frames;
    forEachChunk(file, OMFByteOrder::big, [&](const Chunk& chunk) {
        if (chunk.id == "COMM" && !frames) {
            const auto bytes = field(file, chunk, 2, 4);
            frames = bytes ? std::optional<std::uint64_t>(u32(*bytes, 0, OMFByteOrder::big))
                           : std::nullopt;
        }
    });
    return frames;
}

std::optional<std::uint64_t> framesIn(const std::string& path, const AudioFormatInfo& format) {
    try {
        const RandomAccessFile file(path);
        const std::string form = asciiCString(file.read(0, 4));
        if (form == "FORM") {
            return aiffFrames(file);
        }
        // In a compressed file the bytes of a frame are not those of its samples.
        const bool isPlain = format.codec == "PCM" || format.codec == "IEEE Float" ||
                             format.codec == "WAVE format 0xFFFE";
        return isPlain ? waveFrames(file) : std::nullopt;
    } catch (const OMFIOError&) {
        return std::nullopt;
    } catch (const FileSystemError&) {
        return std::nullopt;
    }
}

}  // namespace

std::optional<AudioFacts> audioFacts(const std::string& path) {
    const auto format = AudioProbe::probeFile(path);
    if (!format) {
        return std::nullopt;
    }
    return AudioFacts{*format, framesIn(path, *format)};
}

std::optional<AAFRational> seconds(const AudioFacts& facts) {
    const auto& rate = facts.format.sampleRate;
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (!facts.frames || *facts.frames > most || !rate || *rate <= AAFRational::zero()) {
        return std::nullopt;
    }
    return AAFRational(static_cast<std::int64_t>(*facts.frames)) / *rate;
}

}  // namespace trellant
