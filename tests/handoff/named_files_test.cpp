// SPDX-License-Identifier: Apache-2.0
// Which of the files of one name a source can be given.
#include "named_files.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace trellant::testing {
namespace {

struct FileSpec {
    std::int64_t rate = 48'000;
    std::int64_t channels = 1;
    std::optional<std::uint64_t> frames = 100;
    bool isBeside = false;
};

MediaCandidate file(const FileSpec& one) {
    MediaCandidate candidate{.isBeside = one.isBeside};
    candidate.facts = AudioFacts{.frames = one.frames};
    candidate.facts->format.sampleRate = AAFRational(one.rate);
    candidate.facts->format.channels = one.channels;
    return candidate;
}

NamedFiles named(const std::vector<FileSpec>& given) {
    std::vector<MediaCandidate> files;
    for (const FileSpec& one : given) {
        files.push_back(file(one));
    }
    return NamedFiles(std::move(files));
}

SourceNeeds needs(std::int64_t frames = 100, std::int64_t channels = 1) {
    return {.sampleRate = AAFRational(48'000), .channels = channels, .frames = frames};
}

TEST(NamedFiles, TheOnlyOneThatFitsIsTaken) {
    const NamedFiles files =
        named({{.rate = 44'100}, {.frames = 99}, {.frames = std::nullopt}, {}, {.channels = 0}});
    EXPECT_EQ(files.fitting(needs()).decided, 3U);
    EXPECT_EQ(files.fitting(needs()).any, 3U);
}

TEST(NamedFiles, OfSeveralTheOnlyOneBesideIsTaken) {
    EXPECT_EQ(named({{.isBeside = true}, {}, {}}).fitting(needs()).decided, 0U);
    EXPECT_EQ(
        named({{.frames = 99, .isBeside = true}, {.isBeside = true}, {}}).fitting(needs()).decided,
        1U);
}

TEST(NamedFiles, SeveralDecideNothing) {
    const auto apart = named({{}, {}}).fitting(needs());
    EXPECT_EQ(apart.decided, std::nullopt);
    EXPECT_TRUE(apart.any.has_value());
    const auto beside = named({{.isBeside = true}, {.isBeside = true}}).fitting(needs());
    EXPECT_EQ(beside.decided, std::nullopt);
    EXPECT_TRUE(beside.any.has_value());
}

TEST(NamedFiles, NoneThatFitsIsNone) {
    for (const NamedFiles& files :
         {named({}), named({{.rate = 44'100}, {.frames = 99}}), named({{.channels = 1}})}) {
        EXPECT_EQ(files.fitting(needs(100, 2)).any, std::nullopt);
        EXPECT_EQ(files.fitting(needs(100, 2)).decided, std::nullopt);
    }
    NamedFiles unreadable(std::vector<MediaCandidate>(3));
    EXPECT_EQ(unreadable.fitting(needs()).any, std::nullopt);
}

TEST(NamedFiles, ThatFitAreThoseWithoutAMisfit) {
    std::minstd_rand random(20261122);
    const auto below = [&](std::uint32_t end) { return static_cast<std::int64_t>(random() % end); };
    for (int round = 0; round < 2'000; ++round) {
        std::vector<FileSpec> given;
        for (std::int64_t count = below(6), beside = below(6), i = 0; i < count; ++i) {
            FileSpec one{.rate = 48'000 + below(2), .channels = below(4), .isBeside = i < beside};
            one.frames = static_cast<std::uint64_t>(below(5));
            given.push_back(one);
        }
        const SourceNeeds need = needs(below(5), below(4));
        std::vector<std::size_t> fitting;
        std::vector<std::size_t> besideFitting;
        for (std::size_t i = 0; i < given.size(); ++i) {
            if (!misfit(*file(given[i]).facts, need)) {
                fitting.push_back(i);
                if (given[i].isBeside) {
                    besideFitting.push_back(i);
                }
            }
        }
        const auto found = named(given).fitting(need);
        EXPECT_EQ(found.any.has_value(), !fitting.empty());
        const auto& sole = fitting.size() == 1 ? fitting : besideFitting;
        EXPECT_EQ(found.decided, sole.size() == 1 ? std::optional(sole.front()) : std::nullopt);
    }
}

}  // namespace
}  // namespace trellant::testing
