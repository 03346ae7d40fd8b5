// SPDX-License-Identifier: Apache-2.0
// From the folder where files come into being to their final names. A file that is there already,
// byte for byte, is kept; another one of the same name is never replaced unless that was asked for.
#pragma once

#include <trellant/base/keyed_hash.h>
#include <trellant/base/numbered_name.h>
#include <trellant/base/read_files.h>
#include <trellant/extraction/placed_file.h>
#include <trellant/handoff/work_progress.h>

#include <cstddef>
#include <string>
#include <vector>

namespace trellant {

class Placement {
  public:
    /// `directory` absolute; `force`: files with other bytes are replaced, but none that the run
    /// reads.
    Placement(std::string directory, bool force, WorkProgress& progress)
        : directory_(std::move(directory)), force_(force), progress_(progress) {}

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
    enum class Standing { nothing, same, other };

    [[nodiscard]] Standing standingAt(const std::string& path, const std::string& staged,
                                      const std::string& sha256);
    [[nodiscard]] bool settle(const std::string& path, const std::string& staged, PlacedFile& file);
    [[nodiscard]] std::string digest(const std::string& path);

    std::string directory_;
    bool force_;
    WorkProgress& progress_;
    ReadFiles read_;
    std::vector<PlacedFile> placed_;
    KeyedSet<std::string> taken_;
    /// Of files that were compared and found to be others.
    KeyedMap<std::string, std::string> digests_;
};

}  // namespace trellant
