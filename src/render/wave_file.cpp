// SPDX-License-Identifier: Apache-2.0
#include "wave_file.h"

#include <trellant/base/file_room.h>
#include <trellant/base/write_all.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <utility>

namespace trellant::render {

namespace {

constexpr std::uint64_t mostOfRiff = 0xFFFFFFFF;
constexpr std::uint64_t chunkHead = 8;
constexpr std::uint64_t largeSizes = 28;
constexpr std::uint64_t wholeFormat = 16;
/// With the length of an extension, which is none.
constexpr std::uint64_t floatFormat = 18;

class Head {
  public:
    void word(std::string_view text) {
        const auto bytes = std::as_bytes(std::span(text));
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    void number(std::uint64_t value, std::size_t width) {
        for (std::size_t i = 0; i < width; ++i) {
            bytes_.push_back(static_cast<std::byte>(value >> (8 * i) & 0xFFU));
        }
    }
    void chunk(std::string_view name, std::uint64_t size) {
        word(name);
        number(size, 4);
    }
    void bytes(ByteView more) { bytes_.insert(bytes_.end(), more.begin(), more.end()); }
    [[nodiscard]] Bytes taken() && { return std::move(bytes_); }

  private:
    Bytes bytes_;
};

}  // namespace

Bytes waveHead(const WaveForm& form, ByteView chunks) {
    const std::uint64_t data = form.dataBytes();
    const std::uint64_t formatBytes = form.format.isFloatingPoint ? floatFormat : wholeFormat;
    const std::uint64_t fact = form.format.isFloatingPoint ? chunkHead + 4 : 0;
    std::uint64_t size =
        4 + chunkHead + formatBytes + fact + chunks.size() + chunkHead + data + data % 2;
    const bool isLarge = size > mostOfRiff;
    size += isLarge ? chunkHead + largeSizes : 0;
    Head head;
    head.chunk(isLarge ? "RF64" : "RIFF", isLarge ? mostOfRiff : size);
    head.word("WAVE");
    if (isLarge) {
        head.chunk("ds64", largeSizes);
        head.number(size, 8);
        head.number(data, 8);
        head.number(form.frames, 8);
        head.number(0, 4);
    }
    const std::uint64_t frameBytes = form.channels * form.format.bytes();
    head.chunk("fmt ", formatBytes);
    head.number(form.format.isFloatingPoint ? 3 : 1, 2);
    head.number(form.channels, 2);
    head.number(form.rate, 4);
    head.number(form.rate * frameBytes, 4);
    head.number(frameBytes, 2);
    head.number(form.format.bits, 2);
    head.number(0, formatBytes - wholeFormat);
    if (fact != 0) {
        head.chunk("fact", 4);
        head.number(std::min(form.frames, mostOfRiff), 4);
    }
    head.bytes(chunks);
    head.chunk("data", isLarge ? mostOfRiff : data);
    return std::move(head).taken();
}

WaveFileWriter::WaveFileWriter(std::string path, const WaveForm& form, ByteView chunks)
    : path_(std::move(path)),
      form_(form),
      file_(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666)) {
    if (!file_.isOpen()) {
        throw FileSystemError("create", path_, errno);
    }
    const Bytes head = waveHead(form_, chunks);
    makeFileRoom(file_.number(), 0, head.size() + form_.dataBytes() + form_.dataBytes() % 2);
    add(head);
}

void WaveFileWriter::add(ByteView bytes) {
    if (const int reason = writeAll(file_.number(), bytes); reason != 0) {
        throw FileSystemError("write", path_, reason);
    }
    sha_.add(bytes);
}

std::string WaveFileWriter::finish() {
    if (form_.dataBytes() % 2 != 0) {
        constexpr std::byte padding{0};
        add(ByteView(&padding, 1));
    }
    return sha_.hexadecimal();
}

}  // namespace trellant::render
