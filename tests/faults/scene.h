// SPDX-License-Identifier: Apache-2.0
// A small request that makes the worker do everything it can do: embedded audio to take out,
// external audio named by its path, and external audio that has to be searched for.
#pragma once

#include "call_kinds.h"

#include <map>
#include <string>
#include <string_view>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

struct SceneOptions {
    /// Clips of the embedded source beside the three that play each source once.
    int moreClips = 0;
    /// The embedded audio is long, and lies where the kernel copies it to a file of its own.
    bool suitsKernelCopy = false;
};

class Scene {
  public:
    explicit Scene(const SceneOptions& options = {});

    [[nodiscard]] std::string source() const { return folder_.file("scene.omf"); }
    [[nodiscard]] std::string work() const { return folder_.file("work"); }
    [[nodiscard]] std::string search() const { return folder_.file("search"); }
    /// In the search directory, called "D:\Audio\Rain.wav" by its locator.
    [[nodiscard]] std::string searchedFile() const { return folder_.file("search/Rain.wav"); }
    /// Elsewhere, called by its path.
    [[nodiscard]] std::string namedFile() const { return folder_.file("named/Door.wav"); }
    /// Where the embedded source, "Tone.wav", goes.
    [[nodiscard]] std::string extractedFile() const { return folder_.file("work/Tone.wav"); }
    /// What the embedded source holds: a WAVE of 16 bits, mono, at 48000 Hz.
    [[nodiscard]] const std::string& embeddedAudio() const { return embeddedAudio_; }
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }

    [[nodiscard]] CallPlaces places() const { return {.source = source(), .work = work()}; }
    [[nodiscard]] std::string request(std::string_view operation) const;

    /// Everything below the folder of the scene: contents of files by relative path, "/" for
    /// folders.
    [[nodiscard]] std::map<std::string, std::string> everything() const;

  private:
    [[nodiscard]] Bytes document(const SceneOptions& options, std::size_t bytesBefore) const;

    TemporaryDirectory folder_;
    std::string embeddedAudio_;
};

/// The log line that ends the failing of a call of the file system.
[[nodiscard]] std::string refusal(std::string_view action, std::string_view path, int errorNumber);

}  // namespace trellant::testing
