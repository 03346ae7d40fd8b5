// SPDX-License-Identifier: Apache-2.0
// Copying stored pieces out into a new file. The kernel copies from file to file where it can;
// where it cannot, or fails, bytes go through a buffer, and that path alone reports errors, so that
// they are the same either way.
#include <trellant/base/file_room.h>
#include <trellant/base/host_watch.h>
#include <trellant/base/write_all.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace trellant {

namespace {

constexpr std::uint64_t chunkLimit = 4'194'304;
/// Kernels that write large pieces in large folios take a fifth less time for it than for a
/// quarter.
constexpr std::size_t bufferSize = 1'048'576;
/// The kernel moves whole pages from file to file at once; where pages do not fall on pages it goes
/// through a pipe, and the buffer is the faster way.
constexpr std::uint64_t pageSize = 4096;
/// From here on a call of the kernel's own copy pays.
constexpr std::uint64_t kernelWorthwhile = 65'536;
/// From here on it pays to tell the file system how much will come.
constexpr std::uint64_t roomWorthwhile = 4'194'304;

int openNew(const std::string& path) {
    int descriptor = -1;
    do {
        descriptor =
            ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// Makes way for a new file: what stands at `path` goes when it is a file or a link, and the link's
/// target is never touched.
void removeExisting(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        throw FileSystemError("create", path, errno);
    }
    if (!S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode)) {
        throw FileSystemError("create", path, S_ISDIR(status.st_mode) ? EISDIR : EEXIST);
    }
    if (::unlink(path.c_str()) != 0) {
        throw FileSystemError("create", path, errno);
    }
}

/// The file being read must survive, even where a name chosen by a stranger leads to it.
void refuseToReplaceSource(int source, const std::string& destination) {
    struct stat from {};
    struct stat there {};
    if (::fstat(source, &from) == 0 && ::lstat(destination.c_str(), &there) == 0 &&
        from.st_dev == there.st_dev && from.st_ino == there.st_ino) {
        throw FileSystemError("replace the file being read,", destination, EBUSY);
    }
}

class NewFile {
  public:
    /// `source` is open for reading what goes into the new file.
    NewFile(int source, const std::string& path) : path_(path) {
        if (path.find('\0') != std::string::npos) {
            throw FileSystemError("create", path, EINVAL);
        }
        const EndPutOff untilItIsKnown;
        descriptor_ = openNew(path);
        if (descriptor_ < 0 && errno == EEXIST) {
            refuseToReplaceSource(source, path);
            removeExisting(path);
            descriptor_ = openNew(path);
        }
        if (descriptor_ < 0) {
            throw FileSystemError("create", path, errno);
        }
        unfinished_.emplace(path_.c_str());
    }
    ~NewFile() { ::close(descriptor_); }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    NewFile(NewFile&&) = delete;
    NewFile& operator=(NewFile&&) = delete;

    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

    void write(ByteView bytes) const {
        if (const int failure = writeAll(descriptor_, bytes); failure != 0) {
            throw FileSystemError("write", path_, failure);
        }
    }

  private:
    const std::string& path_;
    int descriptor_ = -1;
    std::optional<UnfinishedFile> unfinished_;
};

/// The pieces on their way out: short ones are gathered and written together.
class Output {
  public:
    Output(int source, const std::string& path)
        : file_(source, path),
          storage_(std::make_unique_for_overwrite<Storage>()),
          buffer_(onPage(*storage_)) {}

    /// Bytes that went in so far.
    [[nodiscard]] std::uint64_t position() const noexcept { return written_ + filled_; }
    [[nodiscard]] int descriptor() const noexcept { return file_.descriptor(); }

    /// Room for the next bytes, never none; `take` says how many of it were filled.
    std::span<std::byte> room() {
        if (filled_ == bufferSize) {
            flush();
        }
        return std::span(buffer_, bufferSize).subspan(filled_);
    }
    void take(std::size_t count) noexcept { filled_ += count; }
    /// So many bytes will come.
    void expect(std::uint64_t length) const noexcept {
        makeFileRoom(descriptor(), position(), length);
    }

    void append(ByteView bytes) {
        while (!bytes.empty()) {
            const auto into = room();
            const std::size_t count = std::min(into.size(), bytes.size());
            std::copy_n(bytes.begin(), count, into.begin());
            take(count);
            bytes = bytes.subspan(count);
        }
    }
    void flush() {
        const std::size_t count = std::exchange(filled_, 0);
        written_ += count;
        file_.write(ByteView(buffer_, count));
    }
    /// Bytes that went straight to the descriptor, with nothing left to flush.
    void passedBy(std::uint64_t count) noexcept { written_ += count; }

  private:
    /// With room to begin the buffer on a page.
    using Storage = std::array<std::byte, bufferSize + pageSize>;

    static std::byte* onPage(Storage& storage) noexcept {
        void* start = storage.data();
        std::size_t room = storage.size();
        return static_cast<std::byte*>(std::align(pageSize, bufferSize, start, room));
    }

    NewFile file_;
    std::unique_ptr<Storage> storage_;
    /// Starts on a page: between pages the processor copies at twice the speed.
    std::byte* buffer_;
    std::size_t filled_ = 0;
    std::uint64_t written_ = 0;
};

/// Moves at most `length` bytes from `position` on to where `destination` stands. How many it were,
/// or -1 with errno; none where the system has no such call.
ssize_t movedByKernel([[maybe_unused]] int source, [[maybe_unused]] off_t position,
                      [[maybe_unused]] int destination,
                      [[maybe_unused]] std::uint64_t length) noexcept {
#ifdef __linux__
    return ::copy_file_range(source, &position, destination, nullptr, length, 0);
#else
    return 0;
#endif
}

/// One copy in progress: moves whole chunks whose bounds were checked.
class ChunkCopier {
  public:
    ChunkCopier(const RandomAccessFile& file, int source, Output& output,
                std::atomic<std::uint64_t>& readCalls)
        : file_(file), source_(source), output_(output), readCalls_(readCalls) {}

    void copyChunk(std::uint64_t offset, std::uint64_t length) {
        const std::uint64_t done = suitsKernel(offset, length) ? copyByKernel(offset, length) : 0;
        if (done < length) {
            copyByBuffer(offset, length, done);
        }
        copied_ += length;
        if (copied_ >= chunkLimit) {
            copied_ = 0;
            endIfHostIsGone();
        }
    }

  private:
    [[nodiscard]] bool suitsKernel(std::uint64_t offset, std::uint64_t length) const noexcept {
        return kernelCopies_ && length >= kernelWorthwhile && offset % pageSize == 0 &&
               output_.position() % pageSize == 0;
    }

    /// How many bytes of the chunk the kernel moved.
    std::uint64_t copyByKernel(std::uint64_t offset, std::uint64_t length) {
        output_.flush();
        std::uint64_t done = 0;
        while (kernelCopies_ && done < length) {
            readCalls_.fetch_add(1, std::memory_order_relaxed);
            const ssize_t moved = movedByKernel(source_, static_cast<off_t>(offset + done),
                                                output_.descriptor(), length - done);
            if (moved > 0) {
                done += static_cast<std::uint64_t>(moved);
            } else if (moved == 0 || errno != EINTR) {
                kernelCopies_ = false;
            }
        }
        output_.passedBy(done);
        return done;
    }

    /// Moves the rest of a chunk of which `done` bytes are out already.
    void copyByBuffer(std::uint64_t offset, std::uint64_t length, std::uint64_t done) {
        while (done < length) {
            const auto into = output_.room();
            const auto wanted = std::min<std::uint64_t>(into.size(), length - done);
            readCalls_.fetch_add(1, std::memory_order_relaxed);
            const ssize_t got =
                ::pread(source_, into.data(), wanted, static_cast<off_t>(offset + done));
            if (got == 0) {
                throw OMFIOError(OMFIOError::ShortRead{static_cast<std::int64_t>(length),
                                                       static_cast<std::int64_t>(done)});
            }
            if (got < 0) {
                if (errno == EINTR) {
                    continue;
                }
                throw FileSystemError("read", file_.path(), errno);
            }
            output_.take(static_cast<std::size_t>(got));
            done += static_cast<std::uint64_t>(got);
        }
    }

    const RandomAccessFile& file_;
    int source_;
    Output& output_;
    std::atomic<std::uint64_t>& readCalls_;
    bool kernelCopies_ = true;
    /// Bytes since the last look at the host.
    std::uint64_t copied_ = 0;
};

void copySegment(const BentoValueSegment& segment, std::uint64_t fileSize, ChunkCopier& copier,
                 Output& output) {
    if (const auto* immediate = std::get_if<BentoImmediate>(&segment.storage)) {
        const auto count = std::min<std::size_t>(immediate->count, immediate->bytes.size());
        output.append(std::as_bytes(std::span(immediate->bytes)).first(count));
    } else if (const auto* range = std::get_if<BentoRange>(&segment.storage)) {
        std::uint64_t offset = range->offset;
        std::uint64_t remaining = range->length;
        if (remaining >= roomWorthwhile && offset <= fileSize && remaining <= fileSize - offset) {
            output.expect(remaining);
        }
        while (remaining > 0) {
            const std::uint64_t length = std::min(remaining, chunkLimit);
            if (offset > fileSize || length > fileSize - offset) {
                throw OMFIOError(OMFIOError::OutOfBounds{offset, length, fileSize});
            }
            copier.copyChunk(offset, length);
            offset += length;
            remaining -= length;
        }
    }
}

}  // namespace

void RandomAccessFile::copy(std::span<const BentoValueSegment> segments,
                            const std::string& destination) const {
    copy(
        [&]() -> std::optional<BentoValueSegment> {
            if (segments.empty()) {
                return std::nullopt;
            }
            const BentoValueSegment next = segments.front();
            segments = segments.subspan(1);
            return next;
        },
        destination);
}

void RandomAccessFile::copy(const NextSegment& next, const std::string& destination) const {
    Output output(descriptor_, destination);
    ChunkCopier copier(*this, descriptor_, output, readCalls_);
    try {
        while (const auto segment = next()) {
            copySegment(*segment, size_, copier, output);
        }
    } catch (...) {
        // What came before the fault is left in the file.
        output.flush();
        throw;
    }
    output.flush();
}

}  // namespace trellant
