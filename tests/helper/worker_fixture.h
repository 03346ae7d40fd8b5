// SPDX-License-Identifier: Apache-2.0
// What the tests of the worker share: a folder to work in, a small composition whose whole result
// is known, and the two ways in which a run may fail.
#pragma once

#include <trellant/io/byte_readers.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/requests.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/worker_process.h>
#include <vector>

namespace trellant::testing {

/// 480 frames of mono sound of 16 bits at 48000 Hz.
[[nodiscard]] Bytes toneWave();

/// A composition "Piece" with one track "A" and, on it, one clip of 480 samples of "Tone.wav",
/// which the file carries. Its objects: 1 HEAD, 2 WAVE, 3 WAVD, 4 to 7 the slot of the SMOB 8 with
/// the sound kind as 5, then 9 SCLP, 10 SEQU, 11 TRKD, 12 MSLT, 13 CMOB.
[[nodiscard]] OmfBuilder oneClipDocument();
/// The whole standard output for it; texts as JSON has them. `fileURL` is empty when nothing was
/// extracted.
[[nodiscard]] std::string oneClipResult(std::string_view sourceURL, std::string_view fileURL = {});
/// The whole standard error of a run that maps one slot.
[[nodiscard]] std::string oneSlotProgress();

/// "file:\/\/" and the path with each "/" as JSON has it here; for paths that need no encoding.
[[nodiscard]] std::string jsonFileURL(std::string_view path);

[[nodiscard]] std::vector<std::string> linesOf(std::string_view text);

/// The request was turned down before any work: one log line, nothing else, status 1.
void expectRejected(const WorkerRun& run, std::string_view message);
/// The same for a request that is no JSON; what the reason says is free, its form is not.
void expectInvalidJson(const WorkerRun& run, std::string_view reasonPrefix = {});
/// The work failed: the progress lines so far, one log line, nothing else, status 2.
void expectFailed(const WorkerRun& run, std::string_view progress, std::string_view message);
/// It ended by itself, said nothing, and the host can tell from the status that it failed.
void expectQuietEnd(const WorkerRun& run);

class WorkerTest : public ::testing::Test {
  protected:
    [[nodiscard]] std::string path(std::string_view name) const { return directory_.file(name); }
    /// Writes the one-clip file below the test's folder and gives its path.
    std::string oneClipFile(std::string_view name = "piece.omf") const;

    [[nodiscard]] static WorkerRun run(const RequestText& request) {
        return runText(request.json());
    }
    [[nodiscard]] static WorkerRun runText(std::string input);
    /// With the test's folder, or one below it, as the current directory.
    [[nodiscard]] WorkerRun runInside(const RequestText& request,
                                      std::string_view folder = {}) const;

    [[nodiscard]] const std::filesystem::path& directory() const { return directory_.path(); }
    /// Everything below the test's folder, relative and in order.
    [[nodiscard]] std::vector<std::string> everything() const;

  private:
    TemporaryDirectory directory_;
};

}  // namespace trellant::testing
