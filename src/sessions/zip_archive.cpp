// SPDX-License-Identifier: Apache-2.0
#include "zip_archive.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/precondition.h>
#include <trellant/base/system_call_error.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <exception>
#include <fcntl.h>
#include <minizip/zip.h>
#include <new>
#include <span>
#include <unistd.h>
#include <vector>

namespace trellant::sessions {

namespace {

/// What one call of the library takes at most.
constexpr std::size_t mostAtOnce = 1U << 30U;
/// Beyond these, older versions of the library give their number in too few bits.
constexpr std::size_t mostMembers = 65'534;
/// What is read of a file at once.
constexpr std::size_t pieceSize = 1U << 18U;

/// Date and time as archives have them: day, month and years since 1980 above seconds/2, minutes
/// and hours.
std::uint32_t dosDate(std::int64_t secondsSince1970) {
    using namespace std::chrono;
    constexpr sys_seconds first = sys_days{1980y / January / 1};
    constexpr sys_seconds last = sys_days{2107y / December / 31} + 23h + 59min + 58s;
    const sys_seconds when = std::clamp(sys_seconds{seconds{secondsSince1970}}, first, last);
    const auto day = floor<days>(when);
    const year_month_day date{day};
    const hh_mm_ss time{when - day};
    const auto bits = [](auto value, unsigned shift) {
        return static_cast<std::uint32_t>(value) << shift;
    };
    return bits(static_cast<int>(date.year()) - 1980, 25) |
           bits(static_cast<unsigned>(date.month()), 21) |
           bits(static_cast<unsigned>(date.day()), 16) | bits(time.hours().count(), 11) |
           bits(time.minutes().count(), 5) | bits(time.seconds().count() / 2, 0);
}

}  // namespace

/// What the library writes to. It is written in C: exceptions wait here until its call is over. It
/// hears of no failure, since it does not always give back what it has when a call fails.
struct ZipArchive::Output {
    explicit Output(const PlacedSink& placedSink) : sink(&placedSink) {}

    const PlacedSink* sink;
    std::uint64_t position = 0;
    std::uint64_t end = 0;
    bool isAbandoned = false;
    std::exception_ptr failure{};

    static Output& of(voidpf opaque) { return *static_cast<Output*>(opaque); }

    static uLong write(voidpf opaque, voidpf, const void* bytes, uLong count) {
        Output& output = of(opaque);
        if (!output.isAbandoned && !output.failure) {
            try {
                (*output.sink)(output.position, {static_cast<const std::byte*>(bytes), count});
            } catch (...) {
                output.failure = std::current_exception();
            }
        }
        output.position += count;
        output.end = std::max(output.end, output.position);
        return count;
    }

    static long seek(voidpf opaque, voidpf, ZPOS64_T offset, int origin) {
        Output& output = of(opaque);
        if (origin == ZLIB_FILEFUNC_SEEK_CUR) {
            offset += output.position;
        } else if (origin == ZLIB_FILEFUNC_SEEK_END) {
            offset += output.end;
        }
        output.position = offset;
        return 0;
    }

    static voidpf open(voidpf opaque, const void*, int) { return opaque; }
    static uLong read(voidpf, voidpf, void*, uLong) { return 0; }
    static ZPOS64_T tell(voidpf opaque, voidpf) { return of(opaque).position; }
    static int close(voidpf, voidpf) { return 0; }
    static int error(voidpf, voidpf) { return 0; }
};

ZipArchive::ZipArchive(const PlacedSink& sink, std::int64_t date)
    : output_(std::make_unique<Output>(sink)), dosDate_(dosDate(date)) {
    zlib_filefunc64_def functions{.zopen64_file = Output::open,
                                  .zread_file = Output::read,
                                  .zwrite_file = Output::write,
                                  .ztell64_file = Output::tell,
                                  .zseek64_file = Output::seek,
                                  .zclose_file = Output::close,
                                  .zerror_file = Output::error,
                                  .opaque = output_.get()};
    zip_ = ::zipOpen2_64("", APPEND_STATUS_CREATE, nullptr, &functions);
    if (zip_ == nullptr) {
        throw std::bad_alloc();
    }
}

ZipArchive::~ZipArchive() {
    if (zip_ != nullptr) {
        output_->isAbandoned = true;
        ::zipClose(zip_, nullptr);
    }
}

void ZipArchive::check(int result) const {
    if (output_->failure) {
        std::rethrow_exception(output_->failure);
    }
    if (result == Z_MEM_ERROR || result == ZIP_INTERNALERROR) {
        throw std::bad_alloc();
    }
    if (result != ZIP_OK) {
        throw SystemCallError("write the archive", EFBIG);
    }
}

void ZipArchive::add(const std::string& name, Packing packing, std::uint64_t mostBytes,
                     const compound::ByteSource& source) {
    constexpr std::size_t mostNameBytes = 65535;
    constexpr std::uint64_t leastLarge = 0xFFFFFFFF;
    constexpr uLong fromUnix = 3U << 8U;
    constexpr uLong namesInUtf8 = 1U << 11U;
    constexpr uLong readableFile = 0100644UL << 16U;
    // Deflating may lengthen what does not shrink, by far less than this.
    constexpr std::uint64_t growth = 1U << 24U;
    precondition(name.size() <= mostNameBytes, "a member's name fits its archive");
    if (memberCount_ == mostMembers) {
        throw SystemCallError("put so many files into one archive", EFBIG);
    }
    ++memberCount_;

    const bool isLarge = mostBytes >= leastLarge - growth;
    const uLong version = isLarge ? 45 : 20;
    zip_fileinfo facts{};
    facts.dosDate = dosDate_;
    facts.external_fa = readableFile;
    check(::zipOpenNewFileInZip4_64(zip_, name.c_str(), &facts, nullptr, 0, nullptr, 0, nullptr,
                                    packing == Packing::deflated ? Z_DEFLATED : 0,
                                    Z_DEFAULT_COMPRESSION, 0, -MAX_WBITS, DEF_MEM_LEVEL,
                                    Z_DEFAULT_STRATEGY, nullptr, 0, fromUnix | version, namesInUtf8,
                                    isLarge ? 1 : 0));
    std::uint64_t room = mostBytes;
    source([this, &room](ByteView bytes) {
        // The header in front has no room for larger numbers.
        if (bytes.size() > room) {
            throw SystemCallError("write the archive", EFBIG);
        }
        room -= bytes.size();
        while (!bytes.empty()) {
            const ByteView piece = bytes.first(std::min(bytes.size(), mostAtOnce));
            check(::zipWriteInFileInZip(zip_, piece.data(), static_cast<unsigned>(piece.size())));
            bytes = bytes.subspan(piece.size());
        }
    });
    check(::zipCloseFileInZip(zip_));
}

void ZipArchive::addFile(const std::string& name, const std::string& path,
                         std::uint64_t byteCount) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.isOpen()) {
        throw SystemCallError("open the audio of a session", errno);
    }
    add(name, Packing::stored, byteCount, [&file, byteCount](const compound::ByteSink& sink) {
        std::vector<std::byte> piece(pieceSize);
        for (std::uint64_t left = byteCount; left > 0;) {
            const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, pieceSize));
            const ssize_t got = ::read(file.number(), piece.data(), wanted);
            if (got > 0) {
                sink(std::span(piece).first(static_cast<std::size_t>(got)));
                left -= static_cast<std::uint64_t>(got);
            } else if (got == 0 || errno != EINTR) {
                throw SystemCallError("read the audio of a session", got == 0 ? EIO : errno);
            }
        }
    });
}

void ZipArchive::finish() {
    const int result = ::zipClose(zip_, nullptr);
    zip_ = nullptr;
    check(result);
}

}  // namespace trellant::sessions
