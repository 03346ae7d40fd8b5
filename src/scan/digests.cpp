// SPDX-License-Identifier: Apache-2.0
#include "digests.h"

#include <trellant/client/errors.h>

#include <algorithm>
#include <array>
#include <nettle/sha2.h>
#include <span>
#include <string_view>
#include <vector>

namespace trellant::scan {

namespace {

constexpr std::size_t pieceBytes = 1'048'576;
/// Doubles have eight.
constexpr std::int64_t largestSample = 8;

class Sha256 {
  public:
    Sha256() { ::sha256_init(&state_); }

    void add(ByteView bytes) {
        ::sha256_update(&state_, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
    }
    [[nodiscard]] std::string hexadecimal() {
        constexpr std::string_view digits = "0123456789abcdef";
        std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
        ::sha256_digest(&state_, digest.size(), digest.data());
        std::string text;
        for (const std::uint8_t byte : digest) {
            text += digits[byte >> 4U];
            text += digits[byte & 0xFU];
        }
        return text;
    }

  private:
    sha256_ctx state_{};
};

void check(const StopToken& stop) {
    if (stop.stop_requested()) {
        throw AAFCancellationError();
    }
}

/// Makes whole samples what a WAVE file has.
class AsInWave {
  public:
    explicit AsInWave(const AAFWorkerExtensions::Samples& samples)
        : size_(static_cast<std::size_t>(samples.sampleBytes)), isBigEndian_(samples.bigEndian) {}

    [[nodiscard]] std::size_t sampleSize() const noexcept { return size_; }
    void operator()(std::span<std::byte> whole) const {
        if (!isBigEndian_) {
            return;
        }
        if (size_ == 1) {
            for (std::byte& sample : whole) {
                sample ^= std::byte{0x80};
            }
            return;
        }
        for (std::size_t at = 0; at < whole.size(); at += size_) {
            const auto sample = whole.subspan(at, size_);
            std::reverse(sample.begin(), sample.end());
        }
    }

  private:
    std::size_t size_;
    bool isBigEndian_;
};

/// Takes bytes in any portions and adds whole samples to a digest.
class SampleStream {
  public:
    explicit SampleStream(const AsInWave& asInWave)
        : asInWave_(asInWave),
          buffer_(pieceBytes / asInWave.sampleSize() * asInWave.sampleSize()) {}

    void add(const RandomAccessFile& file, std::uint64_t offset, std::uint64_t length,
             const StopToken& stop) {
        while (length > 0) {
            check(stop);
            const auto count =
                static_cast<std::size_t>(std::min<std::uint64_t>(length, buffer_.size() - used_));
            file.read(offset, std::span(buffer_).subspan(used_, count));
            used_ += count;
            offset += count;
            length -= count;
            if (used_ == buffer_.size()) {
                passOn();
            }
        }
    }
    [[nodiscard]] std::string end() {
        passOn();
        return sha_.hexadecimal();
    }

  private:
    void passOn() {
        // Only the last portion of all may end within a sample, which then counts as it stands.
        const std::size_t whole = used_ / asInWave_.sampleSize() * asInWave_.sampleSize();
        asInWave_(std::span(buffer_).first(whole));
        sha_.add(std::span(buffer_).first(used_));
        used_ = 0;
    }

    const AsInWave& asInWave_;
    Sha256 sha_;
    Bytes buffer_;
    std::size_t used_ = 0;
};

}  // namespace

std::string digestOf(const RandomAccessFile& file, const StopToken& stop) {
    Sha256 sha;
    Bytes piece(static_cast<std::size_t>(std::clamp<std::uint64_t>(file.size(), 1, pieceBytes)));
    for (std::uint64_t offset = 0; offset < file.size();) {
        check(stop);
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), file.size() - offset));
        file.read(offset, std::span(piece).first(count));
        sha.add(std::span(piece).first(count));
        offset += count;
    }
    return sha.hexadecimal();
}

std::optional<SampleDigest> digestOf(const RandomAccessFile& file,
                                     const AAFWorkerExtensions::Samples& samples,
                                     const StopToken& stop) {
    if (samples.sampleBytes < 1 || samples.sampleBytes > largestSample) {
        return std::nullopt;
    }
    std::uint64_t total = 0;
    for (const AAFWorkerExtensions::SamplePiece& piece : samples.pieces) {
        if (piece.offset < 0 || piece.length < 1) {
            return std::nullopt;
        }
        const auto offset = static_cast<std::uint64_t>(piece.offset);
        const auto length = static_cast<std::uint64_t>(piece.length);
        // Honest pieces do not lie over one another.
        if (offset > file.size() || length > file.size() - offset || length > file.size() - total) {
            return std::nullopt;
        }
        total += length;
    }
    const AsInWave asInWave(samples);
    SampleStream stream(asInWave);
    for (const AAFWorkerExtensions::SamplePiece& piece : samples.pieces) {
        stream.add(file, static_cast<std::uint64_t>(piece.offset),
                   static_cast<std::uint64_t>(piece.length), stop);
    }
    return SampleDigest{.sha256 = stream.end(), .bytes = total};
}

}  // namespace trellant::scan
