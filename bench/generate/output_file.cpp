// SPDX-License-Identifier: Apache-2.0
#include "output_file.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace trellant::bench {

namespace {

constexpr std::size_t bufferSize = 1'048'576;

[[noreturn]] void refuse(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), path);
}

}  // namespace

std::string numberBytes(std::uint64_t value, std::size_t width, OMFByteOrder order) {
    std::string bytes(width, '\0');
    for (std::size_t index = 0; index < width; ++index) {
        const std::size_t place = order == OMFByteOrder::little ? index : width - 1 - index;
        bytes[place] = static_cast<char>((value >> (8 * index)) & 0xFFU);
    }
    return bytes;
}

OutputFile::OutputFile(const std::string& path)
    : path_(path),
      descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    if (descriptor_ < 0) {
        refuse(path_);
    }
    buffer_.reserve(bufferSize);
}

OutputFile::~OutputFile() {
    ::close(descriptor_);
}

void OutputFile::append(std::string_view bytes) {
    if (buffer_.size() + bytes.size() > bufferSize) {
        flush();
    }
    if (bytes.size() > bufferSize) {
        writeAt(written_, bytes);
        written_ += bytes.size();
    } else {
        buffer_.append(bytes);
    }
}

void OutputFile::replace(std::uint64_t position, std::string_view bytes) {
    if (position < written_) {
        flush();
        writeAt(position, bytes);
    } else {
        buffer_.replace(static_cast<std::size_t>(position - written_), bytes.size(), bytes);
    }
}

void OutputFile::finish() {
    flush();
}

void OutputFile::flush() {
    writeAt(written_, buffer_);
    written_ += buffer_.size();
    buffer_.clear();
}

void OutputFile::writeAt(std::uint64_t position, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count =
            ::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(position));
        if (count < 0 && errno != EINTR) {
            refuse(path_);
        }
        if (count > 0) {
            position += static_cast<std::uint64_t>(count);
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
    }
}

}  // namespace trellant::bench
