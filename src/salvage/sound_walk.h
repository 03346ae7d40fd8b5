// SPDX-License-Identifier: Apache-2.0
// The chunks of one AIFF, AIFC, WAVE or RF64 file from its mark to its samples, looked at one after
// the other as a search comes by. Layout of both families: omf/audio_probe.cpp; in addition
//
//   AIFF "SSND"                                  RF64 "ds64"
//   offset  size  meaning                        offset  size  meaning
//   0       4     offset of the first sample     0       8     bytes of the form
//   4       4     block size                     8       8     bytes of the samples
//   8             samples                        16      8     samples of one channel
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/salvage/found_sound.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace trellant::salvage {

/// What the header says; offsets are those of the file around it.
struct SoundHead {
    SoundKind kind = SoundKind::aiff;
    std::uint64_t begin = 0;
    /// Bytes of the whole, with the eight before the size; absent when the header does not say.
    std::optional<std::uint64_t> formBytes{};
    /// Where the chunk of the samples begins, and how many bytes its head says follow that; absent
    /// when it does not say.
    std::uint64_t soundChunk = 0;
    std::optional<std::uint64_t> soundBytes{};
    /// AIFF: from the chunk's content to the first sample.
    std::uint64_t soundLead = 0;
    /// The chunk "COMM" or "fmt "; absent while none has come.
    std::optional<std::uint64_t> formatChunk{};
    /// The chunk "ds64".
    std::optional<std::uint64_t> sizesChunk{};
    /// Samples of one channel as AIFF counts them.
    std::uint32_t frames = 0;
    /// Bytes of one sample of all channels; 0 when not known, as of compressed audio.
    std::uint32_t frameBytes = 0;

    [[nodiscard]] bool isBigEndian() const noexcept {
        return kind == SoundKind::aiff || kind == SoundKind::aifc;
    }
    [[nodiscard]] OMFByteOrder order() const noexcept {
        return isBigEndian() ? OMFByteOrder::big : OMFByteOrder::little;
    }
};

/// Bytes of a mark: form, size, form type.
inline constexpr std::size_t markBytes = 12;
inline constexpr std::size_t chunkHeadBytes = 8;
/// What is looked at of a chunk: its head and its content as far as that says anything here.
inline constexpr std::size_t chunkLookBytes = chunkHeadBytes + 24;

/// Which marks are wanted.
enum class MarkLook {
    /// All.
    alone,
    /// Those behind which a chunk may begin, as far as the bytes tell.
    withChunk
};

/// What a look for marks came to.
struct MarkScan {
    /// Marks that were found.
    std::size_t count = 0;
    /// So many of the first places were looked at.
    std::size_t places = 0;
};

/// Where marks begin in `bytes` (less than 4 GiB), of those that lie wholly inside, ascending:
/// written to `found`, which has room for one at least; the look ends where that is full.
[[nodiscard]] MarkScan scanForMarks(ByteView bytes, MarkLook look,
                                    std::span<std::uint32_t> found) noexcept;

/// Whether a chunk may begin behind the mark that `mark` begins with; true where the bytes end.
[[nodiscard]] bool mayLeadOn(ByteView mark) noexcept;

/// Whether the four bytes at `id` can name a chunk, and not a file of its own.
[[nodiscard]] bool isChunkName(const std::byte* id) noexcept;

/// Takes what the common chunk of an AIFF or AIFC says; `content` is what follows its head. False
/// when it makes no sense.
[[nodiscard]] bool takeCommon(ByteView content, std::uint64_t size, std::uint64_t chunk,
                              SoundHead& head) noexcept;

class SoundWalk {
  public:
    enum class Step {
        /// Look at the chunk at next().
        further,
        /// The samples begin: head() is complete.
        sound,
        /// Its header is whole, and says that there are no samples.
        empty,
        /// This is no sound.
        nonsense
    };

    /// From a mark that firstMark() found at byte `begin` of the file.
    SoundWalk(std::uint64_t begin, ByteView mark) noexcept;

    /// Where the next chunk begins, in bytes of the file.
    [[nodiscard]] std::uint64_t next() const noexcept { return next_; }
    /// `bytes`: the chunkLookBytes at next(), fewer only where the file ends.
    [[nodiscard]] Step take(ByteView bytes) noexcept;
    [[nodiscard]] const SoundHead& head() const noexcept { return head_; }

  private:
    [[nodiscard]] bool takeFormat(ByteView content, std::uint64_t size) noexcept;
    void takeSizes(ByteView content) noexcept;
    [[nodiscard]] Step takeSound(ByteView content, std::uint32_t size) noexcept;

    SoundHead head_;
    std::uint64_t next_;
    std::uint64_t largeSound_ = 0;
    int chunks_ = 0;
};

}  // namespace trellant::salvage
