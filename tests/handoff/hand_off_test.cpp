// SPDX-License-Identifier: Apache-2.0
// One look at a file with the real worker.
#include <trellant/client/errors.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/sources.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>
#include <trellant_testing/worker_process.h>
#include <variant>
#include <vector>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::string example(const std::string& name) {
    return std::string(TRELLANT_EXAMPLES "/") + name;
}

HandOffRequest requestOf(const std::string& file) {
    return {.file = file, .helperURLProvider = [](const std::string&) -> std::optional<fs::path> {
                return workerPath();
            }};
}

TEST(HandOff, PlacesEachLossOnItsTrackAndTime) {
    WorkProgress progress;
    const HandOff handOff = readHandOff(requestOf(example("session.omf")), progress);
    ASSERT_THAT(handOff.losses, SizeIs(3));
    const PlacedLoss& effect = handOff.losses[1];
    EXPECT_EQ(effect.trackName, "Atmo");
    EXPECT_EQ(effect.trackNumber, 7);
    EXPECT_EQ(effect.start, AAFRational(3, 2));
    EXPECT_EQ(effect.duration, AAFRational(2, 5));
    EXPECT_EQ(effect.plain, "This stretch is silent: the effect on it is not known.");
    EXPECT_EQ(effect.description, handOff.timeline.unsupportedFeatures[1].description);
}

TEST(HandOff, AnEffectThatIsNotKnownLeavesItsStretchSilentAsTheLossSays) {
    WorkProgress progress;
    const HandOff handOff = readHandOff(requestOf(example("session.omf")), progress);
    ASSERT_THAT(handOff.losses, SizeIs(3));
    const PlacedLoss& effect = handOff.losses[1];
    ASSERT_TRUE(effect.start && effect.duration && effect.trackID);
    const AAFRational end = *effect.start + *effect.duration;
    for (const AAFClipEvent& event : handOff.timeline.events) {
        EXPECT_TRUE(event.trackID != *effect.trackID || event.timelineEnd() <= *effect.start ||
                    event.timelineStart >= end)
            << event.id;
    }
}

TEST(HandOff, SmallFileWithAHugeAnswerIsAnError) {
    // Two hundred thousand clips of more than 250 bytes each, all of them one clip.
    OmfBuilder omf;
    const MobID source{1, 2, 3};
    omf.audioFile({.id = source, .length = 480});
    ObjectID segment = omf.clip({.length = 480, .source = source});
    for (const std::size_t width : {20U, 100U, 100U}) {
        segment = omf.sequence(std::vector<ObjectID>(width, segment));
    }
    omf.composition({.slots = {omf.slot({.editRate = Ratio{48'000}, .segment = segment})}});
    const TemporaryDirectory folder;
    const std::string file = writeFile(folder.file("small.omf"), omf.build());
    WorkProgress progress;
    try {
        static_cast<void>(readHandOff(requestOf(file), progress));
        FAIL();
    } catch (const AAFWorkerClientError& error) {
        EXPECT_EQ(error.fault(),
                  AAFWorkerClientError::Fault(AAFWorkerClientError::InvalidResponse{
                      "longer than " + std::to_string(33'554'432 + 16 * fs::file_size(file)) +
                      " bytes"}));
    }
}

TEST(HandOff, NamesTheCompositionThatWasRead) {
    WorkProgress progress;
    const HandOff handOff = readHandOff(requestOf(example("session.omf")), progress);
    ASSERT_THAT(handOff.compositions, SizeIs(1));
    EXPECT_EQ(handOff.compositions[0].name, "Scene 12");
    EXPECT_TRUE(handOff.compositions[0].isRead);
}

TEST(HandOff, FindsAudioBesideTheFileWithoutBeingTold) {
    WorkProgress progress;
    const HandOff handOff = readHandOff(requestOf(example("external.omf")), progress);
    const Sources sources(handOff);
    ASSERT_THAT(sources.all(), SizeIs(2));
    EXPECT_EQ(sources.all()[0].state, SourceState::located);
    EXPECT_EQ(sources.all()[1].state, SourceState::missing);
    EXPECT_THAT(handOff.openChoices.bySource, IsEmpty());
}

TEST(HandOff, ContentsAreThereWhenTheyAreAskedFor) {
    WorkProgress progress;
    HandOffRequest request = requestOf(example("external.omf"));
    const HandOff plain = readHandOff(request, progress);
    EXPECT_FALSE(plain.contents.has_value());
    EXPECT_THAT(plain.mediaFrames, IsEmpty());
    request.contents = true;
    const HandOff handOff = readHandOff(request, progress);
    ASSERT_TRUE(handOff.contents.has_value());
    EXPECT_EQ(handOff.contents->unusedMedia, 0);
    ASSERT_EQ(handOff.mediaFrames.size(), handOff.timeline.essences.size());
    for (std::size_t i = 0; i < handOff.mediaFrames.size(); ++i) {
        const std::string& name = sourceName(handOff.timeline.essences[i]);
        // A second at 11,025 Hz beside the file; the other one is not there.
        EXPECT_EQ(handOff.mediaFrames[i],
                  name == "Door.wav" ? std::optional<std::int64_t>(11'025) : std::nullopt)
            << name;
    }
}

TEST(HandOff, EmbeddedAudioIsMeasuredByItsOwnHeader) {
    const TemporaryDirectory folder;
    OmfBuilder omf;
    const MobID tone{1, 2, 3};
    // The descriptor says 9,000 samples; the audio has 20 bytes, ten samples of 16 bits.
    omf.audioFile({.id = tone,
                   .name = "Tone.wav",
                   .media = waveImage({.samples = Bytes(20)}),
                   .length = 9'000});
    omf.composition({.slots = {omf.slot({.editRate = Ratio{48'000},
                                         .segment = omf.clip({.length = 10, .source = tone})})}});
    HandOffRequest request = requestOf(writeFile(folder.file("mix.omf"), omf.build()));
    request.contents = true;
    WorkProgress progress;
    const HandOff handOff = readHandOff(request, progress);
    EXPECT_THAT(handOff.mediaFrames, ElementsAre(std::optional<std::int64_t>(10)));
}

TEST(HandOff, LossesSayTheirKind) {
    WorkProgress progress;
    const HandOff handOff = readHandOff(requestOf(example("session.omf")), progress);
    ASSERT_THAT(handOff.losses, SizeIs(3));
    EXPECT_EQ(handOff.losses[1].kind, LossKind::effectNotRendered);
    AAFWorkerProtocol::Result answer;
    answer.timeline.unsupportedFeatures.resize(1);
    EXPECT_EQ(handOffOf(answer).losses.at(0).kind, std::nullopt);
}

TEST(Sources, OfAnEventAreFoundByItsIdAndByItsPosition) {
    HandOff handOff;
    handOff.timeline.essences = {{.id = "kick"}, {.id = "snare"}};
    handOff.timeline.events = {{.id = "1", .essenceID = "snare"},
                               {.id = "2", .essenceID = "tom"},
                               {.id = "3", .essenceID = "kick"}};
    const Sources sources(handOff);
    const std::vector<const Source*> expected{&sources.all()[1], nullptr, &sources.all()[0]};
    for (std::size_t event = 0; event < expected.size(); ++event) {
        EXPECT_EQ(sources.of(handOff.timeline.events[event]), expected[event]);
        EXPECT_EQ(sources.ofEventAt(event), expected[event]);
    }
}

TEST(HandOff, FileOfAnotherRateIsNoFind) {
    const TemporaryDirectory folder;
    const std::string file = folder.file("external.omf");
    fs::copy_file(example("external.omf"), file);
    Bytes door = readFile(example("media/Door.wav"));
    // "fmt " stands right behind the RIFF head, its rate 12 bytes on: 11025 Hz becomes 11026.
    ASSERT_EQ(door.at(24), std::byte{0x11});
    door.at(24) = std::byte{0x12};
    writeFile(folder.file("Door.wav"), door);
    WorkProgress progress;
    const HandOff handOff = readHandOff(requestOf(file), progress);
    const Sources sources(handOff);
    EXPECT_EQ(sources.all()[0].state, SourceState::misfit);
    ASSERT_THAT(handOff.openChoices.bySource, SizeIs(1));
    const auto& candidates = handOff.openChoices.bySource.begin()->second.candidates;
    ASSERT_THAT(candidates, SizeIs(1));
    EXPECT_EQ(candidates[0].path, folder.file("Door.wav"));
    EXPECT_EQ(candidates[0].misfit, "another rate, the clips need 11025 Hz");
}

TEST(HandOff, OfManyFilesOfOneNameThatFitNothingSomeAreListedAndAllWereRead) {
    constexpr std::size_t count = 70;
    const TemporaryDirectory folder;
    const std::string file = folder.file("external.omf");
    fs::copy_file(example("external.omf"), file);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string place = folder.file("media/" + std::to_string(i));
        fs::create_directories(place);
        writeFile(place + "/Door.wav", Bytes());
    }
    HandOffRequest request = requestOf(file);
    request.mediaFolders = {folder.file("media")};
    WorkProgress progress;
    const HandOff handOff = readHandOff(request, progress);
    ASSERT_THAT(handOff.openChoices.bySource, SizeIs(1));
    const OpenChoice& choice = handOff.openChoices.bySource.begin()->second;
    EXPECT_EQ(choice.files, count);
    EXPECT_THAT(choice.candidates, SizeIs(OpenChoices::listedFiles));
    EXPECT_EQ(choice.candidates.back().misfit, "no readable audio file");
    EXPECT_THAT(handOff.openChoices.read, SizeIs(count));
}

TEST(HandOff, AWorkerThatIsNotInstalledIsMissingWithThePlacesSearched) {
    // Nothing is installed beside a test.
    const fs::path folder = fs::canonical("/proc/self/exe").parent_path();
    const std::vector<fs::path> places = installedWorkerPlaces("trellant-omf");
    EXPECT_THAT(places,
                ElementsAre(folder / "AAFTools/trellant-omf",
                            folder.parent_path() / "libexec/trellant/AAFTools/trellant-omf",
                            folder.parent_path() / "bin/trellant-omf", folder / "trellant-omf"));
    EXPECT_THAT(installedWorkerPlaces("../trellant-omf"), IsEmpty());
    WorkProgress progress;
    try {
        static_cast<void>(readHandOff({.file = example("session.omf")}, progress));
        FAIL() << "no error";
    } catch (const AAFWorkerClientError& error) {
        const auto& missing = std::get<AAFWorkerClientError::HelperMissing>(error.fault());
        EXPECT_EQ(missing.helperName, "trellant-omf");
        EXPECT_EQ(missing.searched, places);
    }
}

TEST(HandOff, StopBeforeTheLookIsHeeded) {
    StopSource stop;
    stop.request_stop();
    WorkProgress progress(stop.get_token());
    EXPECT_THROW(static_cast<void>(readHandOff(requestOf(example("session.omf")), progress)),
                 AAFCancellationError);
}

TEST(HandOff, FileThatIsNoneIsTheWorkersError) {
    const TemporaryDirectory folder;
    const std::string file = writeFile(folder.file("none.omf"), Bytes(100));
    WorkProgress progress;
    EXPECT_THROW(static_cast<void>(readHandOff(requestOf(file), progress)), AAFWorkerClientError);
}

TEST(HandOff, AnswerWithoutExtensionsHasLossesWithoutPlaces) {
    AAFWorkerProtocol::Result answer;
    answer.timeline.unsupportedFeatures = {{.id = "omf-loss-0", .description = "gone"}};
    const HandOff handOff = handOffOf(answer);
    ASSERT_THAT(handOff.losses, SizeIs(1));
    EXPECT_EQ(handOff.losses[0].description, "gone");
    EXPECT_EQ(handOff.losses[0].plain, "");
    EXPECT_THAT(handOff.compositions, IsEmpty());
}

TEST(HandOff, NoCallbackRunsOnceTheWorkerHasAnswered) {
    // Longer than the client waits for a callback once its worker is gone.
    constexpr std::chrono::milliseconds longTime{2'500};
    bool hasReturned = false;
    EXPECT_NO_THROW((void)askWorker(
        {.file = example("session.omf"), .helperURLProvider = requestOf("").helperURLProvider}, {},
        [&](const AAFWorkerProtocol::Progress& report) {
            if (report.phase == "opening") {
                std::this_thread::sleep_for(longTime);
                hasReturned = true;
            }
        }));
    EXPECT_TRUE(hasReturned);
}

}  // namespace
}  // namespace trellant::testing
