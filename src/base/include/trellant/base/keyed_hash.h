// SPDX-License-Identifier: Apache-2.0
// Tables over numbers and texts that a stranger chose.
//
// Whoever knows how a table spreads its keys can choose keys that all fall into one place, and a
// table of a million such keys takes hours. SipHash-2-4 spreads them by a secret, drawn from the
// system's chance at the first use in a process, so that no choice of keys fits the next process.
// The order of such a table differs from run to run: no result may depend on it.
#pragma once

#include <trellant/base/bytes.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>

namespace [[gnu::visibility("default")]] trellant {

struct HashSecret {
    std::uint64_t low = 0;
    std::uint64_t high = 0;

    /// That of this process, and of what it forks from then on. The first call asks the system for
    /// chance; to be made before a process gives up what that takes.
    [[nodiscard]] static const HashSecret& ofProcess() noexcept;
};

/// SipHash-2-4 of the bytes.
[[nodiscard]] std::uint64_t sipHash(const HashSecret& secret, ByteView bytes) noexcept;

/// Hashes numbers, enumerations and texts by the secret of the process.
struct KeyedHash {
    // Not said to be free of exceptions, on purpose: the library then keeps the hash of a text
    // beside it instead of working it out again.
    [[nodiscard]] std::size_t operator()(std::string_view text) const {
        return static_cast<std::size_t>(
            sipHash(HashSecret::ofProcess(), std::as_bytes(std::span(text))));
    }
    template <class Number>
    requires std::integral<Number> || std::is_enum_v<Number>
    [[nodiscard]] std::size_t operator()(Number number) const noexcept {
        return static_cast<std::size_t>(
            sipHash(HashSecret::ofProcess(), std::as_bytes(std::span(&number, 1))));
    }
};

template <class Key, class Value, class Hash = KeyedHash>
using KeyedMap = std::unordered_map<Key, Value, Hash>;
template <class Key>
using KeyedSet = std::unordered_set<Key, KeyedHash>;

}  // namespace trellant
