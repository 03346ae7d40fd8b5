// SPDX-License-Identifier: Apache-2.0
#include "media_reader.h"

#include <trellant/io/errors.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

namespace trellant::render {

namespace {

constexpr std::size_t mostOpenFiles = 64;
/// Read at once.
constexpr std::size_t mostBytes = 1U << 18U;

/// Reads until all is there or the file ends; gives the bytes that were there.
std::size_t readAt(const sessions::WaveFile& file, int descriptor, std::uint64_t offset,
                   std::span<std::byte> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t got = ::pread(descriptor, bytes.data() + done, bytes.size() - done,
                                    static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            throw FileSystemError("read", file.path, errno);
        }
        if (got == 0) {
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::size_t frameBytes(const sessions::WaveFile& file) noexcept {
    return formatOf(file).bytes() * file.channels;
}

}  // namespace

audio::PcmFormat formatOf(const sessions::WaveFile& file) noexcept {
    return {file.bitsOfSample, file.isFloatingPoint};
}

std::int64_t framesOf(const sessions::WaveFile& file) noexcept {
    const std::size_t bytes = frameBytes(file);
    if (!audio::isPcmFormat(formatOf(file)) || bytes == 0) {
        return 0;
    }
    return static_cast<std::int64_t>(file.dataByteCount / bytes);
}

int MediaReader::opened(std::size_t media) {
    if (const auto found = open_.find(media); found != open_.end()) {
        return found->second.number();
    }
    if (open_.size() >= mostOpenFiles) {
        open_.clear();
    }
    const std::string& path = files_[media]->path;
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.isOpen()) {
        throw FileSystemError("read", path, errno);
    }
    return open_.emplace(media, std::move(file)).first->second.number();
}

void MediaReader::read(std::size_t media, std::size_t channel, std::int64_t first,
                       std::span<double> values) {
    const std::int64_t frames = files_[media] ? framesOf(*files_[media]) : 0;
    const auto count = static_cast<std::int64_t>(values.size());
    const std::int64_t from = std::clamp<std::int64_t>(-first, 0, count);
    const std::int64_t end = first >= frames ? from : std::clamp(frames - first, from, count);
    if (from == end || channel >= files_[media]->channels) {
        std::fill(values.begin(), values.end(), 0.0);
        return;
    }
    std::fill(values.begin(), values.begin() + from, 0.0);
    std::fill(values.begin() + end, values.end(), 0.0);
    readFrames(
        *files_[media], opened(media), channel, first + from,
        values.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(end - from)));
}

void MediaReader::readFrames(const sessions::WaveFile& file, int descriptor, std::size_t channel,
                             std::int64_t first, std::span<double> values) {
    const std::size_t step = frameBytes(file);
    const std::size_t piece = std::max<std::size_t>(1, mostBytes / step);
    while (!values.empty()) {
        const std::size_t count = std::min(piece, values.size());
        bytes_.resize(count * step);
        const std::uint64_t offset =
            file.dataOffset + static_cast<std::uint64_t>(first) * std::uint64_t{step};
        const std::size_t got = readAt(file, descriptor, offset, bytes_);
        // A file that became shorter meanwhile has silence there.
        std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(got), bytes_.end(), std::byte{0});
        audio::decodePcm(formatOf(file), bytes_, file.channels, channel, values.first(count));
        values = values.subspan(count);
        first += static_cast<std::int64_t>(count);
    }
}

}  // namespace trellant::render
