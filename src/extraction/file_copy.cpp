// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/file_descriptor.h>
#include <trellant/base/write_all.h>
#include <trellant/extraction/file_copy.h>
#include <trellant/io/errors.h>

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <span>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

namespace trellant {

namespace {

/// Between two looks at whether anybody still waits.
constexpr std::size_t pieceBytes = 16U << 20U;

FileDescriptor opened(const std::string& path) {
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) {
        throw FileSystemError("read", path, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        throw FileSystemError("read", path, EINVAL);
    }
    return file;
}

#ifdef __linux__
/// The system copies by itself, and shares the blocks where the file system can. False where it
/// cannot do that between these files; nothing was copied then.
bool copyWithinTheSystem(int from, int to, const std::string& destination, WorkProgress& progress) {
    bool isFirst = true;
    for (;;) {
        const ssize_t copied = ::copy_file_range(from, nullptr, to, nullptr, pieceBytes, 0);
        if (copied < 0 && errno == EINTR) {
            continue;
        }
        if (copied < 0) {
            const int reason = errno;
            if (isFirst && (reason == EXDEV || reason == EINVAL || reason == ENOSYS ||
                            reason == EOPNOTSUPP || reason == EPERM)) {
                return false;
            }
            throw FileSystemError("write", destination, reason);
        }
        if (copied == 0) {
            // Some file systems give nothing this way although there is something.
            return !isFirst;
        }
        isFirst = false;
        progress.advance(static_cast<std::uint64_t>(copied));
    }
}
#endif

void copyByReading(int from, int to, const std::string& source, const std::string& destination,
                   WorkProgress& progress) {
    std::vector<std::byte> piece(pieceBytes / 16);
    for (;;) {
        const ssize_t got = ::read(from, piece.data(), piece.size());
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            throw FileSystemError("read", source, errno);
        }
        if (got == 0) {
            return;
        }
        const auto bytes = std::span(piece).first(static_cast<std::size_t>(got));
        if (const int reason = writeAll(to, bytes); reason != 0) {
            throw FileSystemError("write", destination, reason);
        }
        progress.advance(static_cast<std::uint64_t>(got));
    }
}

}  // namespace

void copyFile(const std::string& source, const std::string& destination, WorkProgress& progress) {
    const FileDescriptor from = opened(source);
    const FileDescriptor to(
        ::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!to.isOpen()) {
        throw FileSystemError("create", destination, errno);
    }
#ifdef __linux__
    if (copyWithinTheSystem(from.number(), to.number(), destination, progress)) {
        return;
    }
#endif
    copyByReading(from.number(), to.number(), source, destination, progress);
}

}  // namespace trellant
