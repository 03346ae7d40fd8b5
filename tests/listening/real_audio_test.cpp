// SPDX-License-Identifier: Apache-2.0
// The audio of files of real workstations, where TRELLANT_REAL_FILES names their folder.
#include <trellant/client/errors.h>
#include <trellant/handoff/sources.h>
#include <trellant/listening/audible_hand_off.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/worker_process.h>
#include <vector>

namespace trellant::testing {
namespace {

namespace fs = std::filesystem;

using listening::AudibleHandOff;
using listening::SoundState;

/// Its sources that were heard, with a preview of each; all that are embedded and played.
std::size_t heardSources(const std::string& file, const std::string& folder) {
    WorkProgress progress;
    const AudibleHandOff audible(
        {.file = file,
         .directory = folder,
         .helperURLProvider = [](const std::string&) { return workerPath(); }},
        progress);
    const auto& essences = audible.handOff().timeline.essences;
    const auto sounds = audible.measure({.converter = TRELLANT_WAV}, progress);
    std::vector<listening::PreviewWish> wishes;
    for (std::size_t i = 0; i < essences.size(); ++i) {
        if (!essences[i].embedded || sounds[i].state == SoundState::notPlayed) {
            continue;
        }
        EXPECT_EQ(sounds[i].state, SoundState::heard)
            << file << ", " << sourceName(essences[i]) << ": " << sounds[i].reason;
        if (sounds[i].state == SoundState::heard) {
            EXPECT_EQ(sounds[i].measures->sampleRate,
                      static_cast<std::uint32_t>(essences[i].sampleRate.roundedInt64()));
            wishes.push_back({.essence = i, .channel = 0});
        }
    }
    for (const auto& preview : audible.previews(wishes, {.converter = TRELLANT_WAV}, progress)) {
        EXPECT_EQ(preview.state, listening::PreviewState::made) << file << ": " << preview.reason;
    }
    return wishes.size();
}

TEST(RealAudio, IsHeardAndMadeSmall) {
    const char* const folder = std::getenv("TRELLANT_REAL_FILES");
    if (folder == nullptr) {
        GTEST_SKIP() << "TRELLANT_REAL_FILES is not set";
    }
    const TemporaryDirectory directory;
    std::size_t heard = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() != ".omf") {
            continue;
        }
        try {
            heard += heardSources(entry.path().native(), directory.path().native());
        } catch (const AAFWorkerClientError&) {
            // OMF 1 is none of ours; which files are read at all is tested with the worker.
        }
    }
    EXPECT_GT(heard, 0U);
    EXPECT_TRUE(fs::is_empty(directory.path()));
}

}  // namespace
}  // namespace trellant::testing
