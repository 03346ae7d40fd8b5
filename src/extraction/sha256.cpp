// SPDX-License-Identifier: Apache-2.0
#include <trellant/extraction/sha256.h>
#include <trellant/io/errors.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <nettle/sha2.h>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace trellant {

namespace {

constexpr std::size_t pieceBytes = 1'048'576;

class OpenFile {
  public:
    explicit OpenFile(const std::string& path)
        // Not waiting: what stands at a path may turn out to be a pipe.
        : number_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)) {
        if (number_ < 0) {
            throw FileSystemError("open", path, errno);
        }
    }
    ~OpenFile() { ::close(number_); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    OpenFile(OpenFile&&) = delete;
    OpenFile& operator=(OpenFile&&) = delete;

    [[nodiscard]] int number() const noexcept { return number_; }

  private:
    int number_;
};

}  // namespace

struct Sha256::State {
    sha256_ctx context{};
};

Sha256::Sha256() : state_(std::make_unique<State>()) {
    ::sha256_init(&state_->context);
}

Sha256::~Sha256() = default;

void Sha256::add(ByteView bytes) noexcept {
    ::sha256_update(&state_->context, bytes.size(),
                    reinterpret_cast<const std::uint8_t*>(bytes.data()));
}

std::string Sha256::hexadecimal() {
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    ::sha256_digest(&state_->context, digest.size(), digest.data());
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

std::string fileDigest(const std::string& path,
                       const std::function<void(std::uint64_t)>& advanced) {
    const OpenFile file(path);
    Sha256 sha;
    std::vector<std::byte> piece(pieceBytes);
    while (true) {
        const ssize_t got = ::read(file.number(), piece.data(), piece.size());
        if (got == 0) {
            return sha.hexadecimal();
        }
        if (got > 0) {
            sha.add(ByteView(piece).first(static_cast<std::size_t>(got)));
            advanced(static_cast<std::uint64_t>(got));
        } else if (errno != EINTR) {
            throw FileSystemError("read", path, errno);
        }
    }
}

}  // namespace trellant
