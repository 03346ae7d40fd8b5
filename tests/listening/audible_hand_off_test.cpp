// SPDX-License-Identifier: Apache-2.0
// An example read with its audio: examples/README.md says what is in it.
#include <trellant/base/url.h>
#include <trellant/client/errors.h>
#include <trellant/handoff/sources.h>
#include <trellant/listening/audible_hand_off.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/worker_process.h>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using listening::AudibleHandOff;
using listening::AudibleHandOffRequest;
using listening::PreviewState;
using listening::SoundState;
using ::testing::ElementsAre;
using ::testing::Pair;

class AudibleHandOffs : public ::testing::Test {
  protected:
    [[nodiscard]] AudibleHandOffRequest request(const std::string& file) const {
        return {.file = file,
                .directory = folder_.path().native(),
                .helperURLProvider = [](const std::string&) { return workerPath(); }};
    }

    TemporaryDirectory folder_;
    WorkProgress progress_;
};

TEST_F(AudibleHandOffs, HearWhatIsEmbedded) {
    const AudibleHandOff audible(request(TRELLANT_EXAMPLES "/session.omf"), progress_);
    const auto& essences = audible.handOff().timeline.essences;
    const auto sounds = audible.measure({.converter = TRELLANT_WAV}, progress_);
    ASSERT_EQ(sounds.size(), essences.size());
    std::map<std::string, std::uint64_t> framesByName;
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        ASSERT_EQ(sounds[i].state, SoundState::heard) << sounds[i].reason;
        framesByName[sourceName(essences[i])] = sounds[i].measures->frames;
        EXPECT_TRUE(audible.isStaged(*pathOfFileURL(essences[i].fileURL->text)));
    }
    // 1.5 s at 24,000 Hz, 0.5 s at 48,000 Hz, 1 s at 22,050 Hz, 2 s at 11,025 Hz.
    EXPECT_THAT(framesByName,
                ElementsAre(Pair("Rain: garden.wav", 22'050U), Pair("Theme.aif", 22'050U),
                            Pair("Voice_Anna.wav", 36'000U), Pair("Voice_Ben.wav", 24'000U)));
    const auto previews =
        audible.previews({{.essence = 0}}, {.converter = TRELLANT_WAV}, progress_);
    EXPECT_EQ(previews.at(0).state, PreviewState::made) << previews.at(0).reason;
}

TEST_F(AudibleHandOffs, HearWhatLiesOutsideAndTellWhatIsMissing) {
    const AudibleHandOff audible(request(TRELLANT_EXAMPLES "/external.omf"), progress_);
    std::map<std::string, SoundState> states;
    const auto sounds = audible.measure({.converter = TRELLANT_WAV}, progress_);
    for (std::size_t i = 0; i < sounds.size(); ++i) {
        states[sourceName(audible.handOff().timeline.essences[i])] = sounds[i].state;
    }
    EXPECT_EQ(states.at("Steps.wav"), SoundState::missing);
    EXPECT_EQ(states.at("Door.wav"), SoundState::heard);
    EXPECT_FALSE(audible.isStaged(TRELLANT_EXAMPLES "/media"));
}

TEST_F(AudibleHandOffs, LeaveNothingBehind) {
    {
        const AudibleHandOff audible(request(TRELLANT_EXAMPLES "/session.omf"), progress_);
        EXPECT_FALSE(fs::is_empty(folder_.path()));
    }
    EXPECT_TRUE(fs::is_empty(folder_.path()));
    EXPECT_THROW(AudibleHandOff(request(folder_.file("none.omf")), progress_),
                 AAFWorkerClientError);
    EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(AudibleHandOffs, AreCancelled) {
    StopSource source;
    source.request_stop();
    WorkProgress stopped(source.get_token());
    EXPECT_THROW(AudibleHandOff(request(TRELLANT_EXAMPLES "/session.omf"), stopped),
                 AAFCancellationError);
    EXPECT_TRUE(fs::is_empty(folder_.path()));
}

}  // namespace
}  // namespace trellant::testing
