// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/byte_load.h>
#include <trellant/base/keyed_hash.h>

#include <array>
#include <bit>
#include <chrono>
#include <sys/random.h>
#include <unistd.h>

namespace trellant {

namespace {

constexpr std::size_t wordSize = 8;

/// The four words of the state. Their first values are the letters of a text that the authors of
/// the hash chose.
class SipState {
  public:
    explicit SipState(const HashSecret& secret) noexcept
        : words_{secret.low ^ 0x736f6d6570736575U, secret.high ^ 0x646f72616e646f6dU,
                 secret.low ^ 0x6c7967656e657261U, secret.high ^ 0x7465646279746573U} {}

    void add(std::uint64_t word) noexcept {
        words_[3] ^= word;
        mix();
        mix();
        words_[0] ^= word;
    }

    [[nodiscard]] std::uint64_t finish() noexcept {
        words_[2] ^= 0xFFU;
        mix();
        mix();
        mix();
        mix();
        return words_[0] ^ words_[1] ^ words_[2] ^ words_[3];
    }

  private:
    void mix() noexcept {
        auto& [a, b, c, d] = words_;
        a += b;
        b = std::rotl(b, 13) ^ a;
        a = std::rotl(a, 32);
        c += d;
        d = std::rotl(d, 16) ^ c;
        a += d;
        d = std::rotl(d, 21) ^ a;
        c += b;
        b = std::rotl(b, 17) ^ c;
        c = std::rotl(c, 32);
    }

    std::array<std::uint64_t, 4> words_;
};

/// For a system that refuses: where the program lies in memory and when it runs is hard to know
/// beforehand too.
HashSecret secretOfCircumstances() noexcept {
    static const int somewhere = 0;
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return {
        .low = static_cast<std::uint64_t>(now) ^ (static_cast<std::uint64_t>(::getpid()) << 40U),
        .high = std::bit_cast<std::uintptr_t>(&somewhere)};
}

HashSecret drawnSecret() noexcept {
    HashSecret secret;
    return ::getentropy(&secret, sizeof secret) == 0 ? secret : secretOfCircumstances();
}

}  // namespace

const HashSecret& HashSecret::ofProcess() noexcept {
    static const HashSecret secret = drawnSecret();
    return secret;
}

std::uint64_t sipHash(const HashSecret& secret, ByteView bytes) noexcept {
    SipState state(secret);
    const std::size_t whole = bytes.size() / wordSize * wordSize;
    for (std::size_t at = 0; at < whole; at += wordSize) {
        state.add(loadUnsigned<std::uint64_t>(bytes.data() + at, OMFByteOrder::little));
    }
    // The rest of the bytes, and how many there were, in the highest byte.
    std::uint64_t last = std::uint64_t{bytes.size() & 0xFFU} << 56U;
    for (std::size_t at = whole; at < bytes.size(); ++at) {
        last |= std::to_integer<std::uint64_t>(bytes[at]) << (8 * (at - whole));
    }
    state.add(last);
    return state.finish();
}

}  // namespace trellant
