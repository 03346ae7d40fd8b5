// SPDX-License-Identifier: Apache-2.0
// Whole files of workstations and the examples, damaged in every place: what lies whole in the
// bytes that are left comes out as it was, and nothing twice.
#include "searched_bytes.h"

#include <trellant/io/bento_container.h>
#include <trellant/salvage/salvage.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;
using salvage::FoundSound;

std::vector<std::string> damagedFiles() {
    std::vector<std::string> files;
    for (const char* const name : {"session.omf", "archive.omf", "external.omf"}) {
        files.push_back(std::string(TRELLANT_EXAMPLES) + "/" + name);
    }
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing sets it while tests run.
    if (const char* const folder = std::getenv("TRELLANT_REAL_FILES")) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().extension() == ".omf") {
                files.push_back(entry.path().native());
            }
        }
    }
    return files;
}

/// The header that a workstation sets aside before it writes the one that counts: 12 + 46 + 16
/// bytes.
constexpr std::uint64_t emptyAudioFile = 74;

/// Where the whole file holds audio, as its own table has it: values that begin as audio files do.
std::vector<BentoRange> audioOf(const std::string& path, ByteView bytes) {
    std::vector<BentoRange> audio;
    for (const BentoTOCItem& item : BentoContainer(path).tableItems()) {
        const auto* const range = std::get_if<BentoRange>(&item.segment.storage);
        if (range == nullptr || range->length <= emptyAudioFile || item.object == 1) {
            continue;
        }
        const std::string head = textOf(bytes.subspan(range->offset, 12));
        if (head.substr(8) == "WAVE" || head.substr(8) == "AIFC" || head.substr(8) == "AIFF") {
            audio.push_back(*range);
        }
    }
    return audio;
}

class Damage : public ::testing::Test {
  protected:
    /// Whether `range` came out as it is in the undamaged bytes.
    static bool cameOut(const std::vector<FoundSound>& sounds, const BentoRange& range) {
        return std::any_of(sounds.begin(), sounds.end(), [&](const FoundSound& sound) {
            return sound.isWhole && sound.ranges.size() == 1 && sound.ranges.front() == range;
        });
    }

    static void expectNothingTwice(const std::vector<FoundSound>& sounds, std::uint64_t size) {
        std::vector<BentoRange> all;
        for (const FoundSound& sound : sounds) {
            all.insert(all.end(), sound.ranges.begin(), sound.ranges.end());
        }
        std::sort(all.begin(), all.end(), [](const BentoRange& left, const BentoRange& right) {
            return left.offset < right.offset;
        });
        std::uint64_t end = 0;
        for (const BentoRange& range : all) {
            EXPECT_GE(range.offset, end);
            end = range.offset + range.length;
        }
        EXPECT_LE(end, size);
    }

    /// Sounds of `damaged`; those of `audio` that lie outside of the damage must be among them, and
    /// nothing else may be but what the damage touched.
    static void expectAll(ByteView damaged, const std::vector<BentoRange>& audio,
                          const BentoRange& damage) {
        const auto sounds = SearchedBytes(damaged).sounds(true);
        expectNothingTwice(sounds, damaged.size());
        const std::uint64_t damageEnd = damage.offset + damage.length;
        std::size_t untouched = 0;
        std::size_t touched = 0;
        for (const BentoRange& range : audio) {
            if (range.offset + range.length <= damage.offset || range.offset >= damageEnd) {
                EXPECT_TRUE(cameOut(sounds, range)) << range.offset;
                ++untouched;
            } else {
                ++touched;
            }
        }
        EXPECT_GE(sounds.size(), untouched);
        EXPECT_LE(sounds.size(), untouched + touched);
    }
};

TEST_F(Damage, UndamagedFilesGiveTheirAudioByTable) {
    for (const std::string& path : damagedFiles()) {
        SCOPED_TRACE(path);
        const Bytes bytes = readFile(path);
        const auto audio = audioOf(path, bytes);
        const auto sounds = SearchedBytes(bytes).sounds(true);
        ASSERT_EQ(sounds.size(), audio.size());
        for (std::size_t i = 0; i < audio.size(); ++i) {
            EXPECT_EQ(sounds[i].origin, salvage::SoundOrigin::table);
            EXPECT_EQ(sounds[i].ranges.front(), audio[i]);
            EXPECT_TRUE(sounds[i].doubts.empty());
        }
    }
}

TEST_F(Damage, CutAtEachHundredth) {
    for (const std::string& path : damagedFiles()) {
        const Bytes bytes = readFile(path);
        const auto audio = audioOf(path, bytes);
        for (std::size_t percent = 0; percent < 100; ++percent) {
            SCOPED_TRACE(path + " " + std::to_string(percent));
            const std::size_t kept = bytes.size() * percent / 100;
            expectAll(ByteView(bytes).first(kept), audio, {kept, bytes.size() - kept});
        }
    }
}

/// Salvages `damaged`, and holds the copies of those of `audio` that lie outside of the damage
/// against the undamaged bytes.
void expectCopies(ByteView whole, ByteView damaged, const std::vector<BentoRange>& audio,
                  const BentoRange& damage) {
    const TemporaryDirectory folder;
    const std::string file = writeFile(folder.file("damaged.omf"), damaged);
    const std::string out = folder.file("out");
    fs::create_directory(out);
    const salvage::SalvageReport report = salvage::salvageSounds(file, out);
    for (const BentoRange& range : audio) {
        if (range.offset + range.length > damage.offset &&
            range.offset < damage.offset + damage.length) {
            continue;
        }
        const auto sound = std::find_if(
            report.sounds.begin(), report.sounds.end(), [&](const salvage::SalvagedSound& one) {
                return one.offset == static_cast<std::int64_t>(range.offset);
            });
        ASSERT_NE(sound, report.sounds.end()) << range.offset;
        EXPECT_EQ(sound->state, "whole");
        const Bytes copy = readFile(out + "/" + sound->name);
        const ByteView original = whole.subspan(range.offset, range.length);
        EXPECT_TRUE(std::equal(copy.begin(), copy.end(), original.begin(), original.end()))
            << range.offset;
    }
}

TEST_F(Damage, WhatLiesWholeIsCopiedByteForByte) {
    for (const std::string& path : damagedFiles()) {
        const Bytes bytes = readFile(path);
        const auto audio = audioOf(path, bytes);
        for (std::size_t percent = 1; percent < 100; ++percent) {
            SCOPED_TRACE(path + " " + std::to_string(percent));
            const std::size_t place = bytes.size() * percent / 100 / 512 * 512;
            expectCopies(bytes, ByteView(bytes).first(place), audio, {place, bytes.size() - place});
            const std::size_t length = std::min<std::size_t>(4'096, bytes.size() - place);
            Bytes zeroed = bytes;
            std::fill_n(zeroed.begin() + static_cast<std::ptrdiff_t>(place), length, std::byte{0});
            expectCopies(bytes, zeroed, audio, {place, length});
        }
    }
}

TEST_F(Damage, CutWithinTheTableAndTheLabel) {
    for (const std::string& path : damagedFiles()) {
        const Bytes bytes = readFile(path);
        const auto audio = audioOf(path, bytes);
        for (std::size_t lost = 1; lost < 200; lost += lost < 30 ? 1 : 17) {
            SCOPED_TRACE(path + " lost " + std::to_string(lost));
            const std::size_t kept = bytes.size() - lost;
            expectAll(ByteView(bytes).first(kept), audio, {kept, lost});
        }
    }
}

TEST_F(Damage, BlocksOfZerosAtEachHundredth) {
    for (const std::string& path : damagedFiles()) {
        const Bytes bytes = readFile(path);
        const auto audio = audioOf(path, bytes);
        for (const std::size_t block : {512U, 4'096U, 65'536U}) {
            for (std::size_t percent = 0; percent < 100; ++percent) {
                SCOPED_TRACE(path + " " + std::to_string(block) + " at " + std::to_string(percent));
                // As a disk loses them: whole blocks.
                const std::size_t begin = bytes.size() * percent / 100 / 512 * 512;
                const std::size_t length = std::min(block, bytes.size() - begin);
                Bytes damaged = bytes;
                std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(begin), length,
                            std::byte{0});
                expectAll(damaged, audio, {begin, length});
            }
        }
    }
}

TEST_F(Damage, BytesInFrontAndBehindMoveNothingOutOfSight) {
    for (const std::string& path : damagedFiles()) {
        SCOPED_TRACE(path);
        const Bytes bytes = readFile(path);
        auto audio = audioOf(path, bytes);
        const Bytes more(777, std::byte{0xEE});
        expectAll(joined({bytes, more}), audio, {bytes.size(), more.size()});
        for (BentoRange& range : audio) {
            range.offset += more.size();
        }
        expectAll(joined({more, bytes}), audio, {0, more.size()});
    }
}

}  // namespace
}  // namespace trellant::testing
