// SPDX-License-Identifier: Apache-2.0
// A hand-off read with all of its audio at hand, for as long as somebody listens to it.
#pragma once

#include <trellant/extraction/staging.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/work_progress.h>
#include <trellant/listening/source_sound.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace listening {

struct AudibleHandOffRequest {
    std::string file{};
    /// An existing folder, absolute, with room for the audio: the hidden folder is made in it.
    std::string directory{};
    /// Searched for audio files that lie outside, beside the folder of `file` itself.
    std::vector<std::string> mediaFolders{};
    /// As a HandOffRequest has it.
    bool contents = false;
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
};

/// Embedded audio lies in a hidden folder that goes with this object.
class AudibleHandOff {
  public:
    /// Runs one worker, which takes the audio out, and looks for external media. Throws as
    /// readHandOff does, and FileSystemError where the hidden folder cannot be made.
    AudibleHandOff(const AudibleHandOffRequest& request, WorkProgress& progress);

    /// Valid; its essences name the files that are there.
    [[nodiscard]] const HandOff& handOff() const noexcept { return handOff_; }
    /// Whether the path lies in the hidden folder, so that no person knows it.
    [[nodiscard]] bool isStaged(std::string_view path) const;

    /// As measureSources and previewSources do; one after the other.
    [[nodiscard]] std::vector<SourceSound> measure(const MeasureRequest& request,
                                                   WorkProgress& progress) const;
    [[nodiscard]] std::vector<Preview> previews(const std::vector<PreviewWish>& wishes,
                                                const PreviewRequest& request,
                                                WorkProgress& progress) const;

  private:
    /// What the worker takes out.
    Staging audio_;
    /// What the converter writes.
    Staging made_;
    HandOff handOff_;
};

}  // namespace listening
}  // namespace trellant
