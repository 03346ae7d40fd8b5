// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/keyed_hash.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <unordered_set>
#include <vector>

namespace trellant {
namespace {

constexpr HashSecret published{.low = 0x0706050403020100, .high = 0x0F0E0D0C0B0A0908};

/// The bytes 0, 1, 2 and so on.
std::vector<std::byte> counting(std::size_t count) {
    std::vector<std::byte> bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = std::byte(i);
    }
    return bytes;
}

TEST(SipHash, GivesTheNumbersThatItsAuthorsPublished) {
    EXPECT_EQ(sipHash(published, counting(0)), 0x726FDB47DD0E0E31U);
    EXPECT_EQ(sipHash(published, counting(1)), 0x74F839C593DC67FDU);
    EXPECT_EQ(sipHash(published, counting(2)), 0x0D6C8009D9A94F5AU);
    EXPECT_EQ(sipHash(published, counting(15)), 0xA129CA6149BE45E5U);
}

TEST(SipHash, DependsOnBothHalvesOfTheSecret) {
    const auto bytes = counting(15);
    EXPECT_NE(sipHash({.low = published.low + 1, .high = published.high}, bytes),
              sipHash(published, bytes));
    EXPECT_NE(sipHash({.low = published.low, .high = published.high + 1}, bytes),
              sipHash(published, bytes));
}

TEST(HashSecret, StaysTheSameWithinAProcess) {
    const HashSecret& first = HashSecret::ofProcess();
    EXPECT_EQ(&HashSecret::ofProcess(), &first);
    EXPECT_FALSE(first.low == 0 && first.high == 0);
}

TEST(KeyedHash, HashesEqualTextsAlikeWhateverHoldsThem) {
    EXPECT_EQ(KeyedHash{}(std::string("Kick.wav")), KeyedHash{}(std::string_view("Kick.wav")));
}

constexpr std::size_t floodSize = 10'000;
/// With as many places as keys, a place has so many by chance less than once in 10^13 tables.
constexpr std::size_t mostInOnePlace = 20;

template <class Table>
std::size_t fullestPlace(const Table& table) {
    std::size_t most = 0;
    for (std::size_t place = 0; place < table.bucket_count(); ++place) {
        most = std::max(most, table.bucket_size(place));
    }
    return most;
}

/// Keys that a table which spreads numbers by their remainder puts into one place.
template <class Key>
std::vector<Key> floodOfNumbers() {
    const std::size_t places = std::unordered_set<std::uint64_t>(floodSize).bucket_count();
    std::vector<Key> keys;
    for (std::size_t i = 0; i < floodSize; ++i) {
        keys.push_back(static_cast<Key>(i * places));
    }
    return keys;
}

template <class Key>
void expectSpread(const std::vector<Key>& keys) {
    KeyedSet<Key> table(floodSize);
    table.insert(keys.begin(), keys.end());
    EXPECT_EQ(table.size(), keys.size());
    EXPECT_LT(fullestPlace(table), mostInOnePlace);
}

enum class Numbered : std::uint32_t {};

TEST(KeyedTable, FloodOfNumbersSpreads) {
    expectSpread(floodOfNumbers<std::uint32_t>());
    expectSpread(floodOfNumbers<std::uint64_t>());
    expectSpread(floodOfNumbers<Numbered>());
}

#ifdef __GLIBCXX__

std::unordered_set<std::uint64_t> unkeyed(const std::vector<std::uint64_t>& keys) {
    std::unordered_set<std::uint64_t> table(floodSize);
    table.insert(keys.begin(), keys.end());
    return table;
}

TEST(KeyedTable, FloodFillsOnePlaceOfATableWithoutASecret) {
    EXPECT_EQ(fullestPlace(unkeyed(floodOfNumbers<std::uint64_t>())), floodSize);
}

/// One step of the library's hash of texts takes eight bytes as a number `word` from `state` to
/// (state ^ mixed(word)) * factor, and each part of it can be undone.
class LibrarySteps {
  public:
    [[nodiscard]] static std::uint64_t mixed(std::uint64_t word) {
        word *= factor_;
        return (word ^ (word >> shift_)) * factor_;
    }
    [[nodiscard]] static std::uint64_t unmixed(std::uint64_t word) {
        word *= inverse();
        return (word ^ (word >> shift_)) * inverse();
    }
    [[nodiscard]] static std::uint64_t afterFirst(std::uint64_t word) {
        constexpr std::uint64_t seed = 0xC70F6907;
        constexpr std::uint64_t length = 16;
        return ((seed ^ (length * factor_)) ^ mixed(word)) * factor_;
    }

  private:
    /// Each round doubles the bits that are right; a number's own inverse is right in three.
    [[nodiscard]] static std::uint64_t inverse() {
        std::uint64_t result = factor_;
        for (int round = 0; round < 5; ++round) {
            result *= 2 - factor_ * result;
        }
        return result;
    }

    static constexpr std::uint64_t factor_ = 0xC6A4A7935BD1E995;
    static constexpr unsigned shift_ = 47;
};

/// Texts of 16 bytes to which the library without a secret gives one hash: whatever the first half
/// does to the state, the second undoes.
std::vector<std::string> floodOfTexts() {
    std::vector<std::string> texts;
    for (std::uint64_t first = 0; first < floodSize; ++first) {
        const std::array halves{first, LibrarySteps::unmixed(LibrarySteps::afterFirst(first))};
        std::string text(sizeof halves, '\0');
        std::memcpy(text.data(), halves.data(), sizeof halves);
        texts.push_back(std::move(text));
    }
    return texts;
}

TEST(KeyedTable, FloodOfTextsSpreads) {
    const auto texts = floodOfTexts();
    if (std::endian::native == std::endian::little) {
        EXPECT_EQ(std::hash<std::string>{}(texts.front()), std::hash<std::string>{}(texts.back()));
    }
    expectSpread(texts);
}

#endif

}  // namespace
}  // namespace trellant
