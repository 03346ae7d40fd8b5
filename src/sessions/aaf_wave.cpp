// SPDX-License-Identifier: Apache-2.0
// The head of a WAVE file; all numbers are little-endian:
//   offset  size  meaning
//        0     4  "RIFF"
//        4     4  bytes after this number
//        8     8  "WAVE", "fmt "
//       16     4  16: bytes of the format
//       20     2  1 integer samples, 3 floating point
//       22     2  channels
//       24     4  samples of one channel in a second
//       28     4  bytes in a second
//       32     2  bytes of one sample of all channels
//       34     2  bits of a sample
//       36     4  "data"
//       40     4  bytes of samples
#include "aaf_wave.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/system_call_error.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace trellant::sessions {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 18U;

template <class Number>
Number saturated(std::uint64_t value) noexcept {
    return static_cast<Number>(std::min<std::uint64_t>(value, std::numeric_limits<Number>::max()));
}

class HeadWriter {
  public:
    HeadWriter& text(std::string_view letters) {
        std::transform(letters.begin(), letters.end(), std::back_inserter(bytes_),
                       [](char letter) { return static_cast<std::byte>(letter); });
        return *this;
    }
    HeadWriter& u16(std::uint16_t value) { return number(value, 2); }
    HeadWriter& u32(std::uint32_t value) { return number(value, 4); }
    [[nodiscard]] Bytes bytes() && { return std::move(bytes_); }

  private:
    HeadWriter& number(std::uint32_t value, unsigned width) {
        for (unsigned index = 0; index < width; ++index) {
            bytes_.push_back(static_cast<std::byte>(value >> (8 * index)));
        }
        return *this;
    }

    Bytes bytes_;
};

FileDescriptor openedForReading(const std::string& path) {
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        throw SystemCallError("open an audio file", errno);
    }
    return file;
}

std::size_t readAt(const FileDescriptor& file, std::span<std::byte> into, std::uint64_t offset) {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) {
        return 0;
    }
    ssize_t count = -1;
    do {
        count = ::pread(file.number(), into.data(), into.size(), static_cast<off_t>(offset));
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        throw SystemCallError("read an audio file", errno);
    }
    return static_cast<std::size_t>(count);
}

}  // namespace

std::uint16_t blockAlign(const WaveForm& form) noexcept {
    return saturated<std::uint16_t>(std::uint64_t{form.channels} * ((form.bits + 7U) / 8U));
}

std::uint32_t bytesPerSecond(const WaveForm& form) noexcept {
    return saturated<std::uint32_t>(std::uint64_t{blockAlign(form)} * form.sampleRate);
}

std::uint64_t dataByteCount(const WaveForm& form, std::int64_t frames) noexcept {
    const auto count = static_cast<std::uint64_t>(std::max<std::int64_t>(frames, 0));
    const std::uint64_t block = blockAlign(form);
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    return count <= largest / block ? count * block : largest;
}

Bytes waveHead(const WaveForm& form, std::uint64_t dataBytes) {
    constexpr std::uint32_t beforeSamples = 36;
    constexpr std::uint16_t integerSamples = 1;
    constexpr std::uint16_t floatingPointSamples = 3;
    const auto storedBytes = saturated<std::uint32_t>(dataBytes);
    HeadWriter head;
    head.text("RIFF").u32(saturated<std::uint32_t>(std::uint64_t{storedBytes} + beforeSamples));
    head.text("WAVEfmt ").u32(16);
    head.u16(form.isFloatingPoint ? floatingPointSamples : integerSamples).u16(form.channels);
    head.u32(form.sampleRate).u32(bytesPerSecond(form)).u16(blockAlign(form)).u16(form.bits);
    head.text("data").u32(storedBytes);
    return std::move(head).bytes();
}

compound::ByteSource partOfFile(std::string path, std::uint64_t offset, std::uint64_t byteCount) {
    return [path = std::move(path), offset, byteCount](const compound::ByteSink& sink) {
        const FileDescriptor file = openedForReading(path);
        Bytes piece(static_cast<std::size_t>(std::min<std::uint64_t>(byteCount, pieceSize)));
        for (std::uint64_t done = 0; done < byteCount;) {
            const std::uint64_t left = byteCount - done;
            const std::size_t count = readAt(file,
                                             std::span(piece).first(static_cast<std::size_t>(
                                                 std::min<std::uint64_t>(left, piece.size()))),
                                             offset + done);
            if (count == 0) {
                return;
            }
            sink(ByteView(piece).first(count));
            done += count;
        }
    };
}

}  // namespace trellant::sessions
