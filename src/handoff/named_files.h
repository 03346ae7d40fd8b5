// SPDX-License-Identifier: Apache-2.0
// The files of one name, put so that the one that a source needs is found without a look at each:
// thousands of sources may bear a name that thousands of files have.
#pragma once

#include <trellant/handoff/missing_media.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace trellant {

class NamedFiles {
  public:
    /// In the order of MediaFolders::named; their misfit is left open.
    explicit NamedFiles(std::vector<MediaCandidate> files);

    [[nodiscard]] const std::vector<MediaCandidate>& files() const noexcept { return files_; }

    /// Which of the files fit.
    struct Fitting {
        /// Some one that fits; absent when none does.
        std::optional<std::size_t> any{};
        /// The one that is taken: the only one that fits, else the only one beside the hand-off.
        std::optional<std::size_t> decided{};
    };
    [[nodiscard]] Fitting fitting(const SourceNeeds& needs) const;

  private:
    /// The two longest of some files.
    struct Longest {
        struct File {
            std::uint64_t frames = 0;
            std::size_t index = 0;
        };
        std::optional<File> first{};
        std::optional<File> second{};

        void add(const File& file);
        /// The only one that is so long; absent when none is, or several are.
        [[nodiscard]] std::optional<std::size_t> only(std::uint64_t frames) const;
    };
    /// The longest of all files of one rate with at least so many channels.
    struct OfChannels {
        std::int64_t channels = 0;
        Longest all{};
        Longest beside{};
    };

    std::vector<MediaCandidate> files_;
    /// By rate; by descending channels.
    std::map<AAFRational, std::vector<OfChannels>> byRate_;
};

}  // namespace trellant
