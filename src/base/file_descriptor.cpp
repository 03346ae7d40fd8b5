// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/file_descriptor.h>
#include <trellant/base/system_call_error.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace trellant {

namespace {

[[noreturn]] void failPipe() {
    throw SystemCallError("make a pipe", errno);
}

/// A started program's streams are set up as 0, 1 and 2; an end among these would be overwritten.
FileDescriptor aboveStandardStreams(FileDescriptor descriptor) {
    constexpr int firstFree = 3;
    if (descriptor.number() >= firstFree) {
        return descriptor;
    }
    const int moved = ::fcntl(descriptor.number(), F_DUPFD_CLOEXEC, firstFree);
    if (moved < 0) {
        failPipe();
    }
    return FileDescriptor(moved);
}

int openPipe(std::array<int, 2>& ends) noexcept {
#ifdef __APPLE__
    // There is no pipe that closes on exec from birth; ProgramStart closes all that is not
    // handed on there.
    const int failure = ::pipe(ends.data());
    if (failure == 0) {
        ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
        ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    }
    return failure;
#else
    return ::pipe2(ends.data(), O_CLOEXEC);
#endif
}

}  // namespace

void FileDescriptor::close() noexcept {
    if (number_ >= 0) {
        ::close(std::exchange(number_, -1));
    }
}

Pipe makePipe() {
    std::array<int, 2> ends{-1, -1};
    if (openPipe(ends) != 0) {
        failPipe();
    }
    Pipe pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    pipe.reading = aboveStandardStreams(std::move(pipe.reading));
    pipe.writing = aboveStandardStreams(std::move(pipe.writing));
    return pipe;
}

void limitCapacity([[maybe_unused]] const FileDescriptor& end,
                   [[maybe_unused]] int bytes) noexcept {
#ifdef F_SETPIPE_SZ
    if (::fcntl(end.number(), F_GETPIPE_SZ) > bytes) {
        ::fcntl(end.number(), F_SETPIPE_SZ, bytes);
    }
#endif
}

void makeNonBlocking(const FileDescriptor& descriptor) noexcept {
    const int flags = ::fcntl(descriptor.number(), F_GETFL);
    ::fcntl(descriptor.number(), F_SETFL, flags | O_NONBLOCK);
}

}  // namespace trellant
