// SPDX-License-Identifier: Apache-2.0
// A hand-off for an archive: a bag (BagIt 1.0) with the OMF file as it is, its audio, its timeline,
// and what was done as PREMIS 3.0 metadata.
//
// A bag comes into being in a hidden folder beside its place and gets its name when the disk has
// all of it: whatever ends the process, there is a whole bag or none.
#pragma once

#include <trellant/extraction/extraction.h>
#include <trellant/extraction/staging.h>

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace [[gnu::visibility("default")]] trellant {
namespace bag {

/// The place of a bag is taken; what() is one line for people.
class BagError final : public std::exception {
  public:
    explicit BagError(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

struct BagRequest {
    /// As an extraction has it. `directory` and `directoryPath` (absolute) are those of the bag,
    /// whose parent folder exists; the members from `force` on that say how files are kept, `store`
    /// among them, are without effect.
    ExtractionRequest extraction{};
    /// For bag-info.txt; absent or empty: not said. In one line there.
    std::optional<std::string> organization{};
    /// Absent: the name of the interchange file.
    std::optional<std::string> identifier{};
    /// When this is done, seconds since 1970-01-01 00:00:00 UTC. Beside it, equal files give equal
    /// bytes.
    std::int64_t date = 0;
};

struct BagReport {
    /// Its paths are those in the finished bag, its names the ways there from the bag's folder:
    /// "data/Kick.wav". The manifest is that of the payload.
    ExtractionReport extraction{};
    std::uint64_t payloadFiles = 0;
    std::uint64_t payloadBytes = 0;
    /// The bag was there, with the same files.
    bool wasThere = false;
};

class Bagging {
  public:
    /// Makes the hidden folder. `progress` must outlive this. Throws BagError for a place that is
    /// taken by something else than a bag, FileSystemError.
    Bagging(BagRequest request, WorkProgress& progress);

    /// All of it; call once. Throws BagError for a bag of other files, and as Extraction::run does.
    [[nodiscard]] BagReport run();

    /// The name of the hidden folder.
    [[nodiscard]] std::string stagingName() const { return staging_.name(); }

  private:
    BagRequest request_;
    WorkProgress& progress_;
    Staging staging_;
};

}  // namespace bag
}  // namespace trellant
