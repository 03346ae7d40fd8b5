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

MediaReader::Part MediaReader::partIn(std::size_t media, std::size_t channel, std::int64_t first,
                                      std::size_t count) const {
    const auto& file = files_[media];
    const std::int64_t frames = file && channel < file->channels ? framesOf(*file) : 0;
    const auto wanted = static_cast<std::int64_t>(count);
    const std::int64_t from = first < 0 ? std::min(-first, wanted) : 0;
    const std::int64_t end = first >= frames ? from : std::clamp(frames - first, from, wanted);
    return {first + from, static_cast<std::size_t>(from), static_cast<std::size_t>(end - from)};
}

/// A file that became shorter meanwhile has silence there.
void MediaReader::readFrames(std::size_t media, std::int64_t first, std::span<std::byte> bytes) {
    const sessions::WaveFile& file = *files_[media];
    const std::uint64_t offset =
        file.dataOffset + static_cast<std::uint64_t>(first) * std::uint64_t{frameBytes(file)};
    const std::size_t got = readAt(file, opened(media), offset, bytes);
    const auto rest = bytes.subspan(got);
    std::fill(rest.begin(), rest.end(), audio::silentByte(formatOf(file)));
}

template <class Take>
void MediaReader::forEachPiece(std::size_t media, const Part& part, const Take& take) {
    const std::size_t step = frameBytes(*files_[media]);
    const std::size_t piece = std::max<std::size_t>(1, mostBytes / step);
    for (std::size_t done = 0; done < part.count;) {
        const std::size_t count = std::min(piece, part.count - done);
        bytes_.resize(count * step);
        readFrames(media, part.first + static_cast<std::int64_t>(done), bytes_);
        take(ByteView(bytes_), done, count);
        done += count;
    }
}

void MediaReader::read(std::size_t media, std::size_t channel, std::int64_t first,
                       std::span<double> values) {
    const Part part = partIn(media, channel, first, values.size());
    const auto inFile = values.subspan(part.skipped, part.count);
    const auto before = values.first(part.skipped);
    const auto behind = values.subspan(part.skipped + part.count);
    std::fill(before.begin(), before.end(), 0.0);
    std::fill(behind.begin(), behind.end(), 0.0);
    if (part.count == 0) {
        return;
    }
    const sessions::WaveFile& file = *files_[media];
    forEachPiece(media, part, [&](ByteView bytes, std::size_t done, std::size_t count) {
        audio::decodePcm(formatOf(file), bytes, file.channels, channel,
                         inFile.subspan(done, count));
    });
}

void MediaReader::copy(std::size_t media, std::size_t channel, std::int64_t first,
                       const audio::PcmFormat& to, std::span<std::byte> bytes) {
    const std::size_t size = to.bytes();
    const Part part = partIn(media, channel, first, bytes.size() / size);
    const auto inFile = bytes.subspan(part.skipped * size, part.count * size);
    const auto before = bytes.first(part.skipped * size);
    const auto behind = bytes.subspan(before.size() + inFile.size());
    std::fill(before.begin(), before.end(), audio::silentByte(to));
    std::fill(behind.begin(), behind.end(), audio::silentByte(to));
    if (part.count == 0) {
        return;
    }
    const sessions::WaveFile& file = *files_[media];
    const audio::PcmFormat from = formatOf(file);
    if (from == to && file.channels == 1) {
        readFrames(media, part.first, inFile);
        return;
    }
    forEachPiece(media, part, [&](ByteView piece, std::size_t done, std::size_t count) {
        audio::widenPcm(from, piece, file.channels, channel, to,
                        inFile.subspan(done * size, count * size));
    });
}

}  // namespace trellant::render
