// SPDX-License-Identifier: Apache-2.0
// From the folder where files come into being to their final names. A file that is there already,
// byte for byte, is kept; another one of the same name is never replaced unless that was asked for.
// Work grows with the files placed and those that stand there, not with both together: each of
// these is looked at once and read at most once.
#pragma once

#include "standing_files.h"

#include <trellant/base/free_numbers.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/base/numbered_name.h>
#include <trellant/base/read_files.h>
#include <trellant/extraction/placed_file.h>
#include <trellant/handoff/work_progress.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

class Placement {
  public:
    /// `directory` absolute; `force`: files with other bytes are replaced, but none that the run
    /// reads.
    Placement(std::string directory, bool force, WorkProgress& progress)
        : directory_(std::move(directory)), force_(force), progress_(progress) {}
    ~Placement() = default;
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;
    Placement(Placement&&) = delete;
    Placement& operator=(Placement&&) = delete;

    /// A file that the run reads, or may still read: it is never replaced.
    void protect(const std::string& path) { read_.add(path); }

    /// Gives the file at `staged` the name `wanted` or the next free number of it. Two files placed
    /// by one Placement never share a name. Throws FileSystemError, AAFCancellationError.
    PlacedFile place(const std::string& staged, const NumberedName& wanted);

    /// The same for a run that is being ended: nothing is compared or replaced, and the file stays
    /// where it is when something bears its name.
    void keep(const std::string& staged, const std::string& name);

    /// All placed so far, in order.
    [[nodiscard]] const std::vector<PlacedFile>& placed() const noexcept { return placed_; }

  private:
    /// What a new file may be: its bytes, and the name that it wants.
    struct Wish {
        const std::string& staged;
        std::string sha256;
        std::uint64_t size = 0;
        const NumberedName& name;
    };

    struct Place {
        std::uint64_t number = 0;
        /// What stands there already has the file's bytes.
        bool hasSameBytes = false;
    };

    /// The first number from the wanted one on under which the file can stand: nothing does, or
    /// what may be replaced, or the same bytes. What stands in the way is remembered. Throws
    /// FileSystemError when there is none.
    [[nodiscard]] Place placeFor(const Wish& wish);
    [[nodiscard]] bool isInTheWay(const NumberedName& name, std::uint64_t number,
                                  const std::string& path);
    /// The number of a file that stands there with the same bytes, below `end`.
    [[nodiscard]] std::optional<std::uint64_t> sameBytes(const Wish& wish, std::uint64_t end);
    /// False when something has come to stand at `path`. `file` learns whether it was there.
    bool settle(const std::string& path, const Wish& wish, PlacedFile& file);
    [[nodiscard]] bool hasBytesOf(const std::string& path, const Wish& wish);
    [[nodiscard]] std::string digest(const std::string& path);

    std::string directory_;
    bool force_;
    WorkProgress& progress_;
    ReadFiles read_;
    std::vector<PlacedFile> placed_;
    KeyedSet<std::string> taken_;
    FreeNumbers numbers_;
    StandingFiles standing_{[this](const std::string& path) { return digest(path); }};
};

}  // namespace trellant
