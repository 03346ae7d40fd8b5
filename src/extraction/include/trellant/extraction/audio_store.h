// SPDX-License-Identifier: Apache-2.0
// A store of audio by content: equal files are kept once, whichever hand-offs they are from.
//
// A file is called after the SHA-256 of its bytes, "ab/cd/abcd....wav", so that sha256sum can check
// the store at any time. The digest is of the file and not of its samples: what a header says, such
// as the place on a tape, is kept as it is. Files of the store can be read only, since all folders
// that share one would change with it, and none is ever replaced.
#pragma once

#include <trellant/handoff/work_progress.h>

#include <exception>
#include <string>
#include <utility>

namespace [[gnu::visibility("default")]] trellant {

/// The store cannot be used as it is; what() is one line for people.
class AudioStoreError final : public std::exception {
  public:
    explicit AudioStoreError(std::string text) : text_(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::string text_;
};

/// A file in the store.
struct StoredFile {
    /// From the store's folder on: "ab/cd/abcd....wav".
    std::string name{};
    /// Absolute.
    std::string path{};
    /// The store had it before.
    bool wasThere = false;
    /// The file that was given is another name of it; else it is gone.
    bool isLinked = false;
    bool operator==(const StoredFile&) const = default;
};

class AudioStore {
  public:
    /// What becomes of a file that was given to the store.
    enum class Leaving {
        /// Another name of the file in the store (a hard link), where the file system has that.
        link,
        /// Nothing: who wants it refers to the store.
        nothing
    };

    /// `folder` exists, absolute. `progress` must outlive this.
    AudioStore(std::string folder, Leaving leaving, WorkProgress& progress)
        : folder_(std::move(folder)), leaving_(leaving), progress_(progress) {}

    /// Takes the file at `path` in, whose bytes have this digest. `scratch`: a folder on the file
    /// system of `path` in which names may come and go. What the store has already is read before
    /// anything relies on it. Whatever ends the process, the bytes are under at least one of the
    /// names. Throws AudioStoreError for a file of the store that is not what its name says,
    /// FileSystemError, AAFCancellationError.
    StoredFile keep(const std::string& path, const std::string& sha256, const std::string& scratch);

  private:
    /// False when something has come to stand there.
    [[nodiscard]] bool add(const std::string& path, const std::string& sha256,
                           const StoredFile& file);
    [[nodiscard]] bool addCopy(const std::string& path, const std::string& sha256,
                               const StoredFile& file);
    void checkStanding(const StoredFile& file, const std::string& sha256);
    [[nodiscard]] bool isLinked(const std::string& path, const std::string& scratch,
                                const StoredFile& file) const;

    std::string folder_;
    Leaving leaving_;
    WorkProgress& progress_;
};

}  // namespace trellant
