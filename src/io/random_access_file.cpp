// SPDX-License-Identifier: Apache-2.0
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace trellant {

namespace {

struct ReadOutcome {
    std::size_t count = 0;
    /// errno of the refusal that ended the reading early; 0 at the end of the file.
    int errorNumber = 0;
};

/// Fills `into` from `offset` as far as the file goes.
ReadOutcome readFully(int descriptor, std::uint64_t offset, std::span<std::byte> into,
                      std::atomic<std::uint64_t>& calls) noexcept {
    ReadOutcome outcome;
    while (outcome.count < into.size()) {
        calls.fetch_add(1, std::memory_order_relaxed);
        const ssize_t got =
            ::pread(descriptor, into.data() + outcome.count, into.size() - outcome.count,
                    static_cast<off_t>(offset + outcome.count));
        if (got > 0) {
            outcome.count += static_cast<std::size_t>(got);
        } else if (got == 0) {
            break;
        } else if (errno != EINTR) {
            outcome.errorNumber = errno;
            break;
        }
    }
    return outcome;
}

bool liesInside(std::uint64_t offset, std::uint64_t length, std::uint64_t size) noexcept {
    return offset <= size && length <= size - offset;
}

}  // namespace

RandomAccessFile::RandomAccessFile(std::string path) : path_(std::move(path)) {
    if (path_.find('\0') != std::string::npos) {
        throw FileSystemError("open", path_, EINVAL);
    }
    // Without O_NONBLOCK opening a named pipe would wait for its writer.
    do {
        descriptor_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    } while (descriptor_ < 0 && errno == EINTR);
    if (descriptor_ < 0) {
        throw FileSystemError("open", path_, errno);
    }
    struct stat status {};
    const int failure = ::fstat(descriptor_, &status) != 0 ? errno
                        : S_ISDIR(status.st_mode)          ? EISDIR
                                                           : 0;
    if (failure != 0) {
        ::close(descriptor_);
        throw FileSystemError("open", path_, failure);
    }
    if (S_ISREG(status.st_mode)) {
        size_ = static_cast<std::uint64_t>(status.st_size);
    }
}

RandomAccessFile::~RandomAccessFile() {
    ::close(descriptor_);
}

Bytes RandomAccessFile::read(std::uint64_t offset, std::int64_t count) const {
    if (count < 0) {
        throw OMFIOError::malformed("negative read length");
    }
    const auto length = static_cast<std::uint64_t>(count);
    if (!liesInside(offset, length, size_)) {
        throw OMFIOError(OMFIOError::OutOfBounds{offset, length, size_});
    }
    Bytes bytes(length);
    read(offset, bytes);
    return bytes;
}

void RandomAccessFile::read(std::uint64_t offset, std::span<std::byte> into) const {
    if (!liesInside(offset, into.size(), size_)) {
        throw OMFIOError(OMFIOError::OutOfBounds{offset, into.size(), size_});
    }
    const ReadOutcome outcome = readFully(descriptor_, offset, into, readCalls_);
    if (outcome.errorNumber != 0) {
        throw FileSystemError("read", path_, outcome.errorNumber);
    }
    if (outcome.count != into.size()) {
        throw OMFIOError(OMFIOError::ShortRead{static_cast<std::int64_t>(into.size()),
                                               static_cast<std::int64_t>(outcome.count)});
    }
}

std::size_t RandomAccessFile::readAvailable(std::uint64_t offset,
                                            std::span<std::byte> into) const noexcept {
    if (offset >= size_) {
        return 0;
    }
    const auto wanted = std::min<std::uint64_t>(into.size(), size_ - offset);
    return readFully(descriptor_, offset, into.first(wanted), readCalls_).count;
}

}  // namespace trellant
